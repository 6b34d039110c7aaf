// A scan that traces itself at the desk: what is pressed, and how the operator goes through what is doubtful.
#include <QAction>

#include "core/files.h"
#include "digitizing/status_panels.h"
#include "scans/drawn_scan.h"
#include "scans/scan_file.h"
#include "tracing/rain.h"
#include "windows/scan_fixture.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::HasSubstr;

class TracingDesk : public ScanDesk {
 protected:
  // A day with 4.2 mm of rain, on a form of the chart type; the chart's eyed depth is another.
  std::string DrawDay() {
    const std::vector<RainPoint> rain{{0, 0}, {6, 0}, {7, 3}, {12, 3.2}, {15, 4.2}, {24, 4.2}};
    RainChart chart;
    chart.Paper.TimeScale = 1 / 16.1F;
    chart.Paper.DepthScale = 0.125F;
    ScanStyle style;
    style.Dpi = 150;
    style.ZeroMm = 3.2;
    style.BandMm = 85.2;
    style.Shape.TiltDegrees = 0.6;
    const auto drawn = DrawScan(*DrawRain(rain, chart), style, 3);
    const std::string path = folder_ / "day.png";
    WriteFile(path, *EncodeScan(drawn->Image, path, 150));
    return path;
  }
  void Key(int key) {
    QTest::keyClick(&Window(), static_cast<Qt::Key>(key));
    QCoreApplication::processEvents();
  }
};

TEST_F(TracingDesk, PressesTheLineAndLeadsFromDoubtToDoubt) {
  OpenScan(DrawDay());
  Click(*desk_->ShellWindow(), "cmdTraceScan");
  const int last = LastPoint();
  ASSERT_GT(last, 4);
  EXPECT_TRUE(dialogs_.Boxes.empty());
  EXPECT_NEAR(Digitized().TotalDepth(last), 4.2, 0.05);
  EXPECT_NEAR(Digitized().Line.TimeTo(last) * 24, 24, 0.05);
  EXPECT_THAT(Label("labScanScale"), HasSubstr("by the printed grid"));
  EXPECT_FALSE(Part<QPushButton>("cmdTraceScan").isEnabled());
  EXPECT_EQ(Digitized().Scan, Scan().Placement());
  // As any other session the journal brings it back.
  const std::string journal = ReadFile(folder_ / "Journal.txt");
  EXPECT_THAT(journal, HasSubstr("scan " + Scan().Image().Sha256()));
  EXPECT_GT(std::count(journal.begin(), journal.end(), '\n'), last + 3);

  EXPECT_THAT(Panel(panel::Instruction), HasSubstr("Tab leads"));
  Key(Qt::Key_Tab);
  EXPECT_THAT(Panel(panel::Instruction), HasSubstr("Doubt 1 of"));
  for (int i = 0; i < 40 && Panel(panel::Instruction).find("All doubts") == std::string::npos; ++i)
    Key(Qt::Key_Return);
  EXPECT_THAT(Panel(panel::Instruction), HasSubstr("All doubts are confirmed"));
  EXPECT_EQ(LastPoint(), last) << "Return confirmed, and pressed nothing";

  Choose("mnuUndo");
  EXPECT_LT(LastPoint(), last);
  Choose("mnuRedo");
  EXPECT_EQ(LastPoint(), last);
}

TEST_F(TracingDesk, TellsWhatCannotBeTracedAndLeavesThePageFree) {
  OpenScan(WriteScan("other.png", Dpi, QColor(235, 235, 235)));
  Key(Qt::Key_T);
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("Not traced"));
  EXPECT_EQ(LastPoint(), -1);
  EXPECT_EQ(State().Action, action::PageLeftCorner);
  EXPECT_TRUE(Part<QPushButton>("cmdTraceScan").isEnabled());
}

}  // namespace
}  // namespace hyetex
