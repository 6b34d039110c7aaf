// Stored charts become rows of rain: one row of CHART a step, in GMT, times to 10 seconds and depths to a
// hundredth of a millimetre. Of each chart the old rows are gone, the new ones are there and it is marked as
// loaded, or nothing has changed: charts go in transactions of some charts, and where one of those fails,
// chart by chart.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "core/progress.h"
#include "database/access/plot_db.h"
#include "database/conversion/computation.h"
#include "platform/dialogs.h"
#include "staging/lists/lists.h"

namespace hyetex {

/// A chart of CHART_ASCII that is to be converted.
struct ChartToConvert {
  Date ChartDate = 0;   ///< as stored
  bool Manual = false;  ///< scaled to the manual gage's depth, not the digitized one
};

struct ConversionOptions {
  ComputationVariables Variables;
  bool Overwrite = false;  ///< existing rows are replaced without a question
  bool Log = false;        ///< write datalog.txt
  std::string LogFolder;   ///< where it stands
  std::string User = {};   ///< who converts; empty where nobody can tell
};

struct ConversionResult {
  std::int64_t RowsWritten = 0;
  int ChartsConverted = 0;
  int ChartsSkipped = 0;  ///< their rows were not to be replaced
  int ChartsFailed = 0;   ///< named in Problems, and as they were before
  bool Cancelled = false;
  bool Failed = false;  ///< the charts could not be listed or the log not be kept; Problems tell why
  /// Charts that could not be converted, texts that were cut, and what readers of the charts left out; one
  /// line each.
  std::vector<std::string> Problems;
};

/// Converts the chosen charts of one instrument, in the order of their dates. Asks through `dialogs` before
/// it replaces rows, and before it converts what is left of a text that was cut off; errors are handled by
/// their numbers, and the run goes on with the next chart. Refuses hours to GMT that no place on earth has.
/// Where the database has no table CHART_CONVERSION and a chosen chart was converted before, the operator is
/// told first that rows of that run may remain.
ConversionResult WriteChartRecords(HyetexPlotDB& database, const ReferenceLists& lists,
                                   const std::string& instrumentCode, std::span<const ChartToConvert> charts,
                                   const ConversionOptions& options, Dialogs& dialogs, Progress& progress);

/// Hours to GMT are at most this many, either way.
inline constexpr int MostGmtHours = 14;

/// What the operator is told when a run is over.
std::string ConversionMessage(const ConversionResult& result, bool logged);

}  // namespace hyetex
