// The mouse as the cursor: its steps, its presses, and what part of the tablet it moves into view.
#include "digitizing/pointer.h"

#include <gtest/gtest.h>

#include <cmath>

#include "desk.h"
#include "digitizing/tablets.h"
#include "digitizing/view.h"

namespace hyetex {
namespace {

using test::DeskTablet;

TEST(Pointer, ArrowsMoveByTenthsOfAMillimetreAndByMillimetres) {
  const auto step = [](Arrow arrow, bool coarse) { return StepOf(arrow, coarse, DeskTablet.Extents); };
  using Pair = std::pair<double, double>;  // ten units are a millimetre
  EXPECT_EQ(step(Arrow::Left, false), Pair(-1, 0));
  EXPECT_EQ(step(Arrow::Right, true), Pair(10, 0));
  EXPECT_EQ(step(Arrow::Up, false), Pair(0, 1));
  EXPECT_EQ(step(Arrow::Down, true), Pair(0, -10));
}

TEST(Pointer, AHandThatRestsOnTheMouseTakesNoStepBack) {
  PointerGuard guard;
  EXPECT_TRUE(guard.Follows(100, 100));
  EXPECT_TRUE(guard.Follows(101, 100));
  guard.Stepped();
  EXPECT_FALSE(guard.Follows(103, 101));
  EXPECT_FALSE(guard.Follows(98, 100));
  EXPECT_TRUE(guard.Follows(106, 100));
  EXPECT_TRUE(guard.Follows(105, 100)) << "until the next step";
}

TEST(Pointer, PressesBesideTheUnitsOfATabletAndNeverOnTheBoard) {
  test::Desk desk;
  desk.Machine.Layout.BoardVisible = true;
  desk.Machine.Layout.Board = {0, 0, 1e9, 1e9};  // wherever it lies, it stands beside the view
  const auto press = [&](double x, double y) {
    for (const int button : {-1, 0, 0, -1}) desk.Machine.Point(x, y, button);
  };
  press(500.25, 500);
  press(3500.5, 500);
  press(700.125, 600.75);
  ASSERT_EQ(desk.Traced.Line.LastPoint(), 0);
  EXPECT_EQ(desk.Traced.Line.Point(0).X, 700.125);
  EXPECT_EQ(desk.Traced.Line.Point(0).Y, 600.75);
  desk.Machine.Point(900, 700, DeskTablet.ToolBoxButton);
  EXPECT_FALSE(desk.Machine.Layout.BoardVisible);
  EXPECT_EQ(desk.Traced.Line.LastPoint(), 0);
}

// ---- The home area

class HomeView : public testing::Test {
 protected:
  HomeView() {
    layout_.Home = TabletArea{1000, 500, 4000, 1000};
    layout_.ScaleWidth = 800;
    layout_.ScaleHeight = 600;
    ShowWhole(layout_, tablet_);
  }
  void ExpectOneScale() { EXPECT_EQ(layout_.ScaleX, layout_.ScaleY); }

  const TabletExtents tablet_ = TabletTypes()[0].Extents;
  DeskLayout layout_;
};

TEST_F(HomeView, ShowsTheWholeAreaInTheMiddleAtOneScale) {
  ExpectOneScale();
  EXPECT_GT(layout_.ScreenX(1000), 0);
  EXPECT_LT(layout_.ScreenX(5000), 800);
  EXPECT_NEAR(layout_.ScreenX(3000), 400, 0.01);
  EXPECT_NEAR(layout_.ScreenY(1000), 300, 0.01);
  EXPECT_NEAR(layout_.TabletX(layout_.ScreenX(1234)), 1234, 1e-6);
  EXPECT_NEAR(layout_.TabletY(layout_.ScreenY(567)), 567, 1e-6);

  ResizeView(layout_, tablet_, 400, 900);
  ExpectOneScale();
  EXPECT_FALSE(layout_.Zoomed);
  EXPECT_NEAR(layout_.ScreenX(3000), 200, 0.01);
  EXPECT_LT(layout_.ScreenX(5000), 400);
}

TEST_F(HomeView, ZoomsAtThePointerAndComesBackToTheWhole) {
  EXPECT_FALSE(ZoomAround(layout_, tablet_, 0.8, 10, 10));
  const double x = layout_.TabletX(700), y = layout_.TabletY(280);
  for (int i = 0; i < 8; ++i) {
    ASSERT_TRUE(ZoomAround(layout_, tablet_, 1.25, 700, 280));
    ExpectOneScale();
    EXPECT_NEAR(layout_.TabletX(700), x, 0.1);
    EXPECT_NEAR(layout_.TabletY(280), y, 0.1);
  }
  EXPECT_TRUE(layout_.Zoomed);
  ResizeView(layout_, tablet_, 400, 300);
  ExpectOneScale();
  for (int i = 0; i < 60; ++i) ZoomAround(layout_, tablet_, 1.25, 200, 100);
  EXPECT_LE(layout_.ScaleX, 51 * HomeScale(layout_));
  int out = 0;
  while (ZoomAround(layout_, tablet_, 0.5, 200, 100)) ASSERT_LT(++out, 20);
}

TEST_F(HomeView, PansAsFarAsTheAreaGoes) {
  Pan(layout_, tablet_, 50, 50);
  EXPECT_NEAR(layout_.ScreenX(3000), 400, 0.01) << "the whole stays";
  ShowArea(layout_, tablet_, {300, 250, 100, 100});
  ExpectOneScale();
  const double x = layout_.TabletX(100), y = layout_.TabletY(100);
  Pan(layout_, tablet_, 30, -20);
  EXPECT_NEAR(layout_.ScreenX(x), 130, 0.01);
  EXPECT_NEAR(layout_.ScreenY(y), 80, 0.01);
  Pan(layout_, tablet_, 1e9, 1e9);
  EXPECT_NEAR(layout_.ScreenX(1000), 400, 0.01) << "its corner is never farther off than the middle";
  EXPECT_NEAR(layout_.ScreenY(1500), 300, 0.01);
  BringIntoView(layout_, tablet_, 4500, 600);
  EXPECT_NEAR(layout_.ScreenX(4500), 800, 0.01);
  EXPECT_NEAR(layout_.ScreenY(600), 600, 0.01);
}

TEST(View, PansNoFartherThanTheTablet) {
  const TabletExtents& tablet = DeskTablet.Extents;
  DeskLayout layout = DefaultDeskLayout(tablet);
  ShowArea(layout, tablet, {0, layout.ScaleHeight / 2, layout.ScaleWidth / 2, layout.ScaleHeight / 2});
  EXPECT_EQ(layout.ViewX0, 0);
  Pan(layout, tablet, -layout.ScaleX * 300, layout.ScaleY * 200);
  EXPECT_NEAR(layout.ViewX0, 300, 0.01);
  EXPECT_NEAR(layout.ViewY0, 200, 0.01);
  Pan(layout, tablet, -1e9, -1e9);
  EXPECT_NEAR(layout.ViewX0, 2000, 0.01);
  EXPECT_EQ(layout.ViewY0, 0);
}

TEST(View, AMagnifierHasThePositionInItsMiddle) {
  const DeskLayout magnified = Magnified(1234, 567, 3000, 60);
  EXPECT_NEAR(magnified.ScreenX(1234), 1500, 0.01);
  EXPECT_NEAR(magnified.ScreenY(567), 1500, 0.01);
  EXPECT_NEAR(magnified.ScreenX(1235) - magnified.ScreenX(1234), 60, 0.01);
}

}  // namespace
}  // namespace hyetex
