// From tablet positions to the chart: how far along the bottom line a position lies, how high above it, and
// whether it lies on the paper at all. A tablet knows only its own units; two presses on the bottom line of a
// paper fix the paper's frame. Positions here are report units with the new-segment mark taken off.
#pragma once

#include <optional>
#include <string>

#include "core/records.h"

namespace hyetex {

/// A tablet's active area, in report units and in millimetres.
struct TabletExtents {
  float TabletWidthUnits = 1, TabletHeightUnits = 1;
  float TabletWidthMm = 1, TabletHeightMm = 1;

  float UnitsPerHourAtOneHourPerMm() const { return TabletWidthUnits / TabletWidthMm * 24; }
  float UnitsPerMmVertical() const { return TabletHeightUnits / TabletHeightMm; }
};

/// What turns units into chart coordinates for a session: the tablet and the kind of paper.
struct ChartScales {
  TabletExtents Tablet;
  ChartTypeRecord ChartType;

  bool Is(ChartMethod method) const { return ChartType.ChartMethod == static_cast<std::int16_t>(method); }
  /// Height of the chart band (H), report units.
  double HeightUnits() const;
  /// Horizontal distance of the middle of the pen's arc from its bottom (D), report units.
  double MiddleToBottomUnits() const;
};

/// Why a chart cannot be traced with these scales: a height, scale or arc that is no usable number, an arc
/// chart without its distance, or an arc of more than half a circle. Nothing if it can.
std::optional<std::string> CheckChartScales(const ChartScales& scales);

/// The length of the paper's bottom line (L), report units.
double BottomLength(const ChartPaper& paper);
/// Whether the paper's bottom-right corner has been set.
bool IsCalibrated(const ChartPaper& paper);

/// Height above the bottom line, negative below it. 0 on a paper without a bottom line.
float HeightOnPaper(double x, double y, const ChartPaper& paper);
/// Distance from the bottom-left corner along the bottom line, not corrected for the pen's arc.
double AlongBottom(double x, double y, const ChartPaper& paper);
/// The same, corrected on an arc chart for how far the arc lies off at this height: by nothing at the band's
/// bottom and top, by D in its middle.
float TimeAlongPaper(const ChartScales& scales, double x, double y, const ChartPaper& paper);
/// Whether the pen's arc reaches the height of this position; always so on charts without an arc.
bool IsOnArc(const ChartScales& scales, double x, double y, const ChartPaper& paper);
/// Whether the position is no farther from the paper than a fifth of its height and length.
bool InsideBox(const ChartScales& scales, double x, double y, const ChartPaper& paper);

}  // namespace hyetex
