// The staging area in the real program: its charts, the search for the tablet, and the road into a session
// and back.
#include <QContextMenuEvent>

#include <QTableWidget>
#include <QTreeWidget>

#include "core/dates.h"
#include "core/files.h"
#include "platform/date_box.h"
#include "staging/tasks/tasks.h"
#include "windows/desk_fixture.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

class StagingDesk : public DeskTest {
 protected:
  StagingDesk() {
    type_ = &TabletTypes()[1];
    Remember("SerialPort1", first_.Link().c_str());
    Remember("SerialPort2", tablet_.Link().c_str());
  }

  void OpenTasks() {
    desk_ = std::make_unique<AppDesk>(StartWords{folder_.Path()}, dialogs_);
    desk_->Start();
    Find<QLineEdit>(*desk_->Login(), "txtPassword").setText("demo");
    Click(*desk_->Login(), "cmdOK");
    Click(*desk_->Window(WindowId::MainMenu), "cmdTask");
    ASSERT_NE(desk_->Window(WindowId::Tasks), nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowActive(desk_->ShellWindow()));
    Hurry();
  }
  void Hurry() { Control<QTimer>("timComCheck").setInterval(60); }

  QWidget* Front() { return desk_->ShellWindow()->Area().currentSubWindow()->widget(); }
  QWidget& Tasks() { return *desk_->Window(WindowId::Tasks); }
  QWidget& Details() { return *desk_->Window(WindowId::TaskDef); }
  template <typename Object>
  Object& Control(const char* name) {
    auto* found = Tasks().findChild<Object*>(name);
    EXPECT_NE(found, nullptr) << name;
    return *found;
  }

  void Select(const char* node) {
    auto& tree = Control<QTreeWidget>("tvwStations");
    for (QTreeWidgetItemIterator item(&tree); *item != nullptr; ++item)
      if ((*item)->text(0) == node) return tree.setCurrentItem(*item);
    FAIL() << node;
  }
  QTableWidget& Grid() { return Control<QTableWidget>("fgdTasks"); }
  int Row() { return Grid().selectionModel()->hasSelection() ? Grid().currentRow() : -1; }
  std::string Cell(int row, int column) { return Grid().item(row, column)->text().toStdString(); }
  std::string Detection() { return Control<QLabel>("labDetect").text().toStdString(); }
  QColor DetectionColour() { return Control<QLabel>("labDetect").palette().color(QPalette::WindowText); }

  /// The cursor rests on the board of a tablet until the program says so.
  bool Detects(WiredTablet& tablet, const std::string& said) {
    return WaitFor([&] {
      tablet.Send(Bytes(4000, 3000));
      return Detection() == said;
    });
  }
  void Type(const char* box, const char* keys) {
    auto& into = Find(Details(), box);
    into.setFocus();
    QTest::keyClicks(&into, keys);
  }

  WiredTablet first_{folder_ / "com1"};  // tablet_ is on COM2
};

constexpr const char* HillFarm = "Hill Farm - NM-Hill Farm-01";

TEST_F(StagingDesk, LeadsFromTheLoginToTheChartFileAndTheNextChart) {
  OpenTasks();
  Select(HillFarm);
  Grid().selectRow(0);
  ASSERT_TRUE(Detects(tablet_, "Digitizer Detected On COM2"));
  Click(Tasks(), "cmdActivate");
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(desk_->ShellWindow()->windowTitle(), "Hyetex - NM-Hill Farm-01 05/03/1998 07:00:00");
  EXPECT_EQ(desk_->Window(WindowId::Tasks), nullptr);
  EXPECT_EQ(desk_->Window(WindowId::MainMenu), nullptr);
  EXPECT_EQ(Remembered("COMport") + " " + Remembered("frmTasks-Row") + " " + Remembered("frmTasks-Station"),
            "2 1 - NM-Hill Farm-01");
  Listen();
  Calibrate();
  Press(700, 1000);
  Press(900, 1100);
  Choose("mnuSave");
  const char* file = "NM-Hill Farm-01-19980305-0700.dat";
  EXPECT_EQ(Find<QLabel>(*desk_->Window(WindowId::Save), "labFile").text().toStdString(),
            std::string("Chart file: ") + file);
  Click(*desk_->Window(WindowId::Save), "cmdSave");
  ASSERT_TRUE(WaitFor([&] { return desk_->Window(WindowId::Tasks) != nullptr; }));
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(desk_->ShellWindow()->windowTitle(), "Hyetex");
  EXPECT_EQ(Grid().item(0, 0)->toolTip().toStdString(), std::string("Digitized: ") + file);
  EXPECT_FALSE(Grid().item(0, 0)->icon().isNull());
  EXPECT_TRUE(Grid().item(1, 0)->icon().isNull()) << "not digitized yet";
  EXPECT_EQ(Row(), 1) << "the next chart";
  EXPECT_EQ(Control<QGroupBox>("frmTask").title().toStdString(), HillFarm);
  EXPECT_TRUE(FileExists(folder_ / file));

  Hurry();
  EXPECT_TRUE(Detects(tablet_, "Digitizer Detected On COM2")) << "the session has let go of the port";
  Select("Mill Pond - NM-Mill Pond-01");
  EXPECT_EQ(Row(), -1) << "another station's row";
  Click(Tasks(), "cmdExit");
  EXPECT_NE(desk_->Window(WindowId::MainMenu), nullptr);
}

TEST_F(StagingDesk, FindsTheTabletOnEitherPortWhereverItIsPlugged) {
  OpenTasks();
  EXPECT_EQ(Detection(), "Digtizer Not Detcted");
  const QColor red = DetectionColour();
  EXPECT_GT(red.red(), red.blue());
  ASSERT_TRUE(Detects(tablet_, "Digitizer Detected On COM2"));
  EXPECT_GT(DetectionColour().blue(), DetectionColour().red());
  EXPECT_TRUE(Control<QAbstractButton>("optCom1").isChecked());
  EXPECT_FALSE(Control<QAbstractButton>("optCom3").isEnabled());

  tablet_.Unplug();
  ASSERT_TRUE(WaitFor([&] { return Detection() == "Digitizer Not Detected"; }));
  EXPECT_EQ(DetectionColour(), red);
  ASSERT_TRUE(Detects(first_, "Digitizer Detected On COM1")) << "a missing port holds nothing up";
  first_.Unplug();
  tablet_.PlugIn();
  ASSERT_TRUE(WaitFor([&] { return Detection() == "Digitizer Not Detected"; }));
  ASSERT_TRUE(Detects(tablet_, "Digitizer Detected On COM2"));

  Click(Tasks(), "optDig0");
  EXPECT_EQ(Detection(), "Digitizer Not Detected");
  (void)tablet_.Heard(3);
  Click(Tasks(), "optDig4");
  EXPECT_EQ(tablet_.Heard(6).right(6), "Fc@iza");
  Click(Tasks(), "cmdExit");
  EXPECT_EQ(Remembered("DigitizerType"), "4");
  EXPECT_EQ(Remembered("COMport"), "-1");
}

TEST_F(StagingDesk, DigitizesNothingWithoutATablet) {
  OpenTasks();
  Select(HillFarm);
  Click(Tasks(), "cmdActivate");
  Grid().selectRow(1);
  Click(Tasks(), "cmdActivate");
  EXPECT_THAT(dialogs_.Boxes,
              testing::ElementsAre(
                  Warning("Digitizing a strip chart", "Select a chart of the list first."),
                  Warning("Digitizing a strip chart",
                          "you cannot begin digitizing a chart without having the right Digitizer plugged")));
  EXPECT_FALSE(IsOpen());
}

TEST_F(StagingDesk, MakesAnEmptyFileOfADefectiveChart) {
  OpenTasks();
  Select("Upper Dam - NW-Upper Dam-02");
  EXPECT_EQ(Cell(0, 2), "Defective");
  Grid().selectRow(0);
  Control<QListWidget>("lstChartType").setCurrentRow(1);
  Click(Tasks(), "cmdActivate");
  const ShownBox done{"Creating an unAnalysed ASCII file", "An empty file has been created", BoxButtons::Ok,
                      BoxIcon::Information};
  EXPECT_THAT(dialogs_.Boxes, testing::ElementsAre(done));
  EXPECT_EQ(Row(), 1) << "the next chart";
  EXPECT_EQ(Grid().rowCount(), 2) << "the chart stays";
  const std::string path = folder_ / "NW-Upper Dam-02-19670131-0700.dat";
  const std::string file = ReadFile(path);
  EXPECT_NE(file.find("Chart Method: 1 - Non-Linear\r\nStart: 31/01/1967 07:00:00\r\n"), std::string::npos);
  EXPECT_NE(file.find("General Comment: CODE213\r\nDigitizer Comment: NOT DIGITIZED\r\n"), std::string::npos);

  WriteFile(path, "old");
  dialogs_.Boxes.clear();
  dialogs_.Answers = {BoxAnswer::Cancel};
  Grid().selectRow(0);
  Click(Tasks(), "cmdActivate");
  EXPECT_THAT(dialogs_.Boxes, testing::ElementsAre(ShownBox{"Saving the digitation",
                                                            "There is an existing file by the name of " +
                                                                path + ". The programme will overwrite it.",
                                                            BoxButtons::CancelUnlessOk, BoxIcon::Warning}));
  EXPECT_EQ(ReadFile(path), "old");
  EXPECT_EQ(Row(), 0);
}

TEST_F(StagingDesk, DefinesAChartByKeysAlone) {
  OpenTasks();
  Select(HillFarm);
  Click(Tasks(), "cmdAdd");
  EXPECT_FALSE(Tasks().isEnabled());
  Tasks().parentWidget()->close();
  ASSERT_NE(desk_->Window(WindowId::Tasks), nullptr) << "not behind a chart's details";

  const auto enter = [&] { QTest::keyClick(Details().focusWidget(), Qt::Key_Return); };
  ASSERT_EQ(Details().focusWidget()->objectName(), "dtpBeginDate");
  QTest::keyClicks(Details().focusWidget(), "05031998");
  EXPECT_EQ(Find<DateBox>(Details(), "dtpEndDate").date(), QDate(1998, 3, 6));
  for (const char* next : {"dtpBeginTime", "dtpEndDate", "dtpEndTime", "txtEyed"}) {
    enter();
    EXPECT_EQ(Details().focusWidget()->objectName(), next);
  }
  auto& eyed = Find<QLineEdit>(Details(), "txtEyed");
  QTest::keyClick(&eyed, Qt::Key_Down);
  EXPECT_EQ(eyed.text(), "0") << "no depth below 0";
  for (int i = 0; i < 3; ++i) QTest::keyClick(&eyed, Qt::Key_Up);
  EXPECT_EQ(eyed.text(), "0.3");
  enter();
  QTest::keyClicks(Details().focusWidget(), "0");
  enter();
  EXPECT_EQ(Details().focusWidget()->objectName(), "cmdOK");
  enter();
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes[0].Title, "Defining a Task");
  EXPECT_EQ(Details().focusWidget()->objectName(), "txtManual") << "where it is mended";
  QTest::keyClick(Details().focusWidget(), Qt::Key_Backspace);
  enter();
  enter();
  ASSERT_TRUE(WaitFor([&] { return desk_->Window(WindowId::TaskDef) == nullptr; }));

  EXPECT_TRUE(Tasks().isEnabled());
  ASSERT_EQ(Grid().rowCount(), 4);
  EXPECT_EQ(Row(), 1) << "the new chart, behind the one that begins an hour before it";
  EXPECT_EQ(Cell(1, 0) + Cell(1, 2) + Cell(1, 3), "05/03/1998 08:00:000.3unknown");
  EXPECT_NE(ReadFile(folder_ / "Tasks.lst")
                .find("\r\nNM-Hill Farm-01 , 05/03/1998 08:00:00 , 06/03/1998 08:00:00 "
                      ", 0.3 , -1 , 0\r\n\r\n"),
            std::string::npos);
  EXPECT_EQ(Remembered("frmTaskDef-EndDate"), "06/03/1998");
}

TEST_F(StagingDesk, AChartBeingDefinedIsAskedAboutBeforeTheProgramEnds) {
  OpenTasks();
  Select(HillFarm);
  Click(Tasks(), "cmdAdd");
  Type("txtEyed", "7");
  Find<DateBox>(Details(), "dtpEndDate").setDate(Find<DateBox>(Details(), "dtpBeginDate").date());
  dialogs_.Answers = {BoxAnswer::Cancel, BoxAnswer::Yes};
  Choose("mnuExit");
  desk_->ShellWindow()->close();
  ASSERT_NE(desk_->Window(WindowId::TaskDef), nullptr);
  EXPECT_THAT(dialogs_.Boxes,
              testing::ElementsAre(
                  ShownBox{"Defining a Task",
                           "The details of this chart have not been taken. Do you want to take them ?",
                           BoxButtons::YesNoCancel, BoxIcon::Question},
                  dialogs_.Boxes[0],
                  Warning("Defining a Task",
                          "The beginning time and date must be less than the ending time and date")));
  Find<DateBox>(Details(), "dtpEndDate").setDate(QDate(2030, 1, 2));
  Find<DateBox>(Details(), "dtpBeginDate").setDate(QDate(2030, 1, 1));
  dialogs_.Answers = {BoxAnswer::Yes};
  Choose("mnuExit");
  EXPECT_EQ(desk_->Window(WindowId::TaskDef), nullptr);
  EXPECT_EQ(desk_->Window(WindowId::Tasks), nullptr);
  EXPECT_EQ(LoadTasks(folder_.Path(), {})->Tasks.back().EyedDepth, 7);
}

TEST_F(StagingDesk, LooksAtTheTargetFolderBeforeAChartIsTraced) {
  const TempFolder other;
  OpenTasks();
  Select(HillFarm);
  Grid().selectRow(0);
  ASSERT_TRUE(Detects(tablet_, "Digitizer Detected On COM2"));
  const std::string gone = folder_ / "gone";
  Remember("TargetFolder", gone.c_str());
  dialogs_.Answers = {BoxAnswer::No, BoxAnswer::Yes};
  dialogs_.Folders = {other.Path()};
  Click(Tasks(), "cmdActivate");
  EXPECT_FALSE(IsOpen());
  EXPECT_EQ(dialogs_.Boxes[0].Text,
            "There is no folder " + gone + "\n\nDo you want to choose another folder for the chart files ?");
  Click(Tasks(), "cmdActivate");
  ASSERT_TRUE(IsOpen());
  EXPECT_THAT(Remembered("TargetFolder"), testing::StartsWith(other.Path()));
  EXPECT_TRUE(std::filesystem::is_empty(other.Path())) << "the trial leaves nothing";
}

TEST_F(StagingDesk, ForgetsNoFolderThatIsAwayAndChoosesAChartTypeThatIsThere) {
  const std::string away = folder_ / "away";
  Remember("TargetFolder", away.c_str());
  Remember("CurrentChart", "99");
  OpenTasks();
  EXPECT_EQ(Control<QListWidget>("lstChartType").currentRow(), 0);
  Click(Tasks(), "cmdExit");
  EXPECT_EQ(desk_->Window(WindowId::Tasks), nullptr);
  EXPECT_EQ(Remembered("TargetFolder"), away);
  EXPECT_EQ(Remembered("CurrentChart"), "0");
}

TEST_F(StagingDesk, KeepsTheCommentsOfAChart) {
  OpenTasks();
  Select(HillFarm);
  Grid().selectRow(0);
  Click(Tasks(), "cmdChange");
  auto& list = Find<QListWidget>(Details(), "lstComment");
  const auto shown = [&] {
    std::string all;
    for (int i = 0; i < list.count(); ++i) all += list.item(i)->text().toStdString() + "|";
    return all;
  };
  Click(Details(), "chkNot");
  Click(Details(), "chkNot");
  EXPECT_TRUE(Find<QAbstractButton>(Details(), "chkNot").isChecked()) << "only deleting takes it away";
  Click(Details(), "cmdAdd");
  QWidget* comment = desk_->Window(WindowId::Comment);
  ASSERT_NE(comment, nullptr);
  EXPECT_FALSE(Find(*comment, "cmdClear").isVisible());
  EXPECT_FALSE(Details().isEnabled());
  Click(*comment, "cmdList");
  EXPECT_EQ(Front(), desk_->Window(WindowId::LargeView));
  desk_->Window(WindowId::LargeView)->close();
  EXPECT_EQ(Front(), comment);
  Find<QLineEdit>(*comment, "txtCode").setText("301");
  AddComment("Ink ran dry");
  EXPECT_TRUE(Details().isEnabled());
  EXPECT_EQ(Front(), &Details());
  EXPECT_EQ(shown(), "CODE213|CODE301 + Ink ran dry|");
  list.setCurrentRow(0);
  Click(Details(), "cmdDelete");
  EXPECT_EQ(shown(), "CODE301 + Ink ran dry|");
  EXPECT_FALSE(Find<QAbstractButton>(Details(), "chkNot").isChecked());
  Click(Details(), "cmdOK");
  EXPECT_EQ(Front(), &Tasks());
  EXPECT_NE(ReadFile(folder_ / "Tasks.lst").find("53.4 , 1\r\nCODE301 + Ink ran dry\r\n"), std::string::npos);
}

TEST_F(StagingDesk, ActsOnStationsOnly) {
  OpenTasks();
  Select("Northland");
  EXPECT_EQ(Control<QGroupBox>("frmTask").title(), "Not a Station");
  for (const char* button : {"cmdAdd", "cmdChange", "cmdDelete", "cmdActivate"})
    EXPECT_FALSE(Control<QAbstractButton>(button).isEnabled()) << button;
  const auto rightClick = [&](int row) {
    const QPoint at = Grid().visualItemRect(Grid().item(row, 0)).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, Grid().viewport()->mapToGlobal(at));
    QCoreApplication::sendEvent(Grid().viewport(), &event);
  };
  Select(HillFarm);
  rightClick(1);
  EXPECT_EQ(Row(), 1);
  QMenu& popup = desk_->ShellWindow()->Popup();
  EXPECT_TRUE(popup.isVisible());
  std::vector<std::string> captions;
  for (const QAction* action : popup.actions()) captions.push_back(Caption(action->text()));
  EXPECT_THAT(captions, testing::UnorderedElementsAre("Add new chart", "Change the details of the chart",
                                                      "Delete chart"));
  dialogs_.Answers = {BoxAnswer::No, BoxAnswer::Yes};
  Choose("mnuPopDelete");
  EXPECT_EQ(Grid().rowCount(), 3);
  Choose("mnuPopDelete");
  popup.hide();
  EXPECT_EQ(Grid().rowCount(), 2);
  EXPECT_EQ(dialogs_.Boxes[0],
            (ShownBox{"Deleting a chart", "Are you sure you want to delete this chart from Staging Area ?",
                      BoxButtons::NoUnlessYes, BoxIcon::Question}));
  EXPECT_EQ(LoadTasks(folder_.Path(), {})->Tasks.size(), 5U);
}

TEST_F(StagingDesk, SaysWhatIsOddInTheListAndKeepsIt) {
  const std::string odd = "NM-Hill Farm-01 , 3/5/1998 , 06/03/1998 , 1 , 2 , 1\r\n\r\nnothing\r\n";
  WriteFile(folder_ / "Tasks.lst", odd);
  OpenTasks();
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_NE(dialogs_.Boxes[0].Text.find("Line 1: \"3/5/1998\" is no date\nLine 3: left out"),
            std::string::npos);
  Click(Tasks(), "cmdExit");
  EXPECT_EQ(desk_->Window(WindowId::Tasks), nullptr);
  int kept = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.Path()))
    kept += entry.path().filename().string().starts_with("Tasks.lst.bak-") && ReadFile(entry.path()) == odd;
  EXPECT_EQ(kept, 1);
}

}  // namespace
}  // namespace hyetex
