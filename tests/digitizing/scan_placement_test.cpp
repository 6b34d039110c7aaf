#include "digitizing/scan_placement.h"

#include <gtest/gtest.h>

namespace hyetex {
namespace {

TEST(ScanPlacement, GoesBothWays) {
  const ScanPlacement laid{.X0 = 400, .Y0 = 3000, .UnitsPerPx = 2.5};
  EXPECT_EQ(TabletPosition(laid, 100, 40), std::pair(650.0, 2900.0));  // down the image is down the tablet
  for (const double angle : {0.0, 90.0, 180.0, -90.0, 270.0, 1.3, -44.0, 359.0}) {
    ScanPlacement turned = laid;
    turned.AngleDegrees = angle;
    const auto [x, y] = TabletPosition(turned, 1234.5, 67.25);
    const auto [px, py] = ImagePosition(turned, x, y);
    EXPECT_NEAR(px, 1234.5, 1e-9) << angle;
    EXPECT_NEAR(py, 67.25, 1e-9) << angle;
  }
}

TEST(ScanPlacement, TurnsCounterClockwiseAboutTheImagesCorner) {
  const ScanPlacement turned{.X0 = 10, .Y0 = 20, .UnitsPerPx = 1, .AngleDegrees = 90};
  EXPECT_EQ(TabletPosition(turned, 0, 0), std::pair(10.0, 20.0));
  EXPECT_EQ(TabletPosition(turned, 5, 0), std::pair(10.0, 25.0));  // what was to the right is up
  EXPECT_EQ(TabletPosition(turned, 0, 5), std::pair(15.0, 20.0));  // what was down is to the right
}

}  // namespace
}  // namespace hyetex
