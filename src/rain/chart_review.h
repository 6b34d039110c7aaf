// What lies between and in the stored charts of an instrument that an operator should look at: time without a
// chart, charts that overlap, charts that are not converted, depths that the manual gage does not bear out,
// unreliable charts. A list to be worked off, each line with the place where it is mended.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/records.h"
#include "database/access/plot_db.h"

namespace hyetex {

/// In the order in which they are listed of one chart.
enum class ChartTrouble { Missing, Overlap, Damaged, NotConverted, DepthDiffers, Unreliable };
enum class MendedIn { Staging, Editor, Populating };

MendedIn WhereMended(ChartTrouble trouble);
/// "Missing chart", "Overlap", ...
const char* TroubleName(ChartTrouble trouble);
/// What is done about it, for a button: "Stage the missing chart", ...
const char* MendingName(MendedIn place);

/// What the list is made from, of one stored chart.
struct ReviewedChart {
  Date ChartDate = 0;                  ///< as stored: with the instrument it tells the chart
  Date Start = 0, End = 0;             ///< local; 0 where its text does not tell
  float Depth = -1, Gage = -1;         ///< mm; -1 is not known
  int Reliability = 0;                 ///< of ReliabilityText
  bool Defective = false;              ///< code 213: the gage's depth stands for the chart's
  std::optional<bool> Converted = {};  ///< nothing where the database does not tell
  Date ConvertedOn = 0;                ///< of an earlier conversion; 0: none is known
};

struct ReviewLine {
  ChartTrouble Trouble = ChartTrouble::Missing;
  /// Of the chart to look at, as stored; of missing time the chart behind it.
  Date ChartDate = 0;
  Date From = 0, To = 0;  ///< local: the time without a chart, in common, or of the chart
  std::string Detail;     ///< in words
};

struct ChartReview {
  std::vector<ReviewLine> Lines;  ///< by time
  int Charts = 0;                 ///< that were looked at
  bool Stopped = false;           ///< before the last
  bool TellsConverted = true;     ///< whether the database tells which charts were converted
};

/// Changing the paper takes this long: less between two charts is nothing missing.
inline constexpr double PaperChangeMinutes = 60;
/// More than this share of the gage's depth is a difference.
inline constexpr double DepthTolerance = 0.05;

/// Charts in any order. Times are compared to the second.
std::vector<ReviewLine> ReviewOf(std::vector<ReviewedChart> charts);

/// Reads all stored charts of an instrument, of each text the head only.
DbResult<ChartReview> ReviewCharts(HyetexPlotDB& database, const std::string& instrumentCode,
                                   std::span<const StationRecord> stations, Progress& progress);

}  // namespace hyetex
