// Databases that others have made or written to: whatever their tables' names, schema, row numbers, widths
// and dates look like, charts are loaded, listed, extracted, converted and synchronised as in our own.
#include <gmock/gmock.h>

#include "core/text.h"
#include "database/access/structure.h"
#include "database/conversion/populate_grid.h"
#include "database/conversion/population_fixture.h"
#include "database/stations/synchronising.h"
#include "database/store/extracting.h"
#include "database/store/file_list.h"
#include "database/store/instruments.h"
#include "database/store/loading.h"
#include "database/store/stored_text.h"

namespace hyetex::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Date Ten = MakeDate(1998, 3, 5, 10);
const std::vector<std::string> OurTables{"chart", "chart_ascii", "chart_conversion", "instrument", "station"};
const std::string Code = "instrument_code_id";

class ForeignTables : public PopulationFixture {
 protected:
  void SetUp() override {
    PopulationFixture::SetUp();
    if (HasFatalFailure()) return;
    Lists.Cores = {"Northland"};
    Lists.Agencies = {{"Meteorology", 0}};
    Lists.Stations = {{"Hill", "NM-Hill-1", 0, 0}};
    Options.Overwrite = true;
    Run("INSERT INTO instrument (instrument_code_id) VALUES ('NM-Hill-1')");
  }
  bool IsSqlite() const { return GetParam() == Engine::SQLite; }

  LoadResult Load(const std::string& comment) {
    std::vector<std::string> paths;
    for (const double day : {0.0, 1.0}) {
      const std::string text =
          StoredChart{
              .Instrument = "NM-Hill-1", .Start = Ten + day, .End = Ten + day + 2.0 / 24, .Comment = comment}
              .Text();
      const StoredText stored = SplitStoredText(text);
      paths.push_back(Folder / std::string(stored.FileName));
      WriteFile(paths.back(), std::string(stored.Bytes));
    }
    LoadResult result = LoadFiles(Database, Lists, paths, Unwatched);
    EXPECT_THAT(result.Report.Refused, IsEmpty());
    return result;
  }
  /// Converts what the grid offers, at so many hours to GMT.
  ConversionResult ConvertOffered(const std::string& code, bool all, float hours) {
    std::vector<ChartToConvert> charts;
    const auto grid = LoadGrid(Database, code, all, {}, Lists, Unwatched);
    EXPECT_TRUE(grid) << (grid ? "" : grid.error().Description);
    for (const PopulateRow& row : grid.value_or(std::vector<PopulateRow>()))
      charts.push_back({row.ChartDate, false});
    Options.Variables.GmtShift = hours / 24;
    ConversionResult result = WriteChartRecords(Database, Lists, code, charts, Options, Boxes, Unwatched);
    EXPECT_THAT(result.Problems, IsEmpty());
    return result;
  }
  std::vector<std::string> RowsAt(int hour) {
    std::vector<std::string> rows;
    const auto at = [&](int day, int minutes) { return IsoText(MakeDate(1998, 3, day, hour, minutes)); };
    for (const int day : {5, 6}) {
      rows.push_back(at(day, 0) + " | " + at(day, 30) + " | 2.5");
      rows.push_back(at(day, 30) + " | " + at(day, 60) + " | 0");
      rows.push_back(at(day, 60) + " | " + at(day, 90) + " | 2.5");
      rows.push_back(at(day, 90) + " | " + at(day, 120) + " | 5");
    }
    return rows;
  }
  std::vector<std::string> RowsNow() {
    std::vector<std::string> rows;
    Recordset chart = Must(Recordset::Open(Db, "chart", {.Columns = {"start_time", "end_time", "depth"}}));
    for (; !chart.Eof(); Must(chart.MoveNext()))
      rows.push_back(IsoText(DateOf(Must(chart.Value(0)))) + " | " + IsoText(DateOf(Must(chart.Value(1)))) +
                     " | " + TextOf(Must(chart.Value(2))));
    std::sort(rows.begin(), rows.end());
    return rows;
  }

  /// All that the program does with a database; `others` is what other programs do in between.
  void ExpectEverythingWorks(const std::function<void()>& others = [] {}) {
    EXPECT_EQ(Load("first").Loaded.size(), 2U);
    others();
    const auto list = ReadDatabaseList(Database, Lists.Stations, Unwatched);
    ASSERT_TRUE(list) << list.error().Description;
    EXPECT_EQ(list->Files.size(), 2U);
    EXPECT_EQ(ExtractInstrument(Database, "nm-hill-1", Folder / "out", Unwatched).Extracted, 2);
    EXPECT_EQ(ExtractFiles(Database, list->Files, Folder / "out", Unwatched).Extracted, 2);
    EXPECT_EQ(ConvertOffered("NM-Hill-1", false, 2).ChartsConverted, 2);
    EXPECT_EQ(RowsNow(), RowsAt(8));
    EXPECT_THAT(Read("chart_ascii", {"loaded"}), ElementsAre("1", "1"));
    others();
    EXPECT_EQ(Load("second").Loaded.size(), 2U);
    EXPECT_THAT(Read("chart_ascii", {"comments", "loaded"}), ElementsAre("second | null", "second | null"));
    others();
    const std::string listed = ListInstruments(Database).value().at(0);
    for (const bool all : {false, true}) {
      EXPECT_EQ(ConvertOffered(listed, all, 3).ChartsConverted, 2) << all;
      EXPECT_EQ(RowsNow(), RowsAt(7)) << all;
      EXPECT_EQ(Read("chart_conversion", {"row_count"}).size(), 2U);
      others();
    }
    EXPECT_FALSE(WriteStoredText(Database, listed, Ten + 1, Folder.Path()).value_or("").empty());
    Lists.Stations.push_back({"Dam", "NM-Dam-2", 0, 0});
    Boxes.Typed = {"01/02/1925"};
    EXPECT_EQ(Synchronise(Database, Lists, Folder.Path(), Boxes, Unwatched), Synchronised::Saved);
    EXPECT_EQ(Read("instrument", {"instrument_code_id"}).size(), 2U);
    EXPECT_EQ(Read("station", {"station_code_id"}).size(), 1U);
    EXPECT_TRUE(Must(MissingTables(Db)).empty());
    const SchemaOutcome more = Make(Db, Must(MissingCompletion(Db)));
    EXPECT_THAT(more.Made, IsEmpty());
    EXPECT_EQ(more.Failed.size(), Views) << "which cannot have an index";
  }

  static constexpr struct {
    const char *Table, *Column, *Index;
  } Times[] = {{"chart_ascii", "chart_date", "chart_ascii_by_date"},
               {"chart", "start_time", "chart_by_time"},
               {"chart", "end_time", "chart_by_time"}};
  /// Others write times in this form, in which "$" stands for what is there.
  void ExpectEverythingWorksWithTimes(const std::string& form) {
    SCOPED_TRACE(form);
    BeginAnew();
    ExpectEverythingWorks([&] {
      for (const auto& [table, column, index] : Times) {
        std::string value = form;
        for (std::size_t at = 0; (at = value.find('$')) != std::string::npos;) value.replace(at, 1, column);
        Run("UPDATE " + std::string(table) + " SET " + column + " = " + value);
      }
    });
  }
  void BeginAnew() {
    for (const std::string& table : OurTables)
      Run("DELETE FROM " + table + (table == "instrument" ? " WHERE " + Code + " LIKE 'NM-Dam%'" : ""));
    Lists.Stations.resize(1);
  }

  std::size_t Views = 0;
  UnwatchedProgress Unwatched;
};
HYETEX_ON_ALL_ENGINES(ForeignTables);

TEST_P(ForeignTables, HaveNamesThatWereMadeWithQuotes) {
  for (const std::string& table : OurTables) {
    for (const CatalogColumn& column : Must(Db.Columns(table)))
      Run("ALTER TABLE " + table + " RENAME COLUMN " + Db.Quoted(column.Name) + " TO \"" +
          UpperAscii(column.Name) + "\"");
    Run("ALTER TABLE " + table + " RENAME TO \"x" + table + "\"");
    Run("ALTER TABLE \"x" + table + "\" RENAME TO \"" + UpperAscii(table) + "\"");
  }
  ExpectEverythingWorks();
}

TEST_P(ForeignTables, LieInASchemaThatTheDatabaseSearchesFirst) {
  if (IsSqlite()) return;
  Run("CREATE SCHEMA my_own");
  Run("CREATE SCHEMA myxown");
  for (const std::string& table : OurTables) {
    Run("ALTER TABLE " + table + " SET SCHEMA my_own");
    for (const char* other : {"public.", "myxown."})
      Run("CREATE TABLE " + (other + table) + " (another integer)");
  }
  OnServer("ALTER DATABASE " + DatabaseName() + " SET search_path = my_own, public");
  Db = Must(Connection::Open(Text()));
  ExpectEverythingWorks();
  // What the first schema lacks is found in the next one.
  Run("DROP TABLE my_own.chart_conversion");
  EXPECT_EQ(Must(Db.Columns("CHART_CONVERSION")).size(), 1U);
  std::vector<std::string> shown;
  for (const TableStructure& table : Must(ShowStructure(Db, Unwatched)))
    if (table.Name.starts_with("chart"))
      shown.push_back(table.Name + " " + std::to_string(table.Columns.size()));
  EXPECT_THAT(shown, ElementsAre("chart 8", "chart_ascii 8", "chart_conversion 1"));
}

TEST_P(ForeignTables, HaveRowsWithoutNumbers) {
  for (const std::string table : {"chart", "chart_ascii", "instrument"}) {
    if (IsSqlite()) {
      std::string columns;
      for (const CatalogColumn& column : Must(Db.Columns(table)))
        columns += column.Name + " " + Must(Db.TypeWord(column.Type, column.Size)) + ", ";
      const std::string key = table == "chart"         ? "instrument_code_id, start_time, end_time"
                              : table == "chart_ascii" ? "chart_date, instrument_code_id"
                                                       : Code;
      Run("DROP TABLE " + table);
      Run("CREATE TABLE " + table + " (" + columns + "PRIMARY KEY (" + key + ")) WITHOUT ROWID");
    } else {
      Run("ALTER TABLE " + table + " RENAME TO stored_" + table);
      Run("CREATE VIEW " + table + " AS SELECT * FROM stored_" + table);
      ++Views;
    }
  }
  if (IsSqlite()) Run("INSERT INTO instrument (instrument_code_id) VALUES ('NM-Hill-1')");
  int round = 0;
  ExpectEverythingWorks([&] {
    if (IsSqlite() && ++round % 2 == 1) Run("UPDATE chart_ascii SET chart_date = substr(chart_date, 1, 16)");
  });
}

TEST_P(ForeignTables, FillCodesUpWithBlanks) {
  const auto pad = [&](int width) {
    for (const std::string& table : OurTables)
      if (table != "station")
        Run("UPDATE " + table + " SET " + Code + " = substr(" + Code + " || '" + std::string(64, ' ') +
            "', 1, " + std::to_string(width) + ")");
  };
  for (const int width : {17, 40}) {
    SCOPED_TRACE(width);
    BeginAnew();
    ExpectEverythingWorks([&] { pad(width); });
  }
  if (IsSqlite()) return;
  BeginAnew();
  for (const std::string& table : OurTables)
    if (table != "station") Run("ALTER TABLE " + table + " ALTER COLUMN " + Code + " TYPE char(18)");
  ExpectEverythingWorks();
}

TEST_P(ForeignTables, HoldDatesInOtherForms) {
  const std::string second = IsSqlite() ? "substr($, 1, 19) || '" : "date_trunc('second', $) + interval '0";
  std::vector<std::string> forms{second + ".7'"};
  if (IsSqlite()) forms.insert(forms.end(), {second + ".000Z'", "substr($, 1, 16)", "replace($, ' ', 'T')"});
  for (const std::string& form : forms) ExpectEverythingWorksWithTimes(form);
}

TEST_P(ForeignTables, HoldDatesAsText) {
  for (const auto& [table, column, index] : Times) {
    Run("DROP INDEX IF EXISTS " + std::string(index));
    Run("ALTER TABLE " + std::string(table) + " DROP COLUMN " + column);
    Run("ALTER TABLE " + std::string(table) + " ADD COLUMN " + column + " TEXT");
  }
  for (const char* form : {"$", "replace(substr($, 1, 16), ' ', 'T')", "substr($, 1, 16) || ':00.25'"})
    ExpectEverythingWorksWithTimes(form);
}

}  // namespace
}  // namespace hyetex::test
