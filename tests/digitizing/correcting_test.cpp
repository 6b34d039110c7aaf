// Correcting by the mouse and the keys: what a press takes, and what becomes of it.
#include "digitizing/correcting.h"

#include <gtest/gtest.h>

#include <sstream>

#include "desk.h"

namespace hyetex {
namespace {

using test::Desk;

// A view of one screen unit each: what lies within 120 units of a press is reached.
class CorrectingHand : public testing::Test {
 protected:
  CorrectingHand() {
    desk_.Machine.Layout.ScaleX = desk_.Machine.Layout.ScaleY = 1;
    desk_.Calibrated().Click(700, 600).Click(1200, 800).Click(1700, 700).Click(2200, 1100);
  }
  Trace& Line() { return desk_.Traced.Line; }
  std::string Points() {
    std::ostringstream text;
    for (const DigitizedPoint& point : Line().Points()) text << point.X << "," << point.Y << " ";
    return text.str();
  }
  void Drag(double x, double y, double toX, double toY) {
    hand_.Press(x, y);
    for (int i = 1; i <= 4; ++i) hand_.Move(x + (toX - x) * i / 4, y + (toY - y) * i / 4, true);
    hand_.Release(toX, toY);
  }

  Desk desk_;
  std::string refused_;
  Correcting hand_{desk_.Machine, [this](const std::string& why) { refused_ = why; }};
};

TEST_F(CorrectingHand, APressTakesAndADragMovesInOneStep) {
  const std::string before = Points();
  hand_.Press(1215, 790);
  hand_.Move(1230, 800, true);
  EXPECT_FALSE(hand_.IsDragged()) << "a hand trembles";
  hand_.Release(1230, 800);
  EXPECT_EQ(hand_.Point(), 1);
  EXPECT_EQ(Points(), before);
  Drag(1210, 800, 1310, 900);
  EXPECT_EQ(Points(), "700,600 1300,900 1700,700 2200,1100 ") << "it keeps its distance from the hand";
  desk_.Machine.Undo();
  EXPECT_EQ(Points(), before);
  hand_.Press(3000, 1300);
  EXPECT_EQ(hand_.Point(), -1) << "a press beside everything lets go";
  EXPECT_FALSE(hand_.Step(1, 0));
}

TEST_F(CorrectingHand, KeysMoveDeleteAndInsert) {
  hand_.Press(1200, 800);
  EXPECT_TRUE(hand_.Step(1, -10));
  EXPECT_EQ(Line().Point(1).X, 1201);
  EXPECT_EQ(Line().Point(1).Y, 790);
  hand_.Insert();
  EXPECT_EQ(Points(), "700,600 1201,790 1450.5,745 1700,700 2200,1100 ");
  EXPECT_EQ(hand_.Point(), 2);
  hand_.Delete();
  hand_.Delete();
  EXPECT_EQ(Points(), "700,600 1201,790 2200,1100 ");
  EXPECT_EQ(hand_.Point(), 2);
  hand_.Insert();
  EXPECT_EQ(refused_, "A point can only be put in between two points of one line.");
  for (int i = 0; i < 5; ++i) hand_.Delete();
  EXPECT_EQ(Line().LastPoint(), -1);
  hand_.Delete();
  EXPECT_FALSE(hand_.LetGo());
}

TEST_F(CorrectingHand, ADoubleClickPutsAPointIntoTheLine) {
  hand_.Press(1450, 760);
  hand_.Release(1450, 760);
  hand_.PressTwice(1450, 760);
  EXPECT_EQ(Points(), "700,600 1200,800 1450,760 1700,700 2200,1100 ");
  hand_.PressTwice(1450, 760);
  hand_.PressTwice(3000, 2000);
  EXPECT_EQ(Line().LastPoint(), 4) << "not on a point, and not beside the line";
}

TEST_F(CorrectingHand, TakesCornersOfThePageWhereThereIsNoPoint) {
  Drag(3500, 500, 3480, 600);
  EXPECT_EQ(Line().Paper(0).BottomRightX, 3480);
  EXPECT_EQ(Line().Paper(0).BottomRightY, 600);
  EXPECT_TRUE(hand_.HasCorner());
  hand_.Delete();
  EXPECT_EQ(Line().LastPoint(), 3) << "a corner is not deleted";
  Drag(500, 500, 3600, 500);
  EXPECT_NE(refused_, "");
  EXPECT_EQ(Line().Paper(0).BottomLeftX, 500);
}

TEST_F(CorrectingHand, ARefusedMoveChangesNothing) {
  const std::string before = Points();
  Drag(1200, 800, 1200, 3900);
  EXPECT_NE(refused_, "");
  EXPECT_EQ(Points(), before);
}

}  // namespace
}  // namespace hyetex
