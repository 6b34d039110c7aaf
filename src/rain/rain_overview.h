// All that a window shows of an instrument's rain in some days: steps for a picture, days, maxima, storms,
// what the manual gage read. One pass over the rows.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "rain/manual_gage.h"
#include "rain/rain_maxima.h"
#include "rain/rain_reading.h"
#include "rain/rain_steps.h"
#include "rain/rain_storms.h"

namespace hyetex {

struct RainQuestion {
  std::string Instrument;
  Date FromDay = 0, ToDay = 0;  ///< local days, both of them in it
  int StepMinutes = 60;         ///< of `OfferedRainSteps`
  RainClock Clock;
  int LocalMinutes = 0;  ///< what the gage's local time is ahead of GMT, whatever clock is shown
  double StormDryHours = DryHours;

  bool operator==(const RainQuestion&) const = default;
};

/// A picture has no more steps than this: longer ones are taken where there would be.
inline constexpr RainTime MostRainSteps = 100'000;
/// A span is no longer than this.
inline constexpr double MostRainDays = 366.0 * 200;

/// From the first day's begin to the end of the last.
RainSpan SpanOf(const RainQuestion& question);
/// The day, by the clock's begin of days, that holds a moment.
Date DayOf(RainTime time, const RainClock& clock);
/// The first offered step, not shorter than the one that is wanted, of which a picture has not too many.
int StepToShow(const RainQuestion& question);
/// A step with which some days make a picture that can be read.
int StepForDays(double days);

struct RainOverview {
  RainQuestion Question;
  int StepMinutes = 0;  ///< that was taken
  std::vector<RainStep> Steps, Days;
  std::vector<RainMaximum> Maxima;
  std::vector<RainStorm> Storms;
  GageReadings Gage;
  std::vector<GageComparison> Compared;  ///< of the gage's readings
  RainRemarks Remarks;

  double Depth() const { return MmOf(Remarks.Depth); }
  /// What an operator should know, a line each; none where nothing is odd.
  std::vector<std::string> Lines() const;
};

DbResult<RainOverview> ReadRainOverview(HyetexPlotDB& database, const RainQuestion& question,
                                        Progress& progress);

/// The years from an instrument's first row to its last.
std::vector<int> YearsOf(const RainExtent& extent, const RainClock& clock);
/// Sums of all its years. Reads all its rows.
DbResult<std::vector<RainPeriod>> ReadRainYears(HyetexPlotDB& database, const std::string& instrument,
                                                const RainClock& clock, Progress& progress);

/// The one with the most rain; nothing where there are none.
std::optional<RainStorm> GreatestStorm(std::span<const RainStorm> storms);

}  // namespace hyetex
