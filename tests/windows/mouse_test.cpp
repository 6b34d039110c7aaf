// The mouse in the tablet's place.
#include "windows/mouse_fixture.h"

#include <QWheelEvent>

#include "core/files.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

TEST_F(MouseDesk, MakesTheSameJournalAndChartFileAsATablet) {
  struct Hands {
    std::function<void(double, double)> Press;
    std::function<void(double, double, double, double)> Drag;
    std::function<void(int)> Tool;
  };
  const auto trace = [&](const Hands& hand) {
    hand.Press(1000, 1600);
    hand.Press(17000, 1660);
    hand.Press(1400, 2000);
    hand.Press(2000, 3200);
    hand.Tool(tool::Alpha);
    hand.Press(2020, 1800);
    hand.Tool(tool::Gap);
    hand.Press(3000, 2000);
    AddComment("Clock malfunction");
    hand.Tool(tool::SegmentComment);
    hand.Drag(1800, 3000, 2200, 3400);
    AddComment("Ink blot");
    hand.Tool(tool::Zoom);
    hand.Drag(600, 1000, 6000, 4000);
    EXPECT_TRUE(Machine().Layout.Zoomed);
    hand.Press(3333, 2111);
    hand.Tool(tool::Zoom);
    hand.Tool(tool::NewSegment);
    hand.Press(3300, 2200);
  };
  const auto end = [&](std::pair<std::string, std::string>& made) {
    made.second = ReadFile(folder_ / "Journal.txt");
    Choose("mnuSave");
    Click(*desk_->Window(WindowId::Save), "cmdSave");
    ASSERT_TRUE(WaitFor([&] { return !IsOpen(); }));
    const std::string file = folder_ / "NM-Hill Farm-01-19980305-0700.dat";
    made.first = ReadFile(file);
    std::filesystem::remove(file);
  };
  std::pair<std::string, std::string> byTablet, byMouse;
  Open(0, ScanTablet);
  trace({[&](double x, double y) { Press(x, y); },
         [&](double x, double y, double toX, double toY) { Drag(x, y, toX, toY); },
         [&](int tool) { PressSquare(tool); }});
  end(byTablet);
  OpenEmptyPage();
  trace({[&](double x, double y) { MousePress(x, y); },
         [&](double x, double y, double toX, double toY) { MouseDrag(x, y, toX, toY); },
         [&](int tool) { ClickSquare(tool); }});
  EXPECT_EQ(LastPoint(), 5);
  end(byMouse);
  EXPECT_EQ(byMouse.first, byTablet.first);
  EXPECT_EQ(byMouse.second, byTablet.second);
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

TEST_F(MouseDesk, AnEmptyPageIsRememberedAndNoTabletIsLookedFor) {
  OpenTasks();
  auto& timer = *Tasks().findChild<QTimer*>("timComCheck");
  EXPECT_TRUE(timer.isActive());
  Click(Tasks(), "optDig6");
  EXPECT_FALSE(timer.isActive());
  EXPECT_EQ(Find<QLabel>(Tasks(), "labDetect").text(), "The mouse is the cursor");
  Click(Tasks(), "optDig1");
  EXPECT_TRUE(timer.isActive());
  EXPECT_EQ(Find<QLabel>(Tasks(), "labDetect").text(), "Digtizer Not Detcted");
  Click(Tasks(), "optDig6");
  Click(Tasks(), "cmdExit");
  EXPECT_EQ(Remembered("DigitizerType") + Remembered("frmTasks-Source"), "12");
  desk_->Open(WindowId::Tasks);
  EXPECT_TRUE(Find<QAbstractButton>(Tasks(), "optDig6").isChecked());
  EXPECT_FALSE(Tasks().findChild<QTimer*>("timComCheck")->isActive());
}

TEST_F(MouseDesk, OnePressIsOneBend) {
  OpenEmptyPage();
  MousePress(1000, 1600);
  MousePress(17000, 1600);
  EXPECT_THAT(Panel(panel::Instruction), ::testing::StartsWith("Press where")) << "for a newcomer";
  MouseDown(1400, 2000);
  for (int i = 0; i < 20; ++i) MouseTo(1400 + 50 * i, 2000, Qt::LeftButton);
  MouseUp(2400, 2000);
  EXPECT_EQ(LastPoint(), 0) << "a held button draws nothing";
  EXPECT_EQ(Panel(panel::Instruction), "");
  EXPECT_EQ(Digitized().Line.Point(0).X, 1400);
  MousePress(2600, 2100);
  Mouse(QEvent::MouseButtonDblClick, Seen(2600, 2100), Qt::LeftButton, Qt::LeftButton);
  Mouse(QEvent::MouseButtonRelease, Seen(2600, 2100), Qt::LeftButton, Qt::NoButton);
  EXPECT_EQ(LastPoint(), 1) << "nor does a double click draw a second point on the first";

  EXPECT_TRUE(Part("frmToolBox").isVisible());
  EXPECT_FALSE(Graph().geometry().intersects(
      QRect(Part("frmToolBox").mapTo(&Window(), QPoint()), Part("frmToolBox").size())));
  MousePress(3000, 2000, Qt::RightButton);
  EXPECT_FALSE(Part("frmToolBox").isVisible());
  MousePress(3000, 2000, Qt::RightButton);
  EXPECT_TRUE(Part("frmToolBox").isVisible());
  EXPECT_EQ(LastPoint(), 1);
}

TEST_F(MouseDesk, KeysMoveTheCursorAndPress) {
  OpenEmptyPage();
  MousePress(1000, 1600);
  MousePress(17000, 1600);
  MouseTo(1400, 2000);
  Key(Qt::Key_Right);
  const double tenth = type_->Extents.TabletWidthUnits / type_->Extents.TabletWidthMm / 10;
  EXPECT_NEAR(X(), 1400 + tenth, 0.01);
  Key(Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_NEAR(Y(), 2000 + 10 * tenth, 0.01);
  const QPointF rests = Seen(1400, 2000) + QPointF(1, 1);
  Mouse(QEvent::MouseMove, rests, Qt::NoButton, Qt::NoButton);
  EXPECT_NEAR(X(), 1400 + tenth, 0.01) << "a trembling hand does not take it back";
  Key(Qt::Key_Return);
  EXPECT_EQ(LastPoint(), 0);
  EXPECT_EQ(Digitized().Line.Point(0).X, X());
  for (int i = 0; i < 5; ++i) Key(Qt::Key_Right, Qt::ShiftModifier);
  Key(Qt::Key_Enter);
  EXPECT_EQ(LastPoint(), 1);

  // A lasso by keys: Return begins it and Return ends it.
  Machine().RunTool(tool::SegmentComment);
  for (int i = 0; i < 2; ++i) Key(Qt::Key_Up, Qt::ShiftModifier);
  for (int i = 0; i < 2; ++i) Key(Qt::Key_Right, Qt::ShiftModifier);
  Key(Qt::Key_Return);
  EXPECT_TRUE(Machine().LassoIsOpen());
  for (int i = 0; i < 4; ++i) Key(Qt::Key_Left, Qt::ShiftModifier);
  for (int i = 0; i < 4; ++i) Key(Qt::Key_Down, Qt::ShiftModifier);
  Key(Qt::Key_Return);
  AddComment("By keys");
  EXPECT_EQ(Digitized().Line.Point(1).Comment, "By keys");
}

TEST_F(MouseDesk, WheelZoomsAndMiddleButtonAndSpacePan) {
  OpenEmptyPage();
  const QPointF at(300, 200);
  const auto under = [&](QPointF place) {
    const DeskLayout& layout = Machine().Layout;
    return QPointF(layout.TabletX(place.x() * UnitsPerPixel), layout.TabletY(place.y() * UnitsPerPixel));
  };
  const QPointF before = under(at);
  for (int i = 0; i < 6; ++i) {
    QWheelEvent wheel(at, Graph().mapToGlobal(at), {}, {0, 120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&Graph(), &wheel);
  }
  EXPECT_TRUE(Machine().Layout.Zoomed);
  EXPECT_NEAR(under(at).x(), before.x(), 0.1);
  EXPECT_EQ(Machine().Layout.ScaleX, Machine().Layout.ScaleY);

  const QPointF to(340, 170);
  const auto pan = [&](Qt::MouseButton button) {
    const QPointF held = under(at);
    Mouse(QEvent::MouseButtonPress, at, button, button);
    Mouse(QEvent::MouseMove, to, Qt::NoButton, button);
    Mouse(QEvent::MouseButtonRelease, to, button, Qt::NoButton);
    EXPECT_NEAR(under(to).x(), held.x(), 0.1);
    EXPECT_NEAR(under(to).y(), held.y(), 0.1);
  };
  pan(Qt::MiddleButton);
  QTest::keyPress(&Window(), Qt::Key_Space);
  pan(Qt::LeftButton);
  QTest::keyRelease(&Window(), Qt::Key_Space);
  EXPECT_EQ(State().Action, action::PageLeftCorner) << "nothing was pressed";
  EXPECT_EQ(Graph().cursor().shape(), Qt::CrossCursor);
}

}  // namespace
}  // namespace hyetex
