#include <sstream>

#include "core/dates.h"
#include "database/access/create_tables.h"
#include "database/engines.h"
#include "rain/manual_gage.h"
#include "rain/rain_files.h"
#include "rain/rain_report.h"
#include "rain/rain_storms.h"
#include "rain/rain_tables.h"
#include "rain/rain_text.h"
#include "sef_rules.h"
#include "slow_rain.h"

namespace hyetex::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* Code = "NM-O'Hara Änd-01";

class RainDatabaseTest : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    Database.ConnectionText = Text();
    Must(Database.OpenDatabase());
    CreateTables(Database.DatabaseConnection);
    const auto rest = Must(MissingCompletion(Database.DatabaseConnection));
    Make(Database.DatabaseConnection, rest);
  }
  void Add(const std::string& table, const std::vector<std::pair<std::string, DbValue>>& values) {
    Must(Recordset::Insert(Database.DatabaseConnection, table, values));
  }
  void AddRow(RainTime start, RainTime minutes, DbValue depth, const std::string& code = Code,
              const std::string& trust = "Acceptable") {
    Add("CHART", {{"instrument_code_id", code},
                  {"start_time", DbDate{ToLocal(start, {})}},
                  {"end_time", DbDate{ToLocal(start + 60 * minutes, {})}},
                  {"depth", std::move(depth)},
                  {"data_Reliability_code", trust}});
  }
  void AddSite() {
    Add("INSTRUMENT", {{"instrument_code_id", std::string(Code)},
                       {"station_code_id", std::string("S|1")},
                       {"station", std::string("O'Hara")},
                       {"instrument_type", std::string("siphon")}});
    Add("STATION", {{"station_code_id", std::string("S|1")},
                    {"station", std::string("O'Hara\tÄnd")},
                    {"owner_agency", std::string("Rain & Sons")},
                    {"utme", 448251.795},
                    {"utmn", 5411932.678},
                    {"utm_zone", std::int64_t{31}},
                    {"altitude", 33.0}});
  }
  std::vector<std::string> Steps(RainStepKind kind, const RainClock& clock, RainSpan span = {}) {
    std::vector<std::string> lines;
    RainSteps sink(kind, clock, span, [&](const RainStep& step) { lines.push_back(StepLine(step, clock)); });
    Remarks = Must(ReadRain(Database, {.Instrument = Code, .Span = span}, {&sink}, Progress));
    return lines;
  }
  std::vector<std::string> Rows(const std::string& table, const std::vector<std::string>& columns) {
    auto rows = Must(Recordset::Open(Database.DatabaseConnection, table, {.Columns = columns}));
    std::vector<std::string> lines;
    for (; !rows.Eof(); Must(rows.MoveNext())) {
      std::string line;
      for (int i = 0; i < rows.FieldCount(); ++i) {
        const DbValue value = Must(rows.Value(i));
        const auto* date = std::get_if<DbDate>(&value);
        line += (i > 0 ? "|" : "") + (date != nullptr ? IsoText(date->Value) : TextOf(value));
      }
      lines.push_back(line);
    }
    return lines;
  }

  UnattendedDialogs Boxes;
  Settings Setting{""};
  HyetexPlotDB Database{Setting, Boxes};
  UnwatchedProgress Progress;
  RainRemarks Remarks;
};
HYETEX_ON_ALL_ENGINES(RainDatabaseTest);

const RainTime Ten = SecondsOf(MakeDate(1998, 3, 5, 10));

TEST_P(RainDatabaseTest, ReadsOneInstrumentInTheOrderOfTime) {
  EXPECT_THAT(Steps(RainDays, {}), IsEmpty()) << "a table without rows";
  EXPECT_FALSE(Must(FindRainExtent(Database, Code)));
  AddRow(Ten + 3600, 30, 0.33);
  AddRow(Ten - 86400, 10, 9.0);
  AddRow(Ten, 60, 0.11);
  AddRow(Ten + 5400, 30, DbNull{});
  AddRow(Ten, 60, 50.0, "NM-O'Hara Änd-02");
  Add("CHART", {{"instrument_code_id", std::string(Code)}, {"depth", 7.0}});
  EXPECT_THAT(Steps({RainStepKind::Unit::Minutes, 60}, {-420, 0}, {Ten - 3600, Ten + 7200}),
              ElementsAre("1998-03-05T02:00:00-07:00,1998-03-05T03:00:00-07:00,,0\n",
                          "1998-03-05T03:00:00-07:00,1998-03-05T04:00:00-07:00,0.11,1\n",
                          "1998-03-05T04:00:00-07:00,1998-03-05T05:00:00-07:00,0.33,0.5\n"));
  EXPECT_EQ(Remarks.Unknown, 1);
  EXPECT_EQ(Steps(RainDays, {}).size(), 2U);
  EXPECT_EQ(Remarks.Untimed, 1);
  const auto extent = Must(FindRainExtent(Database, "nm-o'hara Änd-01"));
  ASSERT_TRUE(extent);
  EXPECT_EQ(extent->First, Ten - 86400);
  EXPECT_EQ(extent->Last, Ten + 5400);
}

TEST_P(RainDatabaseTest, ReadsTheRowsThatReachIntoASpan) {
  AddRow(Ten - 86400 * 30, 31 * 1440, 31.0);
  EXPECT_THAT(Steps(RainDays, {}, {Ten - 10 * 3600, Ten + 14 * 3600}),
              ElementsAre("1998-03-05T00:00:00+00:00,1998-03-06T00:00:00+00:00,1,1\n"));
}

TEST_P(RainDatabaseTest, SortsTimesThatAreTextsInSeveralForms) {
  if (GetParam() != Engine::SQLite) GTEST_SKIP();
  for (const char* times :
       {"'1998-03-05T10:00:00', '1998-03-05T10:10:00', 1", "'1998-03-05 12:00', '1998-03-05 12:10', 2"})
    Must(Database.DatabaseConnection.Execute(
        "INSERT INTO CHART (start_time, end_time, depth, instrument_code_id) VALUES (" + std::string(times) +
        ", 'NM-O''Hara Änd-01')"));
  EXPECT_EQ(Steps({RainStepKind::Unit::Minutes, 60}, {}).size(), 3U);
  EXPECT_EQ(Remarks.Disordered, 0);
}

TEST_P(RainDatabaseTest, FillsBothTablesAndReplacesOnlyWhenAsked) {
  AddSite();
  AddRow(Ten, 10, 1.0);
  AddRow(Ten + 600, 10, 10.0, Code, "Marginal");
  AddRow(Ten + 86400, 1440, 0.0);
  Add("DAILy_CHART",
      {{"instrument_code_id", std::string(Code)}, {"date", DbDate{MakeDate(1998, 3, 6)}}, {"depth", 99.0}});
  Add("DAILy_CHART",
      {{"instrument_code_id", std::string(Code)}, {"date", DbDate{MakeDate(1997, 3, 6)}}, {"depth", 98.0}});
  Add("Intensity_duration", {{"Station", std::string("Elsewhere")}, {"Volume", std::int64_t{5}}});
  const RainChoice choice{.Instrument = Code, .Span = {Ten - 36000, Ten + 3 * 86400}};
  const std::vector<std::string> shown = {"date", "depth", "data_Reliability_code", "comments"};
  const auto before = Rows("DAILy_CHART", shown);
  EXPECT_FALSE(Must(FillRainTables(Database, choice, {}, Boxes, Progress)).Done) << "nobody agreed";
  EXPECT_EQ(Rows("DAILy_CHART", shown), before);

  Boxes.Agrees = true;
  const RainTablesFilled filled = Must(FillRainTables(Database, choice, {}, Boxes, Progress));
  EXPECT_EQ(FilledMessage(filled),
            "Written: DAILy_CHART: 3 rows, Intensity_duration: 2 rows; replaced: DAILy_CHART: 1 row, "
            "Intensity_duration: 0 rows");
  EXPECT_THAT(Rows("DAILy_CHART", shown),
              ElementsAre("1997-03-06T00:00:00|98||", "1998-03-05T00:00:00|11|Marginal|covered 1.3%",
                          "1998-03-06T00:00:00|0|Acceptable|covered 58.3%",
                          "1998-03-07T00:00:00|0|Acceptable|covered 41.6%"));
  EXPECT_THAT(
      Rows("Intensity_duration", {"Station", "Low_Intensity", "High_intensity", "Volume", "Duration"}),
      ElementsAre("Elsewhere|||5|", "O'Hara\tÄnd|5|10|1|10", "O'Hara\tÄnd|50|75|10|10"));
}

TEST_P(RainDatabaseTest, LeavesBothTablesAsTheyWereAfterAnError) {
  AddSite();
  AddRow(Ten, 10, 1.0);
  Add("DAILy_CHART",
      {{"instrument_code_id", std::string(Code)}, {"date", DbDate{MakeDate(1998, 3, 5)}}, {"depth", 99.0}});
  // The last statement of all fails.
  Must(Database.DatabaseConnection.Execute("DROP TABLE Intensity_duration"));
  Must(
      Database.DatabaseConnection.Execute("CREATE TABLE Intensity_duration (Station VARCHAR(50), "
                                          "Low_Intensity INTEGER, High_intensity INTEGER, Volume "
                                          "INTEGER, Duration INTEGER CHECK (Duration < 0))"));
  Database.Close();
  Boxes.Agrees = true;
  EXPECT_FALSE(FillRainTables(Database, {.Instrument = Code}, {}, Boxes, Progress));
  EXPECT_THAT(Rows("DAILy_CHART", {"depth"}), ElementsAre("99"));
}

TEST_P(RainDatabaseTest, ComparesTheManualGage) {
  const RainClock clock{-420, 420};
  const RainTime seven = FromLocal(MakeDate(1998, 3, 5, 7), clock);
  AddRow(seven, 1440, 24.0);
  AddRow(seven + DaySeconds, 720, 12.0);
  const auto reading = [&](Date start, DbValue end, DbValue depth) {
    Add("MANUAL_GAGE", {{"instrument_code_id", std::string(Code)},
                        {"start_date", DbDate{start}},
                        {"end_date", std::move(end)},
                        {"depth", std::move(depth)}});
  };
  reading(MakeDate(1998, 3, 5, 7), DbDate{MakeDate(1998, 3, 6, 7)}, 25.0);
  reading(MakeDate(1998, 3, 6), DbNull{}, 10.0);
  reading(MakeDate(1998, 3, 6), DbNull{}, DbNull{});
  reading(MakeDate(1998, 3, 6, 7), DbDate{MakeDate(1998, 3, 5, 7)}, 1.0);
  const GageReadings gage = Must(ReadManualGage(Database, Code, {}, clock));
  EXPECT_EQ(gage.Notes.size(), 2U);
  ASSERT_EQ(gage.Readings.size(), 2U);
  RainSums sums(IntervalsOf(gage));
  std::vector<RainStep> days;
  RainSteps steps(RainDays, clock, {}, [&](const RainStep& day) { days.push_back(day); });
  Must(ReadRain(Database, {.Instrument = Code}, {&sums, &steps}, Progress));
  const auto compared = Compare(gage, sums.Intervals());
  EXPECT_DOUBLE_EQ(*compared[0].Percent, -4);
  EXPECT_FALSE(compared[0].IsOff());
  EXPECT_DOUBLE_EQ(*compared[1].Percent, 20);
  EXPECT_TRUE(compared[1].IsOff());
  EXPECT_EQ(compared[1].Covered, 0.5);
  ASSERT_EQ(days.size(), 2U);
  EXPECT_EQ(CompareDay(days[1], gage)->Gage, 10);
}

TEST_P(RainDatabaseTest, WritesSefByItsRules) {
  AddSite();
  AddRow(Ten, 90, 0.3);
  AddRow(Ten + 86400 - 3600, 60, 1.25);
  const auto written = WriteRainSef(Database, {.Instrument = Code}, 60, {-420, 420}, Folder.Path(), Progress);
  ASSERT_TRUE(written) << written.error();
  ASSERT_EQ(written->Paths.size(), 2U);
  EXPECT_EQ(written->Paths[0], Folder / "Rain-Sons_NM-O-Hara-nd-01_19980305-19980306_rr_1hour.tsv");
  EXPECT_EQ(written->Paths[1], Folder / "Rain-Sons_NM-O-Hara-nd-01_19980305-19980306_rr_daily.tsv");
  for (const std::string& path : written->Paths)
    EXPECT_THAT(SefFaults(path, ReadFile(path)), IsEmpty()) << path;
  const SefFile hours = ReadSef(ReadFile(written->Paths[0]));
  EXPECT_EQ(hours.Head.at("Name"), "O'Hara Änd");
  EXPECT_NEAR(std::stod(hours.Head.at("Lat")), 48.8582, 1e-4);
  EXPECT_NEAR(std::stod(hours.Head.at("Lon")), 2.2945, 1e-4);
  EXPECT_EQ(hours.Head.at("Alt"), "33");
  std::vector<std::string> rows;
  for (const auto& row : hours.Rows)
    rows.push_back(row[2] + " " + row[3] + ":" + row[4] + " " + row[6] + " " + row[7]);
  EXPECT_THAT(rows, ElementsAre("5 11:0 0.2 ", "5 12:0 0.1 Covered=50%", "6 10:0 1.25 "));
  EXPECT_THAT(ReadSef(ReadFile(written->Paths[1])).Rows,
              ElementsAre(ElementsAre("1998", "3", "5", "14", "0", "24hour", "0.3", HasSubstr("Covered=")),
                          ElementsAre("1998", "3", "6", "14", "0", "24hour", "1.25", HasSubstr("Covered="))));

  EXPECT_FALSE(WriteRainSef(Database, {.Instrument = "none"}, 60, {}, Folder.Path(), Progress));
  EXPECT_FALSE(WriteRainSef(Database, {.Instrument = Code}, 60, {}, Folder / "missing", Progress));
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(Folder.Path()))
    files += entry.path().extension() == ".tsv";
  EXPECT_EQ(files, 2U);
}

TEST_P(RainDatabaseTest, WritesCsvThatReadsBackToTheSameRain) {
  RainSum all = 0;
  for (const RainRow& row : RandomRows(7, 60, false)) {
    if (!row.Depth || *row.Depth < 0) continue;
    Add("CHART", {{"instrument_code_id", std::string(Code)},
                  {"start_time", DbDate{ToLocal(*row.Start, {})}},
                  {"end_time", DbDate{ToLocal(*row.End, {})}},
                  {"depth", *row.Depth}});
    all += AmountOf(*row.Depth);
  }
  const std::string path = Folder / "rain.csv";
  WriteFile(path, "old");
  ASSERT_TRUE(WriteRainCsv(Database, {.Instrument = Code}, {RainStepKind::Unit::Minutes, 1}, {345, 0}, path,
                           Progress));
  std::istringstream text(ReadFile(path));
  std::string line, end;
  std::getline(text, line);
  EXPECT_EQ(line + "\n", StepsHeading);
  RainSum sum = 0;
  while (std::getline(text, line)) {
    std::istringstream fields(line);
    std::string start, depth;
    std::getline(fields, start, ',');
    EXPECT_TRUE(end.empty() || start == end) << "each step begins where the one before ends";
    std::getline(fields, end, ',');
    std::getline(fields, depth, ',');
    EXPECT_TRUE(end.ends_with("+05:45"));
    if (!depth.empty()) sum += AmountOf(std::stod(depth));
  }
  EXPECT_TRUE(sum == all) << MmOf(sum) << " " << MmOf(all);
}

TEST_P(RainDatabaseTest, ReportsAStationYear) {
  AddSite();
  AddRow(SecondsOf(MakeDate(1996, 2, 29, 5)), 60, 3.0);
  const RainReport report = Must(ReadRainReport(Database, Code, 1996, {120, 420}, DryHours, Progress));
  EXPECT_EQ(report.Days.size(), 366U);
  EXPECT_EQ(report.Hours.size(), 366U * 24);
  EXPECT_EQ(report.Months.size(), 12U);
  EXPECT_EQ(report.Storms.size(), 1U);
  EXPECT_EQ(report.Maxima[6].Depth, 3);
}

}  // namespace
}  // namespace hyetex::test
