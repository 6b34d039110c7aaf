// The digitizing window at work: a tablet on its line, the mouse, the menus.
#include <signal.h>
#include <sys/resource.h>

#include <QMdiSubWindow>

#include "core/files.h"
#include "paths.h"
#include "windows/desk_fixture.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

// ---- Whole sessions

class WholeSession : public DeskTest {
 protected:
  using Tools = std::function<void(int tool)>;

  // Every tool of the board once.
  void Trace(const Tools& run) {
    Calibrate();
    Press(700, 1000);
    Press(1000, 1700);
    run(tool::Alpha);
    Press(1010, 900);
    run(tool::Gap);
    Press(1500, 1000);
    AddComment("Clock malfunction");
    run(tool::Level);
    Press(1600, 1300);
    run(tool::Recovered);
    Press(2000, 1350);
    AddComment("");
    run(tool::NewSegment);
    Press(2000, 1000);
    Press(2600, 1200);
    run(tool::Erase);
    run(tool::SegmentComment);
    Drag(900, 1600, 1100, 1800);
    AddComment("Ink blot");
    run(tool::AttachPaper);
    Press(500, 3000);
    Press(8000, 3010);
    Press(600, 3100);
    run(tool::Zoom);
    Drag(300, 500, 4000, 4500);
    EXPECT_TRUE(Machine().Layout.Zoomed);
    Press(1200, 3350);
    run(tool::Zoom);
    EXPECT_FALSE(Machine().Layout.Zoomed);
    Press(1500, 3400);
    run(tool::GeneralComment);
    AddComment("Rain began early");
  }

  std::string SavedChart() {
    const std::string file = folder_ / "NM-Hill Farm-01-19980305-0700.dat";
    Click(*desk_->Window(WindowId::Save), "cmdSave");
    EXPECT_TRUE(WaitFor([&] { return !IsOpen(); }));
    EXPECT_NE(desk_->Window(WindowId::MainMenu), nullptr);
    EXPECT_EQ(Panel(panel::Depth) + Panel(panel::Time) + Panel(panel::Instruction), "");
    const std::string chart = ReadFile(file);
    std::filesystem::remove(file);
    return chart;
  }
};

TEST_F(WholeSession, TabletAndMouseMakeTheSameChartFile) {
  Open();
  Trace([&](int tool) { PressSquare(tool); });
  EXPECT_EQ(LastPoint(), 9);
  PressSquare(tool::SaveFile);
  const std::string byTablet = SavedChart();
  EXPECT_NE(byTablet.find("CODE205 + Clock malfunction"), std::string::npos);
  EXPECT_NE(byTablet.find("Rain began early"), std::string::npos);
  for (const auto& entry : std::filesystem::directory_iterator(folder_.Path()))
    EXPECT_THAT(entry.path().filename().string(), testing::Not(testing::StartsWith("Journal.txt")));

  Open();
  Trace([&](int tool) { ClickSquare(tool); });
  ClickSquare(tool::SaveFile);
  EXPECT_EQ(SavedChart(), byTablet);
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

TEST_F(WholeSession, RecordedStreamsOfAllTabletsMakeTheirCharts) {
  for (int tablet = 0; tablet < TabletTypeCount; ++tablet) {
    Remember("frmHyetex-ToolBox", "0");  // streams press where a new installation has its board
    Open(0, tablet);
    const std::string number = std::to_string(tablet);
    const auto stream = QByteArray::fromStdString(ReadFile(test::Demo("streams/siphon-" + number + ".bin")));
    for (qsizetype at = 0; at < stream.size(); at += 500) Send(stream.mid(at, 500));
    const std::string traced = ChartText();
    EXPECT_GT(LastPoint(), 50);

    Session again(type_->Extents, Digitized().Line.Scales().ChartType, Digitized().Chart);
    SilentView nothing;
    ActionMachine machine(again, *type_, nothing);
    ASSERT_TRUE(Replay(ReadJournal(ReadFile(test::Demo("journals/siphon-" + number + ".txt"))), machine));
    EXPECT_EQ(traced, MakeChartText(again, {"Core", "Agency", "Station", "Code", "User"}, "")->Text)
        << tablet;
    dialogs_.Answers = {BoxAnswer::Yes};
    Choose("mnuNew");
    EXPECT_TRUE(WaitFor([&] { return !IsOpen(); }));
  }
}

// ---- What is seen

TEST_F(DeskTest, OpensWaitingForThePage) {
  Open();
  EXPECT_EQ(Title(), "Setting the page angle");
  EXPECT_EQ(Panel(panel::Instruction), "Click the bottom left point of the page");
  auto& graph = Part<picGraph>("picGraph");
  EXPECT_EQ(graph.Background(), LightBlue);
  EXPECT_EQ(graph.height(), 800);
  EXPECT_FALSE(Part("frmToolBox").isVisible());
  Press(500, 800);
  EXPECT_EQ(graph.Background(), LightOrange);
  Press(8500, 830);
  EXPECT_EQ(graph.Background(), LightGreen);
  EXPECT_EQ(Title(), "HYETEX 88");
  EXPECT_TRUE(Part("frmToolBox").isVisible());
  EXPECT_TRUE(Part("shpToolBox").isVisible());
  EXPECT_EQ(desk_->ShellWindow()->findChild<QAction*>("mnuAngle")->text().toStdString(), "Page Angle  0.2");
}

TEST_F(DeskTest, CursorMovesNeverDrawTheTrace) {
  OpenAndCalibrate();
  Press(700, 1000);
  auto& graph = Part<picGraph>("picGraph");
  (void)graph.grab();
  const int before = graph.Drawings();
  for (int i = 0; i < 100; ++i) {
    Report(700 + 80 * i, 1000 + 40 * i);
    graph.repaint();
  }
  EXPECT_EQ(graph.Drawings(), before);
  auto& vertical = Part<Shape>("linVer");
  Report(4572, 1000, type_->ToolBoxButton);
  EXPECT_EQ(vertical.x(), graph.width() / 2);
  EXPECT_EQ(vertical.Colour(), QColor(0, 255, 0));
  Report(4572, 1000);
  EXPECT_EQ(vertical.Colour(), QColor(Qt::black));
  Press(900, 1100);
  graph.repaint();
  EXPECT_EQ(graph.Drawings(), before + 1);
  EXPECT_EQ(Panel(panel::Depth), "0.71 cm");
}

TEST_F(DeskTest, BoardAnswersTabletAndMouse) {
  OpenAndCalibrate();
  auto& cursor = Part("picCur");
  auto& gap = Square(tool::Gap);
  const auto [x, y] = OnSquare(tool::Gap);
  Report(x, y);
  EXPECT_TRUE(cursor.isVisible());
  EXPECT_FALSE(Part("linHor").isVisible());
  EXPECT_TRUE(gap.IsHighlighted());
  EXPECT_TRUE(gap.geometry().contains(cursor.geometry().center()));
  EXPECT_EQ(Panel(panel::Instruction), "Skip data gap");
  EXPECT_EQ(gap.toolTip().toStdString(), "Skip data gap");
  Press(x, y);
  EXPECT_EQ(Title(), "Data Gap");
  EXPECT_EQ(Part("shpColor").geometry(), gap.geometry());
  QTest::keyClick(&Window(), Qt::Key_Escape);
  EXPECT_FALSE(Part("shpColor").isVisible());
  EXPECT_EQ(Title(), "HYETEX 88");
  ClickSquare(tool::Level);
  EXPECT_EQ(Panel(panel::Instruction),
            "The follwing point would be considered in the same height as the first one");
  ClickSquare(tool::Level);
  EXPECT_EQ(State().Action, action::Drawing);

  // The mouse tells a square's text too, and leaves no trace of it.
  auto& level = Square(tool::Level);
  QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), QPointF(5, 5));
  QCoreApplication::sendEvent(&level, &enter);
  EXPECT_EQ(Panel(panel::Instruction), "Level next point to the depth of the previous point");
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(&level, &leave);
  EXPECT_EQ(Panel(panel::Instruction), "");

  PressSquare(tool::CloseBoard);
  EXPECT_FALSE(Part("frmToolBox").isVisible());
  Choose("mnuToolBox");
  EXPECT_TRUE(Part("frmToolBox").isVisible());
}

TEST_F(DeskTest, BoardIsDraggedAndFoundAgain) {
  OpenAndCalibrate();
  auto& board = Part("frmToolBox");
  const QPoint first = board.pos();
  const auto [x, y] = OnSquare(tool::MoveBoard);
  Drag(x, y, x - 200, y - 200);
  EXPECT_NEAR(board.x(), first.x() - 26, 2);
  EXPECT_NEAR(board.y(), first.y() + 26, 2);

  auto& square = Square(tool::MoveBoard);
  QTest::mousePress(&square, Qt::LeftButton, {}, {10, 10});
  const QPoint before = board.pos(), grip = square.mapToGlobal(QPoint(10, 10));
  QMouseEvent move(QEvent::MouseMove, QPointF(10, 10), grip - QPointF(300, -50), Qt::NoButton, Qt::LeftButton,
                   {});
  QCoreApplication::sendEvent(&square, &move);
  QTest::mouseRelease(&square, Qt::LeftButton, {}, {10, 10});
  const QPoint last = board.pos();
  EXPECT_EQ(last, before + QPoint(-300, 50));
  for (const QPoint by : {QPoint(-5000, -5000), QPoint(5000, 5000)}) {
    emit Part<frmToolBox>("frmToolBox").Dragged(by);
    EXPECT_TRUE(Part("picGraph").rect().contains(board.geometry())) << by.x();
  }
  emit Part<frmToolBox>("frmToolBox").Dragged(last - board.pos());

  dialogs_.Answers = {BoxAnswer::Yes};
  Choose("mnuNew");
  ASSERT_TRUE(WaitFor([&] { return !IsOpen(); }));
  OpenAndCalibrate();
  EXPECT_EQ(Part("frmToolBox").pos(), last);
}

TEST_F(DeskTest, ZoomsByWheelKeysAndMenu) {
  OpenAndCalibrate();
  Press(2000, 1200);
  auto& zoom = Square(tool::Zoom);
  const auto wheel = [&](int angle) {
    auto& graph = Part("picGraph");
    const QPointF at(300, 500);
    QWheelEvent event(at, graph.mapToGlobal(at), {}, {0, angle}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&graph, &event);
  };
  wheel(240);
  EXPECT_TRUE(Machine().Layout.Zoomed);
  EXPECT_EQ(zoom.toolTip().toStdString(), "Zoom Out - return to normal display");
  Press(2100, 1300);
  EXPECT_EQ(Digitized().Line.Point(1).X, 2100) << "a point is where the tablet says";
  wheel(-600);
  EXPECT_FALSE(Machine().Layout.Zoomed);
  EXPECT_EQ(zoom.toolTip().toStdString(), "Zoom on a selected area");

  QTest::keyClick(&Window(), Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_TRUE(Machine().Layout.Zoomed);
  QTest::keyClick(&Window(), Qt::Key_Minus, Qt::ControlModifier);
  EXPECT_FALSE(Machine().Layout.Zoomed);
  Choose("mnuAutoZoom");
  EXPECT_EQ(Machine().Layout.ScaleX, Machine().Layout.ScaleY);
  const float scale = Machine().Layout.ScaleX;
  ClickSquare(tool::Shrink);
  EXPECT_NEAR(Machine().Layout.ScaleX, 0.9 * scale, 0.01 * scale) << "the same part stays in view";
  ClickSquare(tool::Zoom);
  EXPECT_FALSE(Machine().Layout.Zoomed);
}

TEST_F(DeskTest, KeepsTheTabletsProportions) {
  OpenAndCalibrate();
  auto& graph = Part("picGraph");
  QWidget* frame = Window().parentWidget();
  const double ratio = 9145.0 / 6100;
  const auto atRest = [&](int height) {
    return WaitFor([&] {
      return std::abs(graph.height() - height) <= 1 &&
             std::abs(graph.width() - ratio * graph.height()) <= 1.5 && graph.size() == Window().size();
    });
  };
  EXPECT_TRUE(atRest(800));
  ClickSquare(tool::Shrink);
  ClickSquare(tool::Grow);
  EXPECT_TRUE(atRest(792)) << graph.height();
  frame->resize(frame->width() - 300, frame->height());
  EXPECT_TRUE(atRest(qRound((792 * ratio - 300) / ratio))) << graph.height();
  frame->showMaximized();
  EXPECT_TRUE(WaitFor([&] { return !frame->isMaximized(); }));
  for (int i = 0; i < 20; ++i) ClickSquare(tool::Shrink);
  EXPECT_TRUE(graph.rect().contains(Part("frmToolBox").geometry())) << "the board can always be reached";
}

// ---- Boxes and other windows

TEST_F(DeskTest, ClosingAsksAboutWhatIsNotSaved) {
  OpenAndCalibrate();
  Press(700, 1000);
  dialogs_.Answers = {BoxAnswer::No, BoxAnswer::No, BoxAnswer::Yes};
  PressSquare(tool::NewFile);
  EXPECT_TRUE(WaitFor([&] { return dialogs_.Boxes.size() == 1; }));
  Window().parentWidget()->close();
  ASSERT_TRUE(IsOpen());
  Press(900, 1100);
  EXPECT_EQ(LastPoint(), 1);
  Window().parentWidget()->close();
  EXPECT_THAT(dialogs_.Boxes, testing::ElementsAre(CloseQuestion, CloseQuestion, CloseQuestion));
  EXPECT_FALSE(IsOpen());
  EXPECT_TRUE(WaitFor([&] { return desk_->Window(WindowId::MainMenu) != nullptr; }));
  EXPECT_FALSE(FileExists(folder_ / "Journal.txt"));
  EXPECT_THAT(Aside(), testing::HasSubstr("press 700 1000\n"));
  EXPECT_EQ(Remembered("frmHyetex-Height"), "12000");
  EXPECT_NE(Remembered("frmHyetex-Top"), "");
}

const ShownBox LeaveQuestion{
    "Leaving the program",
    "The current digitization has not been saved. Do you want to keep it, and go on with it when the program "
    "runs again ?\n\nNo gives it up. Cancel goes back to it.",
    BoxButtons::YesNoCancel, BoxIcon::Question};

TEST_F(DeskTest, ExitLeavesFromEveryStateAndKeepsTheJournal) {
  using Way = std::function<void()>;
  const Way menu = [&] { Choose("mnuExit"); };
  const Way frame = [&] { desk_->ShellWindow()->close(); };
  for (const auto& [what, before, leave] :
       {std::tuple{"tracing", Way([] {}), menu}, std::tuple{"tracing, by the frame", Way([] {}), frame},
        std::tuple{"saving", Way([&] { Choose("mnuSave"); }), menu},
        std::tuple{"a comment", Way([&] { ClickSquare(tool::GeneralComment); }), frame}}) {
    SCOPED_TRACE(what);
    dialogs_.Boxes.clear();
    OpenAndCalibrate();
    Press(700, 1000);
    before();
    dialogs_.Answers = {BoxAnswer::Cancel, BoxAnswer::Yes};
    leave();
    ASSERT_TRUE(IsOpen());
    EXPECT_TRUE(Window().isEnabled()) << "goes on";
    Press(900, 1100);
    EXPECT_EQ(LastPoint(), 1);
    leave();
    EXPECT_FALSE(IsOpen());
    EXPECT_THAT(dialogs_.Boxes, testing::ElementsAre(LeaveQuestion, LeaveQuestion));
    EXPECT_THAT(ReadFile(folder_ / "Journal.txt"), testing::HasSubstr("press 900 1100\n"));
    BreakDown();
    std::filesystem::remove(folder_ / "Journal.txt");
  }
  dialogs_.Boxes.clear();
  OpenAndCalibrate();
  Press(700, 1000);
  ClickSquare(tool::GeneralComment);
  Find<QLineEdit>(*desk_->Window(WindowId::Comment), "txtComment").setText("Ink ran out");
  dialogs_.Answers = {BoxAnswer::Yes, BoxAnswer::No};
  menu();
  EXPECT_EQ(dialogs_.Boxes[0].Text, "The comment has not been added. Do you want to add it ?");
  EXPECT_FALSE(FileExists(folder_ / "Journal.txt"));
  EXPECT_THAT(Aside(), testing::HasSubstr("|Ink ran out\n"));
}

TEST_F(DeskTest, UndoBringsBackAllPointsOfRedigitizeByItsKey) {
  OpenAndCalibrate();
  for (int i = 0; i < 5; ++i) Press(700 + 100 * i, 1000 + 50 * i);
  const auto& undo = *desk_->ShellWindow()->findChild<QAction*>("mnuUndo");
  const auto& redo = *desk_->ShellWindow()->findChild<QAction*>("mnuRedo");
  const auto press = [&](Qt::KeyboardModifiers keys) {
    QTest::keyClick(&Window(), Qt::Key_Z, keys);
    QCoreApplication::processEvents();
  };
  EXPECT_EQ(Caption(undo.text()), "Undo point");
  EXPECT_FALSE(redo.isEnabled());
  const std::string before = ChartText();
  dialogs_.Answers = {BoxAnswer::Yes};
  ClickSquare(tool::Redigitize);
  ASSERT_EQ(LastPoint(), -1);
  EXPECT_EQ(Caption(undo.text()), "Undo Redigitize");
  press(Qt::ControlModifier);
  EXPECT_EQ(ChartText(), before);
  EXPECT_TRUE(redo.isEnabled());
  press(Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(LastPoint(), -1);
  press(Qt::ControlModifier);
  EXPECT_EQ(LastPoint(), 4);
  desk_->ShellWindow()->findChild<QAction*>("mnuGap")->trigger();
  EXPECT_EQ(Caption(undo.text()), "Undo choice of tool");
  Press(1500, 1000);
  EXPECT_TRUE(Machine().CommentIsOpen());
  EXPECT_FALSE(undo.isEnabled());
  EXPECT_FALSE(redo.isEnabled());
}

TEST_F(DeskTest, RedigitizeAsksWhereverItIsChosen) {
  const ShownBox question{"Reditizing",
                          "Are you sure you want to delete the current digitization and begin a new one ?",
                          BoxButtons::NoUnlessYes, BoxIcon::None};
  OpenAndCalibrate();
  Press(700, 1000);
  dialogs_.Answers = {BoxAnswer::No, BoxAnswer::No, BoxAnswer::No, BoxAnswer::Yes};
  PressSquare(tool::Redigitize);
  ClickSquare(tool::Redigitize);
  Choose("mnuSave");
  Click(*desk_->Window(WindowId::Save), "cmdRedigitize");
  EXPECT_NE(desk_->Window(WindowId::Save), nullptr);
  EXPECT_EQ(LastPoint(), 0);
  EXPECT_THAT(ReadFile(folder_ / "Journal.txt"), testing::Not(testing::HasSubstr("tool 2\n")));
  Click(*desk_->Window(WindowId::Save), "cmdRedigitize");
  EXPECT_EQ(desk_->Window(WindowId::Save), nullptr);
  EXPECT_EQ(LastPoint(), -1);
  EXPECT_TRUE(Window().isEnabled());
  ClickSquare(tool::Redigitize);
  EXPECT_THAT(dialogs_.Boxes, testing::ElementsAre(question, question, question, question))
      << "nothing is asked about nothing";
}

TEST_F(DeskTest, OverwriteAnsweredWithCancelThrowsNothingAway) {
  const std::string file = folder_ / "NM-Hill Farm-01-19980305-0700.dat";
  WriteFile(file, "old");
  OpenAndCalibrate();
  Press(700, 1000);
  Press(900, 1100);
  Choose("mnuSave");
  dialogs_.Answers = {BoxAnswer::Cancel, BoxAnswer::No};
  Click(*desk_->Window(WindowId::Save), "cmdSave");
  ASSERT_TRUE(WaitFor([&] { return dialogs_.Boxes.size() == 2; }));
  const ShownBox overwrite{"Saving the digitation",
                           "There is an existing file by the name of NM-Hill Farm-01-19980305-0700.dat. "
                           "The programme will overwrite it.",
                           BoxButtons::CancelUnlessOk, BoxIcon::Warning};
  EXPECT_THAT(dialogs_.Boxes, testing::ElementsAre(overwrite, CloseQuestion));
  EXPECT_EQ(ReadFile(file), "old");
  ASSERT_TRUE(IsOpen());
  Press(1100, 1100);
  EXPECT_EQ(LastPoint(), 2);
}

TEST_F(DeskTest, PressesBeforeAnotherWindowAreThrownAwayAndTold) {
  OpenAndCalibrate();
  Press(700, 1000);
  Choose("mnuSave");
  auto* menu = desk_->ShellWindow()->findChild<QAction*>("mnuSave");
  EXPECT_TRUE(WaitFor([&] { return !menu->isEnabled(); }));
  EXPECT_FALSE(Window().isEnabled());
  Press(900, 1100);
  Send(Bytes(1234, 1100).left(4));  // a report that the window's closing cuts in two
  EXPECT_EQ(LastPoint(), 0);
  Window().parentWidget()->close();
  EXPECT_TRUE(IsOpen()) << "not while the save window waits for it";
  Click(*desk_->Window(WindowId::Save), "cmdCancel");
  EXPECT_TRUE(WaitFor([&] { return menu->isEnabled(); }));
  EXPECT_TRUE(Window().isEnabled());
  const auto lastTold = [&] { return dialogs_.Boxes.empty() ? "" : dialogs_.Boxes.back().Text; };
  EXPECT_TRUE(WaitFor([&] { return lastTold().starts_with("1 press of the tablet was lost"); }));
  Send(Bytes(1234, 1100, 0).mid(6) + Bytes(950, 1150, -1));
  EXPECT_EQ(State().CursorX, 950);
  Press(1000, 1200);
  EXPECT_EQ(LastPoint(), 1);
  EXPECT_EQ(Digitized().Line.Point(1).X, 1000);

  // A tool's window takes the rest of what the tablet has sent already.
  ClickSquare(tool::Gap);
  Send(Bytes(1500, 1200) + Bytes(1500, 1200, 0) + Bytes(1500, 1200) + Bytes(1600, 1300) +
       Bytes(1600, 1300, 0));
  Press(1600, 1300);
  EXPECT_EQ(LastPoint(), 2);
  AddComment("");
  EXPECT_TRUE(WaitFor([&] { return lastTold().starts_with("2 presses of the tablet were lost"); }));
  EXPECT_EQ(dialogs_.Boxes.size(), 2U);
  Press(1700, 1300);
  EXPECT_EQ(LastPoint(), 3);
}

// ---- Breakdowns

TEST_F(DeskTest, UnpluggedTabletIsToldOnceAndTheSessionGoesOn) {
  OpenAndCalibrate();
  Press(700, 1000);
  Send(Bytes(1234, 1100).left(7));
  tablet_.Unplug();
  ASSERT_TRUE(WaitFor([&] { return !dialogs_.Boxes.empty(); }));
  EXPECT_EQ(dialogs_.Boxes[0].Title, "HYETEX 88");
  EXPECT_EQ(dialogs_.Boxes[0].Icon, BoxIcon::Warning);
  EXPECT_NE(dialogs_.Boxes[0].Text.find("The session stays open, and goes on when the tablet is back."),
            std::string::npos);
  EXPECT_TRUE(IsOpen());
  auto* port = Window().findChild<SerialPort*>("mscDig");
  tablet_.PlugIn();
  ASSERT_TRUE(WaitFor([&] { return port->IsOpen(); }));
  Press(900, 1100);
  EXPECT_EQ(LastPoint(), 1);
  EXPECT_EQ(dialogs_.Boxes.size(), 1U);
}

TEST_F(DeskTest, TabletThatIsNotThereIsToldAndWaitedFor) {
  tablet_.Unplug();
  Open();
  ASSERT_TRUE(WaitFor([&] { return !dialogs_.Boxes.empty(); }));
  EXPECT_NE(dialogs_.Boxes[0].Text.find(tablet_.Link()), std::string::npos);
  tablet_.PlugIn();
  ASSERT_TRUE(WaitFor([&] { return Window().findChild<SerialPort*>("mscDig")->IsOpen(); }));
  Calibrate();
  EXPECT_EQ(Title(), "HYETEX 88");
}

TEST_F(DeskTest, UnfinishedChartIsOfferedAndGoesOn) {
  OpenAndCalibrate();
  Press(700, 1000);
  Choose("mnuGap");
  Press(1500, 1000);
  AddComment("Clock malfunction");
  const std::string before = ChartText();
  BreakDown();

  dialogs_.Answers = {BoxAnswer::Yes};
  Open();
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(
      dialogs_.Boxes[0],
      (ShownBox{
          "Unfinished digitization",
          "The digitization of the chart NM-Hill Farm-01 05/03/1998 07:00:00 was not saved when the last "
          "session ended. Its 4 presses have been kept. Do you want to go on with it?\n\nNo sets them aside "
          "and begins the chart anew. Cancel keeps them and closes this session.",
          BoxButtons::YesNoCancel, BoxIcon::Question}));
  EXPECT_EQ(ChartText(), before);
  EXPECT_EQ(Panel(panel::Depth), "0 cm");
  EXPECT_EQ(desk_->Window(WindowId::Comment), nullptr);
  EXPECT_TRUE(Window().isEnabled());
  EXPECT_TRUE(Part("frmToolBox").isVisible());
  Press(1700, 1200);
  BreakDown();
  const std::string journal = ReadFile(folder_ / "Journal.txt");
  dialogs_.Answers = {BoxAnswer::Cancel};
  Open();
  EXPECT_TRUE(WaitFor([&] { return !IsOpen(); }));
  EXPECT_EQ(ReadFile(folder_ / "Journal.txt"), journal) << "closing the box keeps everything";
  dialogs_.Answers = {BoxAnswer::No};
  Open();
  EXPECT_EQ(Aside(), journal);
  EXPECT_EQ(LastPoint(), -1);
  EXPECT_EQ(State().Action, action::PageLeftCorner);
}

TEST_F(DeskTest, AnotherChartsJournalIsGivenUpOnlyWhenToldSo) {
  OpenAndCalibrate();
  Press(700, 1000);
  BreakDown();
  const std::string journal = ReadFile(folder_ / "Journal.txt");
  dialogs_.Answers = {BoxAnswer::No};
  Open(1);
  EXPECT_TRUE(WaitFor([&] { return !IsOpen(); }));
  EXPECT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(ReadFile(folder_ / "Journal.txt"), journal);
  EXPECT_NE(desk_->Window(WindowId::MainMenu), nullptr);
  dialogs_.Answers = {BoxAnswer::Yes};
  Open(1);
  EXPECT_TRUE(IsOpen());
  EXPECT_NE(ReadFile(folder_ / "Journal.txt"), journal);
  EXPECT_EQ(Aside(), journal);
  EXPECT_EQ(dialogs_.Boxes[1].Title, "Unfinished digitization of another chart");
  EXPECT_EQ(dialogs_.Boxes[1].Buttons, BoxButtons::NoUnlessYes);
}

TEST_F(DeskTest, FullDiskIsToldOnceAndTheSessionGoesOn) {
  OpenAndCalibrate();
  rlimit room{};
  ::getrlimit(RLIMIT_FSIZE, &room);
  const auto old = ::signal(SIGXFSZ, SIG_IGN);
  const rlimit none{std::filesystem::file_size(folder_ / "Journal.txt"), room.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &none), 0);
  Press(900, 1100);
  Press(1000, 1100);
  EXPECT_TRUE(WaitFor([&] { return !dialogs_.Boxes.empty(); }));
  dialogs_.Answers = {BoxAnswer::No};
  Choose("mnuExit");
  ::setrlimit(RLIMIT_FSIZE, &room);
  ::signal(SIGXFSZ, old);
  ASSERT_EQ(dialogs_.Boxes.size(), 2U);
  EXPECT_EQ(dialogs_.Boxes[0].Icon, BoxIcon::Warning);
  EXPECT_EQ(dialogs_.Boxes[1], CloseQuestion) << "what is not on the disk cannot be kept";
  EXPECT_EQ(LastPoint(), 1);
}

}  // namespace
}  // namespace hyetex
