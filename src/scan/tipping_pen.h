// What is special to a tipping-bucket chart: the pen lies level, and goes up by one step each time that the
// bucket has filled. Where many tips come close on each other, no level is left between them.
#pragma once

#include <vector>

#include "scan/path_points.h"
#include "scan/scan_trace.h"

namespace hyetex {

struct TippedLine {
  std::vector<PathPoint> Points;  ///< each step with its foot and its top, at one time
  double StepMm = 0;              ///< of paper, for one tip; 0 where there was none
  struct Rise {
    double AlongMm = 0, Mm = 0;
  };
  std::vector<Rise> Rises;  ///< those that stand by themselves, from level to level
};

/// The points of a path, made of levels and the steps between them. What rises without a level is left as it
/// was traced.
TippedLine PointsOfTips(const PenPath& path, const FlatChart& flat, const std::vector<PathPoint>& points);

/// A rise that is no whole number of steps is put up for a look: a tip may be hidden there, or be none. Their
/// points are still none.
std::vector<TraceDoubt> DoubtsOfTips(const TippedLine& line, const TraceWish& wish);

/// A step that a printed line hides is sure all the same where a level lies on either side of it: takes out
/// the doubts about missing ink there.
void ForgetHiddenSteps(std::vector<TraceDoubt>& doubts, const TippedLine& line, const TraceWish& wish);

}  // namespace hyetex
