// A scanned chart traced by the mouse.
#include <QAction>
#include <QDoubleSpinBox>
#include <QSlider>

#include "core/files.h"
#include "scans/drawn_scan.h"
#include "scans/scan_file.h"
#include "staging/lists/lists.h"
#include "tracing/rain.h"
#include "windows/scan_fixture.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

TEST_F(ScanDesk, GivesTheRainThatIsOnThePaper) {
  OpenScan(WriteScan("page.png"));
  EXPECT_TRUE(dialogs_.Boxes.empty());
  EXPECT_EQ(Label("labScanScale"), "200 dpi by the file");
  EXPECT_NEAR(ColourAt(700, 485).blue(), 110, 60) << "its pen line is seen";
  PressPixel(100, 700);
  PressPixel(1500, 700);
  for (const auto& [px, py] :
       {std::pair(100, 700), std::pair(500, 500), std::pair(900, 470), std::pair(1300, 200)})
    PressPixel(px, py);
  ASSERT_EQ(LastPoint(), 3);
  const ChartTypeRecord& type = Digitized().Line.Scales().ChartType;
  const double mm = 25.4 / Dpi;
  const double depth = 500 * mm * type.DepthScale, hours = 1200 * mm * type.TimeScale;
  EXPECT_NEAR(Digitized().TotalDepth(3), depth, depth * 0.002);
  EXPECT_NEAR((Digitized().PointTime(3) - Digitized().ChartStart()) * 24, hours, hours * 0.002);

  EXPECT_TRUE(Part("spnTurn").isVisible());
  EXPECT_FALSE(Part("spnTurn").isEnabled());
  EXPECT_EQ(Label("labScanFixed"), "Points have been traced on the scan as it lies.");
}

// A day of a siphon recorder, drawn from rain that is known, with the scanner's and the paper's faults.
TEST_F(ScanDesk, GivesTheRainThatFellFromADrawnScan) {
  const DrawnScan drawn = DrawDay("day.png");
  OpenScan(folder_ / "day.png");
  const ScanPlacement drawnAs = PlacementOf(drawn);
  for (const JournalEvent& step : MouseSteps(drawn, drawnAs)) {
    if (step.What == JournalEvent::Kind::Tool) Machine().RunTool(step.Tool);
    if (step.What != JournalEvent::Kind::Press) continue;
    const auto [px, py] = ImagePosition(drawnAs, step.X, step.Y);
    PressPixel(px, py);
  }
  EXPECT_GT(LastPoint(), 20);
  const double rain = drawn.Line.Points.back().Rain;
  EXPECT_NEAR(Digitized().TotalDepth(LastPoint()), rain, rain * 0.005);
}

TEST_F(ScanDesk, AsksForAScaleThatTheFileDoesNotSay) {
  const auto byMarks = [&](const char* name, double dpi) {
    OpenScan(WriteScan(name, dpi));
    ASSERT_EQ(dialogs_.Boxes.size(), 1U);
    EXPECT_EQ(dialogs_.Boxes[0].Title, "The scale of the scan");
    EXPECT_FALSE(Scan().HasScale());
  };
  dialogs_.Answers = {BoxAnswer::Cancel};
  byMarks("false.png", 1);
  dialogs_.Answers = {BoxAnswer::Yes};
  PressPixel(100, 700);  // no tracing without one: it asks again
  QCoreApplication::processEvents();
  EXPECT_EQ(State().Action, action::PageLeftCorner);
  EXPECT_EQ(dialogs_.Boxes.size(), 2U);
  EXPECT_NE(Panel(panel::Instruction).find("two marks"), std::string::npos);

  PressPixel(100, 700);
  EXPECT_EQ(Scan().Marks().size(), 1U);
  Key(Qt::Key_Escape);
  EXPECT_TRUE(Scan().Marks().empty());
  EXPECT_EQ(Panel(panel::Instruction), "Click the bottom left point of the page");
  Part<QAction>("actMarks").trigger();
  PressPixel(100, 700);
  dialogs_.Typed = {"much", "177,8"};  // 1400 pixels of 200 dpi
  PressPixel(1500, 700);
  QCoreApplication::processEvents();
  EXPECT_EQ(dialogs_.Boxes.back().Text, "Type a length in mm, as 200.");
  ASSERT_TRUE(Scan().HasScale());
  EXPECT_EQ(Label("labScanScale"), "200 dpi by two marks 177.8 mm apart");
  PressPixel(100, 700);
  EXPECT_EQ(State().Action, action::PageRightCorner);
  const auto [x, y] = TabletPosition(Scan().Placement(), 100, 700);
  EXPECT_NEAR(X(), x, 0.02);
  EXPECT_NEAR(Y(), y, 0.02);
}

TEST_F(ScanDesk, MeasuresByThePapersWidthAndRemembersItForTheChartType) {
  dialogs_.Answers = {BoxAnswer::No};
  dialogs_.Typed = {"203.2"};
  OpenScan(WriteScan("plain.png", 1));
  EXPECT_EQ(Label("labScanScale"), "200 dpi by a paper 203.2 mm wide");
  dialogs_.Answers = {BoxAnswer::Yes};
  Choose("mnuNew");
  ASSERT_TRUE(WaitFor([&] { return !IsOpen(); }));
  desk_.reset();
  dialogs_.Boxes.clear();
  OpenScan(WriteScan("next.png", 1));
  EXPECT_EQ(Label("labScanScale"), "200 dpi by a paper 203.2 mm wide");
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

TEST_F(ScanDesk, TurnsAndLooksAsTheOperatorWants) {
  const std::string path = WriteScan("page.png");
  const std::string bytes = ReadFile(path);
  OpenScan(path);
  const TabletArea lying = *Machine().Layout.Home;
  Click(*desk_->ShellWindow(), "cmdTurnLeft");
  EXPECT_NEAR(Machine().Layout.Home->Width, lying.Height, 0.01);
  EXPECT_NEAR(ColourAt(20, 20).red(), 255, 3);
  Click(*desk_->ShellWindow(), "cmdTurnRight");
  EXPECT_NEAR(Machine().Layout.Home->Width, lying.Width, 0.01);
  Part<QDoubleSpinBox>("spnTurn").setValue(1.5);
  EXPECT_EQ(Scan().Placement().AngleDegrees, 1.5);

  const int before = ColourAt(20, 20).red();
  Part<QSlider>("sldBrightness").setValue(-60);
  EXPECT_LT(ColourAt(20, 20).red(), before - 30);
  Part<QSlider>("sldFade").setValue(100);
  Click(*desk_->ShellWindow(), "cmdLookReset");
  EXPECT_EQ(Part<QSlider>("sldBrightness").value() + Part<QSlider>("sldFade").value(), 0);
  EXPECT_EQ(ColourAt(20, 20).red(), before);
  EXPECT_EQ(ReadFile(path), bytes);
}

TEST_F(ScanDesk, MagnifiesWhatIsUnderTheCursor) {
  OpenScan(WriteScan("page.png"));
  auto& magnifier = Part<Magnifier>("magnifier");
  EXPECT_TRUE(magnifier.isVisible());
  const auto colourInTheMiddle = [&] {
    const QImage seen = magnifier.grab().toImage();
    return seen.pixelColor(seen.width() / 2, seen.height() / 2);
  };
  const auto move = [&](double px, double py) {
    const auto [x, y] = TabletPosition(Scan().Placement(), px, py);
    MouseTo(x, y);
  };
  move(500, 500);
  EXPECT_LT(colourInTheMiddle().red(), 100);
  move(300, 300);
  EXPECT_GT(colourInTheMiddle().red(), 230);
  const int times = magnifier.Times();
  Choose("mnuMagnify");
  EXPECT_EQ(magnifier.Times(), times + 1);
  for (int i = 0; i < 10; ++i) {
    magnifier.Step();
    EXPECT_GE(magnifier.Times(), Magnifier::Least);
    EXPECT_LE(magnifier.Times(), Magnifier::Most);
  }
  Window().setFocus();
  QTest::keyClick(&Window(), Qt::Key_M);
  EXPECT_FALSE(magnifier.isVisible());
  EXPECT_FALSE(Graph().geometry().intersects(Part("deskPanel").geometry())) << "it hides nothing";
}

TEST_F(ScanDesk, StaysWithWhatWasOpenedWhenTheFileGoes) {
  const std::string path = WriteScan("page.png");
  OpenScan(path);
  std::filesystem::remove(path);
  ASSERT_TRUE(WaitFor([&] { return Part("labScanTrouble").isVisible(); }));
  EXPECT_EQ(Label("labScanTrouble"), "The file is gone. The session goes on with what was opened.");
  PressPixel(100, 700);
  PressPixel(1500, 700);
  EXPECT_EQ(State().Action, action::Drawing);
  EXPECT_LT(ColourAt(700, 485).red(), 150);
}

TEST_F(ScanDesk, TellsOfABrokenOrMissingScanBeforeTheDeskOpens) {
  OpenTasks();
  Click(Tasks(), "optDig5");
  EXPECT_EQ(ScanState(), "Choose the chart's scan, or a folder with scans");
  Click(Tasks(), "cmdActivate");
  EXPECT_EQ(dialogs_.Boxes.size(), 1U);
  const std::string none = folder_ / "none.png";
  WriteFile(none, "this is no image");
  dialogs_.Opened = {none};
  Click(Tasks(), "cmdScan");
  EXPECT_EQ(dialogs_.Boxes.size(), 2U);

  const std::string whole = WriteScan("whole.png");
  const std::string cut = folder_ / "cut.png", bytes = ReadFile(whole);
  WriteFile(cut, bytes.substr(0, bytes.size() / 2));
  dialogs_.Opened = {cut};
  Click(Tasks(), "cmdScan");
  Click(Tasks(), "cmdActivate");
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(dialogs_.Boxes.size(), 3U) << "that it breaks off shows when it is opened";
  EXPECT_TRUE(Tasks().isVisible());
  dialogs_.Opened = {whole};
  Click(Tasks(), "cmdScan");
  EXPECT_EQ(ScanState(), "whole.png\n1600 x 800 pixels, 200 dpi by the file");
  Click(Tasks(), "cmdActivate");
  EXPECT_TRUE(IsOpen());
}

TEST_F(ScanDesk, FindsScansByTheirNames) {
  const TempFolder scans;
  std::filesystem::rename(WriteScan("NM-Hill Farm-01_19980305.png"), scans / "NM-Hill Farm-01_19980305.png");
  OpenTasks();
  Click(Tasks(), "optDig5");
  dialogs_.Folders = {scans.Path()};
  Click(Tasks(), "cmdScans");
  EXPECT_EQ(ScanState(), "NM-Hill Farm-01_19980305.png\n1600 x 800 pixels, 200 dpi by the file");
  Find<QTableWidget>(Tasks(), "fgdTasks").selectRow(1);
  EXPECT_NE(ScanState().find("NM-Hill Farm-01"), 0U) << "another chart's";
  Click(Tasks(), "cmdExit");
  desk_.reset();
  OpenTasks();
  EXPECT_TRUE(Find<QAbstractButton>(Tasks(), "optDig5").isChecked());
  EXPECT_EQ(ScanState(), "NM-Hill Farm-01_19980305.png\n1600 x 800 pixels, 200 dpi by the file");
}

TEST_F(ScanDesk, DrawsTheChartsOwnHoursAndDepthsOverTheScan) {
  OpenScan(WriteScan("page.png"));
  const auto azure = [&] {
    const QImage seen = Graph().grab().toImage();
    int count = 0;
    for (int y = 10; y < seen.height() - 10; ++y)
      for (int x = 10; x < seen.width() - 10; ++x) {
        const QColor colour = seen.pixelColor(x, y);
        count += colour.blue() > 180 && colour.red() < 90;
      }
    return count;
  };
  QTest::keyClick(&Window(), Qt::Key_G);
  EXPECT_EQ(azure(), 0) << "there is no page yet";
  PressPixel(100, 700);
  PressPixel(1500, 700);
  EXPECT_GT(azure(), 2000);
  EXPECT_TRUE(desk_->ShellWindow()->findChild<QAction*>("mnuOverlay")->isChecked());
  QTest::keyClick(&Window(), Qt::Key_G);
  EXPECT_EQ(azure(), 0);
}

// ---- Correcting

TEST_F(ScanDesk, CorrectsPointsAndThePage) {
  OpenScan(WriteScan("page.png"));
  Key(Qt::Key_C);
  EXPECT_NE(Panel(panel::Instruction).find("nothing to correct"), std::string::npos);
  for (const auto& [px, py] : {std::pair(100, 700), std::pair(1500, 690), std::pair(110, 690),
                               std::pair(520, 480), std::pair(900, 470), std::pair(1300, 200)})
    PressPixel(px, py);
  ASSERT_EQ(LastPoint(), 3);
  const auto pixel = [&](double px, double py) { return TabletPosition(Scan().Placement(), px, py); };
  const auto drag = [&](std::pair<double, double> from, std::pair<double, double> to) {
    MouseDrag(from.first, from.second, to.first, to.second);
  };
  QTest::keyClick(&Window(), Qt::Key_C);
  EXPECT_TRUE(desk_->ShellWindow()->findChild<QAction*>("mnuCorrect")->isChecked());
  drag(pixel(520, 480), pixel(500, 500));
  EXPECT_EQ(LastPoint(), 3) << "nothing is traced";
  EXPECT_NEAR(Digitized().Line.Point(1).X, pixel(500, 500).first, 0.05);
  EXPECT_NEAR(Digitized().Line.Point(1).Y, pixel(500, 500).second, 0.05);
  drag(pixel(1500, 690), pixel(1500, 700));
  EXPECT_NEAR(Digitized().Line.Paper(0).Angle, 0, 1e-4);

  drag(pixel(900, 470), pixel(900, 470));
  EXPECT_EQ(State().SelectedPoint, 2);
  const double x = Digitized().Line.Point(2).X;
  Key(Qt::Key_Right);
  EXPECT_NEAR(Digitized().Line.Point(2).X, x + 2, 0.05);
  QTest::keyClick(&Window(), Qt::Key_Insert);
  EXPECT_EQ(LastPoint(), 4);
  QTest::keyClick(&Window(), Qt::Key_Delete);
  EXPECT_EQ(LastPoint(), 3);
  EXPECT_EQ(State().SelectedPoint, 3) << "the last point stays, though Delete erases it while tracing";
  Key(Qt::Key_Escape);
  EXPECT_EQ(State().SelectedPoint, -1);
  QTest::keyClick(&Window(), Qt::Key_Delete);
  EXPECT_EQ(LastPoint(), 3);
  Key(Qt::Key_Escape);
  EXPECT_FALSE(desk_->ShellWindow()->findChild<QAction*>("mnuCorrect")->isChecked());
  PressPixel(1400, 150);
  EXPECT_EQ(LastPoint(), 4);

  const std::string chart = ChartText();
  BreakDown();
  dialogs_.Answers = {BoxAnswer::Yes};
  OpenTasks();
  dialogs_.Opened = {folder_ / "page.png"};
  Click(Tasks(), "cmdScan");
  Click(Tasks(), "cmdActivate");
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(ChartText(), chart);
  EXPECT_TRUE(Scan().HasScale());
}

TEST_F(ScanDesk, ATabletsSessionIsCorrectedByTheMouseWithoutBeingTraced) {
  Open(0, ScanTablet);
  Press(1000, 1600);
  Press(17000, 1660);
  Press(1400, 2000);
  Press(2000, 3000);
  MousePress(2400, 3100);
  Key(Qt::Key_Return);
  EXPECT_EQ(LastPoint(), 1) << "the mouse is no cursor here";
  Choose("mnuCorrect");
  MouseDrag(2000, 3000, 2200, 3100);
  EXPECT_NEAR(Digitized().Line.Point(1).X, 2200, 30);
  EXPECT_EQ(State().CursorX, 2000) << "the tablet's cursor is where it was";
  Press(2600, 3300);
  EXPECT_EQ(LastPoint(), 2) << "the tablet goes on tracing";
  EXPECT_FALSE(desk_->ShellWindow()->findChild<QAction*>("mnuMagnifier")->isVisible());
}

// ---- Coming back

class ResumedScan : public ScanDesk {
 protected:
  void TraceAndBreakDown() {
    path_ = WriteScan("page.png");
    OpenScan(path_);
    Part<QDoubleSpinBox>("spnTurn").setValue(0.5);
    for (const auto& [px, py] : {std::pair(100, 700), std::pair(1500, 700), std::pair(110, 690)})
      PressPixel(px, py);
    placement_ = Scan().Placement();
    chart_ = Traced();
    BreakDown();
  }
  // The chart from its points on: which scan is beside it stands before them.
  std::string Traced() {
    const std::string text = ChartText();
    return text.substr(text.find("Digitation Points"));
  }
  void Again(bool hasScan) {
    OpenTasks();
    Click(Tasks(), "optDig6");
    Click(Tasks(), "cmdActivate");
    ASSERT_TRUE(IsOpen());
    EXPECT_EQ(Traced(), chart_);
    EXPECT_EQ(Window().findChild<DeskScan*>() != nullptr, hasScan);
  }
  std::string path_, chart_;
  ScanPlacement placement_;
};

TEST_F(ResumedScan, FindsItsScanWhereItWas) {
  TraceAndBreakDown();
  dialogs_.Answers = {BoxAnswer::Yes};
  Again(true);
  EXPECT_EQ(Scan().Placement(), placement_);
  EXPECT_EQ(Label("labScanScale"), "200 dpi, as when it was begun");
  PressPixel(500, 500);
  EXPECT_EQ(LastPoint(), 1);
}

TEST_F(ResumedScan, AsksForAScanThatHasGoneOrMoved) {
  TraceAndBreakDown();
  const std::string moved = folder_ / "moved.png";
  std::filesystem::rename(path_, moved);
  dialogs_.Answers = {BoxAnswer::Yes, BoxAnswer::Yes};
  dialogs_.Opened = {moved};
  Again(true);
  EXPECT_EQ(Scan().Image().Path(), moved);
  EXPECT_EQ(Scan().Placement().X0, placement_.X0);
  EXPECT_NE(ReadFile(folder_ / "Journal.txt").find("moved.png"), std::string::npos);
  BreakDown();
  std::filesystem::remove(moved);
  dialogs_.Answers = {BoxAnswer::Yes, BoxAnswer::No};
  Again(false);
  EXPECT_EQ(dialogs_.Boxes.back().Title, "The scan of the unfinished chart");
}

TEST_F(ResumedScan, SaysThatAScanHasChanged) {
  TraceAndBreakDown();
  WriteScan("page.png", Dpi, QColor(250, 245, 230));
  dialogs_.Answers = {BoxAnswer::Yes, BoxAnswer::No};
  Again(true);
  EXPECT_NE(dialogs_.Boxes.back().Text.find("has been changed since"), std::string::npos);
  EXPECT_NE(Scan().Placement().Sha256, placement_.Sha256);
}

TEST_F(ScanDesk, AScanThatWasNeverPressedOnIsNoUnfinishedChart) {
  const std::string path = WriteScan("page.png");
  OpenScan(path);
  BreakDown();
  OpenScan(path);
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

}  // namespace
}  // namespace hyetex
