#include "tracing/pen_line.h"

#include <cmath>

namespace hyetex {

void PenLine::Add(const PenPoint& point) {
  if (point.Step == PenStep::Point && !Points.empty()) {
    const PenPoint& last = Points.back();
    if (last.Hours == point.Hours && last.HeightMm == point.HeightMm) return;
    if (Points.size() >= 2 && last.Step == PenStep::Point) {
      const PenPoint& before = Points[Points.size() - 2];
      const double cross = (last.Hours - before.Hours) * (point.HeightMm - last.HeightMm) -
                           (point.Hours - last.Hours) * (last.HeightMm - before.HeightMm);
      if (std::abs(cross) < 1e-9 && point.Hours > last.Hours && last.Hours > before.Hours) Points.pop_back();
    }
  }
  Points.push_back(point);
}

double PenLine::AlongMm(const PenPoint& point) const {
  const double along = point.Hours / Paper.TimeScale;
  if (Paper.ChartMethod != static_cast<std::int16_t>(ChartMethod::NonLinear)) return along;
  const double half = Paper.ChartHeightMm / 2, sagitta = Paper.MiddleToBottomMm;
  const double radius = (half * half + sagitta * sagitta) / (2 * sagitta), off = half - point.HeightMm;
  return along - (sagitta - radius + std::sqrt(radius * radius - off * off));
}

PenLine WithStepsWithin(const PenLine& line, double mm) {
  PenLine result{line.Paper, line.Hours, {}};
  for (const PenPoint& point : line.Points) {
    if (point.Step == PenStep::Point && !result.Points.empty()) {
      const PenPoint from = result.Points.back();
      const double length = (point.Hours - from.Hours) / line.Paper.TimeScale;
      const int parts = static_cast<int>(std::ceil(length / mm));
      for (int i = 1; i < parts; ++i) {
        const double part = static_cast<double>(i) / parts;
        result.Points.push_back({PenStep::Point, std::lerp(from.Hours, point.Hours, part),
                                 std::lerp(from.HeightMm, point.HeightMm, part),
                                 std::lerp(from.Rain, point.Rain, part)});
      }
    }
    result.Points.push_back(point);
  }
  return result;
}

}  // namespace hyetex
