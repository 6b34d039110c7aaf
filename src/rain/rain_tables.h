// The two tables that hold rain summed up, DAILy_CHART and Intensity_duration, from the rows of CHART.
#pragma once

#include <string>

#include "core/progress.h"
#include "database/access/plot_db.h"
#include "platform/dialogs.h"
#include "rain/rain_reading.h"
#include "rain/rain_time.h"

namespace hyetex {

/// Classes of intensity, mm/h: each from its bound up to the next one, the last one up to the greatest.
inline constexpr int IntensityBounds[] = {0, 2, 5, 10, 20, 30, 50, 75, 100};
/// Intensities are those of steps of so many minutes.
inline constexpr int IntensityMinutes = 5;

struct RainTablesCount {
  std::int64_t Days = 0;     ///< rows of the instrument in DAILy_CHART whose date lies in the span
  std::int64_t Classes = 0;  ///< rows of its station in Intensity_duration, of whatever span
  bool operator==(const RainTablesCount&) const = default;
};

struct RainTablesFilled {
  bool Done = false;    ///< false: the operator wanted it not, and nothing has changed
  RainTablesCount Old;  ///< rows that were there
  RainTablesCount New;  ///< rows that are there now
  std::string Station;
  RainRemarks Remarks;
};

/// Replaces what the two tables hold of an instrument and span, in one transaction: after an error all is as
/// it was. Rows that are there are counted and asked about first (title "Filling Rain Tables"), with no
/// transaction open; where others came meanwhile it fails, and nothing has changed. Days of which nothing is
/// known get no row. Whether the operator may write is for the caller to say. Fails with a line for the
/// operator, with Cancelled's where `progress` wants no more.
DbResult<RainTablesFilled> FillRainTables(HyetexPlotDB& database, const RainChoice& choice,
                                          const RainClock& clock, Dialogs& dialogs, Progress& progress);
/// What came of it.
std::string FilledMessage(const RainTablesFilled& filled);

}  // namespace hyetex
