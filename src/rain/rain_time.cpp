#include "rain/rain_time.h"

#include <cstdio>
#include <cstdlib>

#include "core/dates.h"

namespace hyetex {
namespace {

RainTime FloorTo(RainTime time, RainTime step) {
  const RainTime rest = time % step;
  return time - (rest < 0 ? rest + step : rest);
}

// What a local time that counts days from their begin is ahead of GMT.
RainTime Ahead(const RainClock& clock) { return RainTime{60} * (clock.MinutesFromGmt - clock.DayBegins); }

RainTime MonthBegin(int year, int month, const RainClock& clock) {
  return SecondsOf(MakeDate(year, month, 1)) - Ahead(clock);
}

CalendarTime CalendarOf(RainTime time, const RainClock& clock) {
  return ToCalendar(static_cast<double>(time + Ahead(clock)) / SecondsPerDay);
}

}  // namespace

RainTime FromLocal(Date local, const RainClock& clock) {
  return SecondsOf(local) - RainTime{60} * clock.MinutesFromGmt;
}

Date ToLocal(RainTime time, const RainClock& clock) {
  return static_cast<double>(time + RainTime{60} * clock.MinutesFromGmt) / SecondsPerDay;
}

std::string IsoWithZone(RainTime time, const RainClock& clock) {
  char zone[16];
  const int minutes = std::abs(clock.MinutesFromGmt);
  std::snprintf(zone, sizeof zone, "%c%02d:%02d", clock.MinutesFromGmt < 0 ? '-' : '+', minutes / 60,
                minutes % 60);
  return IsoText(ToLocal(time, clock)) + zone;
}

Result<int> ReadDayBegins(std::string_view text) {
  const auto digit = [&](std::size_t at) {
    return text[at] >= '0' && text[at] <= '9' ? text[at] - '0' : 100;
  };
  if (text.size() == 5 && text[2] == ':') {
    const int hours = digit(0) * 10 + digit(1), minutes = digit(3) * 10 + digit(4);
    if (hours < 24 && minutes < 60) return hours * 60 + minutes;
  }
  return Failure("A time of day is wanted, as 07:00, not \"" + std::string(text) + "\"");
}

Result<Date> ReadRainTime(std::string_view text) {
  constexpr std::string_view form = "0000-00-00T00:00:00";
  const auto part = [&](std::size_t at, std::size_t size) {
    int number = 0;
    for (const char c : text.substr(at, size)) number = number * 10 + (c - '0');
    return number;
  };
  bool isWhole = text.size() == 10 || text.size() == 16 || text.size() == form.size();
  for (std::size_t i = 0; isWhole && i < text.size(); ++i) {
    const bool isDigit = text[i] >= '0' && text[i] <= '9';
    isWhole = form[i] == '0' ? isDigit : text[i] == form[i];
  }
  if (isWhole) {
    const int hour = text.size() > 10 ? part(11, 2) : 0, minute = text.size() > 10 ? part(14, 2) : 0;
    const int second = text.size() > 16 ? part(17, 2) : 0;
    if (const auto day = TypedDate(text.substr(0, 10)); day && hour < 24 && minute < 60 && second < 60)
      return *day + (hour * 3600 + minute * 60 + second) / static_cast<double>(SecondsPerDay);
  }
  return Failure("A time is wanted, as 2001-03-05 or 2001-03-05T07:00, not \"" + std::string(text) + "\"");
}

bool IsRainStep(int minutes) {
  return minutes > 0 && minutes <= MinutesPerDay && MinutesPerDay % minutes == 0;
}

RainTime StepBegin(RainTime time, const RainStepKind& kind, const RainClock& clock) {
  if (kind.Of == RainStepKind::Unit::Minutes)
    return FloorTo(time + Ahead(clock), RainTime{60} * kind.Minutes) - Ahead(clock);
  const CalendarTime at = CalendarOf(time, clock);
  return MonthBegin(at.Year, kind.Of == RainStepKind::Unit::Year ? 1 : at.Month, clock);
}

RainTime NextStep(RainTime begin, const RainStepKind& kind, const RainClock& clock) {
  if (kind.Of == RainStepKind::Unit::Minutes) return begin + RainTime{60} * kind.Minutes;
  const CalendarTime at = CalendarOf(begin, clock);
  if (kind.Of == RainStepKind::Unit::Year || at.Month == 12) return MonthBegin(at.Year + 1, 1, clock);
  return MonthBegin(at.Year, at.Month + 1, clock);
}

}  // namespace hyetex
