#include "scan/scan_view.h"

#include <algorithm>

namespace hyetex {

ScanWindow ScanWindowOf(const DeskLayout& layout, const ScanPlacement& placement, double unitsPerPixel) {
  const auto at = [&](double right, double down) {
    return ImagePosition(placement, layout.TabletX(right * unitsPerPixel),
                         layout.TabletY(down * unitsPerPixel));
  };
  // Over many pixels, since a step of one is a small difference of large numbers.
  constexpr double far = 1000;
  const auto [x, y] = at(0, 0);
  const auto right = at(far, 0), down = at(0, far);
  return {x,
          y,
          (right.first - x) / far,
          (right.second - y) / far,
          (down.first - x) / far,
          (down.second - y) / far};
}

TabletArea AreaOf(const ScanPlacement& placement, int width, int height) {
  const auto [x1, y1] = TabletPosition(placement, 0, 0);
  const auto [x2, y2] = TabletPosition(placement, width, 0);
  const auto [x3, y3] = TabletPosition(placement, 0, height);
  const auto [x4, y4] = TabletPosition(placement, width, height);
  const auto [left, right] = std::minmax({x1, x2, x3, x4});
  const auto [bottom, top] = std::minmax({y1, y2, y3, y4});
  return {left, bottom, right - left, top - bottom};
}

}  // namespace hyetex
