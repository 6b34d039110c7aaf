#include "rain/rain_overview.h"

#include <algorithm>
#include <cmath>

#include "core/dates.h"

namespace hyetex {

RainSpan SpanOf(const RainQuestion& question) {
  const double begins = static_cast<double>(question.Clock.DayBegins) / MinutesPerDay;
  return {FromLocal(std::floor(question.FromDay) + begins, question.Clock),
          FromLocal(std::floor(question.ToDay) + 1 + begins, question.Clock)};
}

Date DayOf(RainTime time, const RainClock& clock) {
  return std::floor(ToLocal(StepBegin(time, RainDays, clock), clock) + 0.5 / SecondsPerDay);
}

int StepToShow(const RainQuestion& question) {
  const RainSpan span = SpanOf(question);
  for (const int minutes : OfferedRainSteps)
    if (minutes >= question.StepMinutes &&
        (*span.To - *span.From) / (RainTime{60} * minutes) <= MostRainSteps)
      return minutes;
  return RainDays.Minutes;
}

int StepForDays(double days) {
  if (days <= 2) return 5;
  if (days <= 10) return 15;
  if (days <= 62) return 60;
  return RainDays.Minutes;
}

std::vector<std::string> RainOverview::Lines() const {
  std::vector<std::string> lines;
  if (StepMinutes != Question.StepMinutes)
    lines.push_back(
        "So many days are shown in steps of " +
        (StepMinutes == RainDays.Minutes ? std::string("a day") : std::to_string(StepMinutes) + " minutes") +
        ": shorter ones would be too many.");
  for (const std::string& line : Remarks.Lines()) lines.push_back(line);
  for (const std::string& line : Gage.Notes) lines.push_back(line);
  return lines;
}

DbResult<RainOverview> ReadRainOverview(HyetexPlotDB& database, const RainQuestion& question,
                                        Progress& progress) {
  const ClosedAfter closed(database);
  RainOverview overview;
  overview.Question = question;
  overview.StepMinutes = StepToShow(question);
  const RainSpan span = SpanOf(question);
  if (!database.DatabaseConnection.IsOpen())
    if (const auto opened = database.OpenDatabase(); !opened) return tl::unexpected(opened.error());
  auto gage =
      ReadManualGage(database, question.Instrument, span, {question.LocalMinutes, question.Clock.DayBegins});
  if (!gage) return tl::unexpected(gage.error());
  overview.Gage = *std::move(gage);

  RainSteps steps({.Minutes = overview.StepMinutes}, question.Clock, span,
                  [&](const RainStep& step) { overview.Steps.push_back(step); });
  RainSteps days(RainDays, question.Clock, span, [&](const RainStep& day) { overview.Days.push_back(day); });
  RainMaxima maxima;
  RainStorms storms(question.StormDryHours,
                    [&](const RainStorm& storm) { overview.Storms.push_back(storm); });
  RainSums sums(IntervalsOf(overview.Gage));
  auto remarks = ReadRain(database, {.Instrument = question.Instrument, .Span = span, .WithTrust = true},
                          {&steps, &days, &maxima, &storms, &sums}, progress);
  if (!remarks) return tl::unexpected(remarks.error());
  overview.Remarks = *std::move(remarks);
  overview.Maxima = maxima.Maxima();
  overview.Compared = Compare(overview.Gage, sums.Intervals());
  return overview;
}

std::vector<int> YearsOf(const RainExtent& extent, const RainClock& clock) {
  std::vector<int> years;
  const int last = ToCalendar(DayOf(extent.Last, clock)).Year;
  for (int year = ToCalendar(DayOf(extent.First, clock)).Year; year <= last; ++year) years.push_back(year);
  return years;
}

DbResult<std::vector<RainPeriod>> ReadRainYears(HyetexPlotDB& database, const std::string& instrument,
                                                const RainClock& clock, Progress& progress) {
  const ClosedAfter closed(database);
  RainPeriods years(RainYears, clock);
  RainSteps days(RainDays, clock, {}, [&](const RainStep& day) { years.Add(day); });
  const auto read = ReadRain(database, {.Instrument = instrument, .Span = {}}, {&days}, progress);
  if (!read) return tl::unexpected(read.error());
  return years.Periods();
}

std::optional<RainStorm> GreatestStorm(std::span<const RainStorm> storms) {
  const auto found = std::ranges::max_element(storms, {}, &RainStorm::Depth);
  return found == storms.end() ? std::nullopt : std::optional(*found);
}

}  // namespace hyetex
