#include "tracing/rain.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "tracing/table.h"

namespace hyetex {
namespace {

bool Is(const RainChart& chart, ChartMethod method) {
  return chart.Paper.ChartMethod == static_cast<std::int16_t>(method);
}

double RainAt(std::span<const RainPoint> rain, double hours) {
  const auto after = std::upper_bound(rain.begin(), rain.end(), hours,
                                      [](double h, const RainPoint& point) { return h < point.Hours; });
  if (after == rain.end()) return rain.back().Rain;
  const RainPoint& from = *(after - 1);
  return std::lerp(from.Rain, after->Rain, (hours - from.Hours) / (after->Hours - from.Hours));
}

// The rain as a bucket tells it: a step each time that it has filled.
std::vector<RainPoint> Tipped(std::span<const RainPoint> rain, double tip) {
  std::vector<RainPoint> steps{{rain.front().Hours, 0}};
  const auto tips = static_cast<int>(std::floor(rain.back().Rain / tip + 1e-9));
  auto at = rain.begin() + 1;
  for (int i = 1; i <= tips; ++i) {
    const double full = std::min(i * tip, rain.back().Rain);
    while (at->Rain < full) ++at;
    const RainPoint& from = *(at - 1);
    const double hours = std::lerp(from.Hours, at->Hours, (full - from.Rain) / (at->Rain - from.Rain));
    steps.push_back({hours, (i - 1) * tip});
    steps.push_back({hours, i * tip});
  }
  steps.push_back({rain.back().Hours, tips * tip});
  return steps;
}

// Puts a point at `hours`, behind those that have the same hour.
void Split(std::vector<RainPoint>& rain, double hours) {
  const double value = RainAt(rain, hours);
  const auto after = std::upper_bound(rain.begin(), rain.end(), hours,
                                      [](double h, const RainPoint& point) { return h < point.Hours; });
  if ((after - 1)->Hours != hours) rain.insert(after, {hours, value});
}

class Recorder {
 public:
  explicit Recorder(const RainChart& chart) : chart_(chart) {}

  void Draw(PenStep step, double hours) {
    if (inked_) Line.Add({step, hours, height_, recorded_});
  }
  // The pen climbs by `mm` from one hour to another.
  void Climb(double from, double to, double mm) {
    while (height_ + mm > chart_.FullMm + 1e-9) {
      const double part = chart_.FullMm - height_;
      from = std::lerp(from, to, part / mm);
      mm -= part;
      Rise(part);
      Draw(PenStep::Point, from);
      height_ = 0;
      Draw(Is(chart_, ChartMethod::NonLinear) ? PenStep::Segment : PenStep::Drop, from);
    }
    Rise(mm);
    Draw(PenStep::Point, to);
  }
  void LoseInk() { inked_ = false; }
  void FindInk(double hours) {
    inked_ = true;
    Draw(PenStep::GapEnd, hours);
  }
  void Move(double hours, double mm) {
    height_ = std::clamp(height_ + mm, 0.0, chart_.FullMm);
    Draw(PenStep::Leveled, hours);
  }

  PenLine Line;

 private:
  void Rise(double mm) {
    height_ += mm;
    if (inked_) recorded_ += mm * chart_.Paper.DepthScale;
  }

  const RainChart& chart_;
  double height_ = 0, recorded_ = 0;
  bool inked_ = true;
};

Result<void> Check(std::span<const RainPoint> rain, const RainChart& chart) {
  if (rain.size() < 2) return Failure("fewer than two points of rain");
  if (!(rain.back().Hours > rain.front().Hours)) return Failure("the rain spans no time");
  if (!(chart.FullMm > 0 && chart.FullMm <= chart.Paper.ChartHeightMm))
    return Failure("the pen's full height is not on the chart");
  if (Is(chart, ChartMethod::TippingBucket) && !(chart.TipMm > 0))
    return Failure("a bucket that holds nothing");
  const auto inside = [&](double hours) { return hours > rain.front().Hours && hours < rain.back().Hours; };
  if (chart.Gap && !(inside(chart.Gap->From) && inside(chart.Gap->To) && chart.Gap->From < chart.Gap->To))
    return Failure("the gap does not lie within the rain");
  if (chart.Moved && !inside(chart.Moved->At)) return Failure("the pen is moved outside the chart");
  if (chart.Moved && chart.Gap && chart.Moved->At >= chart.Gap->From && chart.Moved->At <= chart.Gap->To)
    return Failure("the pen is moved inside the gap");
  return {};
}

}  // namespace

Result<std::vector<RainPoint>> ReadRain(std::string_view csv) {
  const auto rows = ReadTable(csv, "hour,mm", 2);
  if (!rows) return Failure(rows.error());
  std::vector<RainPoint> rain;
  for (const TableRow& row : *rows) {
    const RainPoint point{row.Numbers[0], row.Numbers[1] - rows->front().Numbers[1]};
    if (!rain.empty() && (point.Hours < rain.back().Hours || point.Rain < rain.back().Rain))
      return Failure("line " + ShortText(row.Line) + ": goes back");
    rain.push_back(point);
  }
  return rain;
}

Result<PenLine> DrawRain(std::span<const RainPoint> rain, const RainChart& chart) {
  if (auto checked = Check(rain, chart); !checked) return Failure(checked.error());
  std::vector<RainPoint> points = Is(chart, ChartMethod::TippingBucket)
                                      ? Tipped(rain, chart.TipMm)
                                      : std::vector<RainPoint>(rain.begin(), rain.end());
  if (chart.Gap) {
    Split(points, chart.Gap->From);
    Split(points, chart.Gap->To);
  }
  if (chart.Moved) Split(points, chart.Moved->At);

  Recorder recorder(chart);
  const double start = points.front().Hours;
  recorder.Line.Paper = chart.Paper;
  recorder.Line.Hours = points.back().Hours - start;
  recorder.Draw(PenStep::Point, 0);
  for (std::size_t i = 1; i < points.size(); ++i) {
    const RainPoint& point = points[i];
    recorder.Climb(points[i - 1].Hours - start, point.Hours - start,
                   (point.Rain - points[i - 1].Rain) / chart.Paper.DepthScale);
    if (i + 1 < points.size() && points[i + 1].Hours == point.Hours) continue;
    if (chart.Gap && chart.Gap->From == point.Hours) recorder.LoseInk();
    if (chart.Gap && chart.Gap->To == point.Hours) recorder.FindInk(point.Hours - start);
    if (chart.Moved && chart.Moved->At == point.Hours) recorder.Move(point.Hours - start, chart.Moved->Mm);
  }
  return std::move(recorder.Line);
}

}  // namespace hyetex
