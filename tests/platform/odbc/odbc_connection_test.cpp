#include "platform/odbc/connection.h"

#include <gmock/gmock.h>

#include <chrono>
#include <optional>

#include "core/dates.h"
#include "core/text.h"
#include "database/engines.h"
#include "own_data_sources.h"
#include "platform/odbc/connection_text.h"
#include "platform/odbc/recordset.h"

namespace hyetex {
namespace {

using test::Must;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class OdbcConnectionTest : public test::EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    Db = Must(Connection::Open(Text()));
  }
  std::int64_t Rows(const std::string& table) {
    std::int64_t rows = 0;
    for (Recordset all = Must(Recordset::Open(Db, table)); !all.Eof(); Must(all.MoveNext())) ++rows;
    return rows;
  }
  Connection Db;
};
HYETEX_ON_ALL_ENGINES(OdbcConnectionTest);

TEST_P(OdbcConnectionTest, TellsTheTypesThatTablesWereMadeOf) {
  const bool server = GetParam() != test::Engine::SQLite;
  const struct {
    ColumnType Type;
    int Size;
  } types[] = {{ColumnType::SmallInt, 0},  {ColumnType::Integer, 0},  {ColumnType::Real, 0},
               {ColumnType::Double, 0},    {ColumnType::DateTime, 0}, {ColumnType::VarChar, 25},
               {ColumnType::LongBinary, 0}};
  std::string list;
  for (const auto& type : types)
    list += (list.empty() ? "" : ", ") + std::string("c") + std::to_string(static_cast<int>(type.Type)) +
            " " + Must(Db.TypeWord(type.Type, type.Size));
  EXPECT_THAT(UpperAscii(list), Not(HasSubstr("TIMESTAMPTZ")));
  Must(Db.Execute("CREATE TABLE Chart_1 (" + list + ")"));
  Must(Db.Execute("CREATE TABLE ChartX1 (other integer)"));  // "_" is no pattern here
  Must(Db.Execute("CREATE VIEW seen AS SELECT c3 FROM Chart_1"));
  const auto columns = Must(Db.Columns("CHART_1"));
  ASSERT_EQ(columns.size(), std::size(types));
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const bool wider = !server && types[i].Type == ColumnType::Real;
    EXPECT_EQ(columns[i].Type, wider ? ColumnType::Double : types[i].Type) << i;
  }
  EXPECT_EQ(columns[5].Size, 25);
  std::vector<std::string> tables;
  for (const CatalogTable& table : Must(Db.Tables()))
    if (table.Type == "TABLE") tables.push_back(UpperAscii(table.Name));
  EXPECT_THAT(tables, ::testing::UnorderedElementsAre("CHART_1", "CHARTX1"));
  EXPECT_FALSE(Must(Db.FindTable("chart_1; DROP TABLE chart_1")));
  EXPECT_THAT(Db.Columns("none").error().Description, HasSubstr("no table none"));
  EXPECT_EQ(Rows("Seen"), 0);
}

TEST_P(OdbcConnectionTest, TellsErrorsApartByTheirNumbers) {
  Must(Db.Execute("CREATE TABLE t (a integer, b varchar(3))"));
  Must(Db.Execute("CREATE UNIQUE INDEX one_a ON t (a)"));
  Must(Db.Execute("INSERT INTO t (a) VALUES (1)"));
  EXPECT_EQ(Db.Execute("INSERT INTO t (a) VALUES (1)").error().Number, db_error::ConstraintViolation);
  const DbError wrong = Db.Execute("SELEC 1").error();
  EXPECT_EQ(wrong.Number, db_error::StatementFailed);
  EXPECT_THAT(wrong.Description, Not(HasSubstr("\n")));
  Recordset rows = Must(Recordset::Open(Db, "T"));
  EXPECT_EQ(rows.Value("c").error().Number, db_error::MissingField);
  EXPECT_EQ(rows.Value(2).error().Number, db_error::MissingField);
  EXPECT_EQ(Recordset::Open(Db, "t", {{"c"}}).error().Number, db_error::MissingField);
  EXPECT_EQ(Recordset::Open(Db, "t", {{}, {{"a = 1 OR b", Compare::Equal, DbNull()}}}).error().Number,
            db_error::MissingField);
  if (GetParam() != test::Engine::SQLite) {  // SQLite keeps texts of any length
    Must(rows.SetValue("b", std::string("1234")));
    const DbError long_ = rows.Update().error();
    EXPECT_EQ(long_.Number, db_error::StatementFailed);
    EXPECT_TRUE(rows.IsPending());
    rows.CancelUpdate();
  }
  Must(rows.MoveNext());
  EXPECT_TRUE(rows.Eof());
  EXPECT_EQ(rows.MoveNext().error().Number, db_error::NoCurrentRow);
  EXPECT_EQ(rows.Delete().error().Number, db_error::NoCurrentRow);
  rows.Close();
  EXPECT_EQ(rows.MoveFirst().error().Number, db_error::RecordsetClosed);
  Recordset left = Must(Recordset::Open(Db, "t"));
  Db.Close();
  EXPECT_EQ(left.MoveFirst().error().Number, db_error::RecordsetClosed);
  EXPECT_EQ(Db.Execute("SELECT 1").error().Number, db_error::RecordsetClosed);
}

// Both engines repeat the word that they stumble over.
TEST_P(OdbcConnectionTest, ShowsNoPasswordThatADriverRepeats) {
  const std::string own = ConnectionText(Text()).Find("PWD").value_or("");
  for (const std::string key : {"PWD", "Password", "passwd"}) {
    const std::string password = own.empty() ? "se}cret" : own;
    Db = Must(Connection::Open(own.empty() ? Text() + ";" + key + "={se}}cret}" : Text()));
    const std::string said = Db.Execute("SELECT 1 FROM \"" + password + "\"").error().Description;
    EXPECT_THAT(said, AllOf(HasSubstr("***"), Not(HasSubstr(password)))) << key;
  }
}

TEST_P(OdbcConnectionTest, TransactionIsAllOrNothing) {
  Must(Db.Execute("CREATE TABLE t (a integer)"));
  Must(Db.Execute("CREATE UNIQUE INDEX one_a ON t (a)"));
  {
    Transaction transaction = Must(Transaction::Begin(Db));
    EXPECT_EQ(Transaction::Begin(Db).error().Number, db_error::NotNow);
    Must(Db.Execute("INSERT INTO t VALUES (1)"));
    Must(transaction.Commit());
    EXPECT_FALSE(transaction.Commit());
  }
  {
    Transaction transaction = Must(Transaction::Begin(Db));
    Must(Db.Execute("INSERT INTO t VALUES (2)"));
    EXPECT_EQ(Rows("t"), 2);
  }
  EXPECT_EQ(Rows("t"), 1);
  {
    Transaction transaction = Must(Transaction::Begin(Db));
    Must(Db.Execute("INSERT INTO t VALUES (3)"));
    Recordset inside = Must(Recordset::Open(Db, "t"));
    EXPECT_FALSE(Db.Execute("INSERT INTO t VALUES (1)"));
    EXPECT_FALSE(Db.Execute("INSERT INTO t VALUES (4)"));  // would be all that is left of it
    EXPECT_FALSE(inside.MoveFirst());
    EXPECT_EQ(transaction.Commit().error().Number, db_error::ConstraintViolation);
  }
  Must(Db.Execute("INSERT INTO t VALUES (5)"));
  Db = Must(Connection::Open(Text()));
  EXPECT_EQ(Rows("t"), 2);
}

TEST_P(OdbcConnectionTest, TellsTablesApartWhoseNamesAreAlike) {
  std::vector<std::string> names{"rain_1", "rainx1", "rain%", "ra\"in", "rain"};
  if (GetParam() == test::Engine::SQLite)
    names.emplace_back("ra\\in_1");  // not for PostgreSQL's driver
  else
    names.insert(names.end(), {"Rain_1", "RAIN"});
  std::string columns = "c0 integer";
  for (std::size_t i = 0; i < names.size(); ++i) {
    Must(Db.Execute("CREATE TABLE " + Db.Quoted(names[i]) + " (" + columns + ")"));
    columns += ", c" + std::to_string(i + 1) + " integer";
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(Must(Db.Columns(names[i])).size(), i + 1) << names[i];
    EXPECT_EQ(Rows(names[i]), 0) << names[i];
  }
}

TEST_P(OdbcConnectionTest, ForgetsATableThatIsMadeAnew) {
  Must(Db.Execute("CREATE TABLE t (a integer, b integer)"));
  EXPECT_EQ(Must(Db.Columns("t")).size(), 2U);
  {
    const Transaction undone = Must(Transaction::Begin(Db));
    Must(Db.Execute("ALTER TABLE t ADD COLUMN c integer"));
    EXPECT_EQ(Must(Db.Columns("t")).size(), 3U);
  }
  EXPECT_EQ(Must(Db.Columns("t")).size(), 2U);
  Must(Db.Execute("DROP TABLE t"));
  EXPECT_FALSE(Db.Columns("t"));
  Must(Db.Execute("CREATE TABLE t (c varchar(9))"));
  RowWriter writer = Must(RowWriter::Open(Db, "t", {"c"}));
  Must(writer.Add({"text"}));
  EXPECT_EQ(Must(writer.Finish()), 1);
}

// SQLite's driver tells of an empty catalog where it cannot read it.
TEST_P(OdbcConnectionTest, NeverTakesALockForAMissingTable) {
  const bool sqlite = GetParam() == test::Engine::SQLite;
  Must(Db.Execute("CREATE TABLE t (a integer)"));
  Connection reader = Must(Connection::Open(Text() + (sqlite ? ";Timeout=50" : "")));
  std::optional<Transaction> holds;
  if (sqlite) {
    Must(Db.Execute("PRAGMA locking_mode = EXCLUSIVE"));
    Must(Db.Execute("INSERT INTO t VALUES (1)"));
  } else {
    Must(reader.Execute("SET lock_timeout TO '50ms'"));
    holds.emplace(Must(Transaction::Begin(Db)));
    Must(Db.Execute("LOCK TABLE t IN ACCESS EXCLUSIVE MODE"));
  }
  const auto opened = Recordset::Open(reader, "t");
  ASSERT_FALSE(opened);
  EXPECT_TRUE(IsLocked(opened.error())) << opened.error().Description;
  const auto found = reader.FindTable("t");
  const auto columns = reader.Columns("t");
  const auto tables = reader.Tables();
  if (sqlite) {
    ASSERT_FALSE(found || columns || tables);
    for (const DbError& error : {found.error(), columns.error(), tables.error()})
      EXPECT_TRUE(IsLocked(error)) << error.Description;
  } else {
    EXPECT_EQ(Must(found), "t");
  }
  holds.reset();
  Db.Close();
  EXPECT_EQ(Must(reader.Columns("t")).size(), 1U);
}

TEST_P(OdbcConnectionTest, TakesOptionsOfTheTextBeforeItsOwn) {
  const bool sqlite = GetParam() == test::Engine::SQLite;
  ConnectionText text(sqlite ? "Driver=SQLite3;stepapi=0;TIMEOUT=40"
                             : "Driver=PostgreSQL Unicode;usedeclarefetch=0;Fetch=7;Protocol=7.4-1");
  const std::string before = text.Text();
  text.AddDriverOptions();
  EXPECT_THAT(text.Text(), ::testing::StartsWith(before));
  const std::string added = UpperAscii(text.Text().substr(before.size()));
  for (const char* key : {"STEPAPI", "TIMEOUT", "USEDECLAREFETCH", "FETCH=", "PROTOCOL"})
    EXPECT_THAT(added, Not(HasSubstr(key)));
  EXPECT_THAT(added, HasSubstr(sqlite ? "NOCREAT=1" : "BYTEAASLONGVARBINARY=1"));
  if (!sqlite) return;
  // Also behind a wait of the program's own.
  Must(Db.Execute("CREATE TABLE t (a integer)"));
  Connection impatient = Must(Connection::Open(Text() + ";Timeout=40"));
  UnwatchedProgress progress;
  { const auto waited = Must(Transaction::BeginWriting(impatient, "t", progress)); }
  const Transaction holds = Must(Transaction::BeginWriting(Db, "t", progress));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(IsLocked(impatient.Execute("INSERT INTO t VALUES (1)").error()));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

// An hour that the clocks of that zone leave out.
TEST_P(OdbcConnectionTest, ReadsTimesWithAZoneAsTheyWereWritten) {
  if (GetParam() == test::Engine::SQLite) return;
  OnServer("ALTER DATABASE " + DatabaseName() + " SET timezone TO 'Europe/Berlin'");
  Db = Must(Connection::Open(Text()));
  Must(Db.Execute("CREATE TABLE t (at timestamptz)"));
  const DbDate gap{MakeDate(1998, 3, 29, 2, 30)};
  RowWriter writer = Must(RowWriter::Open(Db, "t", {"at"}));
  Must(writer.Add({gap}));
  Must(writer.Finish());
  Recordset rows = Must(Recordset::Open(Db, "t", {.Where = {{"at", Compare::Equal, gap}}}));
  EXPECT_TRUE(Must(rows.Value(0)) == DbValue(gap));
  rows.Close();
  EXPECT_EQ(Must(Db.Execute("DELETE FROM t WHERE at = '1998-03-29 02:30:00+00'")), 1);
}

// A data source gets the same options as a text that names the driver.
TEST_P(OdbcConnectionTest, OpensDataSourcesByTheirNames) {
  test::OwnDataSources sources;
  const std::string name =
      test::EngineName({GetParam(), 0});          // the driver manager remembers sources for a while
  EXPECT_FALSE(Connection::Open("DSN=" + name));  // which is remembered, and must not count for the new one
  std::string section = "[" + name + "]\n" + Text();
  std::replace(section.begin(), section.end(), ';', '\n');
  if (const std::size_t at = section.find("\nServer="); at != std::string::npos)
    section.insert(at + 7, "name");
  sources.Write(section + "\nNoCreat=0\n\n[gone]\nDriver=SQLite3\nDatabase=" + (Folder / "gone.sqlite") +
                "\n");
  Must(Db.Execute("CREATE TABLE t (a " + Must(Db.TypeWord(ColumnType::LongBinary, 0)) + ")"));
  // What the data source does not know stands in the text.
  const std::size_t user = Text().find("UID="), database = Text().find("Database=");
  const std::string words = user == std::string::npos ? "" : Text().substr(user, database - user);
  Db = Must(Connection::Open("PROVIDER=MSDASQL;ODBC;DSN=" + name + ";" + words));
  EXPECT_EQ(Must(Db.Columns("t"))[0].Type, ColumnType::LongBinary);
  for (const std::string text : {"DSN=gone", "DSN=(None)", "", "Driver=none;Database=x;PWD=secret",
                                 "Driver=PostgreSQL Unicode;Server=127.0.0.1;Port=1;UID=u;PWD=secret"}) {
    const auto opened = Connection::Open(text);
    ASSERT_FALSE(opened) << text;
    EXPECT_EQ(opened.error().Number, db_error::GeneralFailure) << text;
    EXPECT_THAT(opened.error().Description, Not(HasSubstr("secret")));
  }
  EXPECT_FALSE(std::filesystem::exists(Folder / "gone.sqlite"));
}

TEST_P(OdbcConnectionTest, FailsOnEveryCallOnceTheServerIsGone) {
  if (GetParam() == test::Engine::SQLite) return;  // has no server
  Must(Db.Execute("CREATE TABLE t AS SELECT generate_series(1, 5000) AS a"));
  Recordset rows = Must(Recordset::Open(Db, "t"));
  RowWriter writer = Must(RowWriter::Open(Db, "t", {"a"}));
  Transaction transaction = Must(Transaction::Begin(Db));
  OnServer("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE datname = '" + DatabaseName() + "'");
  Must(writer.Add({std::int64_t{1}}));
  EXPECT_EQ(writer.Finish().error().Number, db_error::GeneralFailure);
  EXPECT_FALSE(rows.Move(4000));
  EXPECT_FALSE(Db.Tables());
  EXPECT_EQ(transaction.Commit().error().Number, db_error::GeneralFailure);
  EXPECT_FALSE(rows.MoveFirst());
  EXPECT_FALSE(Db.Execute("SELECT 1"));
  EXPECT_FALSE(Transaction::Begin(Db));
}

}  // namespace
}  // namespace hyetex
