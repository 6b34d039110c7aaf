// The shell's command that brings the stations and the database in line.
#include <QAction>
#include <QLineEdit>
#include <QListWidget>
#include <QTreeWidget>

#include "app/app_desk.h"
#include "database/access/new_database.h"
#include "paths.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

class SynchronisingDesk : public FolderTest {
 protected:
  void SetUp() override {
    std::filesystem::copy(test::Demo("program"), folder_.Path());
    const std::string file = folder_ / "rain.sqlite";
    ASSERT_TRUE(CreateDatabaseFile(file));
    text_ = "Driver=SQLite3;Database=" + file;
    auto connection = Connection::Open(text_);
    for (const char* code : {"NM-Hill Farm-01", "NM-Mill Pond-01", "NW-Upper Dam-02", "NW-Lake-03"})
      ASSERT_TRUE(connection->Execute("INSERT INTO instrument (instrument_code_id) VALUES (?)",
                                      std::vector<DbValue>{std::string(code)}));
  }
  void Start() {
    desk_ = std::make_unique<AppDesk>(StartWords{.Folder = folder_.Path()}, dialogs_);
    desk_->Start();
    desk_->LoggedIn();
    QCoreApplication::processEvents();
  }
  QAction& Command() { return desk_->ShellWindow()->Fix(); }

  std::string text_;
  std::unique_ptr<AppDesk> desk_;
};

TEST_F(SynchronisingDesk, WaitsForADatabaseAndForStagedChartsToBePutAway) {
  Start();
  EXPECT_FALSE(Command().isEnabled());
  EXPECT_EQ(Command().toolTip(), "Select a database in the Main Menu first.");
  Remember("DataBaseName", text_.c_str());
  Start();
  EXPECT_TRUE(Command().isEnabled());
  desk_->Open(WindowId::Tasks);
  EXPECT_TRUE(WaitFor([&] { return !Command().isEnabled(); }));
  desk_->Window(WindowId::Tasks)->close();
  EXPECT_TRUE(WaitFor([&] { return Command().isEnabled(); }));
}

TEST_F(SynchronisingDesk, SavesWhatTheListsManagerHoldsOnlyWhenTheOperatorAgrees) {
  Remember("DataBaseName", text_.c_str());
  Start();
  desk_->Open(WindowId::Lists);
  QWidget& lists = *desk_->Window(WindowId::Lists);
  Find<QListWidget>(lists, "lstChart").setCurrentRow(0);
  Find<QLineEdit>(lists, "txtHeight").setText("123 mm");

  dialogs_.Answers = {BoxAnswer::No, BoxAnswer::Yes};
  Command().trigger();
  EXPECT_EQ(ReadLists(folder_.Path())->Stations.size(), 3U);
  Click(lists, "cmdReadTable");
  const auto saved = ReadLists(folder_.Path());
  EXPECT_EQ(saved->Stations.size(), 4U);
  EXPECT_EQ(saved->ChartTypes[0].ChartHeightMm, 123);
  EXPECT_EQ(dialogs_.Boxes.back().Text, "One Instrument was read from the database to the list in Hyetex");
  EXPECT_EQ(Find<QTreeWidget>(lists, "tvwStations")
                .findItems("Lake - NW-Lake-03", Qt::MatchExactly | Qt::MatchRecursive)
                .size(),
            1);
  lists.close();  // and has nothing to ask
  EXPECT_EQ(desk_->Window(WindowId::Lists), nullptr);
}

}  // namespace
}  // namespace hyetex
