// The table CHART_CONVERSION: what was converted, how and by whom. It tells which rows of CHART are a
// chart's, also where they were written with other hours to GMT or of another text.
#pragma once

#include <cstdint>
#include <map>
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

/// What is written down of a chart, with when and by whom.
struct WrittenConversion : ChartConversion {
  Date When = 0;     ///< 0 where it is not told
  std::string User;  ///< empty where nobody could tell
  std::int64_t Number = 0;
};
/// How it was converted, in words: "Digitized 53.11 mm, alpha 0.00431, lapse 5 min, 103 rows".
std::string HowConverted(const ChartConversion& conversion);

DbResult<bool> HasConversionBook(Connection& connection);

/// All that is written down of an instrument, of each chart (by its second, SecondsOf) the latest; none where
/// the database has no book. A column that the table lacks reads as empty.
DbResult<std::map<std::int64_t, WrittenConversion>> ReadConversionBook(HyetexPlotDB& database,
                                                                       const std::string& code);

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
