// The embedded database: its file and its data source, all or nothing, and nothing overwritten.
#include "database/access/new_database.h"

#include <gmock/gmock.h>

#include "cli/run.h"
#include "core/files.h"
#include "database/access/create_tables.h"
#include "database/access/report_error.h"
#include "own_data_sources.h"
#include "scripted_dialogs.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class NewFile : public testing::Test {
 protected:
  std::string Path(const char* name) { return folder_ / name; }
  static bool IsComplete(const std::string& connectionText) {
    auto connection = Connection::Open(connectionText);
    if (!connection) return false;
    const auto tables = MissingTables(*connection), more = MissingCompletion(*connection);
    return tables && more && tables->empty() &&
           std::all_of(more->begin(), more->end(),
                       [](const SchemaChange& change) { return change.MayBeThere; });
  }

  OwnDataSources own_;
  TempFolder folder_;
};

TEST_F(NewFile, IsCompleteAndHasADataSourceOfItsName) {
  ASSERT_EQ(NewDatabase(Path("my rain.sqlite")), "my rain");
  EXPECT_TRUE(IsComplete("DSN=my rain"));
  EXPECT_TRUE(IsComplete(*FileConnectionText(Path("my rain.sqlite"))));
  for (const std::string option : {"FKSupport", "NoCreat", "StepAPI"})
    EXPECT_THAT(own_.Text(), testing::ContainsRegex(option + " *= *1\n"));
  EXPECT_THAT(own_.Text(), testing::ContainsRegex("Timeout *= *5000\n"));
  EXPECT_EQ(WithDatabaseEnding("/a.b/rain"), "/a.b/rain.sqlite");
  EXPECT_EQ(WithDatabaseEnding("/a/rain.db"), "/a/rain.db");
}

TEST_F(NewFile, TakesNoOtherFilesPlaceAndNoOtherDataSourcesName) {
  own_.Write("[Rain]\nDriver=SQLite3\nDatabase=/elsewhere.sqlite\n");
  ASSERT_EQ(NewDatabase(Path("rain.sqlite")), "rain-2");
  EXPECT_THAT(own_.Text(), StartsWith("[Rain]\nDriver=SQLite3\nDatabase=/elsewhere.sqlite\n"));
  // The user's file was copied first, for its owner alone if it was that.
  const std::string copies = std::filesystem::path(own_.Path()).parent_path();
  int copied = 0;
  for (const auto& entry : std::filesystem::directory_iterator(copies))
    if (entry.path().filename().string().starts_with("odbc.ini.bak-")) {
      ++copied;
      EXPECT_EQ(ReadFile(entry.path()), "[Rain]\nDriver=SQLite3\nDatabase=/elsewhere.sqlite\n");
      EXPECT_EQ(ModeOf(entry.path()), ModeOf(own_.Path()));
    }
  EXPECT_EQ(copied, 1);

  const std::string bytes = ReadFile(Path("rain.sqlite")), sources = own_.Text();
  const auto again = NewDatabase(Path("rain.sqlite"));
  ASSERT_FALSE(again);
  EXPECT_THAT(again.error(), HasSubstr("There is a file"));
  EXPECT_EQ(ReadFile(Path("rain.sqlite")), bytes);
  // A file that is there may be used, and has one data source.
  EXPECT_EQ(RegisterDatabaseFile(Path("rain.sqlite")), "rain-2");
  EXPECT_EQ(own_.Text(), sources);
}

TEST_F(NewFile, LeavesNothingBehindWhenItCannotBeMade) {
  WriteFile(Path("text.sqlite"),
            "no database at all, but long enough to be looked at\n" + std::string(500, 'x'));
  for (const std::string& path : {Path("no/such/folder.sqlite"), Path("a;b.sqlite"), std::string()})
    EXPECT_FALSE(NewDatabase(path)) << path;
  for (const char* name : {"text.sqlite", "missing.sqlite"})
    EXPECT_FALSE(RegisterDatabaseFile(Path(name))) << name;
  EXPECT_THAT(own_.Text(), AllOf(Not(HasSubstr("text")), Not(HasSubstr("missing"))));
  EXPECT_FALSE(std::filesystem::exists(Path("missing.sqlite")));

  ::setenv("ODBCINI", (folder_ / "no/odbc.ini").c_str(), 1);  // the data source cannot be kept
  const auto made = NewDatabase(Path("rain.sqlite"));
  ::setenv("ODBCINI", own_.Path().c_str(), 1);
  EXPECT_FALSE(made);
  EXPECT_FALSE(std::filesystem::exists(Path("rain.sqlite")));
}

TEST_F(NewFile, IsMadeAndShownByTheCommandLine) {
  const std::string path = Path("rain.sqlite");
  const Ran made = RunCli({"create-tables", "--new", path});
  EXPECT_EQ(made.Status, 0) << made.Error;
  EXPECT_EQ(made.Out, "Driver=SQLite3;Database=" + path + ";\n");
  EXPECT_EQ(RunCli({"create-tables", "--new", path}).Status, 1);

  const std::string text = made.Out.substr(0, made.Out.size() - 1);
  const Ran again = RunCli({"create-tables", "--db", text, "--complete"});
  EXPECT_EQ(again.Status, 0);
  EXPECT_EQ(again.Out, "");
  const Ran structure = RunCli({"structure", "--db", text, "--script", folder_ / "s.txt"});
  EXPECT_EQ(structure.Status, 0);
  EXPECT_THAT(structure.Out, AllOf(StartsWith("Table Name\tField Name\tColumn Type\tColumn Size\n"),
                                   HasSubstr("CHART\tstation\t202\t25\n")));
  EXPECT_THAT(ReadFile(folder_ / "s.txt"),
              HasSubstr("create table LOGGER_BINARy(\r\nstation VARCHAR(25),\r\n"));

  WriteFile(folder_ / "empty.sqlite", "");
  const Ran printed =
      RunCli({"create-tables", "--db", "Driver=SQLite3;Database=" + (folder_ / "empty.sqlite"), "--print"});
  EXPECT_THAT(printed.Out, HasSubstr("CREATE TABLE DAILy_CHART ("));
  EXPECT_EQ(ReadFile(folder_ / "empty.sqlite"), "");

  const Ran none = RunCli({"structure", "--folder", folder_.Path()});
  EXPECT_EQ(none.Status, 1);
  EXPECT_THAT(none.Error, HasSubstr("has no database"));
}

TEST(ErrorReport, ShowsTheErrorAndKeepsOneLineOfIt) {
  TempFolder folder;
  ScriptedDialogs dialogs;
  const DbError error{-2147217900, "no such\ntable", "42S02"};
  ReportError(dialogs, folder.Path(), error, "ShowStructure");
  ReportError(dialogs, folder.Path(), error, "ShowStructure");
  ASSERT_EQ(dialogs.Boxes.size(), 2U);
  EXPECT_EQ(dialogs.Boxes[0].Text, "-2147217900 occurred in ShowStructure Description: no such\ntable");
  EXPECT_THAT(ReadFile(folder / "errors.tXt"),
              testing::MatchesRegex("(-2147217900 Source: ShowStructure Description: no such table "
                                    "Date: [0-9/]{10} [0-9:]{8}\r\n){2}"));

  std::filesystem::remove(folder / "errors.tXt");
  std::filesystem::create_directory(folder / "errors.tXt");
  ReportError(dialogs, folder.Path(), error, "ShowStructure");
  ASSERT_EQ(dialogs.Boxes.size(), 4U);
  EXPECT_EQ(dialogs.Boxes[3].Text, "-2147217900 occurred in the error reporting routine");
}

}  // namespace
}  // namespace hyetex
