// The ticks of axes: round steps of numbers, and of time by hours, days of the month, months and years.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace hyetex {

/// The step for a raw step: of TickStep's ladder, carried on by powers of ten above and below it.
double RoundStep(double raw);

struct Tick {
  double Value = 0;
  std::string Label;  ///< empty where there is no room for one
};

/// How wide a text is, in the units of the axis' length.
using TextWidth = std::function<double(const std::string&)>;

/// The ticks from `from` to `to` on an axis that is `length` long, each a label, at least `gap` apart.
std::vector<Tick> NumberTicks(double from, double to, double length, double gap);

/// A part of a time axis with its name, as the days below the hours.
struct TimeSpan {
  double From = 0, To = 0;  ///< as far as it is in view
  std::string Label;        ///< empty where there is no room for one
};

struct TimeTicks {
  std::vector<Tick> Ticks;
  std::vector<double> DayMarks;  ///< the midnights, where ticks are hours or days
  std::vector<TimeSpan> Spans;   ///< the days of hours, the months of days, the years of months
};

/// The ticks of a time axis, at least `gap` apart; labels have at least their samples' room.
TimeTicks MakeTimeTicks(double from, double to, double length, double gap, const TextWidth& width);

}  // namespace hyetex
