// Choosing a database: the lists of what there is, connection texts, and what is kept of a choice.
#include "database/access/connection_choice.h"

#include <gmock/gmock.h>

#include "own_data_sources.h"
#include "platform/odbc/connection_text.h"
#include "scripted_dialogs.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
using testing::AllOf;
using testing::Contains;
using testing::Not;
using testing::UnorderedElementsAre;

TEST(ConnectionText, HidesEveryPasswordAndNothingElse) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"DSN=rain", "DSN=rain"},
      {"DSN=rain;UID=anna;PWD=secret;Database=d;", "DSN=rain;UID=anna;PWD=***;Database=d;"},
      {"DSN=rain;UID=anna;PWD=;", "DSN=rain;UID=anna;PWD=;"},
      {"ODBC;DSN=rain; password = secret", "ODBC;DSN=rain; password =***"},
      {"PWD={a;b}}c};UID=anna", "PWD=***;UID=anna"},
      {"Pwd={never closed;UID=anna", "Pwd=***"},
      {"PWD=a;PASSWORD=b", "PWD=***;PASSWORD=***"},
      {"Database=/PWD=x;DSN", "Database=/PWD=x;DSN"},
  };
  for (const auto& [text, shown] : cases) EXPECT_EQ(ShownConnection(text), shown);
}

TEST(ConnectionText, KnowsThePasswordOfItsDataSource) {
  OwnDataSources sources;
  sources.Write("[rain]\nDriver=SQLite3\nPassword=se}cret\n");
  EXPECT_THAT(ConnectionText("DSN=rain;PWD={a}}b}").Passwords(),
              UnorderedElementsAre("{a}}b}", "a}b", "se}cret"));
  EXPECT_THAT(ConnectionText("DSN=none").Passwords(), testing::IsEmpty());
}

TEST(ConnectionText, HidesPasswordsInTheWordsOfAProgram) {
  std::string words[] = {"--db", "DSN=rain;UID=anna;PWD={a;b}; Password = c", "--db=DSN=rain;Pwd=d", "CHART"};
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  HidePasswords(argv);
  EXPECT_THAT(words, testing::ElementsAre("--db", "DSN=rain;UID=anna;PWD=*****; Password =**",
                                          "--db=DSN=rain;Pwd=*", "CHART"));
}

TEST(ConnectionText, IsMadeOfTheValuesOfTheLogon) {
  EXPECT_EQ(
      LogonText({.DataSource = "rain", .Driver = "SQLite3", .Server = "x", .User = "anna", .Password = "s"}),
      "DSN=rain;UID=anna;PWD=s;");
  EXPECT_EQ(LogonText({.Driver = "PostgreSQL Unicode", .Server = "db;Port=1", .Database = "rain"}),
            "Driver=PostgreSQL Unicode;Server=db;Port=1;UID=;PWD=;Database=rain;");
  // What a driver would take for the end of a value travels in braces, and is found again.
  const std::string text = LogonText({.DataSource = "rain", .User = " a ", .Password = "x;y}z{"});
  EXPECT_EQ(text, "DSN=rain;UID={ a };PWD={x;y}}z{};");
  EXPECT_EQ(ConnectionText(text).Find("pwd").value_or(""), "x;y}z{");
  EXPECT_EQ(ConnectionText("ODBC;dsn = rain ").Find("DSN").value_or(""), "rain");
  EXPECT_EQ(ConnectionText("Driver=SQLite3").Find("DSN").value_or(""), "");
}

TEST(DataSources, AreListedBehindNoneAndTheirDriversOnce) {
  OwnDataSources own;
  const DataSources before = GetDSNsAndDrivers();
  ASSERT_FALSE(before.Names.empty());
  EXPECT_EQ(before.Names[0], "(None)");

  own.Write("[test-b]\nDriver=Zeppelin\n[test-a]\nDriver=Anchor\n[test-c]\nDriver=Zeppelin\n");
  const DataSources sources = GetDSNsAndDrivers();
  EXPECT_EQ(sources.Names.size(), before.Names.size() + 3);
  EXPECT_EQ(sources.Names[0], "(None)");
  EXPECT_THAT(sources.Names, AllOf(Contains("test-a"), Contains("test-b"), Contains("test-c")));
  EXPECT_TRUE(std::is_sorted(sources.Drivers.begin(), sources.Drivers.end()));
  EXPECT_THAT(sources.Drivers, AllOf(Contains("Anchor").Times(1), Contains("Zeppelin").Times(1)));
  EXPECT_THAT(InstalledDrivers(), AllOf(Contains("SQLite3"), Not(Contains("Anchor"))));
}

class Choice : public testing::Test {
 protected:
  std::string Kept() { return settings_.Get(setting::DatabaseName); }

  OwnDataSources own_;
  TempFolder folder_;
  Settings settings_{folder_.Path()};
  ScriptedDialogs dialogs_;
  HyetexPlotDB database_{settings_, dialogs_};
};

TEST_F(Choice, KeepsTheDataSourceForThisSessionAndTheNext) {
  ASSERT_TRUE(TakeDataSource(database_, settings_, "rain"));
  EXPECT_EQ(database_.ConnectionText, "DSN=rain");
  EXPECT_EQ(Kept(), "DSN=rain");

  std::filesystem::create_directory(folder_ / "no");
  Settings none(folder_ / "no");
  HyetexPlotDB other(none, dialogs_);
  std::filesystem::create_directory(folder_ / "no/Definitions.dat");  // cannot be written
  other.ConnectionText = "DSN=old";
  EXPECT_FALSE(TakeDataSource(other, none, "rain"));
  EXPECT_EQ(other.ConnectionText, "DSN=old");
}

// The operator is told by whoever wanted the database.
TEST_F(Choice, NoneAndAVanishedSourceAndNoChoiceCannotBeReached) {
  for (const char* text : {"", "DSN=(None)", "DSN=vanished"}) {
    ASSERT_TRUE(settings_.Set(setting::DatabaseName, text));
    database_.ConnectionText.clear();
    const auto opened = database_.OpenDatabase();
    ASSERT_FALSE(opened) << text;
    EXPECT_EQ(opened.error().Number, db_error::GeneralFailure) << text;
    EXPECT_NE(opened.error().Description, "") << text;
    EXPECT_EQ(database_.ConnectionText, text);
    EXPECT_FALSE(database_.Opens());
  }
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

TEST_F(Choice, LogonThatFailsSaysWhyAndKeepsNothing) {
  const auto done = Logon(database_, settings_, {.DataSource = "vanished", .Password = "secret"});
  ASSERT_FALSE(done);
  EXPECT_THAT(done.error(), AllOf(testing::HasSubstr("ata source"), Not(testing::HasSubstr("secret"))));
  EXPECT_EQ(Kept(), "");
  EXPECT_EQ(database_.ConnectionText, "");
}

}  // namespace
}  // namespace hyetex
