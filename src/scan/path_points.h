// From a path through every column to the few points that an operator would press.
#pragma once

#include <span>
#include <vector>

#include "scan/pen_path.h"

namespace hyetex {

struct PathPoint {
  enum class Step { Along, Drop, Segment, GapEnd };
  Step How = Step::Along;
  double AlongMm = 0, HeightMm = 0;
  int Column = 0;  ///< of the path
};

/// Columns of a path in which the pen left no ink that can be seen: from, past.
struct Blank {
  int From = 0, Past = 0;
};
/// Stretches of at least `mm`.
std::vector<Blank> FindBlanks(const PenPath& path, const FlatChart& flat, double mm);

/// The pen falls from where the line of its fall begins, also where the limb's own top cannot be told from
/// it: the path climbs up to there before an emptying. What it climbs more counts as hidden.
void LiftTops(PenPath& path, const FlatChart& flat, const PenInk& ink, std::span<const FallLine> falls,
              const PenReach& reach);

/// No place of the path lies farther from the points' line than `withinMm`. Stretches in `gaps` end in a
/// GapEnd.
std::vector<PathPoint> PointsOfPath(const PenPath& path, const FlatChart& flat, const PenInk& ink,
                                    std::span<const FallLine> falls, std::span<const Blank> gaps,
                                    double withinMm);

}  // namespace hyetex
