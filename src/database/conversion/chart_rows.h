// From a stored chart to its rows of rain: the series in GMT, scaled to the chosen depth, one row a step,
// times to 10 seconds and depths to a hundredth of a millimetre. Knows of no database.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "chartfiles/chart_reader.h"
#include "core/result.h"
#include "database/conversion/computation.h"

namespace hyetex {

/// One step of a chart, times in GMT.
struct ChartRow {
  Date Start = 0, End = 0;
  std::optional<double> Depth;  ///< mm in the step; nothing where no depth is known
  std::string Comment;
};

struct ChartRows {
  Date Start = 0, End = 0;  ///< of the chart, GMT
  std::vector<ChartRow> Rows;
  /// Rows that earlier versions wrote for this chart: their times were not held to the chart's.
  std::vector<ChartRow> FormerRows;
  std::optional<double> ChosenDepth;  ///< mm that the rows add up to; nothing where none is known
  std::optional<double> Alpha;        ///< that was taken out
  std::vector<std::string> Notes;     ///< what the operator should know, one line each
};

/// Reads a stored chart for conversion. Fails, saying why, on a chart that gives no rows: no such station, no
/// start or end, an end that is not after the start, no points that span time. A chart of code 213 needs no
/// points. The chart's whole rain and time stay in the series, also where its last steps are shorter than the
/// minimal lapse.
Result<void> ReadChartToConvert(std::string_view storedText, const ComputationVariables& variables,
                                std::span<const StationRecord> stations, ChartReading& reading);

/// The chart's rows; `reading` is left in GMT with one step's depth in each slot. A chart of code 213 gives
/// one row with the manual gage's depth, whatever `manual` says. A chosen depth of 0 leaves the series as it
/// was built, and so does an unknown one. No row lies outside the chart's start and end, to the second: steps
/// that do are added to the row that ends with the chart, and so are those of no length at its end.
ChartRows MakeChartRows(ChartReading& reading, bool manual, float gmtShift);

/// To the nearest 10 seconds, an exact half to the even one.
Date RoundedTime(Date time);

}  // namespace hyetex
