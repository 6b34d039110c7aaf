#include "core/geometry.h"

#include <cmath>

namespace hyetex {
namespace {

// The arc's circle: through the bottom and the middle point of the band, with D as its sagitta.
double ArcRadius(double height, double sagitta) {
  return (height * height / 4 + sagitta * sagitta) / (2 * sagitta);
}

bool IsPositive(float value) { return std::isfinite(value) && value > 0; }

}  // namespace

double ChartScales::HeightUnits() const {
  return static_cast<double>(ChartType.ChartHeightMm) / Tablet.TabletHeightMm * Tablet.TabletHeightUnits;
}

double ChartScales::MiddleToBottomUnits() const {
  return static_cast<double>(ChartType.MiddleToBottomMm) * Tablet.TabletWidthUnits / Tablet.TabletWidthMm;
}

std::optional<std::string> CheckChartScales(const ChartScales& scales) {
  const ChartTypeRecord& type = scales.ChartType;
  const std::string chart = "The chart type \"" + type.Name + "\" ";
  if (type.ChartMethod < 0 || type.ChartMethod > 2) return chart + "has no known chart method.";
  if (!IsPositive(type.ChartHeightMm)) return chart + "has no chart height.";
  if (!IsPositive(type.TimeScale)) return chart + "has no time scale.";
  if (!IsPositive(type.DepthScale)) return chart + "has no depth scale.";
  if (scales.Is(ChartMethod::NonLinear)) {
    if (!IsPositive(type.MiddleToBottomMm))
      return chart +
             "is non-linear, but the distance between the middle point and the bottom point is not set.";
    if (scales.MiddleToBottomUnits() > scales.HeightUnits() / 2)
      return chart +
             "has an arc that leaves its circle: the distance between the middle point and the bottom point"
             " is more than half the chart height.";
  }
  return std::nullopt;
}

double BottomLength(const ChartPaper& paper) {
  return std::hypot(paper.BottomRightX - paper.BottomLeftX, paper.BottomRightY - paper.BottomLeftY);
}

bool IsCalibrated(const ChartPaper& paper) { return paper.BottomRightX != 0 || paper.BottomRightY != 0; }

float HeightOnPaper(double x, double y, const ChartPaper& paper) {
  const double length = BottomLength(paper);
  if (length == 0) return 0;
  const double dx = paper.BottomRightX - paper.BottomLeftX, dy = paper.BottomRightY - paper.BottomLeftY;
  return static_cast<float>((dx * (y - paper.BottomLeftY) - dy * (x - paper.BottomLeftX)) / length);
}

double AlongBottom(double x, double y, const ChartPaper& paper) {
  const double length = BottomLength(paper);
  if (length == 0) return 0;
  const double dx = paper.BottomRightX - paper.BottomLeftX, dy = paper.BottomRightY - paper.BottomLeftY;
  return (dx * (x - paper.BottomLeftX) + dy * (y - paper.BottomLeftY)) / length;
}

float TimeAlongPaper(const ChartScales& scales, double x, double y, const ChartPaper& paper) {
  const double along = AlongBottom(x, y, paper);
  const double sagitta = scales.MiddleToBottomUnits();
  if (!scales.Is(ChartMethod::NonLinear) || !(sagitta > 0)) return static_cast<float>(along);
  const double radius = ArcRadius(scales.HeightUnits(), sagitta);
  const double off = scales.HeightUnits() / 2 - HeightOnPaper(x, y, paper);
  const double underRoot = radius * radius - off * off;
  return static_cast<float>(along + sagitta - radius + (underRoot > 0 ? std::sqrt(underRoot) : 0));
}

bool IsOnArc(const ChartScales& scales, double x, double y, const ChartPaper& paper) {
  const double sagitta = scales.MiddleToBottomUnits();
  if (!scales.Is(ChartMethod::NonLinear) || !(sagitta > 0)) return true;
  return std::abs(scales.HeightUnits() / 2 - HeightOnPaper(x, y, paper)) <=
         ArcRadius(scales.HeightUnits(), sagitta);
}

bool InsideBox(const ChartScales& scales, double x, double y, const ChartPaper& paper) {
  if (!IsCalibrated(paper)) return false;
  const double height = scales.HeightUnits(), length = BottomLength(paper);
  const double up = HeightOnPaper(x, y, paper), along = AlongBottom(x, y, paper);
  return -0.2 * height <= up && up <= 1.2 * height && -0.2 * length <= along && along <= 1.2 * length;
}

}  // namespace hyetex
