// The table CHART_CONVERSION: what was converted, how and by whom. It tells which rows of CHART are a
// chart's, also where they were written with other hours to GMT or of another text.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "database/access/plot_db.h"
#include "database/conversion/computation.h"

namespace hyetex {

/// The time in which a chart's rows lie, GMT.
struct ConvertedSpan {
  Date ChartDate = 0;
  Date First = 0, Last = 0;
  std::int64_t Number = 0;  ///< the later of two conversions has the higher one
};

/// What is written down of a chart.
struct ChartConversion {
  std::string InstrumentCode;
  Date ChartDate = 0;
  Date First = 0, Last = 0;  ///< GMT
  ComputationVariables Variables;
  std::optional<double> Alpha;  ///< that was taken out
  bool Manual = false;
  std::optional<double> ChosenDepth;
  std::int64_t Rows = 0;
};

DbResult<bool> HasConversionBook(Connection& connection);

/// What is written down of some charts of an instrument.
DbResult<std::vector<ConvertedSpan>> ConvertedSpans(HyetexPlotDB& database, const std::string& code,
                                                    std::span<const Date> chartDates);
/// Of all charts of an instrument that reach into some time.
DbResult<std::vector<ConvertedSpan>> ConvertedSpans(HyetexPlotDB& database, const std::string& code,
                                                    Date from, Date to);

/// Writes down the charts of one transaction after another.
class ConversionWriter {
 public:
  ConversionWriter(HyetexPlotDB& database, std::string user) : database_(&database), user_(std::move(user)) {}
  void Add(ChartConversion conversion) { waiting_.push_back(std::move(conversion)); }
  /// Writes down what was added since the last time; each chart's old entry goes.
  DbResult<void> Finish();
  /// What was added is not wanted any more.
  void Forget() { waiting_.clear(); }

 private:
  HyetexPlotDB* database_;
  std::string user_;
  std::vector<ChartConversion> waiting_;
};

}  // namespace hyetex
