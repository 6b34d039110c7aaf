#include "digitizing/pointer.h"

#include <cmath>

namespace hyetex {

std::pair<double, double> StepOf(Arrow arrow, bool coarse, const TabletExtents& tablet) {
  const double mm = coarse ? CoarseStepMm : FineStepMm;
  const double across = mm * tablet.TabletWidthUnits / tablet.TabletWidthMm;
  const double up = mm * tablet.UnitsPerMmVertical();
  switch (arrow) {
    case Arrow::Left:
      return {-across, 0};
    case Arrow::Right:
      return {across, 0};
    case Arrow::Up:
      return {0, up};
    case Arrow::Down:
      return {0, -up};
  }
  return {};
}

bool PointerGuard::Follows(double x, double y) {
  if (stepped_ && std::hypot(x - x_, y - y_) < Slack) return false;
  stepped_ = false;
  x_ = x;
  y_ = y;
  return true;
}

}  // namespace hyetex
