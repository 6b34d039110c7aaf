// The shell's menus, and the desk that puts the windows into it.
#include <QAction>
#include <QLabel>
#include <QMenuBar>
#include <QSignalSpy>

#include "app/app_desk.h"
#include "app/start_words.h"
#include "digitizing/tools.h"
#include "paths.h"
#include "staging/lists/lists.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

std::string Asking(int tool) { return "tool " + std::to_string(tool) + " "; }

class Commands : public SessionCommands {
 public:
  std::string Asked;
  bool Points = false, Mouse = false;

  void NewFile() override { Asked += "new "; }
  void SaveFile() override { Asked += "save "; }
  void RunTool(int tool) override { Asked += Asking(tool); }
  void AutoZoom() override { Asked += "autozoom "; }
  void ShowBoard() override { Asked += "board "; }
  void SetPageAgain() override { Asked += "page "; }
  void PointsToggled() override { Asked += "points "; }
  void Undo() override { Asked += "undo "; }
  void Redo() override { Asked += "redo "; }
  bool HasPoints() const override { return Points; }
  bool HasMouse() const override { return Mouse; }
  void ToggleMagnifier() override { Asked += "magnifier "; }
  void MagnifyMore() override { Asked += "more "; }
  void ToggleOverlay() override { Asked += "overlay "; }
  void ToggleCorrecting() override { Asked += "correcting "; }
  void InsertPoint() override { Asked += "insert "; }
  void TraceScan() override { Asked += "trace "; }
};

TEST(Shell, HasItsMenusInOrder) {
  mdiHyetex shell;
  std::string tree;
  for (const QAction* top : shell.menuBar()->actions()) {
    tree += (top->menu() ? top->menu()->objectName() : top->objectName()).toStdString() + " " +
            Caption(top->text()) + "\n";
    if (!top->menu()) continue;
    for (const QAction* item : top->menu()->actions())
      tree += "  " + item->objectName().toStdString() + " " + Caption(item->text()) + "\n";
  }
  EXPECT_EQ(tree,
            "mnuFile File\n  mnuNew New Digitation\n  mnuSave Save Digitation\n  mnuExit Exit\n"
            "mnuView View\n  mnuToolBox ToolBox\n  mnuPoints Digitation Points\n  mnuAutoZoom Auto Zoom\n"
            "  mnuMagnifier Magnifier\n  mnuMagnify Magnify More\n  mnuOverlay Hours and Depths\n"
            "mnuDEf Definitions\n  mnuParameter Reset Digitation's Parameter\n  mnuAngle Page Angle\n"
            "  mnuVertical Vertical Scale\n  mnuHorizontal Horizontal Scale\n"
            "  mnuPage Set the Page Again\n"
            "  mnuDefaults Program Defaults...\n"
            "mnuTools Edit\n  mnuUndo Undo\n  mnuRedo Redo\n  mnuErase Erase Last Point\n  mnuSegment New "
            "Segment\n  mnuLevel Level a Point\n"
            "  mnuAlpha Toggle Alpha Sign\n  mnuGap Toggle Data Gap\n  mnuComment Add a Comment\n"
            "  mnuRecovered Toggle Recovered Sign\n  mnuAppend Attach Additional Strip Chart\n"
            "  mnuCorrect Correct Points\n  mnuInsert Insert a Point\n  mnuTrace Trace This Scan\n"
            "mnuFix Syncronize Stations Lists\n");
  EXPECT_EQ(shell.Popup().actions().size(), 3);
}

TEST(Shell, ShowsTheSessionsMenusOnlyWhileDigitizing) {
  mdiHyetex shell;
  Commands commands;
  const auto shown = [&] {
    std::string names;
    for (const QAction* top : shell.menuBar()->actions())
      if (top->menu() && top->isVisible()) names += top->menu()->objectName().toStdString() + " ";
    return names;
  };
  EXPECT_EQ(shown(), "mnuFile ");
  EXPECT_FALSE(shell.findChild<QAction*>("mnuSave")->isEnabled());
  shell.Digitizing(commands);
  EXPECT_EQ(shown(), "mnuFile mnuView mnuDEf mnuTools ");
  EXPECT_TRUE(shell.findChild<QAction*>("mnuNew")->isEnabled());
  EXPECT_FALSE(shell.findChild<QAction*>("mnuMagnifier")->isVisible()) << "a tablet has no use for it";
  commands.Mouse = true;
  shell.Digitizing(commands);
  EXPECT_TRUE(shell.findChild<QAction*>("mnuMagnifier")->isVisible());
  shell.NotDigitizing();
  EXPECT_EQ(shown(), "mnuFile ");
  shell.findChild<QAction*>("mnuErase")->trigger();  // by a macro or a screen reader
  EXPECT_EQ(commands.Asked, "");
}

TEST(Shell, RunsTheToolOfEachEntry) {
  mdiHyetex shell;
  Commands commands;
  shell.Digitizing(commands);
  const auto choose = [&](std::initializer_list<const char*> items) {
    commands.Asked.clear();
    for (const char* item : items) shell.findChild<QAction*>(item)->trigger();
    return commands.Asked;
  };
  EXPECT_EQ(choose({"mnuSegment", "mnuAppend", "mnuAngle"}), "") << "there is no point yet";
  commands.Points = true;
  EXPECT_EQ(choose({"mnuSegment", "mnuAppend", "mnuAlpha", "mnuComment"}),
            Asking(tool::NewSegment) + Asking(tool::AttachPaper) + Asking(tool::Alpha) +
                Asking(tool::SegmentComment));
  EXPECT_EQ(choose({"mnuErase", "mnuGap", "mnuLevel", "mnuRecovered"}),
            Asking(tool::Erase) + Asking(tool::Gap) + Asking(tool::Level) + Asking(tool::Recovered));
  EXPECT_EQ(choose({"mnuSave", "mnuNew", "mnuAutoZoom", "mnuToolBox"}), "save new autozoom board ");
  EXPECT_FALSE(shell.PointsAreShown());
  EXPECT_EQ(choose({"mnuPoints"}), "points ");
  EXPECT_TRUE(shell.PointsAreShown());
}

TEST(Shell, TakesTheKeysOfThePlatform) {
  mdiHyetex shell;
  Commands commands;
  QSignalSpy help(&shell, &mdiHyetex::HelpChosen), exit(&shell, &mdiHyetex::ExitChosen);
  shell.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&shell));
  QTest::keyClick(&shell, Qt::Key_Delete);
  EXPECT_EQ(commands.Asked, "");
  shell.Digitizing(commands);
  QTest::keyClick(&shell, Qt::Key_Delete);
  QTest::keyClick(&shell, Qt::Key_S, Qt::ControlModifier);
  QTest::keyClick(&shell, Qt::Key_N, Qt::ControlModifier);
  EXPECT_EQ(commands.Asked, Asking(tool::Erase) + "save new ");
  QTest::keyClick(&shell, Qt::Key_F1);
  EXPECT_EQ(help.count(), 1);
  QTest::keyClick(&shell, Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(exit.count(), 1);
}

TEST(Shell, HasRoomForTheLongestInstruction) {
  mdiHyetex shell;
  shell.show();
  const QSize smallest = shell.minimumSizeHint();
  const std::string longest(GetToolText(tool::SegmentComment, false));
  shell.ShowPanel(panel::Instruction, longest);
  shell.ShowPanel(panel::Depth, "53.14 cm");
  EXPECT_EQ(shell.minimumSizeHint(), smallest) << "a long instruction widens the frame";
  shell.resize(shell.minimumSize());
  const auto& label = Find<QLabel>(shell, "sbrLoc4");
  EXPECT_GE(label.width(), label.fontMetrics().horizontalAdvance(label.text()))
      << "the instruction is clipped";
}

// ---- The desk

class ProgramDesk : public FolderTest {
 protected:
  void SetUp() override {
    std::filesystem::copy(test::Demo("program"), folder_.Path(), std::filesystem::copy_options::recursive);
    auto lists = ReadLists(folder_.Path());
    ASSERT_TRUE(lists);
    lists->Users[0].Password.clear();
    ASSERT_TRUE(SaveLists(folder_.Path(), *lists));
  }
  void Start(std::optional<int> task = {}) {
    desk_ = std::make_unique<AppDesk>(StartWords{.Folder = folder_.Path(), .Task = task, .Port = "/dev/null"},
                                      dialogs_);
    desk_->ShellSize = QSize(1280, 900);
    desk_->Start();
    Click(*desk_->Login(), "cmdOK");
    ASSERT_NE(desk_->ShellWindow(), nullptr);
  }

  std::unique_ptr<AppDesk> desk_;
};

TEST_F(ProgramDesk, OpensTheMainMenuAfterTheLogin) {
  std::filesystem::remove_all(folder_ / "Data");
  Start();
  EXPECT_NE(desk_->Window(WindowId::MainMenu), nullptr);
  EXPECT_TRUE(desk_->Flags.IsOpen(WindowId::MainMenu));
  EXPECT_TRUE(std::filesystem::is_directory(folder_ / "Data"));
  EXPECT_TRUE(WaitFor([&] { return desk_->Login() == nullptr; }));

  // There is nothing behind which it could go.
  desk_->Window(WindowId::MainMenu)->parentWidget()->close();
  EXPECT_TRUE(WaitFor([&] {
    QWidget* menu = desk_->Window(WindowId::MainMenu);
    return menu != nullptr && menu->isVisible();
  }));
}

TEST_F(ProgramDesk, SaysWhyAStagedChartCannotBeDigitized) {
  Start(99);
  EXPECT_NE(desk_->Window(WindowId::MainMenu), nullptr);
  Start(3);
  EXPECT_NE(desk_->Window(WindowId::MainMenu), nullptr);
  EXPECT_EQ(
      dialogs_.Boxes,
      (std::vector{
          Warning("Hyetex", "There is no chart 99 in the staging area; it holds 6"),
          Warning("Hyetex", "The chart is marked as extremely defective (CODE213): it is not digitized")}));
}

TEST_F(ProgramDesk, HandsTheSystemNothingButAPageForHelp) {
  Start();
  Remember("HelpSite", "file:///tmp");
  dialogs_.Answers = {BoxAnswer::Ok};
  Click(*desk_->Window(WindowId::MainMenu), "cmdHelp");
  ASSERT_EQ(dialogs_.Boxes.size(), 2U);
  EXPECT_EQ(dialogs_.Boxes[1].Text,
            "This is no address of a page: file:///tmp/hy/documentation/hyetex_instructions_part1.htm");
}

TEST(CommandLine, SaysWhichWordIsOff) {
  const auto read = [](std::vector<std::string> words) { return ReadStartWords(words); };
  EXPECT_EQ(read({"--task", "2000", "--tablet", "4", "--port", "COM3"})->Task, 2000);
  using Words = std::vector<std::string>;
  for (const Words& wrong : std::vector<Words>{
           {"--tsk", "1"}, {"--task"}, {"--task", "-1"}, {"--task", "1x"}, {"--tablet", "5"}, {"extra"}})
    EXPECT_FALSE(read(wrong)) << wrong[0];
}

}  // namespace
}  // namespace hyetex
