// What the manual gage read, beside the rain of the charts.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "database/access/plot_db.h"
#include "rain/rain_steps.h"

namespace hyetex {

struct GageReading {
  RainTime Start = 0, End = 0;
  double Depth = 0;  ///< mm
};
struct GageReadings {
  std::vector<GageReading> Readings;  ///< in the order of time
  std::vector<std::string> Notes;     ///< what was left out: readings without a time, without a depth
};

/// The readings in MANUAL_GAGE that lie in the span or reach into it. They are local times, as those who read
/// gages write down, and a reading without an end, or whose end is its start, is that of the day that begins
/// with its start's date. A database without the table has no readings.
DbResult<GageReadings> ReadManualGage(HyetexPlotDB& database, const std::string& instrument, RainSpan span,
                                      const RainClock& clock);

/// The differences that want a look.
inline constexpr double GageTolerance = 5;  ///< percent

struct GageComparison {
  RainTime Start = 0, End = 0;
  double Gage = 0, Chart = 0;  ///< mm
  double Covered = 0;          ///< of the charts, in this time
  /// Of the charts from the gage; nothing where the gage read 0.
  std::optional<double> Percent = {};
  bool IsOff() const;  ///< past the tolerance, or rain on one side only
};
/// What `sums` has of the readings' times, made from them in their order.
std::vector<GageComparison> Compare(const GageReadings& gage, const std::vector<RainInterval>& sums);
std::vector<RainInterval> IntervalsOf(const GageReadings& gage);

/// The readings that make up a day and lie wholly in it; nothing where they leave some of it out.
std::optional<GageComparison> CompareDay(const RainStep& day, const GageReadings& gage);

}  // namespace hyetex
