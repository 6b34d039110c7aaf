// The mouse in the place of the tablet's cursor: how far an arrow key takes it, and when the mouse takes over
// again from the arrow keys.
#pragma once

#include <utility>

#include "core/geometry.h"

namespace hyetex {

inline constexpr double FineStepMm = 0.1, CoarseStepMm = 1;

enum class Arrow { Left, Right, Up, Down };

/// By how much an arrow key moves the cursor, or a selected point: report units to the right and up.
std::pair<double, double> StepOf(Arrow arrow, bool coarse, const TabletExtents& tablet);

/// A hand that rests on the mouse moves it a little. After a step by a key that does not bring the cursor
/// back to where the mouse is. Positions are pixels of the screen.
class PointerGuard {
 public:
  /// A key has moved the cursor.
  void Stepped() { stepped_ = true; }
  /// The mouse is there now; whether the cursor follows it.
  bool Follows(double x, double y);

 private:
  static constexpr double Slack = 4;

  bool stepped_ = false;
  double x_ = 0, y_ = 0;  // where it was when the cursor followed it last
};

}  // namespace hyetex
