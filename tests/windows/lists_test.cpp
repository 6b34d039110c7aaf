// The lists manager and the program's defaults.
#include "staging/windows/frmLists.h"

#include <ctime>
#include <functional>

#include "app/app_desk.h"
#include "digitizing/windows/mdiHyetex.h"
#include "paths.h"
#include "platform/qt_text.h"
#include "platform/serial_devices.h"
#include "staging/windows/frmProgramDefaults.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

const ShownBox CloseQuestion{"Quiting Lists Manager", "Would you like to save the lists before you exit?",
                             BoxButtons::YesNoCancel, BoxIcon::Question};

class ListsWindow : public WindowTest<frmLists> {
 protected:
  ListsWindow() {
    lists_.Cores = {"North", "South"};
    lists_.Agencies = {{"Water", 0}, {"Empty", 0}, {"Farms", 1}};
    lists_.Stations = {{"Hill", "NW-1", 0, 0}, {"Barn", "SF-1", 1, 2}};
    lists_.Users = {{"Anna", "a", 1}, {"Bob", "b", 5}, {"Odd", "o", 3}};
    lists_.ChartTypes = {{.Name = "Daily"}, {.Name = "Weekly", .ChartMethod = 2}};
    lists_.Comments = {{"Ink", 301}, {"Late", 302.5F}};
    EXPECT_TRUE(SaveLists(folder_.Path(), lists_));
  }
  frmLists& Open() {
    return Show(lists_, user_,
                ListsServices{.Popup = shell_,
                              .ConnectionText = [this] { return connection_; },
                              .Synchronise = [this] { ++synchronised_; }});
  }
  template <typename Widget = QWidget>
  Widget& Part(const char* name) {
    return Find<Widget>(*window_, name);
  }
  QTreeWidgetItem* Node(const char* text) {
    const auto found =
        Part<QTreeWidget>("tvwStations").findItems(text, Qt::MatchExactly | Qt::MatchRecursive);
    return found.isEmpty() ? nullptr : found.front();
  }
  void Point(const char* node) { Part<QTreeWidget>("tvwStations").setCurrentItem(Node(node)); }
  void Row(const char* list, int row) { Part<QListWidget>(list).setCurrentRow(row); }
  // The right button on what is current in a list.
  void RightClick(const char* name) {
    auto& list = Part<QAbstractItemView>(name);
    const QPoint at = list.visualRect(list.currentIndex()).center();
    QTest::mouseClick(list.viewport(), Qt::RightButton, {}, at);
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, list.viewport()->mapToGlobal(at));
    QApplication::sendEvent(list.viewport(), &event);
  }
  std::string PopupCaptions() {
    EXPECT_TRUE(shell_.Popup().isVisible());
    std::string captions;
    for (const QAction* each : shell_.Popup().actions()) captions += Caption(each->text()) + "|";
    shell_.Popup().close();
    return captions;
  }
  void Choose(const char* command) { shell_.findChild<QAction*>(command)->trigger(); }
  ReferenceLists Saved() { return ReadLists(folder_.Path()).value(); }

  mdiHyetex shell_;
  ReferenceLists lists_;
  std::int16_t user_ = 0;
  std::string connection_;
  int synchronised_ = 0;
};

TEST_F(ListsWindow, OffersTheEditMenuOverEachListByMouseAndByKey) {
  Open();
  Point("Hill - NW-1");
  RightClick("tvwStations");
  EXPECT_EQ(PopupCaptions(), "Change the name of the station|Add new station|Delete station|");
  Point("Water");
  auto& tree = Part<QTreeWidget>("tvwStations");
  tree.setFocus();
  QTest::keyClick(&tree, Qt::Key_F10, Qt::ShiftModifier);
  EXPECT_EQ(PopupCaptions(), "Change the name of the Agency|Add new Agency|Delete Agency|");
  QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(5, 5), tree.mapToGlobal(QPoint(5, 5)));
  QApplication::sendEvent(&tree, &menuKey);
  EXPECT_EQ(PopupCaptions(), "Change the name of the Agency|Add new Agency|Delete Agency|");
  const std::pair<const char*, const char*> lists[] = {
      {"lstUsers", "Change the name of the user|Add new user|Delete user|"},
      {"lstChart", "Change the name of the chart|Add new chart|Delete chart|"},
      {"lstComment", "Change the details of the Comment|Add new Comment|Delete Comment|"}};
  for (const auto& [name, captions] : lists) {
    RightClick(name);
    EXPECT_EQ(PopupCaptions(), captions);
  }
}

TEST_F(ListsWindow, WorksOnWhatIsPointedAtAndSelectsWhatIsNew) {
  Open();
  Point("North");
  RightClick("tvwStations");
  dialogs_.Typed = {"Middle"};
  Choose("mnuPopAdd");
  EXPECT_EQ(Part<QTreeWidget>("tvwStations").currentItem()->text(0), "Middle");
  EXPECT_NE(Node("New Station - None"), nullptr);
  Row("lstComment", 1);
  RightClick("lstComment");
  Choose("mnuPopDelete");
  EXPECT_EQ(Part<QListWidget>("lstComment").currentItem()->text(), "301 - Ink");

  Click(*window_, "cmdSave");
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(Saved().Cores, (std::vector<std::string>{"North", "Middle", "South"}));
  EXPECT_TRUE(dialogs_.Boxes.empty());
  EXPECT_EQ(desk_.ClosedWindows, std::vector{WindowId::Lists});
  Choose("mnuPopDelete");
  EXPECT_EQ(Saved().Comments.size(), 1U);
}

TEST_F(ListsWindow, GivesAnEmptyAgencyAStationWhenItIsClicked) {
  Open();
  auto& tree = Part<QTreeWidget>("tvwStations");
  tree.expandAll();
  QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualItemRect(Node("Empty")).center());
  ASSERT_EQ(lists_.Stations.size(), 3U);
  EXPECT_EQ(lists_.Stations[2].InstrumentCode, "None");
  EXPECT_EQ(Node("New Station - None")->parent(), tree.currentItem());
  QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualItemRect(Node("Water")).center());
  EXPECT_EQ(lists_.Stations.size(), 3U);
  EXPECT_TRUE(Node("North")->isExpanded());
}

TEST_F(ListsWindow, AsksBeforeUnsavedChangesAreLeft) {
  Open();
  Row("lstUsers", 1);
  Part<QComboBox>("comLevel").setFocus();
  QTest::keyClick(&Part<QComboBox>("comLevel"), Qt::Key_End);
  EXPECT_EQ(lists_.Users[1].Level, 10);
  dialogs_.Answers = {BoxAnswer::Cancel};
  QTest::keyClick(window_.get(), Qt::Key_Escape);
  EXPECT_TRUE(window_->isVisible());
  EXPECT_EQ(lists_.Users[1].Level, 10);
  dialogs_.Answers = {BoxAnswer::No};
  window_->close();
  EXPECT_EQ(lists_.Users[1].Level, 5);
  EXPECT_EQ(dialogs_.Boxes, (std::vector{CloseQuestion, CloseQuestion}));

  Open();
  Part<QLineEdit>("txtHeight").setText("120");
  dialogs_.Answers = {BoxAnswer::Yes};
  window_->close();
  EXPECT_EQ(Saved().ChartTypes[0].ChartHeightMm, 120) << "though the box was not left";
  Open();
  Part<QLineEdit>("txtHeight").setText("130");
  dialogs_.Answers = {BoxAnswer::Cancel, BoxAnswer::No};
  Click(*window_, "cmdCancel");
  EXPECT_TRUE(window_->isVisible());
  Click(*window_, "cmdCancel");
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(lists_.ChartTypes[0].ChartHeightMm, 120);
  EXPECT_EQ(dialogs_.Boxes.size(), 5U);
}

TEST_F(ListsWindow, ShowsTheLevelThatALastAdministratorKeeps) {
  Open();
  Row("lstUsers", 2);
  QTest::keyClick(&Part<QComboBox>("comLevel"), Qt::Key_End);
  Row("lstUsers", 0);
  QTest::keyClick(&Part<QComboBox>("comLevel"), Qt::Key_End);
  EXPECT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(Part<QComboBox>("comLevel").currentText(), "Administrator");
  EXPECT_EQ(Part<QListWidget>("lstUsers").currentRow(), 0);
  dialogs_.Answers = {BoxAnswer::No};
  window_->close();
}

TEST_F(ListsWindow, ShowsALongCodeWhole) {
  const std::string code = "NW-" + std::string(60, 'x') + "-123456789012345678901234567890";
  lists_.Stations[0].InstrumentCode = code;
  Open();
  auto& tree = Part<QTreeWidget>("tvwStations");
  tree.expandAll();
  QCoreApplication::processEvents();
  const QTreeWidgetItem* node = Node(("Hill - " + code).c_str());
  ASSERT_NE(node, nullptr);
  EXPECT_GE(tree.visualItemRect(node).width(), tree.fontMetrics().horizontalAdvance(node->text(0)))
      << "it can be scrolled to";
}

TEST_F(ListsWindow, ShowsAndChangesChartTypes) {
  Open();
  Row("lstChart", 1);
  EXPECT_EQ(Part<QComboBox>("comMethod").currentText(), "Tipping Bubket");
  EXPECT_EQ(Part<QLineEdit>("txtHeight").text(), "100 mm");
  ExpectCaptions(*window_, {{"cmdScale0", "Time Scale: 2 hours / mm"},
                            {"cmdScale1", "Depth Scale: 0.1 mm of rain / mm"}});
  dialogs_.Typed = {"3", "1", "12.5"};
  Click(*window_, "cmdScale1");
  ExpectCaptions(*window_, {{"cmdScale1", "Depth Scale: 0.333 mm of rain / mm"}});
  QTest::keyClick(&Part<QComboBox>("comMethod"), Qt::Key_Up);
  EXPECT_EQ(dialogs_.Inputs.back(),
            (ShownInput{"Setting a non-linear chart type",
                        "What is the horizontal distance in mm between the middle point and the bottom point",
                        "0"}));
  EXPECT_EQ(lists_.ChartTypes[1].MiddleToBottomMm, 12.5F);
  auto& height = Part<QLineEdit>("txtHeight");
  QTest::keyClick(&height, Qt::Key_Up);
  EXPECT_EQ(lists_.ChartTypes[1].ChartHeightMm, 101);
  height.setText("-5");
  QTest::keyClick(&height, Qt::Key_Return);
  EXPECT_EQ(height.text(), "-5") << "to be mended";
  EXPECT_EQ(lists_.ChartTypes[1].ChartHeightMm, 101);
  EXPECT_EQ(dialogs_.Boxes.back(), Warning("Edit Lists", "The chart height must be more than 0 mm."));
  EXPECT_TRUE(window_->isVisible()) << "Return does not save";
  height.setText("101,5 mm");
  QTest::keyClick(&height, Qt::Key_Return);
  EXPECT_EQ(lists_.ChartTypes[1].ChartHeightMm, 101.5F);
  dialogs_.Typed = {"3 cm", "3", "1,5"};
  Click(*window_, "cmdScale1");
  ExpectCaptions(*window_, {{"cmdScale1", "Depth Scale: 0.5 mm of rain / mm"}});
  Row("lstChart", 0);
  EXPECT_EQ(Part<QComboBox>("comMethod").currentText(), "Linear");
  dialogs_.Answers = {BoxAnswer::No};
  Click(*window_, "cmdCancel");
}

TEST_F(ListsWindow, OpensUsersToAdministratorsAndTheDatabaseToAChosenSource) {
  Open();
  EXPECT_TRUE(Part("lstUsers").isEnabled());
  EXPECT_EQ(Part<QComboBox>("comLevel").currentText(), "Administrator");
  Row("lstUsers", 2);
  EXPECT_EQ(Part<QComboBox>("comLevel").currentText(), "") << "a level of no name";
  user_ = 1;
  for (const auto& [text, enabled] :
       std::vector<std::pair<const char*, bool>>{{"", false}, {"DSN=(None)", false}, {"DSN=rain", true}}) {
    connection_ = text;
    window_->FocusChanged(true);
    EXPECT_EQ(Part("cmdReadTable").isEnabled(), enabled) << text;
  }
  EXPECT_FALSE(Part("lstUsers").isEnabled());
  EXPECT_FALSE(Part("comLevel").isEnabled());
  Click(*window_, "cmdReadTable");
  EXPECT_EQ(synchronised_, 1);
  lists_.Stations.push_back({"Pond", "NW-2", 0, 0});
  window_->StationsRead(false);
  EXPECT_NE(Node("Pond - NW-2"), nullptr);
  dialogs_.Answers = {BoxAnswer::No};
  window_->close();
}

TEST_F(ListsWindow, StaysQuickWithFullTables) {
#ifdef __SANITIZE_ADDRESS__
  constexpr double mostMs = 1000;
#else
  constexpr double mostMs = 100;
#endif
  lists_.Agencies.resize(201, {"Agency", 1});
  lists_.Stations.resize(201, {"Station", "Code", 1, 3});
  lists_.Users.resize(201, {"User", "", 10});
  lists_.Comments.resize(1001, {"Comment", 7});
  Open();
  Part<QTreeWidget>("tvwStations").expandAll();
  Row("lstComment", 900);
  RightClick("lstComment");
  dialogs_.Typed = {"9", "Text"};
  const std::clock_t began = std::clock();  // the machine may be busy with other work
  Choose("mnuPopChange");
  QCoreApplication::processEvents();
  EXPECT_LT(1000.0 * static_cast<double>(std::clock() - began) / CLOCKS_PER_SEC, mostMs);
  EXPECT_EQ(Part<QListWidget>("lstComment").currentItem()->text(), "9 - Text");
}

TEST_F(FolderTest, ProgramDefaultsAreReachedFromTheMenuAndKept) {
  ReferenceLists lists;
  lists.ChartTypes = {{.Name = "Daily"}, {"Weekly", 84.1239F, 0.1F, 1 / 3.0F, 0, 0}};
  ASSERT_TRUE(SaveLists(folder_.Path(), lists));
  AppDesk desk({.Folder = folder_.Path()}, dialogs_);
  desk.Start();
  Click(*desk.Login(), "cmdOK");
  ASSERT_NE(desk.ShellWindow(), nullptr);
  desk.ShellWindow()->findChild<QAction*>("mnuDefaults")->trigger();
  QWidget* window = desk.Window(WindowId::ProgramDefaults);
  ASSERT_NE(window, nullptr);
  Find<QComboBox>(*window, "comChartType").setCurrentIndex(1);
  EXPECT_EQ(Find<QLabel>(*window, "labHeightScale").text(), "Time Scale Factor: 0.333 hrs/mm");
  EXPECT_EQ(Find<QLabel>(*window, "labDepthScale").text(), "Depth Scale Factor: 0.1 mm of rain/mm");
  EXPECT_EQ(Find<QLabel>(*window, "labHeight").text(), "Chart Total Height: 84.124");
  Click(*window, "cmdDone");
  EXPECT_EQ(Remembered("frmDefinition"), "1");
  EXPECT_EQ(Remembered("CurrentChart"), "1");
  EXPECT_NE(desk.Window(WindowId::MainMenu), nullptr);
}

TEST_F(FolderTest, EveryWayOutOfTheProgramAsksAboutUnsavedLists) {
  ASSERT_TRUE(SaveLists(folder_.Path(), ReferenceLists{}));
  AppDesk desk({.Folder = folder_.Path()}, dialogs_);
  desk.Start();
  Click(*desk.Login(), "cmdOK");
  Click(*desk.Window(WindowId::MainMenu), "cmdLists");
  QWidget* lists = desk.Window(WindowId::Lists);
  ASSERT_NE(lists, nullptr);
  Find<QLineEdit>(*lists, "txtHeight").setText("120");
  const std::function<void()> waysOut[] = {
      [&] { desk.ShellWindow()->findChild<QAction*>("mnuExit")->trigger(); },
      [&] { desk.ShellWindow()->close(); },
      [&] { Click(*lists, "cmdCancel"); },
      [&] { QTest::keyClick(&Find(*lists, "lstChart"), Qt::Key_Escape); },
      [&] { lists->parentWidget()->close(); },
  };
  for (const auto& leave : waysOut) {
    dialogs_.Boxes.clear();
    dialogs_.Answers = {BoxAnswer::Cancel};
    leave();
    EXPECT_EQ(dialogs_.Boxes, std::vector{CloseQuestion});
    EXPECT_EQ(desk.Window(WindowId::Lists), lists);
    EXPECT_TRUE(desk.ShellWindow()->isVisible());
  }
  dialogs_.Answers = {BoxAnswer::Yes};
  waysOut[0]();
  EXPECT_EQ(ReadLists(folder_.Path())->ChartTypes[0].ChartHeightMm, 120);
}

TEST_F(FolderTest, TheTabletsPortsAreChosenAmongTheProgramDefaults) {
  WriteFile(folder_ / "tty", "");
  EmptyDesk desk;
  const ReferenceLists lists;
  std::int16_t chart = 0;
  frmProgramDefaults window(desk, dialogs_, settings_, lists, chart);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  auto& port = Find<QComboBox>(window, "cboPort1");
  QTest::keyClick(&window, Qt::Key_P, Qt::AltModifier);
  ASSERT_EQ(QApplication::focusWidget(), &port);
  EXPECT_EQ(port.currentText(), "");
  QTest::keyClicks(&port, ToQt(folder_ / "no-such"));
  dialogs_.Answers = {BoxAnswer::No};
  Click(window, "cmdDone");
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_TRUE(window.isVisible());
  EXPECT_EQ(Remembered("SerialPort1"), "");
  port.lineEdit()->selectAll();
  QTest::keyClicks(&port, ToQt(folder_ / "tty"));
  Click(window, "cmdDone");
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(SerialDevice(settings_, 1), folder_ / "tty");
  EXPECT_EQ(Remembered("SerialPort2"), "");
}

// A window of entries, as the desk closes it and as its frame does; only its Cancel gives them up unasked.
TEST_F(FolderTest, ProgramDefaultsAndConnectionsAreAskedAboutByEveryWayOut) {
  std::filesystem::copy(Demo("program"), folder_.Path());
  AppDesk desk({.Folder = folder_.Path()}, dialogs_);
  desk.ShellSize = {1200, 800};
  desk.Start();
  desk.LoggedIn();
  const struct {
    WindowId Id;
    const char *Box, *Question, *Key;
  } windows[] = {
      {WindowId::ProgramDefaults, "cboPort1",
       "The program defaults that have been changed are not yet kept. Do you want to keep them ?",
       "SerialPort1"},
      {WindowId::Connection, "cboDSNList", "The connection has not been taken. Do you want to take it ?",
       "DataBaseName"},
      {WindowId::Logon, "txtServer", "The connection has not been taken. Do you want to take it ?", nullptr},
  };
  for (const auto& [id, box, question, key] : windows) {
    SCOPED_TRACE(box);
    const auto enter = [&] {
      desk.Open(id);
      if (auto* list = desk.Window(id)->findChild<QComboBox*>(box)) {
        if (!list->isEditable()) list->addItem("COM9");
        list->setCurrentText("COM9");
      } else {
        Find<QLineEdit>(*desk.Window(id), box).setText("COM9");
      }
    };
    desk.Open(id);
    desk.Window(id)->parentWidget()->close();  // nothing was entered
    EXPECT_EQ(desk.Window(id), nullptr);
    enter();
    dialogs_.Boxes.clear();
    if (id == WindowId::Logon) dialogs_.Answers = {BoxAnswer::No};  // it says nothing of giving up
    Click(*desk.Window(id), "cmdCancel");
    EXPECT_EQ(desk.Window(id), nullptr);
    EXPECT_EQ(dialogs_.Boxes.size(), id == WindowId::Logon ? 1U : 0U);
    enter();
    const std::function<void()> waysOut[] = {
        [&] { desk.ShellWindow()->findChild<QAction*>("mnuExit")->trigger(); },
        [&] { desk.ShellWindow()->close(); },
        [&] { desk.Window(id)->parentWidget()->close(); },
    };
    for (const auto& leave : waysOut) {
      dialogs_.Boxes.clear();
      dialogs_.Answers = {BoxAnswer::Cancel};
      leave();
      ASSERT_EQ(dialogs_.Boxes.size(), 1U);
      EXPECT_EQ(dialogs_.Boxes[0].Text, question);
      ASSERT_NE(desk.Window(id), nullptr);
    }
    dialogs_.Boxes.clear();
    dialogs_.Answers = {key != nullptr ? BoxAnswer::Yes : BoxAnswer::No};
    waysOut[2]();
    EXPECT_EQ(desk.Window(id), nullptr);
    EXPECT_EQ(key == nullptr || Remembered(key).find("COM9") != std::string::npos, true);
  }
}

}  // namespace
}  // namespace hyetex
