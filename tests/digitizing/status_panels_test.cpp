#include "digitizing/status_panels.h"

#include "digitizing/desk.h"

namespace hyetex {
namespace {

using test::Desk;

TEST(StatusPanels, ShowDepthQuarterHourAndButton) {
  Desk desk;
  StatusPanels panels;
  desk.Calibrated();
  const auto* texts = panels.Update(desk.Traced, desk.State());
  ASSERT_TRUE(texts && texts->Depth.empty() && texts->Time.empty()) << "there is no point yet";
  desk.Click(600, 700);
  texts = panels.Update(desk.Traced, desk.State());
  ASSERT_NE(texts, nullptr);
  EXPECT_EQ(texts->Depth, "0 cm");
  EXPECT_EQ(texts->Time, "05/03/1998");
  EXPECT_EQ(texts->Button, "");

  desk.Click(636, 823);  // 3.6 mm at 2 hours each, 12.3 mm up at 0.1 each
  texts = panels.Update(desk.Traced, desk.State());
  ASSERT_NE(texts, nullptr);
  EXPECT_EQ(texts->Depth, "1.23 cm");
  EXPECT_EQ(texts->Time, "05/03/1998 07:15:00");

  desk.Report(640, 830, 15);
  texts = panels.Update(desk.Traced, desk.State());
  ASSERT_NE(texts, nullptr);
  EXPECT_EQ(texts->Button, "F");
}

TEST(StatusPanels, AreSilentWhileNothingOfTheirsChanges) {
  Desk desk;
  StatusPanels panels;
  desk.Calibrated();
  desk.Click(600, 700);
  EXPECT_NE(panels.Update(desk.Traced, desk.State()), nullptr);
  for (int x = 600; x < 900; ++x) {
    desk.Report(x, 700);
    EXPECT_EQ(panels.Update(desk.Traced, desk.State()), nullptr);
  }
  desk.Traced.Line.AddComment(0, "CODE203");  // adds nothing to the sums
  EXPECT_EQ(panels.Update(desk.Traced, desk.State()), nullptr);
  desk.Machine.RemoveLastPoint();
  const auto* texts = panels.Update(desk.Traced, desk.State());
  ASSERT_TRUE(texts && texts->Depth.empty() && texts->Time.empty()) << "the last point is gone";

  Desk buckets(ChartMethod::TippingBucket);
  buckets.Calibrated().Click(600, 700).Click(700, 900);
  texts = panels.Update(buckets.Traced, buckets.State());
  ASSERT_TRUE(texts && texts->Depth.empty() && !texts->Time.empty()) << "the trace gives no depth";
}

TEST(StatusPanels, CaptionsFollowThePaper) {
  Desk desk;
  desk.Calibrated();
  const auto level = CaptionsOf(desk.Line().Scales().ChartType, desk.State());
  EXPECT_EQ(level.Angle, "Page Angle  0");
  EXPECT_EQ(level.Horizontal, "Horizontal Scale : 1 Hour = 0.5 mm ");
  EXPECT_EQ(level.Vertical, "Vertical Scale : 1mm of water = 10 mm ");
  desk.Machine.State().PageAngle = std::atan(0.1F);
  EXPECT_EQ(CaptionsOf(desk.Line().Scales().ChartType, desk.State()).Angle, "Page Angle  5.7");
}

TEST(StatusPanels, ReadOutKeepsItsWidth) {
  DeskState state;
  EXPECT_EQ(CursorText(state), "");
  state.Reading = {MakeDate(1998, 3, 5), 3.F};
  EXPECT_EQ(CursorText(state), "05/03/1998 00:00   3.0 mm");
  state.Reading = {MakeDate(1998, 3, 5, 23, 59, 59), 12.34F};
  EXPECT_EQ(CursorText(state), "05/03/1998 23:59   12.3 mm");
  state.Reading->Depth.reset();
  EXPECT_EQ(CursorText(state), "05/03/1998 23:59");
}

}  // namespace
}  // namespace hyetex
