// The desk traces a drawn scan by itself: what comes of it, how a person works off the doubts, and what stays
// after a breakdown.
#include "windows/scan_fixture.h"

#include <gmock/gmock.h>

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class TracedDesk : public ScanDesk {
 protected:
  void Trace(const char* damage = "") {
    rain_ = DrawDay("day.png", damage).Line.Points.back().Rain;
    OpenScan(folder_ / "day.png");
    Key(Qt::Key_T);
    ASSERT_GT(LastPoint(), 10) << (dialogs_.Boxes.empty() ? "" : dialogs_.Boxes.back().Text);
  }
  /// After a breakdown.
  void ComeBack() {
    BreakDown();
    dialogs_.Answers = {BoxAnswer::Yes};
    OpenTasks();
    Click(Tasks(), "optDig6");
    Click(Tasks(), "cmdActivate");
    ASSERT_TRUE(IsOpen());
  }
  double Depth() { return Digitized().TotalDepth(LastPoint()); }
  std::size_t Doubts() { return Window().Review().Open().size(); }

  double rain_ = 0;
};

TEST_F(TracedDesk, GivesTheRainAndComesBackAfterABreakdown) {
  Trace();
  EXPECT_NEAR(Depth(), rain_, rain_ * 0.01);
  EXPECT_THAT(Panel(panel::Instruction), HasSubstr(" mm traced. "));
  EXPECT_THAT(Label("labScanScale"), HasSubstr("by the printed grid"));
  const int points = LastPoint();
  // As a hand would have pressed them: undone and made again point by point.
  Key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(LastPoint(), points - 1);
  const std::string chart = ChartText();
  ComeBack();
  EXPECT_EQ(ChartText(), chart);
  Key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(LastPoint(), points) << "what was undone before can still be made again";
}

TEST_F(TracedDesk, LeadsFromDoubtToDoubtAndAsksBeforeItSavesWithSome) {
  Trace("gaps=0.6");
  const std::size_t doubts = Doubts();
  ASSERT_GT(doubts, 1U);
  Key(Qt::Key_Tab);
  EXPECT_THAT(Panel(panel::Instruction), StartsWith("Doubt 1 of " + std::to_string(doubts) + ": "));
  for (std::size_t i = 1; i < doubts; ++i) Key(Qt::Key_Tab);
  EXPECT_THAT(Panel(panel::Instruction), StartsWith("Doubt " + std::to_string(doubts) + " of "));
  EXPECT_TRUE(Machine().Layout.Zoomed);
  const int points = LastPoint();
  Key(Qt::Key_Return);
  EXPECT_EQ(Doubts(), doubts - 1) << "confirmed";
  EXPECT_EQ(LastPoint(), points) << "and nothing pressed";
  // No press there traces on at the line's end; after Escape it does.
  ASSERT_NE(Window().Review().Shown(), nullptr);
  EXPECT_THAT(Panel(panel::Instruction), HasSubstr("Escape: back"));
  const DigitizedPoint last = Digitized().Line.Points().back();
  MousePress(last.X + 30, last.Y + 30);
  EXPECT_EQ(LastPoint(), points);
  Key(Qt::Key_Escape);
  if (Window().Review().Shown() != nullptr) Key(Qt::Key_Escape);  // the first let go of a point
  EXPECT_EQ(Window().Review().Shown(), nullptr);
  EXPECT_EQ(Doubts(), doubts - 1);
  Machine().ZoomOut();
  MousePress(last.X + 30, last.Y + 30);
  EXPECT_EQ(LastPoint(), points + 1);
  Key(Qt::Key_Z, Qt::ControlModifier);

  dialogs_.Answers = {BoxAnswer::No};
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("still in doubt"));
  EXPECT_EQ(desk_->Window(WindowId::Save), nullptr);
  EXPECT_TRUE(Window().isEnabled());
  ComeBack();
  EXPECT_EQ(Doubts(), doubts) << "all are back with the points, the confirmed one too";
  EXPECT_EQ(LastPoint(), points);
  Key(Qt::Key_Tab);
  while (Doubts() > 0) Key(Qt::Key_Return);
  EXPECT_EQ(Panel(panel::Instruction), "Nothing is in doubt any more");
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_NE(desk_->Window(WindowId::Save), nullptr);
}

TEST_F(TracedDesk, AsksWhichOfTwoLinesIsTheCharts) {
  const std::vector<RainPoint> other{{0, 0}, {1, 0}, {3, 4}, {9, 4.5}, {14, 6}, {24, 6}};
  const DrawnScan one = DrawDay("one.png"), two = DrawDayOf(other, "two.png");
  cv::Mat both;
  cv::min(one.Image, two.Image, both);
  WriteFile(folder_ / "both.png", *EncodeScan(both, "both.png", 150));
  OpenScan(folder_ / "both.png");
  dialogs_.Answers = {BoxAnswer::Yes};
  Key(Qt::Key_T);
  ASSERT_FALSE(dialogs_.Boxes.empty());
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("two lines"));
  const double oneRain = one.Line.Points.back().Rain, twoRain = two.Line.Points.back().Rain;
  EXPECT_LT(std::min(std::abs(Depth() - oneRain), std::abs(Depth() - twoRain)), 0.3) << Depth();
}

TEST_F(TracedDesk, LetsTheTabKeyGoOnBehindTheLastDoubtAndBeforeTheFirst) {
  Trace("gaps=0.6");
  for (std::size_t i = 0; i < Doubts(); ++i) Key(Qt::Key_Tab);
  EXPECT_NE(Window().Review().Shown(), nullptr);
  EXPECT_EQ(QApplication::focusWidget(), &Window());
  Key(Qt::Key_Tab);
  EXPECT_EQ(Window().Review().Shown(), nullptr);
  EXPECT_NE(QApplication::focusWidget(), &Window()) << "the panel's";
  Key(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_NE(QApplication::focusWidget(), &Window()) << "and the other way none is between";
  // Where one was left, there it goes on.
  Key(Qt::Key_Tab);
  Key(Qt::Key_Tab);
  Key(Qt::Key_C);
  EXPECT_EQ(Window().Review().Shown(), nullptr);
  Key(Qt::Key_Tab);
  EXPECT_THAT(Panel(panel::Instruction), StartsWith("Doubt 2 of "));
}

TEST_F(TracedDesk, IsAsItWasWhenTheTracingIsCancelled) {
  DrawDay("day.png");
  OpenScan(folder_ / "day.png");
  PressPixel(300, 300);
  const std::string before = ReadFile(folder_ / "Journal.txt");
  for (const bool byKey : {true, false}) {
    QTimer::singleShot(60, [&] {
      EXPECT_TRUE(Part("prbTraceScan").isVisible());
      if (byKey)
        QTest::keyClick(&Window(), Qt::Key_Escape);
      else
        Click(*desk_->ShellWindow(), "cmdTraceCancel");
    });
    Key(Qt::Key_T);
    EXPECT_EQ(Panel(panel::Instruction), "The tracing was cancelled");
    EXPECT_FALSE(Part("prbTraceScan").isVisible() || Part("cmdTraceCancel").isVisible());
    EXPECT_EQ(LastPoint(), -1);
    EXPECT_EQ(State().Action, action::PageRightCorner) << "nor has Escape taken the corner back";
    EXPECT_EQ(ReadFile(folder_ / "Journal.txt"), before);
  }
  Key(Qt::Key_T);
  EXPECT_GT(LastPoint(), 10);
}

TEST_F(TracedDesk, TracesAStretchAgainBetweenItsTwoEnds) {
  Trace("gaps=0.6");
  Key(Qt::Key_Tab);
  while (Window().Review().Shown() != nullptr &&
         StretchOf(*Window().Review().Shown(), Digitized().Line).second < 0)
    Key(Qt::Key_Return);
  ASSERT_NE(Window().Review().Shown(), nullptr);
  const auto [first, last] = StretchOf(*Window().Review().Shown(), Digitized().Line);
  const DigitizedPoint before = Digitized().Line.Point(first);
  const double depth = Depth();
  // A point far above the line, which the new tracing takes away.
  const TraceDoubt& doubt = *Window().Review().Shown();
  const ChartScales& scales = Digitized().Line.Scales();
  const double along = (doubt.FromHour + doubt.ToHour) / 2 / scales.ChartType.TimeScale;
  const double x = Digitized().Line.Paper(0).BottomLeftX + along * scales.Tablet.UnitsPerMmVertical();
  const double y = std::max(before.Y, Digitized().Line.Point(last).Y) + 1500;
  ASSERT_TRUE(Machine().InsertPoint(last, std::round(x), y));
  ASSERT_GT(Depth(), depth * 1.1);
  Key(Qt::Key_R);
  EXPECT_EQ(Digitized().Line.Point(first).X, before.X) << "its ends stay";
  EXPECT_NEAR(Depth(), depth, depth * 0.05) << Panel(panel::Instruction);
}

TEST_F(TracedDesk, SaysWhatItCannotTraceAndTakesNothing) {
  OpenScan(WriteScan("page.png"));
  Key(Qt::Key_T);
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes[0].Title, "Tracing the scan");
  EXPECT_EQ(LastPoint(), -1);
  EXPECT_EQ(State().Action, action::PageLeftCorner);
  for (const auto& [px, py] : {std::pair(100, 700), std::pair(1500, 700), std::pair(110, 690)})
    PressPixel(px, py);
  Key(Qt::Key_T);
  EXPECT_EQ(dialogs_.Boxes.size(), 2U) << "no question of giving up the point";
  EXPECT_EQ(LastPoint(), 0);
}

TEST_F(TracedDesk, SetsThePageItselfWhereAFirstCornerWasPressed) {
  rain_ = DrawDay("day.png").Line.Points.back().Rain;
  OpenScan(folder_ / "day.png");
  PressPixel(300, 300);
  ASSERT_EQ(State().Action, action::PageRightCorner);
  Key(Qt::Key_T);
  EXPECT_NEAR(Depth(), rain_, rain_ * 0.01);
}

}  // namespace
}  // namespace hyetex
