#include "graph/ticks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>

#include "core/dates.h"
#include "core/numbers.h"

namespace hyetex {
namespace {

constexpr double Enough = 1 - 1e-9;  // of a gap, so that one that is just met counts
constexpr double MostTicks = 1000, Largest = 1e15;

enum class Unit { Minute, Day, Month, Year };

struct TimeStep {
  Unit Of = Unit::Minute;
  int Count = 1;
  double Days = 0;  // at least between two ticks
};

constexpr TimeStep Minutes(int count) { return {Unit::Minute, count, count / double{MinutesPerDay}}; }

// Steps of minutes divide a day; those of days begin anew with each month, so its last one may be shorter.
constexpr std::array<TimeStep, 16> TimeSteps{{Minutes(1),
                                              Minutes(5),
                                              Minutes(10),
                                              Minutes(15),
                                              Minutes(30),
                                              Minutes(60),
                                              Minutes(120),
                                              Minutes(180),
                                              Minutes(360),
                                              Minutes(720),
                                              {Unit::Day, 1, 1},
                                              {Unit::Day, 5, 4},
                                              {Unit::Day, 10, 9},
                                              {Unit::Month, 1, 28},
                                              {Unit::Month, 3, 90},
                                              {Unit::Month, 6, 181}}};
constexpr double DaysOfYear = 365;

TimeStep YearStep(double days) {
  const int years = std::max(1, static_cast<int>(std::ceil(RoundStep(days / DaysOfYear))));
  return {Unit::Year, years, years * DaysOfYear};
}

// The first step that is no shorter than TickStep's for the gap, in hours, and as long as the gap.
TimeStep StepFor(double gapDays) {
  const double raw = TickStep(static_cast<float>(gapDays * 24)) / 24.0;
  for (const TimeStep& step : TimeSteps)
    if (step.Days >= gapDays * Enough && (step.Days >= raw * Enough || raw > 1)) return step;
  TimeStep step = YearStep(gapDays);
  for (double more = gapDays; step.Days < gapDays * Enough; more *= 1.25) step = YearStep(more);
  return step;
}

// The next longer step whose ticks are all ticks of `step`.
std::optional<TimeStep> Coarser(const TimeStep& step, const TimeStep& than) {
  if (step.Of == Unit::Year) {
    for (int times : {2, 5, 10, 20, 50, 100})
      if (step.Count * times > than.Count) return TimeStep{Unit::Year, step.Count * times, step.Days * times};
    return std::nullopt;
  }
  for (const TimeStep& other : TimeSteps)
    if (other.Of == step.Of && other.Count > than.Count && other.Count % step.Count == 0) return other;
  return std::nullopt;
}

Date FirstOfMonth(int year, int month) {  // months count on over the year's ends
  const int months = year * 12 + month - 1;
  return MakeDate(months / 12, months % 12 + 1, 1);
}

std::vector<Date> TicksOf(const TimeStep& step, Date from, Date to) {
  std::vector<Date> ticks;
  const auto add = [&](Date at) {
    if (at >= from - 0.5 / SecondsPerDay && at <= to + 0.5 / SecondsPerDay) ticks.push_back(at);
  };
  const CalendarTime first = ToCalendar(from), last = ToCalendar(to);
  switch (step.Of) {
    case Unit::Minute: {
      const double perDay = MinutesPerDay / double(step.Count);
      const auto end = std::llround(std::ceil(to * perDay));
      for (auto k = std::llround(std::floor(from * perDay)); k <= end; ++k)
        add(static_cast<double>(k) / perDay);
      break;
    }
    case Unit::Day:
      for (auto days = std::llround(std::floor(from)); static_cast<double>(days) <= to; ++days) {
        const auto day = static_cast<double>(days);
        const CalendarTime at = ToCalendar(day);
        const bool whole = step.Count == 1 || at.Day == 1;
        if (whole || (at.Day % step.Count == 0 && FirstOfMonth(at.Year, at.Month + 1) - day >= step.Days))
          add(day);
      }
      break;
    case Unit::Month:
      for (int month = (first.Month - 1) / step.Count * step.Count + 1, year = first.Year;
           FirstOfMonth(year, month) <= to && year <= last.Year; month += step.Count) {
        if (month > 12) {
          month -= 12;
          ++year;
        }
        add(FirstOfMonth(year, month));
      }
      break;
    case Unit::Year:
      for (int year = first.Year / step.Count * step.Count; year <= last.Year; year += step.Count)
        add(MakeDate(std::max(year, 100), 1, 1));
      break;
  }
  return ticks;
}

std::string Text(const char* form, int value) {
  char text[16];
  std::snprintf(text, sizeof text, form, value);
  return text;
}

constexpr const char* MonthNames[] = {"January", "February", "March",     "April",   "May",      "June",
                                      "July",    "August",   "September", "October", "November", "December"};
std::string MonthName(const CalendarTime& at) { return MonthNames[at.Month - 1]; }
std::string Year(const CalendarTime& at) { return Text("%04d", at.Year); }
std::string TwoDigits(int value) { return Text("%02d", value); }

// A way to write what a tick or a span is, and a text as wide as that with the room about it.
struct Form {
  const char* Sample;
  std::string (*Write)(const CalendarTime& at);
};

const Form HourForms[] = {
    {"00:0000", [](const CalendarTime& at) { return TwoDigits(at.Hour) + ":" + TwoDigits(at.Minute); }},
    {"00:0", [](const CalendarTime& at) { return TwoDigits(at.Hour); }}};
const Form DayForms[] = {{"0000", [](const CalendarTime& at) { return ShortText(at.Day); }}};
const Form MonthForms[] = {{"Mmm00", [](const CalendarTime& at) { return MonthName(at).substr(0, 3); }}};
const Form YearForms[] = {{"000000", Year}};

const Form DateForms[] = {
    {"00/00/000000",
     [](const CalendarTime& at) { return TwoDigits(at.Day) + "/" + TwoDigits(at.Month) + "/" + Year(at); }},
    {"00/00/0", [](const CalendarTime& at) { return TwoDigits(at.Day) + "/" + TwoDigits(at.Month); }},
    {"0000", [](const CalendarTime& at) { return TwoDigits(at.Day); }}};
const Form MonthSpanForms[] = {
    {"September 000000", [](const CalendarTime& at) { return MonthName(at) + " " + Year(at); }},
    {"Mmm 000000", [](const CalendarTime& at) { return MonthName(at).substr(0, 3) + " " + Year(at); }},
    {"Mmm00", [](const CalendarTime& at) { return MonthName(at).substr(0, 3); }}};

std::span<const Form> FormsOfTicks(Unit unit) {
  switch (unit) {
    case Unit::Minute:
      return HourForms;
    case Unit::Day:
      return DayForms;
    case Unit::Month:
      return MonthForms;
    case Unit::Year:
      break;
  }
  return YearForms;
}

std::span<const Form> FormsOfSpans(Unit unit) {
  switch (unit) {
    case Unit::Minute:
      return DateForms;
    case Unit::Day:
      return MonthSpanForms;
    case Unit::Month:
      return YearForms;
    case Unit::Year:
      break;
  }
  return {};
}

// Labels all ticks, or those of the next coarser step that leaves a label its room.
void Label(std::vector<Tick>& ticks, const TimeStep& step, double perDay, Date from, Date to,
           const TextWidth& width) {
  for (const Form& form : FormsOfTicks(step.Of)) {
    std::optional<TimeStep> labelled = step;
    while (labelled && labelled->Days * perDay < width(form.Sample)) labelled = Coarser(step, *labelled);
    if (!labelled) continue;
    std::size_t next = 0;
    for (const Date at : TicksOf(*labelled, from, to)) {
      while (next < ticks.size() && ticks[next].Value < at - 0.5 / SecondsPerDay) ++next;
      if (next < ticks.size()) ticks[next].Label = form.Write(ToCalendar(at));
    }
    return;
  }
}

std::vector<TimeSpan> SpansOf(Unit unit, double perDay, Date from, Date to, const TextWidth& width) {
  const std::span<const Form> forms = FormsOfSpans(unit);
  if (forms.empty()) return {};
  const TimeStep step = unit == Unit::Minute ? TimeStep{Unit::Day, 1, 1}
                        : unit == Unit::Day  ? TimeStep{Unit::Month, 1, 28}
                                             : TimeStep{Unit::Year, 1, DaysOfYear};
  std::vector<TimeSpan> spans;
  Date begin = from;
  double longest = 0;
  std::vector<Date> ends = TicksOf(step, from, to);
  ends.push_back(to);
  for (const Date end : ends) {
    if (end > begin) spans.push_back({begin, end, {}});
    longest = std::max(longest, end - begin);
    begin = std::max(begin, end);
  }
  // All in one form: the fullest that the longest has room for.
  const auto fits = [&](const Form& form, double days) { return days * perDay >= width(form.Sample); };
  const auto form = std::find_if(forms.begin(), forms.end(), [&](const Form& f) { return fits(f, longest); });
  if (form != forms.end())
    for (TimeSpan& span : spans)
      if (fits(*form, span.To - span.From)) span.Label = form->Write(ToCalendar((span.From + span.To) / 2));
  return spans;
}

}  // namespace

double RoundStep(double raw) {
  constexpr double highest = 450, lowest = 0.005;
  if (!std::isfinite(raw) || raw <= 0) return lowest;
  double scale = 1;
  while (raw > highest) {
    raw /= 10;
    scale *= 10;
  }
  while (raw < lowest) {
    raw *= 10;
    scale /= 10;
  }
  // The ladder's steps are thousandths, held in 32 bits.
  return std::round(TickStep(static_cast<float>(raw)) * 1000.0) / 1000 * scale;
}

std::vector<Tick> NumberTicks(double from, double to, double length, double gap) {
  const double span = to - from;
  std::vector<Tick> ticks;
  if (!(span > 0) || !(span < Largest) || !(length > 0) || !(gap > 0)) return ticks;
  double raw = gap * span / length, step = RoundStep(raw);
  while (step * length / span < gap * Enough) step = RoundStep(raw *= 1.25);
  // The ladder has wide gaps; a single tick would tell little.
  for (const double part : {2.0, 5.0})
    if (step > span / 2 && step / part * length / span >= gap * Enough) {
      step /= part;
      break;
    }
  int decimals = 0;
  for (double scaled = step; decimals < 15 && std::abs(scaled - std::round(scaled)) > 1e-6; scaled *= 10)
    ++decimals;
  const double first = std::ceil(from / step - 1e-9), last = std::floor(to / step + 1e-9);
  if (last - first > MostTicks) return ticks;
  for (int i = 0; first + i <= last; ++i) {
    const double value = (first + i) * step;
    ticks.push_back({value, RoundedText(value, decimals)});
  }
  return ticks;
}

TimeTicks MakeTimeTicks(double from, double to, double length, double gap, const TextWidth& width) {
  TimeTicks made;
  const double span = to - from;
  const bool isDate = from >= MakeDate(101, 1, 1) && to <= MakeDate(9998, 12, 31);
  if (!isDate || !(span > 0) || !(length > 0) || !(gap > 0)) return made;
  const double perDay = length / span;
  const TimeStep step = StepFor(gap / perDay);
  for (const Date at : TicksOf(step, from, to)) made.Ticks.push_back({at, {}});
  Label(made.Ticks, step, perDay, from, to, width);
  if (step.Of == Unit::Minute) made.DayMarks = TicksOf({Unit::Day, 1, 1}, from, to);
  if (step.Of == Unit::Day)
    for (const Tick& tick : made.Ticks) made.DayMarks.push_back(tick.Value);
  made.Spans = SpansOf(step.Of, perDay, from, to, width);
  return made;
}

}  // namespace hyetex
