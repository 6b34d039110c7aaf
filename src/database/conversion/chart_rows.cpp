#include "database/conversion/chart_rows.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "chartfiles/series.h"
#include "core/comments.h"
#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {
namespace {

bool IsDefective(const ChartRecord& chart) { return HasCode(chart.GeneralComment, CodeDefective); }

// Joining short steps drops what follows the last step that is long enough. The chart's end takes that step's
// place instead, so that neither rain nor time is lost.
void KeepEnd(const SeriesPoint& end, std::vector<SeriesPoint>& series) {
  if (series.back().Time >= end.Time) return;
  if (series.size() == 1) {
    series.push_back(end);
    return;
  }
  const std::string comment = series.back().Comment;
  series.back() = end;
  if (!comment.empty()) series.back().Comment = comment;
}

void ShiftToGmt(float gmtShift, ChartReading& reading) {
  for (SeriesPoint& point : reading.SeriesPoints) point.Time -= static_cast<double>(gmtShift);
  reading.Chart.StartTime -= static_cast<double>(gmtShift);
  reading.Chart.EndTime -= static_cast<double>(gmtShift);
}

void ScaleToDepth(float chosen, ChartReading& reading) {
  const float base = BaseDepth(reading.Chart);
  if (base > 0)
    for (SeriesPoint& point : reading.SeriesPoints)
      point.Depth = static_cast<float>(static_cast<double>(point.Depth) * chosen / base);
  reading.Chart.SelectedDepth = chosen;
}

Date ToTheSecond(Date date) { return static_cast<double>(SecondsOf(date)) / SecondsPerDay; }

// A row's depth is rounded when all its steps are in it.
void AddStep(const ChartRow& step, double& depth, ChartRow& row) {
  depth += *step.Depth;
  row.Depth = Round(depth, 2);
  if (row.Comment == " " && !HasCode(step.Comment, CodeGapEnd)) row.Comment = step.Comment;
}

// Rounding to 10 seconds and moments that were moved on reach out of the chart, into the time of its
// neighbours. At the chart's end no row is without length: one there is the next chart's first.
void TakeRows(const std::vector<SeriesPoint>& series, ChartRows& chart) {
  const Date start = ToTheSecond(chart.Start), end = ToTheSecond(chart.End);
  chart.Rows.reserve(series.size());
  double depth = 0;  // of the last row
  for (std::size_t i = 1; i < series.size(); ++i) {
    const ChartRow step{RoundedTime(series[i - 1].Time), RoundedTime(series[i].Time),
                        static_cast<double>(series[i].Depth),
                        series[i].Comment.empty() ? " " : series[i].Comment};
    ChartRow held = step;
    held.Start = std::clamp(step.Start, start, end);
    held.End = std::clamp(step.End, start, end);
    if (chart.Rows.empty() && held.Start >= end) held.Start = start;
    const bool outside = held.Start >= end;
    if (outside || SecondsOf(held.Start) != SecondsOf(step.Start) ||
        SecondsOf(held.End) != SecondsOf(step.End))
      chart.FormerRows.push_back({step.Start, step.End, Round(*step.Depth, 2), {}});
    if (outside) {
      AddStep(step, depth, chart.Rows.back());
      continue;
    }
    depth = *step.Depth;
    held.Depth = Round(depth, 2);
    chart.Rows.push_back(std::move(held));
  }
}

// Depths accumulated since the start become those of each step alone, summed in 32 bits: what the sum has
// lost in its last bits goes into the next step.
void TakeIncrements(std::vector<SeriesPoint>& series) {
  float done = 0;
  for (std::size_t i = 1; i < series.size(); ++i) {
    series[i].Depth -= done;
    done += series[i].Depth;
  }
}

}  // namespace

Date RoundedTime(Date time) { return std::nearbyint(time * MinutesPerDay * 6) / MinutesPerDay / 6; }

Result<void> ReadChartToConvert(std::string_view storedText, const ComputationVariables& variables,
                                std::span<const StationRecord> stations, ChartReading& reading) {
  reading = {};
  if (Trim(storedText).empty()) return Failure("no chart text is stored");
  ReadStoredChart(storedText, {.UseAlpha = variables.UseAlpha, .MinimalLapse = 0, .Stations = stations},
                  reading);
  const ChartRecord& chart = reading.Chart;
  if (chart.InstrumentCode.empty()) return Failure("the text names no instrument");
  if (chart.InstrumentIndex < 0) return Failure("no station has the instrument code " + chart.InstrumentCode);
  if (chart.StartTime == 0 || chart.EndTime == 0)
    return Failure(std::string("the text has no ") + (chart.StartTime == 0 ? "start" : "end"));
  if (!(chart.EndTime > chart.StartTime)) return Failure("the chart does not end after its start");
  if (IsDefective(chart)) return {};
  if (chart.RawCount < 1) return Failure("the chart has no points");
  if (chart.SeriesCount < 1) return Failure("the chart's points span no time");
  if (variables.MinimalLapse > 0) {
    const SeriesPoint end = reading.SeriesPoints.back();
    BuildSeries(false, variables.MinimalLapse, reading);  // the skew is out of the points by now
    KeepEnd(end, reading.SeriesPoints);
  }
  return {};
}

ChartRows MakeChartRows(ChartReading& reading, bool manual, float gmtShift) {
  ShiftToGmt(gmtShift, reading);
  ChartRecord& chart = reading.Chart;
  ChartRows rows;
  rows.Start = chart.StartTime;
  rows.End = chart.EndTime;
  rows.Notes = reading.Notes;
  if (IsDefective(chart)) {
    ChartRow& row =
        rows.Rows.emplace_back(ChartRow{chart.StartTime, chart.EndTime, {}, chart.GeneralComment});
    if (chart.ManualDepth >= 0)
      rows.ChosenDepth = row.Depth = LeadingNumber(ShortText(chart.ManualDepth));
    else
      rows.Notes.emplace_back("no manual depth is known; the chart's one row is left without a depth");
    return rows;
  }

  const float chosen = manual ? chart.ManualDepth : chart.DigitizedDepth;
  if (chosen > 0)
    ScaleToDepth(chosen, reading);
  else if (chosen < 0)
    rows.Notes.emplace_back(std::string("no ") + (manual ? "manual" : "digitized") +
                            " depth is known; the chart's selected depth counts");
  std::vector<SeriesPoint>& series = reading.SeriesPoints;
  if (chosen > 0 || BaseDepth(chart) > 0)
    rows.ChosenDepth = LeadingNumber(ShortText(chosen > 0 ? chosen : BaseDepth(chart)));
  TakeIncrements(series);
  TakeRows(series, rows);
  return rows;
}

}  // namespace hyetex
