// The chart's own hours and depths as lines over the paper in use, so that the operator sees whether its
// calibration is right: they must lie on the printed ones. Positions are tablet report units.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/session.h"

namespace hyetex {

struct OverlayLine {
  bool IsHour = false;  ///< an hour, across the paper, else a depth, along it
  Date Time = 0;        ///< of an hour
  float Depth = 0;      ///< of a depth, mm of water
  std::string Label;    ///< "07:00", at midnight "06/03", "10 mm"; empty on a further piece of the same line
  /// From the bottom up, or from left to right. On arc charts an hour is an arc.
  std::vector<std::pair<double, double>> Points;
};

/// The lines within the length and the height of the paper in use, 3 to 15 mm apart; none before the page has
/// been set, and no depths on tipping-bucket charts. The paper's time is counted from its first point, which
/// on the page has the chart's start and on a strip the time where the line before it ended. Until that point
/// has been traced the paper's left end stands in for it.
std::vector<OverlayLine> MakePageOverlay(const Session& session);

}  // namespace hyetex
