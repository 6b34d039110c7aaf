#include "digitizing/scan_placement.h"

#include <gtest/gtest.h>

#include <cmath>

#include "digitizing/tablets.h"

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

TEST(ScanPlacement, LiesWhereEveryTurnCanBePressed) {
  const TabletExtents& sheet = TabletTypes()[ScanTablet].Extents;
  const double perMm = sheet.UnitsPerMmVertical();
  // A chart that fits lies in the middle of the sheet; one of three metres lies beyond it.
  for (const auto& [width, height] : {std::pair(4000, 900), {900, 4000}, {36'000, 900}, {2, 1}}) {
    const auto laid = LaidOnSheet(sheet, width, height, 300 / 25.4);
    ASSERT_TRUE(laid) << laid.error();
    EXPECT_DOUBLE_EQ(laid->UnitsPerPx, perMm * 25.4 / 300);
    const auto middle = TabletPosition(*laid, width / 2.0, height / 2.0);
    if (width < 10'000) {
      EXPECT_NEAR(middle.first, sheet.TabletWidthUnits / 2.0, 1e-6);
      EXPECT_NEAR(middle.second, sheet.TabletHeightUnits / 2.0, 1e-6);
    }
    ScanPlacement turned = *laid;
    for (const double degrees : {90.0, 90.0, 0.7, -33.3, 180.0, 32.6}) {
      turned = TurnAboutCentre(turned, width, height, degrees);
      EXPECT_GT(turned.AngleDegrees, -180);
      EXPECT_LE(turned.AngleDegrees, 180);
      EXPECT_NEAR(TabletPosition(turned, width / 2.0, height / 2.0).first, middle.first, 1e-6);
      for (const int x : {0, width})
        for (const int y : {0, height}) {
          const auto [atX, atY] = TabletPosition(turned, x, y);
          EXPECT_TRUE(atX >= 0 && atY >= 0 && atX < SegmentMark && atY < SegmentMark)
              << width << " " << degrees;
        }
    }
    EXPECT_NEAR(turned.AngleDegrees, 0, 1e-9);  // once around
    EXPECT_NEAR(turned.X0, laid->X0, 1e-6);
    EXPECT_NEAR(turned.Y0, laid->Y0, 1e-6);
  }
  EXPECT_FALSE(LaidOnSheet(sheet, 1'000'000, 400, 40 / 25.4));
  for (const double none : {0.0, -1.0, std::nan("")})
    EXPECT_FALSE(LaidOnSheet(sheet, 4000, 900, none)) << none;
}

}  // namespace
}  // namespace hyetex
