// The tables of a database: made, completed, read back and written out as a script.
#include "database/access/schema.h"
#include "database/access/names.h"

#include <gmock/gmock.h>

#include "core/text.h"
#include "database/access/create_tables.h"
#include "database/access/structure.h"
#include "database/engines.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

/// Stops after some steps.
class Stopped : public Progress {
 public:
  explicit Stopped(int steps) : left_(steps) {}
  bool Step(std::int64_t, std::int64_t, std::string_view) override { return left_-- > 0; }

 private:
  int left_;
};

class Schema : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    ASSERT_FALSE(HasFatalFailure());
    connection_ = Must(Connection::Open(Text()));
  }
  std::vector<TableStructure> Structure() {
    UnwatchedProgress progress;
    return Must(ShowStructure(connection_, progress));
  }
  std::string Statements() {
    std::string all;
    for (const auto& find : {MissingTables, MissingCompletion})
      for (const SchemaChange& change : Must(find(connection_)))
        if (!change.MayBeThere) all += change.Statement + "\n";
    return all;
  }

  Connection connection_;
};
HYETEX_ON_ALL_ENGINES(Schema);

TEST_P(Schema, ReadsBackAsItWasMade) {
  EXPECT_EQ(Must(CreateTables(connection_)).Made.size(), SchemaTables().size());
  const std::vector<TableStructure> made = Structure();
  ASSERT_EQ(made.size(), SchemaTables().size());
  for (const TableStructure& table : made) {
    const SchemaTable* wanted = FindSchemaTable(table.Name);
    ASSERT_NE(wanted, nullptr) << table.Name;
    ASSERT_EQ(table.Columns.size(), wanted->Columns.size()) << table.Name;
    for (std::size_t i = 0; i < table.Columns.size(); ++i) {
      const CatalogColumn& column = table.Columns[i];
      const SchemaColumn& described = wanted->Columns[i];
      const std::string where = table.Name + "." + column.Name;
      EXPECT_TRUE(EqualIgnoringCase(column.Name, described.Name)) << where;
      const bool widened = GetParam() == Engine::SQLite && described.Type == ColumnType::Real;
      EXPECT_EQ(column.Type, widened ? ColumnType::Double : described.Type) << where;
      if (described.Type == ColumnType::VarChar) {
        EXPECT_EQ(column.Size, described.Size) << where;
      }
    }
  }
}

TEST_P(Schema, SecondRunChangesNothingAndReportsNothing) {
  for (const bool again : {false, true}) {
    const SchemaOutcome tables = Must(CreateTables(connection_));
    const SchemaOutcome more = Make(connection_, Must(MissingCompletion(connection_)));
    EXPECT_EQ(tables.Made.empty(), again);
    EXPECT_EQ(more.Made.size(), again ? 0U : 2U);
    EXPECT_TRUE(tables.Failed.empty() && more.Failed.empty());
    EXPECT_EQ(Statements(), "");
  }
  const auto charts = Must(connection_.Columns("CHART_ASCII"));
  ASSERT_EQ(charts.size(), 8U);
  EXPECT_TRUE(EqualIgnoringCase(charts[7].Name, column::Loaded));
  EXPECT_EQ(charts[7].Type, ColumnType::Integer);
  EXPECT_EQ(Must(connection_.Columns("chart_conversion")).size(), ConversionTable().Columns.size());
}

// A database that came from elsewhere keeps its own columns and spelling, and what fails stops nothing.
TEST_P(Schema, CompletesAPartlyFilledDatabase) {
  Must(connection_.Execute("CREATE TABLE Chart_Ascii (instrument_code_id VARCHAR(9), chart_date DATE)"));
  Must(connection_.Execute("CREATE TABLE sTATION (only_one INTEGER)"));
  const SchemaOutcome tables = Must(CreateTables(connection_));
  EXPECT_EQ(tables.Made.size(), SchemaTables().size() - 2);
  EXPECT_EQ(Must(connection_.Columns("STATION")).size(), 1U);

  Must(connection_.Execute("DROP TABLE CHART"));
  Must(connection_.Execute("CREATE VIEW CHART AS SELECT 1 AS one"));
  const SchemaOutcome more = Make(connection_, Must(MissingCompletion(connection_)));
  EXPECT_EQ(Must(connection_.Columns("chart_ascii")).size(), 3U);
  ASSERT_EQ(more.Failed.size(), 1U);
  EXPECT_EQ(more.Failed[0].first, "index chart_by_time");
  EXPECT_EQ(Structure().size(), SchemaTables().size());  // a view is no table, and one is ours alone
}

TEST_P(Schema, ScriptIsExact) {
  const std::string preface =
      "This script is meant to be reviewed and used by an experienced DBA. \r\n"
      "The script shows the ODBC equivalent data types for Microsoft ODBC. \r\n"
      "These will likely need to be changed for any given database software. \r\n"
      "The names of fields and tables should not be modified as the program relies on \r\n"
      "this basic naming and table structure.\r\n";
  EXPECT_EQ(StructureScript(Structure()), preface);

  const std::string time = Must(connection_.TypeWord(ColumnType::DateTime, 0));
  const std::string bytes = Must(connection_.TypeWord(ColumnType::LongBinary, 0));
  Must(connection_.Execute("CREATE TABLE a (name VARCHAR(25), file " + bytes + ")"));
  Must(connection_.Execute("CREATE TABLE b (whole INTEGER, small SMALLINT, depth DOUBLE PRECISION, at " +
                           time + ")"));
  Must(connection_.Execute("CREATE VIEW c AS SELECT name FROM a"));
  EXPECT_EQ(StructureScript(Structure()),
            preface +
                "create table a(\r\nname VARCHAR(25),\r\nfile LONGBINARy,\r\n);\r\n\r\n"
                "create table b(\r\nwhole COUNTER,\r\nsmall ,\r\ndepth DOUBLE,\r\n"
                "at DATETIME,\r\n);\r\n\r\n");

  Stopped afterOne(1);
  EXPECT_EQ(Must(ShowStructure(connection_, afterOne)).size(), 1U);
}

TEST_P(Schema, ShowsKeysOfSeveralColumns) {
  Must(connection_.Execute("CREATE TABLE p (a INTEGER, b INTEGER, CONSTRAINT kp PRIMARY KEY (a, b))"));
  Must(connection_.Execute(
      "CREATE TABLE c (x INTEGER, y INTEGER, CONSTRAINT kc FOREIGN KEY (x, y) REFERENCES p (a, b))"));
  UnwatchedProgress progress;
  std::string shown;
  for (const CatalogKey& key : Must(ShowKeys(connection_, progress)))
    shown += key.Table + std::to_string(static_cast<int>(key.Type)) + key.Column + key.Reference + " ";
  EXPECT_THAT(shown, testing::AnyOf("p1a p1b c2xp.a c2yp.b ", "c2xp.a c2yp.b p1a p1b "));
}

TEST(SchemaWithoutDatabase, SaysThatADataSourceMustBeSelected) {
  Connection closed;
  const auto made = CreateTables(closed);
  ASSERT_FALSE(made);
  EXPECT_EQ(made.error().Description, "Must have a selected data source to create tables in.");
}

}  // namespace
}  // namespace hyetex
