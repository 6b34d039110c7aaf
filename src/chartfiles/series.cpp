#include "chartfiles/series.h"

#include <cmath>
#include <utility>

#include "core/comments.h"

namespace hyetex {
namespace {

constexpr double Minute = 1.0 / 24 / 60;

bool AddsNoDepth(const std::string& comment) {
  return HasCode(comment, CodeLeveled) || HasCode(comment, CodeGapEnd);
}

// The pen writes on an arc, so a high pen position lies off in time by its height times alpha.
void TakeOutSkew(ChartReading& reading) {
  std::vector<RawPoint>& points = reading.RawPoints;
  if (points.size() < 2) return;
  double lowest = points[1].Y;
  for (std::size_t i = 2; i < points.size(); ++i)
    if (static_cast<float>(points[i].Y) < static_cast<float>(lowest)) lowest = points[i].Y;
  for (std::size_t i = 1; i < points.size(); ++i)
    points[i].X += (points[i].Y - lowest) * reading.Chart.SelectedAlpha;
}

// Makes a slot for each step of the trace that counts, holding for now the sums along and up to it in
// millimetres. They are summed in 32 bits, point by point.
void SumSteps(const ChartReading& reading, std::vector<SeriesPoint>& series) {
  const std::vector<RawPoint>& points = reading.RawPoints;
  const bool fallsCount = reading.Chart.ChartMethod == static_cast<std::int16_t>(ChartMethod::NonLinear);
  float along = 0, rise = 0;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const bool coded = !points[i].Comment.empty();
    if (coded && IsLeftOutOfSeries(points[i].Comment)) continue;
    along = static_cast<float>(along + (points[i].X - points[i - 1].X));
    const double step = points[i].Y - points[i - 1].Y;
    if ((step >= 0 || fallsCount) && !(coded && AddsNoDepth(points[i].Comment)))
      rise = static_cast<float>(rise + step);
    SeriesPoint& slot = series.emplace_back();
    slot.Time = along;
    slot.Depth = rise;
    if (coded) slot.Comment = points[i].Comment;
  }
}

void MakeTimesAscend(std::vector<SeriesPoint>& series) {
  for (std::size_t i = 1; i < series.size(); ++i)
    if (!(series[i].Time > series[i - 1].Time)) series[i].Time = series[i - 1].Time + Minute;
}

// A moment that follows the last kept one too soon is dropped; its depth is in the next, since depths
// accumulate.
void JoinShortSteps(float minimalLapse, std::vector<SeriesPoint>& series) {
  const auto lapse = static_cast<float>(static_cast<double>(minimalLapse) / 24 / 60);
  std::size_t kept = 1;
  for (std::size_t i = 1; i < series.size(); ++i) {
    if (lapse > static_cast<float>(series[i].Time - series[kept - 1].Time)) continue;
    if (kept != i) series[kept] = std::move(series[i]);
    ++kept;
  }
  series.resize(kept);
}

}  // namespace

bool IsLeftOutOfSeries(const std::string& comment) {
  return HasCode(comment, CodeNewSegment) || HasCode(comment, CodeAlpha) || HasCode(comment, CodeNewSheet);
}

TraceLength LengthOfTrace(const ChartReading& reading) {
  std::vector<SeriesPoint> steps(1);
  SumSteps(reading, steps);
  return {static_cast<float>(steps.back().Time), steps.back().Depth};
}

float BaseDepth(const ChartRecord& chart) {
  if (chart.SelectedDepth > 0) return chart.SelectedDepth;
  return chart.ManualDepth > 0 ? chart.ManualDepth : 0;
}

void BuildSeries(bool useAlpha, float minimalLapse, ChartReading& reading) {
  ChartRecord& chart = reading.Chart;
  std::vector<SeriesPoint>& series = reading.SeriesPoints;
  if (chart.SelectedDepth == 0) chart.SelectedDepth = chart.DigitizedDepth;
  const float base = BaseDepth(chart);
  if (useAlpha && chart.SelectedAlpha != NoAlpha) TakeOutSkew(reading);

  series.clear();
  series.reserve(reading.RawPoints.size());
  series.push_back({chart.StartTime, 0, {}});
  SumSteps(reading, series);
  const double totalAlong = series.size() > 1 ? series.back().Time : 0;
  const float totalRise = series.back().Depth;
  if (totalAlong != 0 && std::isfinite(totalAlong) && std::isfinite(totalRise)) {
    const double span = chart.EndTime - chart.StartTime;
    for (std::size_t i = 1; i < series.size(); ++i) {
      series[i].Time = series[i].Time / totalAlong * span + chart.StartTime;
      series[i].Depth =
          totalRise == 0 ? 0 : static_cast<float>(static_cast<double>(series[i].Depth) / totalRise * base);
    }
    MakeTimesAscend(series);
    if (minimalLapse > 0) JoinShortSteps(minimalLapse, series);
  } else {
    series.resize(1);
  }
  chart.SeriesCount = static_cast<std::int16_t>(static_cast<int>(series.size()) - 1);
}

}  // namespace hyetex
