#include "rain/rain_sheets.h"

#include <algorithm>
#include <cmath>

#include "core/dates.h"
#include "core/numbers.h"

namespace hyetex {
namespace {

SheetCell Number(double value, int decimals) { return {RoundedText(value, decimals), value}; }
SheetCell Share(double share) { return {ShareText(share), share}; }

// "05/03/1998 12:10", with seconds where there are any.
std::string MomentText(RainTime time, const RainClock& clock) {
  const Date local = ToLocal(time, clock);
  const std::string day = GeneralDateText(std::floor(local + 0.5 / SecondsPerDay)), at = TimeText(local);
  return day + " " + (at.ends_with(":00") ? at.substr(0, 5) : at);
}
SheetCell Moment(RainTime time, const RainClock& clock) {
  return {MomentText(time, clock), static_cast<double>(time)};
}
SheetCell Day(RainTime time, const RainClock& clock) {
  return {GeneralDateText(DayOf(time, clock)), static_cast<double>(time)};
}

// Two cells: the gage's depth, and by what the charts differ from it.
void AddComparison(const std::optional<GageComparison>& compared, std::vector<SheetCell>& cells) {
  if (!compared) {
    cells.insert(cells.end(), {{"", -1.0}, {"", 0.0}});
    return;
  }
  cells.push_back(Number(compared->Gage, 2));
  SheetCell difference{compared->Chart == compared->Gage ? "0%" : "no rain in the gage", 1e9};
  if (compared->Percent)
    difference = {(*compared->Percent > 0 ? "+" : "") + RoundedText(*compared->Percent, 1) + "%",
                  std::abs(*compared->Percent)};
  difference.Alert = compared->IsOff();
  cells.push_back(std::move(difference));
}

}  // namespace

std::string ShareText(double share) {
  double percent = Round(share * 100, 1);
  if (percent >= 100 && share < 1) percent = 99.9;
  if (percent <= 0 && share > 0) percent = 0.1;
  return ShortText(percent) + "%";
}

std::string DurationText(int minutes) {
  return minutes < 120 ? std::to_string(minutes) + " min" : ShortText(minutes / 60.0) + " h";
}

Sheet SheetOfDays(const RainOverview& overview) {
  Sheet sheet{{{"Day"}, {"Rain mm", true}, {"Covered", true}, {"Gage mm", true}, {"Difference", true}}, {}};
  for (const RainStep& day : overview.Days) {
    SheetCell rain = Number(day.Depth, 2);
    if (day.IsGap()) rain = {"no data", -1.0};
    std::vector<SheetCell> cells{Day(day.Start, overview.Question.Clock), rain, Share(day.Covered)};
    AddComparison(CompareDay(day, overview.Gage), cells);
    sheet.Rows.push_back(std::move(cells));
  }
  return sheet;
}

Sheet SheetOfGage(const RainOverview& overview) {
  Sheet sheet{
      {{"From"}, {"To"}, {"Rain mm", true}, {"Covered", true}, {"Gage mm", true}, {"Difference", true}}, {}};
  for (const GageComparison& one : overview.Compared) {
    const RainClock& clock = overview.Question.Clock;
    std::vector<SheetCell> cells{Moment(one.Start, clock), Moment(one.End, clock), Number(one.Chart, 2),
                                 Share(one.Covered)};
    AddComparison(one, cells);
    sheet.Rows.push_back(std::move(cells));
  }
  return sheet;
}

Sheet SheetOfMaxima(const RainOverview& overview) {
  Sheet sheet{{{"Duration", true}, {"Rain mm", true}, {"mm/h", true}, {"Begins"}, {"Covered", true}}, {}};
  for (const RainMaximum& one : overview.Maxima)
    sheet.Rows.push_back(
        {{DurationText(one.Minutes), static_cast<double>(one.Minutes)},
         Number(one.Depth, 2),
         Number(one.Depth * 60 / one.Minutes, 1),
         one.Start ? Moment(*one.Start, overview.Question.Clock) : SheetCell{"no rain", -1e12},
         one.Start ? Share(one.Covered) : SheetCell{"", -1.0}});
  return sheet;
}

Sheet SheetOfStorms(const RainOverview& overview) {
  Sheet sheet{{{"Begins"},
               {"Ends"},
               {"Hours", true},
               {"Rain mm", true},
               {"Peak mm/h", true},
               {"Covered", true},
               {"Dry Spells"}},
              {}};
  for (const RainStorm& storm : overview.Storms) {
    const RainClock& clock = overview.Question.Clock;
    sheet.Rows.push_back({Moment(storm.Start, clock),
                          Moment(storm.End, clock),
                          Number(storm.Hours(), 2),
                          Number(storm.Depth, 2),
                          Number(storm.Peak, 1),
                          Share(storm.Covered),
                          {storm.Bounded ? "known" : "not all known", {}, false}});
  }
  return sheet;
}

Sheet SheetOfYears(std::span<const RainPeriod> years) {
  Sheet sheet{{{"Year"},
               {"Rain mm", true},
               {"Covered", true},
               {"Whole Days", true},
               {"Days", true},
               {"Days with Rain", true}},
              {}};
  for (const RainPeriod& year : years)
    sheet.Rows.push_back({{std::to_string(year.Year), static_cast<double>(year.Year)},
                          Number(year.Depth, 2),
                          Share(year.Covered),
                          Number(year.WholeDays, 0),
                          Number(year.Days, 0),
                          Number(year.WetDays, 0)});
  return sheet;
}

Sheet SheetOfReview(const ChartReview& review) {
  Sheet sheet{{{"From"}, {"Trouble"}, {"What"}, {"To"}}, {}};
  for (const ReviewLine& line : review.Lines) {
    const auto moment = [](Date date) {
      return date == 0 ? SheetCell{"", 0.0} : SheetCell{GeneralDateText(date), date};
    };
    sheet.Rows.push_back({moment(line.From),
                          {TroubleName(line.Trouble), static_cast<double>(line.Trouble)},
                          {line.Detail, {}, false},
                          moment(line.To)});
  }
  return sheet;
}

std::string StepInWords(const RainStep& step, const RainClock& clock) {
  std::string text = MomentText(step.Start, clock);
  const bool isDay = step.End - step.Start >= DaySeconds;
  if (isDay && clock.DayBegins == 0)
    text = GeneralDateText(DayOf(step.Start, clock));
  else if (const std::string end = MomentText(step.End, clock); end.substr(0, 10) == text.substr(0, 10))
    text += " - " + end.substr(11);
  else
    text += " - " + end;
  if (step.IsGap()) return text + ": no data";
  text += ": " + RoundedText(step.Depth, 2) + " mm";
  if (!isDay && step.Depth > 0)
    text += " (" + RoundedText(step.Depth * 3600 / static_cast<double>(step.End - step.Start), 1) + " mm/h)";
  if (step.Covered < 1) text += ", " + ShareText(step.Covered) + " covered";
  return text;
}

std::string OverviewInWords(const RainOverview& overview) {
  if (overview.Remarks.Rows == 0) return "There are no rows of rain in these days.";
  double covered = 0;
  for (const RainStep& day : overview.Days) covered += day.Covered;
  const auto days = overview.Days.size(), storms = overview.Storms.size();
  return RoundedText(overview.Depth(), 2) + " mm in " + std::to_string(days) +
         (days == 1 ? " day, " : " days, ") + ShareText(days == 0 ? 0 : covered / static_cast<double>(days)) +
         " covered, " + std::to_string(storms) + (storms == 1 ? " storm" : " storms");
}

}  // namespace hyetex
