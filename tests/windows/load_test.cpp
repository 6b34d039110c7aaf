// The load window: both tabs by the mouse and the keys, on an embedded database.
#include <QAction>
#include <QLabel>
#include <QListView>
#include <QMainWindow>
#include <QMenuBar>
#include <QProgressBar>
#include <QTabBar>
#include <QTimer>
#include <QTreeWidget>
#include <filesystem>

#include "database/access/new_database.h"
#include "database/store/stored_text.h"
#include "database/stored_charts.h"
#include "database/windows/frmLoad.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr const char* LoadTitle = "Loading Files into Database";

class LoadWindow : public WindowTest<frmLoad> {
 protected:
  LoadWindow() {
    EXPECT_TRUE(CreateDatabaseFile(folder_ / "rain.sqlite"));
    database_.ConnectionText = FileConnectionText(folder_ / "rain.sqlite").value_or("");
    lists_.Cores = {"North"};
    lists_.Agencies = {{"Meteo", 0}};
    lists_.Stations = {{"Hill", "NM-Hill-1", 0, 0}, {"Mill", "NM-Mill-1", 0, 0}};
    for (const char* sub : {"in", "moved", "out"}) std::filesystem::create_directories(folder_ / sub);
    Remember("frmLoad-Source", (folder_ / "in").c_str());
    Remember("frmLoad-Target", (folder_ / "moved").c_str());
  }
  void AddInstrument(const char* code) {
    const DbValue values[] = {std::string(code)};
    ASSERT_TRUE(database_.OpenDatabase());
    EXPECT_TRUE(database_.DatabaseConnection.Execute("INSERT INTO INSTRUMENT (instrument_code_id) VALUES (?)",
                                                     values));
    database_.Close();
  }
  void Put(const char* code, int day) {
    const std::string text = StoredChart{.Instrument = code, .Start = MakeDate(1998, 3, day)}.Text();
    const StoredText stored = SplitStoredText(text);
    WriteFile(folder_ / ("in/" + std::string(stored.FileName)), std::string(stored.Bytes));
  }
  void Open() {
    Show(lists_, database_);
    ASSERT_TRUE(WaitFor([&] { return !Find<QLabel>(*window_, "labCount").text().isEmpty() && IsIdle(); }));
  }
  bool IsIdle() {
    QCoreApplication::processEvents();
    return !Find(*window_, "prgFiles").isVisible();
  }
  void ChooseTab(int tab) {
    auto& tabs = Find<QTabBar>(*window_, "tspLR");
    QTest::mouseClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(tab).center());
  }
  void EnterFolder(const std::string& folder) {
    auto& line = Find<QLineEdit>(*window_, "drvSource");
    line.setText(QString::fromStdString(folder));
    QTest::keyClick(&line, Qt::Key_Return);
  }
  std::vector<std::string> Files() {
    const auto& model = *Find<QListView>(*window_, "lstFile").model();
    std::vector<std::string> files;
    for (int i = 0; i < model.rowCount(); ++i)
      files.push_back(model.index(i, 0).data().toString().toStdString());
    return files;
  }
  void ClickFile(int row, Qt::KeyboardModifiers keys = {}) {
    auto& list = Find<QListView>(*window_, "lstFile");
    QTest::mouseClick(list.viewport(), Qt::LeftButton, keys,
                      list.visualRect(list.model()->index(row, 0)).center());
  }
  void ClickNode(const char* text) {
    auto& tree = Find<QTreeWidget>(*window_, "tvwStations");
    const auto found = tree.findItems(text, Qt::MatchExactly | Qt::MatchRecursive);
    ASSERT_FALSE(found.isEmpty()) << text;
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, tree.visualItemRect(found.first()).center());
  }
  std::string Text(const char* label) { return Find<QLabel>(*window_, label).text().toStdString(); }

  ReferenceLists lists_;
  HyetexPlotDB database_{settings_, dialogs_};
};

TEST_F(LoadWindow, LoadsMovesAndExtracts) {
  for (const char* code : {"NM-Hill-1", "NM-Mill-1"}) AddInstrument(code);
  Put("NM-Mill-1", 5);
  for (int day : {5, 6}) Put("NM-Hill-1", day);
  WriteFile(folder_ / "in/notes.dat", "no chart");
  Open();
  EXPECT_EQ(window_->windowTitle(), "Load (or \"Extract\") Ascii Files to (or from) Database");
  ExpectCaptions(*window_, {{"cmdAll", "Select All"},
                            {"chkDate", "Use Date Limits"},
                            {"chkTarget", "Move Files ToTarget Folder Afterwards"},
                            {"cmdSetTarget", "Set Folder From Directory Tree Above"},
                            {"cmdLoad", "Load Files to Database"},
                            {"cmdClose", "Return to Main Menu"}});
  EXPECT_EQ(Find<QGroupBox>(*window_, "frmFolder").title(), "Source Folder");
  EXPECT_THAT(Files(), ElementsAre("Hill - NM-Hill-1-19980305-0000.dat", "Hill - NM-Hill-1-19980306-0000.dat",
                                   "Mill - NM-Mill-1-19980305-0000.dat"));
  EXPECT_FALSE(Find(*window_, "labError").isVisible());
  EXPECT_FALSE(Find(*window_, "cmdLoad").isEnabled());

  ClickFile(0);
  ClickFile(2, Qt::ControlModifier);
  Find<QCheckBox>(*window_, "chkTarget").setChecked(true);
  Click(*window_, "cmdLoad");
  EXPECT_THAT(dialogs_.Boxes,
              ElementsAre(ShownBox{LoadTitle, "2 files transferred from file to Database chart_ascii table",
                                   BoxButtons::Ok, BoxIcon::Information}));
  EXPECT_THAT(Files(), ElementsAre("Hill - NM-Hill-1-19980306-0000.dat"));
  const std::string moved = folder_ / "moved/NM-Mill-1-19980305-0000.dat";
  EXPECT_TRUE(std::filesystem::exists(moved));

  // A file that stands in the way stays, and so does the one that was to be moved.
  WriteFile(folder_ / "moved/NM-Hill-1-19980306-0000.dat", "older");
  dialogs_.Boxes.clear();
  Click(*window_, "cmdAll");
  Click(*window_, "cmdLoad");
  ASSERT_EQ(dialogs_.Boxes.size(), 2U);
  EXPECT_THAT(dialogs_.Boxes[0].Text, HasSubstr("Error 58 in frmLoad.MoveFilesAfterLoading"));
  EXPECT_EQ(Files().size(), 1U);

  ChooseTab(1);
  EXPECT_EQ(Find<QGroupBox>(*window_, "frmFolder").title(), "Target Folder");
  EXPECT_FALSE(Find(*window_, "cmdSetTarget").isVisible());
  EXPECT_EQ(Files().size(), 3U);
  EnterFolder(folder_ / "out");
  ClickNode("Mill");
  EXPECT_EQ(Files().size(), 1U);
  Click(*window_, "cmdAll");
  dialogs_.Boxes.clear();
  QTest::keyClick(&Find(*window_, "lstFile"), Qt::Key_Return);
  EXPECT_THAT(dialogs_.Boxes,
              ElementsAre(ShownBox{"Extract Files", "1 Files extracted to " + (folder_ / "out"),
                                   BoxButtons::Ok, BoxIcon::Information}));
  EXPECT_EQ(ReadFile(folder_ / "out/NM-Mill-1-19980305-0000.dat"), ReadFile(moved));

  QTest::keyClick(window_.get(), Qt::Key_Escape);
  EXPECT_EQ(desk_.ClosedWindows, std::vector{WindowId::Load});
  EXPECT_EQ(Remembered("frmLoad-Source"), folder_ / "in");
  EXPECT_EQ(Remembered("frmLoad-Target"), folder_ / "out");
  EXPECT_EQ(Remembered("frmLoad-chkTarget"), "1");
}

TEST_F(LoadWindow, WarnsOfInstrumentsNotInCommonAndOffersToAddThem) {
  AddInstrument("NM-Mill-1");
  Put("nm-mill-1", 5);
  Put("NM-Dam-7", 6);
  Put("XX-Far-7", 7);
  Open();
  const std::string files =
      "The files in the selected folder (hard drive) do not match the stations defined in Hyetex. Click the "
      "\"Synchronize Station Lists\" menu to correct this.";
  const std::string database =
      "The stations as defined in Hyetex and the database do not all match.  Click \"Synchronize Stations "
      "Lists\" menu to correct this.";
  EXPECT_EQ(Text("labError"), files + "\n" + database);
  Click(*window_, "cmdAll");
  Click(*window_, "cmdLoad");
  EXPECT_THAT(dialogs_.Boxes,
              ElementsAre(Warning(LoadTitle,
                                  "The database does not contain all instruments listed here. Click "
                                  "'Syncronize Stations Lists' in order to fix this.")));
  dialogs_.Boxes.clear();
  dialogs_.Answers = {BoxAnswer::Yes};
  window_->ReadUnMappedStations();
  ASSERT_EQ(dialogs_.Boxes.size(), 2U);
  EXPECT_EQ(dialogs_.Boxes[0].Title, "Adding a New Instrument from Existing Files in the Selected Folder");
  EXPECT_EQ(dialogs_.Boxes[0].Text,
            "To perform this action a new instrument(s) must be added to the list in Hyetex.\n"
            "The following Instrument will be added: \n\nCODE: NM-Dam-7\nSTATION: Dam\nAGENCY: Meteo\n CORE: "
            "North");
  EXPECT_THAT(dialogs_.Boxes[1].Text, HasSubstr("XX-Far-7"));
  EXPECT_THAT(Files(), ::testing::Contains(HasSubstr("Dam - NM-Dam-7")));
  EXPECT_EQ(ReadLists(folder_.Path())->Stations.size(), 3U);
}

TEST_F(LoadWindow, TakesTheFolderOfTheTreeAsTheOneToMoveTo) {
  Open();
  EXPECT_EQ(Text("labTarget"), folder_ / "moved");
  EnterFolder(folder_ / "out");
  EXPECT_EQ(Text("labTarget"), folder_ / "moved");
  Click(*window_, "cmdSetTarget");
  EXPECT_EQ(Text("labTarget"), folder_ / "out");
  window_->close();
  EXPECT_EQ(Remembered("frmLoad-Target"), folder_ / "out");
  EXPECT_EQ(Remembered("frmLoad-Source"), folder_ / "out");
}

TEST_F(LoadWindow, ListsChartsOnTheirLimitDays) {
  for (int day : {5, 6, 7, 8}) Put("NM-Hill-1", day);
  Open();
  Find<DateBox>(*window_, "dtpBegin").setDate({1998, 3, 6});
  Find<DateBox>(*window_, "dtpEnd").setDate({1998, 3, 7});
  EXPECT_EQ(Files().size(), 4U);
  QTest::keyClick(&Find(*window_, "chkDate"), Qt::Key_Space);
  EXPECT_THAT(Files(), ElementsAre(HasSubstr("0306"), HasSubstr("0307")));
  Find<DateBox>(*window_, "dtpEnd").setDate({1998, 3, 6});
  EXPECT_THAT(Files(), ElementsAre(HasSubstr("0306")));
}

// By what a mouse really does, through the window: all other input is held off meanwhile.
TEST_F(LoadWindow, StopsReadingAFolder) {
  for (int day = 1; day < 29; ++day) Put("NM-Hill-1", day);
  Open();
  ASSERT_EQ(Files().size(), 28U);
  const auto press = [&](const char* name) {
    QWidget& button = Find(*window_, name);
    QTest::mouseClick(window_->windowHandle(), Qt::LeftButton, {},
                      button.mapTo(window_.get(), button.rect().center()));
  };
  QTimer::singleShot(0, window_.get(), [&] {
    EXPECT_TRUE(Find(*window_, "prgFiles").isVisible());
    QCoreApplication::processEvents();  // the button takes its place
    press("cmdClose");
    press("cmdStop");
  });
  ChooseTab(1);
  ChooseTab(0);
  EXPECT_TRUE(window_->isVisible());
  EXPECT_LT(Files().size(), 28U);
  EXPECT_EQ(Text("labNotes"), "The list was stopped before its end.");
}

// The frame's way out stops the work, says so, and goes on once the work has ended and told what it did.
TEST_F(LoadWindow, ClosesItsFrameBehindTheWorkThatItStops) {
  AddInstrument("NM-Hill-1");
  for (int day = 1; day < 29; ++day) Put("NM-Hill-1", day);
  QMainWindow frame;
  QAction& exit = *frame.menuBar()->addMenu("&File")->addAction("E&xit", &frame, [&] { frame.close(); });
  exit.setMenuRole(QAction::QuitRole);
  exit.setShortcut(Qt::CTRL | Qt::Key_Q);
  int others = 0;
  QAction& other = *frame.menuBar()->addAction("&Other", &frame, [&] { ++others; });
  other.setShortcut(Qt::CTRL | Qt::Key_O);
  Open();
  frame.setCentralWidget(window_.get());
  frame.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&frame));
  Find(*window_, "lstFile").setFocus();
  Click(*window_, "cmdAll");
  std::string told;
  QTimer::singleShot(0, &frame, [&] {
    QTest::keyClick(frame.windowHandle(), Qt::Key_O, Qt::ControlModifier);
    QTest::keyClick(frame.windowHandle(), Qt::Key_O, Qt::AltModifier);
    QTest::keyClick(frame.windowHandle(), Qt::Key_Q, Qt::ControlModifier);
    told = Find<QPushButton>(*window_, "cmdStop").text().toStdString();
  });
  Click(*window_, "cmdLoad");
  EXPECT_EQ(told, "Stopping, then the program ends");
  EXPECT_EQ(others, 0);
  EXPECT_TRUE(frame.isVisible()) << "not before the routine has ended";
  ASSERT_FALSE(dialogs_.Boxes.empty());
  EXPECT_THAT(dialogs_.Boxes[0].Text, HasSubstr("stopped before its end."));
  EXPECT_TRUE(WaitFor([&] { return !frame.isVisible(); }));
  frame.takeCentralWidget();
}

TEST_F(LoadWindow, TellsThatThereIsNoDatabase) {
  std::filesystem::remove(folder_ / "rain.sqlite");
  Put("NM-Hill-1", 5);
  Open();
  EXPECT_TRUE(dialogs_.Boxes.empty());
  Click(*window_, "cmdAll");
  Click(*window_, "cmdLoad");
  ChooseTab(1);
  ASSERT_EQ(dialogs_.Boxes.size(), 2U);
  for (const ShownBox& box : dialogs_.Boxes)
    EXPECT_THAT(box.Text, HasSubstr(std::to_string(db_error::GeneralFailure)));
}

}  // namespace
}  // namespace hyetex
