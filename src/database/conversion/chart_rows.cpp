#include "database/conversion/chart_rows.h"

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
  ChartRows rows{chart.StartTime, chart.EndTime, {}, reading.Notes};
  if (IsDefective(chart)) {
    ChartRow& row =
        rows.Rows.emplace_back(ChartRow{chart.StartTime, chart.EndTime, {}, chart.GeneralComment});
    if (chart.ManualDepth >= 0)
      row.Depth = LeadingNumber(ShortText(chart.ManualDepth));
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
  TakeIncrements(series);
  rows.Rows.reserve(series.size());
  for (std::size_t i = 1; i < series.size(); ++i)
    rows.Rows.push_back({RoundedTime(series[i - 1].Time), RoundedTime(series[i].Time),
                         Round(static_cast<double>(series[i].Depth), 2),
                         series[i].Comment.empty() ? " " : series[i].Comment});
  return rows;
}

}  // namespace hyetex
