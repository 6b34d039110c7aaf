// Choosing a database at the desk, making a new one, and looking at its tables.
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTableWidget>

#include "app/app_desk.h"
#include "database/access/new_database.h"
#include "database/windows/frmCreateTable.h"
#include "database/windows/frmODBCLogon.h"
#include "database/windows/frmODBCLogon1.h"
#include "own_data_sources.h"
#include "platform/odbc/connection_text.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// Gives one file to save into.
class FileDialogs : public ScriptedDialogs {
 public:
  std::string File;
  std::optional<std::string> ChooseFileToSave(const std::string&, const std::string&) override {
    return File;
  }
};

template <typename Window>
class ConnectionWindow : public WindowTest<Window> {
 protected:
  void Open() {
    this->window_ = std::make_unique<Window>(this->desk_, files_, this->settings_, database_);
    this->window_->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(this->window_.get()));
  }
  std::string Source() { return List("cboDSNList").currentText().toStdString(); }
  QComboBox& List(const char* name) { return Find<QComboBox>(*this->window_, name); }
  void Type(const char* name, const std::string& text) {
    Find<QLineEdit>(*this->window_, name).setText(QString::fromStdString(text));
  }

  OwnDataSources own_;
  FileDialogs files_;
  HyetexPlotDB database_{this->settings_, files_};
};

class SelectDatabase : public ConnectionWindow<frmODBCLogon> {
 protected:
  void SetUp() override {
    own_.Write("[rain]\nDriver=SQLite3\nDatabase=/none\n[snow]\nDriver=Zeppelin\n");
    desk_.Present = {WindowId::Logon, WindowId::CreateTable};
  }
};

TEST_F(SelectDatabase, ShowsTheStoredSourceAndTakesTheChosenOne) {
  Remember("DataBaseName", "DSN=snow;UID=anna;PWD=x");
  Open();
  EXPECT_EQ(window_->windowTitle(), "Select Database");
  ExpectCaptions(*window_, {{"cmdOK", "OK"},
                            {"cmdCancel", "Cancel"},
                            {"cmdCreateDB", "View Database Structure"},
                            {"cmdNewFile", "New Database File..."},
                            {"cmdOther", "Other Connection..."}});
  EXPECT_EQ(Source(), "snow");
  EXPECT_EQ(List("cboDSNList").itemText(0), "(None)");
  EXPECT_EQ(Find<QLineEdit>(*window_, "txtPWD").echoMode(), QLineEdit::Password);
  for (const bool none : {true, false}) {
    List("cboDSNList").setCurrentText(none ? "(None)" : "rain");
    EXPECT_EQ(Find(*window_, "txtServer").isEnabled(), none);
    EXPECT_EQ(List("cboDrivers").isEnabled(), none);
  }
  QTest::keyClick(&List("cboDSNList"), Qt::Key_Escape);
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(Remembered("DataBaseName"), "DSN=snow;UID=anna;PWD=x");

  Open();
  List("cboDSNList").setCurrentText("rain");
  Click(*window_, "cmdCreateDB");
  EXPECT_EQ(Remembered("DataBaseName"), "DSN=rain");
  EXPECT_THAT(desk_.Opened, ElementsAre(WindowId::CreateTable));
  EXPECT_TRUE(window_->isVisible());
  List("cboDSNList").setCurrentText("(None)");
  QTest::keyClick(&List("cboDSNList"), Qt::Key_Return);
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(Remembered("DataBaseName"), "DSN=(None)");
  EXPECT_EQ(database_.ConnectionText, "DSN=(None)");
}

// It shows as "(None)", and a look at the window must not lose it.
TEST_F(SelectDatabase, KeepsAConnectionThatHasNoDataSource) {
  const std::string text = "Driver=SQLite3;Database=/rain.sqlite;";
  Remember("DataBaseName", text.c_str());
  Open();
  EXPECT_EQ(Source(), "(None)");
  Click(*window_, "cmdOK");
  EXPECT_EQ(Remembered("DataBaseName"), text);
  EXPECT_EQ(database_.ConnectionText, text);
}

TEST_F(SelectDatabase, MakesADatabaseFileAndSelectsIt) {
  Open();
  files_.File = folder_ / "wells";
  Click(*window_, "cmdNewFile");
  EXPECT_EQ(Source(), "wells");
  EXPECT_EQ(Remembered("DataBaseName"), "");  // not before OK
  Click(*window_, "cmdOK");
  EXPECT_TRUE(database_.Opens());
  EXPECT_TRUE(files_.Boxes.empty());

  // A file that is there is used or left, never replaced.
  own_.Write("");
  const std::string bytes = ReadFile(folder_ / "wells.sqlite");
  Open();
  files_.Answers = {BoxAnswer::No, BoxAnswer::Yes};
  Click(*window_, "cmdNewFile");
  EXPECT_EQ(own_.Text(), "");
  Click(*window_, "cmdNewFile");
  EXPECT_EQ(Source(), "wells");
  EXPECT_EQ(ReadFile(folder_ / "wells.sqlite"), bytes);
  EXPECT_EQ(files_.Boxes.size(), 2U);

  files_.File = folder_ / "no/folder.sqlite";
  Click(*window_, "cmdNewFile");
  ASSERT_EQ(files_.Boxes.size(), 3U);
  EXPECT_THAT(files_.Boxes[2].Text, HasSubstr("cannot be made"));
}

using LogonWindow = ConnectionWindow<frmODBCLogon1>;

TEST_F(LogonWindow, KeepsWhatItCouldConnectWith) {
  ASSERT_TRUE(CreateDatabaseFile(folder_ / "rain.sqlite"));
  Open();
  EXPECT_EQ(window_->windowTitle(), "ODBC Logon");
  ExpectCaptions(*window_, {{"cmdOK", "OK"}, {"cmdCancel", "Return to Main Menu"}});
  List("cboDrivers").setCurrentText("SQLite3");
  Type("txtPWD", "secret");
  Type("txtDatabase", folder_ / "no/rain.sqlite");
  Click(*window_, "cmdOK");
  ASSERT_EQ(files_.Boxes.size(), 1U);
  EXPECT_EQ(files_.Boxes[0].Title, "ODBC Logon");
  EXPECT_TRUE(window_->isVisible());
  EXPECT_EQ(Remembered("DataBaseName"), "");

  Type("txtDatabase", folder_ / "rain.sqlite");
  Click(*window_, "cmdOK");
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(Remembered("DataBaseName"),
            "Driver=SQLite3;Server=;UID=;PWD=secret;Database=" + (folder_ / "rain.sqlite") + ";");
  EXPECT_TRUE(database_.Opens());

  Open();
  EXPECT_EQ(List("cboDrivers").currentText(), "SQLite3");
  EXPECT_EQ(Find<QLineEdit>(*window_, "txtDatabase").text().toStdString(), folder_ / "rain.sqlite");
  EXPECT_EQ(Find<QLineEdit>(*window_, "txtPWD").text(), "");
}

class StructureWindow : public WindowTest<frmCreateTable> {
 protected:
  void Open(const std::string& text) {
    database_.ConnectionText = text;
    Show(database_, StructureServices{.Help = [this] { ++helped_; },
                                      .OpenText = [this](const std::string& path) -> Result<void> {
                                        if (!hasEditor_) return Failure("No application opens it");
                                        opened_.push_back(path);
                                        return {};
                                      }});
  }

  HyetexPlotDB database_{settings_, dialogs_};
  int helped_ = 0;
  bool hasEditor_ = true;
  std::vector<std::string> opened_;
};

TEST_F(StructureWindow, ShowsTheTablesAndWritesTheScript) {
  ASSERT_TRUE(CreateDatabaseFile(folder_ / "rain.sqlite"));
  Open("Driver=SQLite3;PWD=secret;Database=" + (folder_ / "rain.sqlite"));
  EXPECT_EQ(window_->windowTitle(), "Create Table Structure");
  ExpectCaptions(*window_, {{"cmdOutput", "Output Structure to File"},
                            {"cmdCreate", "Help Creating Tables"},
                            {"cmdDone", "Return to Main Menu"}});
  EXPECT_EQ(Find<QLabel>(*window_, "lblCurrentDB").text().toStdString(),
            "Current Database: Driver=SQLite3;PWD=***;Database=" + (folder_ / "rain.sqlite"));
  auto& grid = Find<QTableWidget>(*window_, "fg");
  ASSERT_TRUE(WaitFor([&] { return grid.rowCount() > 0; }));
  EXPECT_EQ(grid.rowCount(), 174);
  const std::pair<int, const char*> cells[] = {{0, "CHART"}, {1, "station"}, {2, "202"}, {3, "25"}};
  for (const auto& [column, text] : cells) EXPECT_EQ(grid.item(7, column)->text(), text);
  EXPECT_FALSE(Find(*window_, "prbStructure").isVisible());

  Click(*window_, "cmdOutput");
  EXPECT_THAT(opened_, ElementsAre(folder_ / "script.txt"));
  EXPECT_THAT(ReadFile(folder_ / "script.txt"), HasSubstr("create table CHART(\r\nstation VARCHAR(25),\r\n"));
  hasEditor_ = false;
  Click(*window_, "cmdOutput");
  EXPECT_THAT(desk_.LargeViews, ElementsAre(HasSubstr("script.txt: ")));
  EXPECT_THAT(desk_.LargeViews[0], HasSubstr("create table CHART("));
  Click(*window_, "cmdCreate");
  EXPECT_EQ(helped_, 1);
  QTest::keyClick(window_.get(), Qt::Key_Escape);
  EXPECT_THAT(desk_.ClosedWindows, ElementsAre(WindowId::CreateTable));
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

TEST_F(StructureWindow, ReportsADatabaseThatCannotBeReached) {
  Open("DSN=no-such-source");
  ASSERT_TRUE(WaitFor([&] { return !dialogs_.Boxes.empty(); }));
  EXPECT_THAT(dialogs_.Boxes[0].Text, HasSubstr("occurred in ShowStructure"));
  EXPECT_THAT(ReadFile(folder_ / "errors.tXt"), HasSubstr("Source: ShowStructure"));
  Click(*window_, "cmdOutput");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "script.txt"));
}

// A new user with an empty folder gets to a database by the windows alone.
TEST(ConnectionAtTheDesk, FollowsTheChoiceInTheMainMenuWithoutItsPassword) {
  OwnDataSources own;
  TempFolder folder;
  FileDialogs dialogs;
  AppDesk desk({.Folder = folder.Path()}, dialogs);
  desk.ShellSize = {1200, 800};
  desk.Start();
  desk.LoggedIn();
  const auto window = [&](WindowId id) -> QWidget& { return *desk.Window(id); };
  auto& menu = window(WindowId::MainMenu);
  const auto label = [&] { return Find<QLabel>(menu, "labDataBase").text().toStdString(); };
  EXPECT_EQ(label(), "");

  dialogs.File = folder / "rain.sqlite";
  Click(menu, "cmdDataBase");
  Click(window(WindowId::Connection), "cmdNewFile");
  Click(window(WindowId::Connection), "cmdCreateDB");
  EXPECT_FALSE(window(WindowId::Connection).isEnabled());  // modal
  Click(window(WindowId::CreateTable), "cmdDone");
  ASSERT_TRUE(WaitFor([&] { return window(WindowId::Connection).isEnabled(); }));
  Click(window(WindowId::Connection), "cmdOK");
  EXPECT_EQ(desk.Window(WindowId::Connection), nullptr);
  EXPECT_EQ(label(), "DSN=rain");

  Click(menu, "cmdDataBase");
  Click(window(WindowId::Connection), "cmdOther");
  EXPECT_EQ(desk.Window(WindowId::Connection), nullptr);
  QWidget& logon = window(WindowId::Logon);
  Find<QLineEdit>(logon, "txtUID").setText("anna");
  Find<QLineEdit>(logon, "txtPWD").setText("secret");
  Click(logon, "cmdOK");
  EXPECT_EQ(label(), "ODBC;DSN=rain;UID=anna;PWD=***;");
  EXPECT_EQ(desk.Window(WindowId::Logon), nullptr);
  EXPECT_TRUE(dialogs.Boxes.empty());
}

}  // namespace
}  // namespace hyetex
