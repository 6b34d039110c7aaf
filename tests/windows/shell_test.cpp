// The shell's menus, and the desk that puts the windows into it.
#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QStatusBar>

#include "app/app_desk.h"
#include "app/start_words.h"
#include "digitizing/tools.h"
#include "staging/definitions.h"
#include "staging/lists.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

class Commands : public SessionCommands {
 public:
  std::vector<std::string> Asked;
  bool Points = false;

  void NewFile() override { Asked.push_back("new"); }
  void SaveFile() override { Asked.push_back("save"); }
  void RunTool(int tool) override { Asked.push_back("tool " + std::to_string(tool)); }
  void AutoZoom() override { Asked.push_back("autozoom"); }
  void ShowBoard() override { Asked.push_back("board"); }
  void PointsToggled() override { Asked.push_back("points"); }
  bool HasPoints() const override { return Points; }
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
            "mnuDEf Definitions\n  mnuParameter Reset Digitation's Parameter\n  mnuAngle Page Angle\n"
            "  mnuVertical Vertical Scale\n  mnuHorizontal Horizontal Scale\n"
            "mnuTools Edit\n  mnuErase Erase Last Point\n  mnuSegment New Segment\n  mnuLevel Level a Point\n"
            "  mnuAlpha Toggle Alpha Sign\n  mnuGap Toggle Data Gap\n  mnuComment Add a Comment\n"
            "  mnuRecovered Toggle Recovered Sign\n  mnuAppend Attach Additional Strip Chart\n"
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
  shell.NotDigitizing();
  EXPECT_EQ(shown(), "mnuFile ");
  shell.findChild<QAction*>("mnuErase")->trigger();  // by a macro or a screen reader
  EXPECT_TRUE(commands.Asked.empty());
}

TEST(Shell, RunsTheToolOfEachEntry) {
  mdiHyetex shell;
  Commands commands;
  shell.Digitizing(commands);
  const auto choose = [&](const char* name) {
    commands.Asked.clear();
    shell.findChild<QAction*>(name)->trigger();
    return commands.Asked.empty() ? std::string() : commands.Asked[0];
  };
  EXPECT_EQ(choose("mnuSegment"), "");
  EXPECT_EQ(choose("mnuAppend"), "");
  commands.Points = true;
  EXPECT_EQ(choose("mnuSegment"), "tool 8");
  EXPECT_EQ(choose("mnuAppend"), "tool 4");
  EXPECT_EQ(choose("mnuAlpha"), "tool 6");
  EXPECT_EQ(choose("mnuComment"), "tool 12");
  EXPECT_EQ(choose("mnuErase"), "tool 7");
  EXPECT_EQ(choose("mnuGap"), "tool 17");
  EXPECT_EQ(choose("mnuLevel"), "tool 16");
  EXPECT_EQ(choose("mnuRecovered"), "tool 3");
  EXPECT_EQ(choose("mnuSave"), "save");
  EXPECT_EQ(choose("mnuNew"), "new");
  EXPECT_EQ(choose("mnuAutoZoom"), "autozoom");
  EXPECT_EQ(choose("mnuToolBox"), "board");
  EXPECT_FALSE(shell.PointsAreShown());
  EXPECT_EQ(choose("mnuPoints"), "points");
  EXPECT_TRUE(shell.PointsAreShown());
  EXPECT_EQ(choose("mnuAngle"), "");
}

TEST(Shell, TakesTheKeysOfThePlatform) {
  mdiHyetex shell;
  Commands commands;
  QSignalSpy help(&shell, &mdiHyetex::HelpChosen), exit(&shell, &mdiHyetex::ExitChosen);
  shell.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&shell));
  QTest::keyClick(&shell, Qt::Key_Delete);
  EXPECT_TRUE(commands.Asked.empty());
  shell.Digitizing(commands);
  QTest::keyClick(&shell, Qt::Key_Delete);
  QTest::keyClick(&shell, Qt::Key_S, Qt::ControlModifier);
  QTest::keyClick(&shell, Qt::Key_N, Qt::ControlModifier);
  EXPECT_EQ(commands.Asked, (std::vector<std::string>{"tool 7", "save", "new"}));
  QTest::keyClick(&shell, Qt::Key_F1);
  EXPECT_EQ(help.count(), 1);
  QTest::keyClick(&shell, Qt::Key_Q, Qt::ControlModifier);
  EXPECT_EQ(exit.count(), 1);
}

TEST(Shell, ShowsWhatTheSessionSays) {
  mdiHyetex shell;
  shell.show();
  const QSize smallest = shell.minimumSizeHint();
  shell.ShowScales(
      {"Page Angle  0.5", "Horizontal Scale : 1 Hour = 16.1 mm ", "Vertical Scale : 1mm of water = 8 mm "});
  EXPECT_EQ(shell.findChild<QAction*>("mnuAngle")->text(), "Page Angle  0.5");
  EXPECT_EQ(shell.findChild<QAction*>("mnuVertical")->text(), "Vertical Scale : 1mm of water = 8 mm ");
  const std::string longest(GetToolText(tool::SegmentComment, false));
  shell.ShowPanel(panel::Instruction, longest);
  shell.ShowPanel(panel::Depth, "53.14 cm");
  EXPECT_EQ(shell.PanelText(panel::Instruction), longest);
  EXPECT_EQ(shell.minimumSizeHint(), smallest) << "a long instruction widens the frame";
  shell.resize(shell.minimumSize());
  const auto& label = Find<QLabel>(shell, "sbrLoc4");
  EXPECT_GE(label.width(), label.fontMetrics().horizontalAdvance(label.text()))
      << "the instruction is clipped";
}

// ---- The desk

class ProgramDesk : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::copy(HYETEX_DEMO "/program", folder_.Path(), std::filesystem::copy_options::recursive);
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
  void CloseFrame(WindowId id) { desk_->Window(id)->parentWidget()->close(); }

  TempFolder folder_;
  ScriptedDialogs dialogs_;
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
  CloseFrame(WindowId::MainMenu);
  EXPECT_TRUE(WaitFor([&] {
    QWidget* menu = desk_->Window(WindowId::MainMenu);
    return menu != nullptr && menu->isVisible();
  }));
}

TEST_F(ProgramDesk, ReturnsToTheMainMenuFromASession) {
  Start(0);
  ASSERT_NE(desk_->Window(WindowId::Digitizing), nullptr);
  EXPECT_EQ(desk_->Window(WindowId::MainMenu), nullptr);
  EXPECT_TRUE(desk_->Flags.IsOpen(WindowId::Digitizing));
  EXPECT_EQ(desk_->ShellWindow()->PanelText(panel::Instruction), "Click the bottom left point of the page");

  dialogs_.Answers = {BoxAnswer::No};
  CloseFrame(WindowId::Digitizing);
  ASSERT_NE(desk_->Window(WindowId::Digitizing), nullptr);
  dialogs_.Answers = {BoxAnswer::Yes};
  CloseFrame(WindowId::Digitizing);
  EXPECT_TRUE(WaitFor([&] { return desk_->Window(WindowId::MainMenu) != nullptr; }));
  EXPECT_EQ(desk_->Window(WindowId::Digitizing), nullptr);
  EXPECT_FALSE(desk_->Flags.IsOpen(WindowId::Digitizing));
}

TEST_F(ProgramDesk, KeepsASessionThatClosingTheFrameWouldLose) {
  Start(0);
  dialogs_.Answers = {BoxAnswer::No};
  desk_->ShellWindow()->close();
  EXPECT_TRUE(desk_->ShellWindow()->isVisible());
  EXPECT_NE(desk_->Window(WindowId::Digitizing), nullptr);
  EXPECT_TRUE(dialogs_.Answers.empty());
}

TEST_F(ProgramDesk, WaitsForTheSaveWindow) {
  Start(0);
  auto* digitizing = qobject_cast<frmHyetex*>(desk_->Window(WindowId::Digitizing));
  ASSERT_NE(digitizing, nullptr);
  desk_->ShellWindow()->findChild<QAction*>("mnuSave")->trigger();
  QWidget* save = desk_->Window(WindowId::Save);
  ASSERT_NE(save, nullptr);
  EXPECT_FALSE(digitizing->isEnabled());
  EXPECT_TRUE(WaitFor([&] { return !desk_->ShellWindow()->findChild<QAction*>("mnuSave")->isEnabled(); }));
  Click(*save, "cmdCancel");
  EXPECT_TRUE(WaitFor([&] { return desk_->Window(WindowId::Save) == nullptr; }));
  EXPECT_TRUE(digitizing->isEnabled());
  EXPECT_TRUE(WaitFor([&] { return desk_->ShellWindow()->findChild<QAction*>("mnuSave")->isEnabled(); }));
  EXPECT_EQ(desk_->Window(WindowId::MainMenu), nullptr);
}

TEST_F(ProgramDesk, SaysWhyAStagedChartCannotBeDigitized) {
  Start(99);
  EXPECT_NE(desk_->Window(WindowId::MainMenu), nullptr);
  Start(3);
  EXPECT_NE(desk_->Window(WindowId::MainMenu), nullptr);
  EXPECT_EQ(dialogs_.Boxes,
            (std::vector<ShownBox>{
                {"Hyetex", "There is no chart 99 in the staging area; it holds 4", BoxButtons::Ok,
                 BoxIcon::Warning},
                {"Hyetex", "The chart is marked as extremely defective (CODE213): it is not digitized",
                 BoxButtons::Ok, BoxIcon::Warning}}));
}

TEST_F(ProgramDesk, OffersHelpOnlyWithASite) {
  Start();
  const ShownBox question{
      "Asking for help",
      "In order to view the help you need to connected to the internet, otherwise use the manual.",
      BoxButtons::OkCancel, BoxIcon::None};
  dialogs_.Answers = {BoxAnswer::Cancel, BoxAnswer::Ok};
  Click(*desk_->Window(WindowId::MainMenu), "cmdHelp");
  Click(*desk_->Window(WindowId::MainMenu), "cmdHelp");
  ASSERT_EQ(dialogs_.Boxes.size(), 3U);
  EXPECT_EQ(dialogs_.Boxes[0], question);
  EXPECT_EQ(dialogs_.Boxes[2].Icon, BoxIcon::Warning);

  // Nothing but a page is handed to the system.
  ASSERT_TRUE(SetDefinition(folder_.Path(), "HelpSite", "file:///tmp"));
  dialogs_.Answers = {BoxAnswer::Ok};
  Click(*desk_->Window(WindowId::MainMenu), "cmdHelp");
  ASSERT_EQ(dialogs_.Boxes.size(), 5U);
  EXPECT_EQ(dialogs_.Boxes[4].Text,
            "This is no address of a page: file:///tmp/hy/documentation/hyetex_instructions_part1.htm");
}

TEST(CommandLine, SaysWhichWordIsOff) {
  const auto read = [](std::vector<std::string> words) { return ReadCommandLine(words); };
  EXPECT_EQ(read({"--task", "2000", "--tablet", "4", "--port", "COM3"})->Words.Task, 2000);
  for (const std::vector<std::string>& wrong : std::vector<std::vector<std::string>>{{"--tsk", "1"},
                                                                                     {"--task"},
                                                                                     {"--task", "-1"},
                                                                                     {"--task", "1x"},
                                                                                     {"--tablet", "5"},
                                                                                     {"extra"},
                                                                                     {"--folder", ""}})
    EXPECT_FALSE(read(wrong)) << wrong[0];
}

}  // namespace
}  // namespace hyetex
