// Whose time rain is counted by: hours from GMT, and where a day begins. Times of rain are whole seconds
// since 30/12/1899, in GMT, as CHART has them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/records.h"
#include "core/result.h"

namespace hyetex {

using RainTime = std::int64_t;
inline constexpr RainTime DaySeconds = 86400;

struct RainClock {
  int MinutesFromGmt = 0;  ///< what local time is ahead of GMT: 120 in Jordan, -420 in New Mexico
  int DayBegins = 0;       ///< minutes behind midnight, 0 to 1439

  bool operator==(const RainClock&) const = default;
};

inline constexpr double MostHoursFromGmt = 14;  ///< as far as any zone is, either way

/// A span of GMT; an end that is missing is where the rain begins or ends.
struct RainSpan {
  std::optional<RainTime> From = {}, To = {};
};

RainTime FromLocal(Date local, const RainClock& clock);
/// The same moment by the clock.
Date ToLocal(RainTime time, const RainClock& clock);
/// "1998-03-05T12:10:00-07:00" by the clock; of a clock in GMT "+00:00".
std::string IsoWithZone(RainTime time, const RainClock& clock);

/// "2001-03-05", "2001-03-05T07:00" or with seconds behind it; fails, in words, on any other text and on what
/// is not in the calendar.
Result<Date> ReadRainTime(std::string_view text);
/// "07:00" to minutes behind midnight; fails, in words, on any other text.
Result<int> ReadDayBegins(std::string_view text);

/// What rain is summed into.
struct RainStepKind {
  enum class Unit { Minutes, Month, Year } Of = Unit::Minutes;
  int Minutes = 0;  ///< of Unit::Minutes: what divides a day without a rest, to a day

  bool operator==(const RainStepKind&) const = default;
};
inline constexpr RainStepKind RainDays{RainStepKind::Unit::Minutes, 1440},
    RainMonths{RainStepKind::Unit::Month}, RainYears{RainStepKind::Unit::Year};
/// The steps that a window offers, in minutes.
inline constexpr int OfferedRainSteps[] = {1, 5, 10, 15, 30, 60, 1440};
bool IsRainStep(int minutes);

/// Begin of the step that holds a moment, and of the one behind it. Steps are counted from the begin of the
/// day, so that those of a day make up the day; months and years begin with the day that their first is.
RainTime StepBegin(RainTime time, const RainStepKind& kind, const RainClock& clock);
RainTime NextStep(RainTime begin, const RainStepKind& kind, const RainClock& clock);

}  // namespace hyetex
