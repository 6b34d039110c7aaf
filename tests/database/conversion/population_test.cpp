#include "database/conversion/population.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>

#include "database/conversion/populate_grid.h"
#include "database/conversion/population_fixture.h"
#include "database/store/instruments.h"
#include "tools/traced_chart.h"

namespace hyetex::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class Population : public PopulationFixture {};
HYETEX_ON_ALL_ENGINES(Population);

const Date Ten = MakeDate(1998, 3, 5, 10);
const std::vector<std::string> RowsOfTen{"1998-03-05T08:00:00 | 1998-03-05T08:30:00 | 2.5 |  ",
                                         "1998-03-05T08:30:00 | 1998-03-05T09:00:00 | 0 | CODE205",
                                         "1998-03-05T09:00:00 | 1998-03-05T09:30:00 | 2.5 |  ",
                                         "1998-03-05T09:30:00 | 1998-03-05T10:00:00 | 5 |  "};

TEST_P(Population, WritesOneRowAStep) {
  Store({});
  const ConversionResult result = Convert({Ten});
  EXPECT_THAT(result.Problems, IsEmpty());
  EXPECT_EQ(result.RowsWritten, 4);
  EXPECT_EQ(result.ChartsConverted, 1);
  EXPECT_EQ(Rows(), RowsOfTen);
  EXPECT_EQ(Read("chart", {"station", "instrument_code_id", "computing_method", "data_Reliability_code"})[0],
            "North | rg12 | ASCII | Acceptable");
  EXPECT_THAT(Loaded(), ElementsAre("1998-03-05T10:00:00 | 1"));
  EXPECT_THAT(Boxes.Boxes, IsEmpty());
}

TEST_P(Population, AsksBeforeItReplaces) {
  Store({});
  Run("INSERT INTO chart (instrument_code_id, start_time, end_time, depth) VALUES "
      "('RG12', '1998-03-05 08:00:00', '1998-03-05 10:00:00', 1), "
      "('RG7', '1998-03-05 08:00:00', '1998-03-05 10:00:00', 7)");
  const auto before = Rows();
  Boxes.Answers = {BoxAnswer::No};
  EXPECT_EQ(Convert({Ten}).ChartsSkipped, 1);
  EXPECT_EQ(Rows(), before);
  EXPECT_THAT(Loaded(), ElementsAre("1998-03-05T10:00:00 | null"));
  EXPECT_THAT(Boxes.Boxes,
              ElementsAre(ShownBox{
                  "Populating CHART table",
                  "This operation will overwrite pre-existing records in the CHART table for "
                  "05/03/1998 10:00:00 to 05/03/1998 12:00:00.\r\nAre you sure you want to continue ?",
                  BoxButtons::NoUnlessYes, BoxIcon::Question}));
  Boxes.Answers = {BoxAnswer::Yes};
  EXPECT_EQ(Convert({Ten}).RowsWritten, 4);
  std::vector<std::string> after = RowsOfTen;
  after.insert(after.begin() + 1, "1998-03-05T08:00:00 | 1998-03-05T10:00:00 | 7 | null");
  EXPECT_EQ(Rows(), after) << "another instrument's row stays";
  Options.Overwrite = true;
  Convert({Ten});
  EXPECT_EQ(Rows(), after);
  EXPECT_THAT(Boxes.Boxes, SizeIs(2));
}

// What was agreed to is not what stands there now.
TEST_P(Population, AsksAgainWhenOthersHaveChangedWhatItAskedAbout) {
  Store({});
  const std::string insert = "INSERT INTO chart (instrument_code_id, start_time, end_time, depth) VALUES ";
  Run(insert + "('RG12', '1998-03-05 08:00:00', '1998-03-05 10:00:00', 1)");
  Boxes.Meanwhile = [&] { Run(insert + "('RG12', '1998-03-05 08:30:00', '1998-03-05 09:00:00', 2)"); };
  Boxes.Answers = {BoxAnswer::Yes, BoxAnswer::No};
  EXPECT_EQ(Convert({Ten}).ChartsSkipped, 1);
  EXPECT_THAT(Boxes.Boxes, SizeIs(2));
  EXPECT_THAT(Rows(), SizeIs(2));

  const std::string whole = StoredChart{}.Text();
  const auto cut = [&](const char* at) {
    Run("DELETE FROM chart_ascii");
    StoreText(
        "RG12", Ten,
        whole.substr(0, whole.find("Chart Reliability")) + "Number of Points: 4\r\n" +
            whole.substr(whole.find("Chart Reliability"), whole.find(at) - whole.find("Chart Reliability")));
  };
  cut("90,10");
  Boxes.Meanwhile = [&] { cut("60,"); };
  Boxes.Answers = {BoxAnswer::Yes};
  EXPECT_THAT(Convert({Ten}).Problems, ElementsAre(HasSubstr("is cut off")));
  EXPECT_THAT(Rows(), SizeIs(2));
}

TEST_P(Population, TakesOldRowsThatLieASecondOutside) {
  Store({});
  for (const char* times :
       {"'1998-03-05 07:59:58', '1998-03-05 08:20:00'", "'1998-03-05 07:59:59', '1998-03-05 08:20:00'",
        "'1998-03-05 09:50:00', '1998-03-05 10:00:01'", "'1998-03-05 09:50:00', '1998-03-05 10:00:02'"})
    Run("INSERT INTO chart (instrument_code_id, start_time, end_time) VALUES ('RG12', " + std::string(times) +
        ")");
  EXPECT_EQ(Convert({Ten}).RowsWritten, 4);
  EXPECT_THAT(Boxes.Boxes, IsEmpty()) << "none lies between the chart's own start and end";
  std::vector<std::string> rows = RowsOfTen;
  rows.insert(rows.begin(), "1998-03-05T07:59:58 | 1998-03-05T08:20:00 | null | null");
  rows.push_back("1998-03-05T09:50:00 | 1998-03-05T10:00:02 | null | null");
  EXPECT_THAT(Rows(), ::testing::UnorderedElementsAreArray(rows));
}

// Charts that follow each other, the shift off the 10 seconds, the last moments not ascending, a row of no
// length where the next chart begins: in whatever order they are converted, each keeps its rows.
TEST_P(Population, NeverTouchesANeighboursRows) {
  Options.Variables.GmtShift = 1.999F / 24;
  Options.Overwrite = true;
  const Date before = MakeDate(1998, 3, 5, 8), behind = MakeDate(1998, 3, 5, 12);
  Store({.Points = {"30,5,", "119,10,", "120,11,", "120,20,"}});
  Store({.Start = behind, .End = MakeDate(1998, 3, 5, 14), .Points = {"0.01,1,", "0.5,2,", "120,20,"}});
  Store({.Start = before, .End = Ten, .Points = {"119.5,5,", "120,6,", "120,7,"}});
  Convert({before});
  Convert({Ten});
  Convert({behind});
  const auto once = Rows();
  EXPECT_THAT(once, SizeIs(3 + 4 + 3));
  EXPECT_THAT(once, ::testing::Contains("1998-03-05T10:00:00 | 1998-03-05T10:00:04 | 4.5 |  "));
  EXPECT_THAT(once, ::testing::Contains("1998-03-05T10:00:04 | 1998-03-05T10:00:04 | 0.5 |  "));
  for (const Date date : {Ten, before, behind, Ten}) {
    Convert({date});
    EXPECT_EQ(Rows(), once);
  }
  Run("DELETE FROM chart");
  for (const bool known : {true, false}) {
    for (const Date date : {behind, Ten, before}) Convert({date});
    EXPECT_EQ(Rows(), once);
    if (known) Run("DROP TABLE chart_conversion");
  }
}

// Rows out there were written when times were not held to the chart's.
TEST_P(Population, TakesRowsThatEarlierVersionsWroteOutside) {
  Options.Variables.GmtShift = 1.999F / 24;
  Options.Overwrite = true;
  Store({.Points = {"30,5,", "119,10,", "120,11,", "120,20,"}});
  Convert({Ten});
  const auto now = Rows();
  Run("DELETE FROM chart_conversion");
  Run("DELETE FROM chart");
  const std::string neighbour = "1998-03-05T10:00:00 | 1998-03-05T10:01:00 | 0.7 |  ";
  Run("INSERT INTO chart (instrument_code_id, start_time, end_time, depth, comments) VALUES "
      "('RG12', '1998-03-05 08:00:00', '1998-03-05 08:40:00', 2.5, ' '), "
      "('RG12', '1998-03-05 09:59:00', '1998-03-05 10:00:00', 0.5, ' '), "
      "('RG12', '1998-03-05 10:00:00', '1998-03-05 10:01:00', 4.5, ' '), "
      "('RG12', '1998-03-05 10:00:00', '1998-03-05 10:01:00', 0.7, ' ')");
  Convert({Ten});
  auto rows = Rows();
  EXPECT_EQ(std::erase(rows, neighbour), 1U) << "the next chart's, since no row of this one is like it";
  EXPECT_EQ(rows, now);
}

TEST_P(Population, WritesDownWhatItConverted) {
  const std::vector<std::string> columns{"chart_date",     "first_time",   "last_time",        "gmt_hours",
                                         "minimal_lapse",  "alpha",        "row_count",        "user_name",
                                         "selected_depth", "chosen_depth", "conversion_number"};
  Store({.Alpha = "0.01"});
  Store({.Start = Ten + 1, .End = Ten + 1.5});
  Options.User = "Operator";
  Options.Overwrite = true;
  Convert({Ten, Ten + 1});
  Options.Variables = {.UseAlpha = true, .MinimalLapse = 45, .GmtShift = -3.5F / 24};
  Manual = true;
  Convert({Ten});
  EXPECT_THAT(
      Read("chart_conversion", columns),
      ElementsAre("1998-03-05T10:00:00 | 1998-03-05T13:30:00 | 1998-03-05T15:30:00 | -3.5 | 45 | 0.01 "
                  "| 2 | Operator | Manual | 12 | 3",
                  "1998-03-06T10:00:00 | 1998-03-06T08:00:00 | 1998-03-06T20:00:00 | 2 | 0 | null | "
                  "4 | Operator | Digitized | 10 | 2"));
  Run("CREATE UNIQUE INDEX one_start ON chart (start_time)");
  Run("INSERT INTO chart (instrument_code_id, start_time) VALUES ('RG7', '1998-03-05 11:00:00')");
  const auto before = Read("chart_conversion", columns);
  Options.Variables = {.GmtShift = -1.0F / 24};
  EXPECT_EQ(Convert({Ten}).ChartsFailed, 1);
  EXPECT_EQ(Read("chart_conversion", columns), before);
}

// Charts side by side, moved by an hour or four either way, the lapse and depth changed, in both orders: what
// is left is what the last run alone leaves.
TEST_P(Population, LeavesExactlyTheNewRowsOfARunWithOtherValues) {
  Options.Overwrite = true;
  const Date next = Ten + 2.0 / 24;
  Store({});
  Store({.Start = next, .End = next + 2.0 / 24, .Digitized = "7", .Selected = "7"});
  const std::vector<ComputationVariables> runs{{.GmtShift = 2.0F / 24},
                                               {.GmtShift = 1.0F / 24},
                                               {.MinimalLapse = 45, .GmtShift = 5.0F / 24},
                                               {.GmtShift = 1.25F / 24}};
  for (const bool together : {true, false})
    for (const auto& order : {std::vector{Ten, next}, std::vector{next, Ten}})
      for (const ComputationVariables& variables : runs) {
        Options.Variables = variables;
        Manual = !Manual;
        if (together)
          Convert(order);
        else
          for (const Date date : order) Convert({date});
        const auto rows = Rows();
        Run("DELETE FROM chart");
        Convert({Ten});
        Convert({next});
        EXPECT_EQ(rows, Rows()) << variables.GmtShift * 24;
      }
  EXPECT_THAT(Boxes.Boxes, IsEmpty());
}

TEST_P(Population, SaysFirstThatRowsMayRemainWhereNothingIsWrittenDown) {
  Run("DROP TABLE chart_conversion");
  Store({});
  Store({.Start = Ten + 1, .End = Ten + 1.1});
  Convert({Ten, Ten + 1});
  EXPECT_THAT(Boxes.Boxes, IsEmpty()) << "nothing was converted before";
  Options.Variables.GmtShift = -6.0F / 24;
  Store({.Start = Ten + 2, .End = Ten + 2.1});
  Convert({Ten, Ten + 1, Ten + 2});
  ASSERT_THAT(Boxes.Boxes, SizeIs(1)) << "once a run";
  EXPECT_THAT(Boxes.Boxes[0].Text, HasSubstr("CHART_CONVERSION"));
}

TEST_P(Population, AsksBeforeItConvertsATextThatWasCutOff) {
  const std::string whole = [] {
    std::string text = StoredChart{}.Text();
    return text.insert(text.find("Chart Reliability"), "Number of Points: 4\r\n");
  }();
  StoreText("RG12", Ten, whole);
  Options.Overwrite = true;
  EXPECT_EQ(Convert({Ten}).ChartsConverted, 1);
  EXPECT_THAT(Boxes.Boxes, IsEmpty());
  const auto before = Rows();
  const struct {
    const char* At;
    const char* Lacks;
  } cuts[] = {{"90,10", "its head counts 4 points, and it holds 2"},
              {"20,\r\nGeneral", "its last lines are missing"},
              {"Alpha Value", "its last lines are missing"}};
  for (const auto& cut : cuts) {
    Run("DELETE FROM chart_ascii");
    StoreText("RG12", Ten, whole.substr(0, whole.find(cut.At)));
    Boxes.Answers = {BoxAnswer::No};
    EXPECT_THAT(Convert({Ten}).Problems, ElementsAre(HasSubstr(cut.Lacks)));
    EXPECT_EQ(Rows(), before);
    EXPECT_THAT(Boxes.Boxes.back().Text, HasSubstr(cut.Lacks));
  }
  Boxes.Answers = {BoxAnswer::Yes};
  EXPECT_EQ(Convert({Ten}).ChartsConverted, 1);
}

// As other programs write them: the database finds none of them by the chart's date.
TEST_P(Population, ConvertsChartsWhoseDatesHaveAnotherForm) {
  Options.Overwrite = true;
  const bool sqlite = GetParam() == Engine::SQLite;
  std::vector<const char*> forms{"1998-03-05 10:00:00.25"};
  if (sqlite) forms.insert(forms.end(), {"1998-03-05T10:00:00", "1998-03-05T10:00:00.000Z"});
  for (const char* form : forms) {
    Store({});
    Run("UPDATE chart_ascii SET chart_date = '" + std::string(form) + "'");
    for (int round = 0; round < 2; ++round) {
      UnwatchedProgress progress;
      const auto rows = LoadGrid(Database, "RG12", true, {}, Lists, progress);
      ASSERT_TRUE(rows) << rows.error().Description;
      ASSERT_THAT(*rows, SizeIs(1));
      const ConversionResult result = Convert({rows->front().ChartDate});
      EXPECT_THAT(result.Problems, IsEmpty()) << form;
      EXPECT_EQ(result.ChartsConverted, 1) << form;
      EXPECT_EQ(Rows(), RowsOfTen) << form;
      EXPECT_THAT(Read("chart_ascii", {"loaded"}), ElementsAre("1"));
    }
    Run("DELETE FROM chart_ascii");
  }
}

// A column of fixed width fills a code up with blanks.
TEST_P(Population, ConvertsChartsOfCodesWithBlanksBehind) {
  Options.Overwrite = true;
  const std::string padded = "RG12" + std::string(36, ' ');
  for (const char* table : {"chart", "chart_ascii", "instrument"}) {
    if (GetParam() == Engine::PostgreSQL)
      Run("ALTER TABLE " + std::string(table) + " ALTER COLUMN instrument_code_id TYPE char(40)");
  }
  Store({});
  Run("INSERT INTO instrument (instrument_code_id) VALUES ('RG12')");
  if (GetParam() == Engine::SQLite)
    for (const char* table : {"chart_ascii", "instrument"})
      Run("UPDATE " + std::string(table) + " SET instrument_code_id = '" + padded + "'");
  for (const std::string& code : {ListInstruments(Database).value().at(0), std::string("RG12")}) {
    UnwatchedProgress progress;
    const auto rows = LoadGrid(Database, code, true, {}, Lists, progress);
    ASSERT_THAT(rows.value(), SizeIs(1)) << "'" << code << "'";
    const std::vector<ChartToConvert> charts{{rows->front().ChartDate, false}};
    EXPECT_EQ(WriteChartRecords(Database, Lists, code, charts, Options, Boxes, progress).ChartsConverted, 1);
    EXPECT_THAT(Rows(), SizeIs(4)) << "'" << code << "'";
  }
}

TEST_P(Population, RefusesHoursOfNoPlaceOnEarth) {
  Store({});
  for (const float hours : {-14.25F, 15.0F, 1e6F}) {
    Options.Variables.GmtShift = hours / 24;
    const ConversionResult result = Convert({Ten});
    EXPECT_TRUE(result.Failed);
    EXPECT_THAT(result.Problems, ElementsAre(HasSubstr("-14 to 14")));
  }
  EXPECT_THAT(Rows(), IsEmpty());
  Options.Variables.GmtShift = -14.0F / 24;
  EXPECT_EQ(Convert({Ten}).ChartsConverted, 1);
}

TEST_P(Population, KeepsTimesAndHundredthsInTheDatabase) {
  const struct {
    Date Start;
    const char* Row;
  } cases[] = {{MakeDate(1900, 2, 28, 23), "1900-02-28T23:00:00 | 1900-03-01T00:59:50 | 0.1 |  "},
               {MakeDate(1904, 2, 28, 23), "1904-02-28T23:00:00 | 1904-02-29T00:59:50 | 0.1 |  "},
               {MakeDate(1999, 12, 31, 22, 0, 10), "1999-12-31T22:00:10 | 2000-01-01T00:00:00 | 0.1 |  "},
               {MakeDate(2000, 2, 29, 23), "2000-02-29T23:00:00 | 2000-03-01T00:59:50 | 0.1 |  "},
               {MakeDate(2024, 12, 31, 23, 59, 50), "2024-12-31T23:59:50 | 2025-01-01T01:59:40 | 0.1 |  "}};
  Options.Variables.GmtShift = 0;
  for (const auto& c : cases) {
    Store({.Start = c.Start,
           .End = c.Start + 2.0 / 24,
           .Digitized = "0.13",
           .Selected = "0.13",
           .Points = {"7190,10,", "7200,13,"}});
    Convert({c.Start});
    EXPECT_THAT(Rows(), ::testing::Contains(c.Row));
  }
  EXPECT_THAT(Rows(), SizeIs(2 * std::size(cases)));
}

TEST_P(Population, WritesDefectiveChartAsOneRow) {
  Store({.Manual = "12.345", .Comment = "CODE213", .Points = {"0,0,"}});
  Store({.Start = Ten + 1, .End = Ten + 2, .Manual = "-1", .Comment = "CODE213", .Points = {"0,0,"}});
  const ConversionResult result = Convert({Ten, Ten + 1});
  EXPECT_THAT(Rows(), ElementsAre("1998-03-05T08:00:00 | 1998-03-05T10:00:00 | 12.345 | CODE213",
                                  "1998-03-06T08:00:00 | 1998-03-07T08:00:00 | null | CODE213"));
  EXPECT_THAT(result.Problems, ElementsAre(HasSubstr("no manual depth is known")));
}

TEST_P(Population, NamesChartsThatGiveNoRows) {
  Store({.Points = {"0,0,"}});
  StoreText("RG12", Ten + 1, "RG12-19980306-1000.dat\r\nrubbish");
  Store({.Start = Ten + 2, .End = Ten + 2.1});
  StoreText("RG12", Ten + 3, "");
  Run("INSERT INTO chart (instrument_code_id, start_time, end_time, depth) VALUES "
      "('RG12', '1998-03-05 08:00:00', '1998-03-05 08:10:00', 1)");
  Options.Log = true;
  const ConversionResult result = Convert({Ten, Ten + 1, Ten + 2, Ten + 3, Ten + 4});
  EXPECT_THAT(result.Problems,
              ElementsAre("Rg12 09/03/1998 10:00:00: not converted: it is no longer in the database",
                          "Rg12 05/03/1998 10:00:00: not converted: the chart's points span no time",
                          "Rg12 06/03/1998 10:00:00: not converted: the text names no instrument",
                          "Rg12 08/03/1998 10:00:00: not converted: no chart text is stored"));
  for (const std::string& problem : result.Problems)
    EXPECT_THAT(ReadFile(Folder / "datalog.txt"), HasSubstr(problem + "\r\n"));
  EXPECT_EQ(result.ChartsConverted, 1);
  EXPECT_EQ(result.ChartsFailed, 4);
  EXPECT_THAT(Rows(), SizeIs(5)) << "what stands in place of a chart that gives no rows stays";
  EXPECT_THAT(Loaded(), ElementsAre("1998-03-05T10:00:00 | null", "1998-03-06T10:00:00 | null",
                                    "1998-03-07T10:00:00 | 1", "1998-03-08T10:00:00 | null"));
}

TEST_P(Population, CutsTextsToTheirColumns) {
  Lists.Stations[1].Name = "The station above the old mill";
  Store({.Points = {"60,5,CODE205 + Clock malfunction", "120,20,\xC3\x84\xC3\x96\xC3\x9C und caf\xE9"}});
  const ConversionResult result = Convert({Ten});
  EXPECT_THAT(
      result.Problems,
      ElementsAre(HasSubstr("cut to the 25 characters of station"),
                  HasSubstr("\"CODE205 + Clock malfunction\" is cut to the 25 characters of comments")));
  EXPECT_THAT(Read("chart", {"start_time", "station", "comments"}),
              ElementsAre("1998-03-05T08:00:00 | The station above the old | CODE205 + Clock malfuncti",
                          HasSubstr("caf\xC3\xA9")));
  Lists.Stations[1].InstrumentCode = std::string(41, 'X');
  Store({.Instrument = std::string(41, 'X'), .Start = Ten + 1, .End = Ten + 2});
  EXPECT_THAT(Convert({Ten + 1}).Problems, ElementsAre(HasSubstr("is longer than the 40 characters")));
}

TEST_P(Population, LeavesChartWholeThatTheDatabaseRefuses) {
  Store({});
  Convert({Ten});
  const auto before = Rows();
  Store({.Start = Ten + 1, .End = Ten + 1.1});
  Run("INSERT INTO chart (instrument_code_id, start_time) VALUES ('RG7', '1998-03-05 09:15:00')");
  Run("CREATE UNIQUE INDEX one_start ON chart (start_time)");
  // Other points: only the third of the rows meets the other instrument's, when two are written.
  Run("DELETE FROM chart_ascii WHERE chart_date = '1998-03-05 10:00:00'");
  Store({.Points = {"30,5,", "75,6,", "120,20,"}});
  Options.Overwrite = true;
  const ConversionResult result = Convert({Ten, Ten + 1});
  EXPECT_THAT(result.Problems,
              ElementsAre(HasSubstr("05/03/1998 10:00:00: not converted, nothing of it was changed")));
  EXPECT_EQ(result.ChartsConverted, 1) << "the run goes on";
  EXPECT_THAT(Boxes.Boxes, IsEmpty());
  EXPECT_THAT(Loaded(), ElementsAre("1998-03-05T10:00:00 | null", "1998-03-06T10:00:00 | 1"));
  for (const std::string& row : before) EXPECT_THAT(Rows(), ::testing::Contains(row));
}

// One that the database refuses costs no chart beside it, wherever it stands in its group.
TEST_P(Population, StoresAllChartsOfAGroupButTheOneThatIsRefused) {
  constexpr int charts = 12, refused = 9;
  std::vector<Date> dates;
  for (int i = 0; i < charts; ++i) dates.push_back(Ten + i);
  for (const Date date : dates) Store({.Start = date, .End = date + 0.5});
  Run("CREATE UNIQUE INDEX one_start ON chart (start_time)");
  Run("INSERT INTO chart (instrument_code_id, start_time) VALUES ('RG7', '1998-03-14 11:00:00')");
  const ConversionResult result = Convert(dates);
  EXPECT_THAT(result.Problems,
              ElementsAre(HasSubstr("14/03/1998 10:00:00: not converted, nothing of it was changed")));
  EXPECT_EQ(result.ChartsConverted, charts - 1);
  EXPECT_EQ(result.RowsWritten, 4 * (charts - 1));
  EXPECT_THAT(Rows(), SizeIs(4 * (charts - 1) + 1));
  const auto loaded = Loaded();
  for (int i = 0; i < charts; ++i)
    EXPECT_EQ(loaded[static_cast<std::size_t>(i)].ends_with(i == refused ? "null" : "1"), true) << loaded[i];
}

// Charts that overlap, that the table holds twice, that give no rows and that lie years apart: together they
// leave what they leave one after the other.
TEST_P(Population, GivesTheSameRowsTogetherAsOneByOne) {
  std::vector<Date> dates;
  const auto store = [&](Date start, double days, const std::string& depth) {
    Store({.Start = start, .End = start + days, .Digitized = depth, .Selected = depth});
    if (std::find(dates.begin(), dates.end(), start) == dates.end()) dates.push_back(start);
  };
  for (int i = 0; i < 4; ++i) store(Ten + i, 1, std::to_string(10 + i));  // each ends where the next begins
  store(Ten + 4, 1, "20");
  store(Ten + 4.25, 0.25, "5");  // within the one before
  store(Ten + 3.5, 3, "30");     // over several
  store(Ten + 4, 1, "40");       // twice
  store(Ten + 4000, 1, "6");
  StoreText("RG12", Ten + 8, "RG12-19980313-1000.dat\r\nrubbish");
  dates.push_back(Ten + 8);
  store(Ten + 9, 1, "7");
  std::ranges::sort(dates);  // as they are converted together
  Options.Overwrite = true;
  for (const char* run : {"first", "second, over the rows of the first"}) {
    for (const Date date : dates) Convert({date});
    const auto rows = Rows(), loaded = Loaded();
    Run("DELETE FROM chart");
    Run("UPDATE chart_ascii SET loaded = NULL");
    for (int i = 0; i < 2; ++i) {
      const ConversionResult result = Convert(dates);
      EXPECT_EQ(result.ChartsConverted, 10) << run;
      EXPECT_THAT(result.Problems, SizeIs(1));
    }
    EXPECT_EQ(Loaded(), loaded) << run;
    EXPECT_EQ(Rows(), rows) << run;
  }
}

TEST_P(Population, ShowsAnErrorOnceThatAilsAllCharts) {
  Store({});
  Store({.Start = Ten + 1, .End = Ten + 2});
  Run("DROP TABLE chart");
  const ConversionResult result = Convert({Ten, Ten + 1});
  EXPECT_EQ(result.ChartsFailed, 2);
  EXPECT_THAT(Boxes.Boxes, SizeIs(1));
  EXPECT_THAT(Loaded(), ElementsAre("1998-03-05T10:00:00 | null", "1998-03-06T10:00:00 | null"));
}

TEST_P(Population, ConvertsEachOfTwoRecordsOfOneChart) {
  Store({});
  Store({.Digitized = "20", .Selected = "20"});
  Boxes.Answers = {BoxAnswer::Yes};
  EXPECT_EQ(Convert({Ten}).ChartsConverted, 2);
  EXPECT_THAT(Loaded(), ElementsAre("1998-03-05T10:00:00 | 1", "1998-03-05T10:00:00 | 1"));
  EXPECT_THAT(Rows(), SizeIs(4)) << "the second takes the place of the first";
}

TEST_P(Population, NeedsNoMarkInTheTable) {
  Store({});
  Run("ALTER TABLE chart_ascii DROP COLUMN loaded");
  EXPECT_EQ(Convert({Ten}).RowsWritten, 4);
  EXPECT_EQ(Rows(), RowsOfTen);
}

TEST_P(Population, WritesTheLogLineByLine) {
  Store({.Points = {"60,5,", "120,20,"}});
  Options.Log = true;
  Convert({Ten});
  const std::string stars(60, '*'), dashes(88, '-');
  const std::string rows = "05/03/98 08:00  05/03/98 09:00  2.5\r\n05/03/98 09:00  05/03/98 10:00  7.5\r\n";
  EXPECT_THAT(ReadFile(Folder / "datalog.txt"),
              ::testing::MatchesRegex("Output log for conversion performed ../../.... ..:..:..\r\n" +
                                      std::string("[*]+\r\n0 records deleted from DB\r\n") + rows +
                                      "-+\r\n2 records added to DB\r\n"));
  Boxes.Answers = {BoxAnswer::Yes};
  Convert({Ten});
  EXPECT_THAT(ReadFile(Folder / "datalog.txt"),
              ::testing::EndsWith("\r\n" + stars +
                                  "\r\nDeleted records for \r\n05/03/98 08:00 to 05/03/98 09:00\r\n" +
                                  "05/03/98 09:00 to 05/03/98 10:00\r\n2 records deleted from DB\r\n" + rows +
                                  dashes + "\r\n2 records added to DB\r\n"));
}

// Calls back before each chart, and stops the run before one.
class Steps : public Progress {
 public:
  explicit Steps(std::function<bool(std::int64_t)> step) : step_(std::move(step)) {}
  bool Step(std::int64_t done, std::int64_t, std::string_view what) override {
    if (!what.empty()) Texts.emplace_back(what);
    return step_(done);
  }
  std::vector<std::string> Texts;

 private:
  std::function<bool(std::int64_t)> step_;
};

TEST_P(Population, StopsBetweenCharts) {
  for (int i = 0; i < 3; ++i) Store({.Start = Ten + i, .End = Ten + i + 0.5});
  Steps steps([](std::int64_t done) { return done < 2; });
  const ConversionResult result = Convert({Ten + 2, Ten + 1, Ten}, steps);
  EXPECT_TRUE(result.Cancelled);
  EXPECT_EQ(result.ChartsConverted, 2);
  EXPECT_EQ(steps.Texts.front(), "ProcespFilesing record number 1");
  EXPECT_THAT(Loaded(),
              ElementsAre("1998-03-05T10:00:00 | 1", "1998-03-06T10:00:00 | 1", "1998-03-07T10:00:00 | null"))
      << "charts go in the table's order";
}

class PopulationOnServer : public PopulationFixture {};
INSTANTIATE_TEST_SUITE_P(Engines, PopulationOnServer, ::testing::Values(Engine::PostgreSQL), EngineName);

TEST_P(PopulationOnServer, OutlivesALostConnection) {
  for (int i = 0; i < 3; ++i) Store({.Start = Ten + i, .End = Ten + i + 0.5});
  Db.Close();
  Steps steps([&](std::int64_t done) {
    if (done == 1)
      OnServer("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE datname = '" + DatabaseName() +
               "'");
    return true;
  });
  const ConversionResult result = Convert({Ten, Ten + 1, Ten + 2}, steps);
  EXPECT_EQ(result.ChartsConverted, 3);
  EXPECT_THAT(result.Problems, IsEmpty());
  Db = Connection::Open(Text()).value();
  EXPECT_THAT(Rows(), SizeIs(12));
}

TEST_P(Population, KilledLeavesEachChartWholeOrUntouched) {
  constexpr int charts = 40, points = 400;
  std::vector<std::string> line;
  for (int i = 1; i <= points; ++i) line.push_back(std::to_string(i) + "," + std::to_string(i) + ",");
  std::vector<Date> dates;
  for (int i = 0; i < charts; ++i) dates.push_back(Ten + i);
  for (const Date date : dates) Store({.Start = date, .End = date + 0.5, .Points = line});
  Db.Close();
  int begun[2];
  ASSERT_EQ(::pipe(begun), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    Steps steps([&](std::int64_t) { return ::write(begun[1], "c", 1) == 1; });
    (void)Convert(dates, steps);
    ::_exit(0);
  }
  char step = 0;
  for (int i = 0; i < 4; ++i) ASSERT_EQ(::read(begun[0], &step, 1), 1);
  ::usleep(1500);
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  for (const int end : begun) ::close(end);

  ::usleep(300'000);  // a server ends what it was asked before it sees that nobody waits
  Db = Connection::Open(Text()).value();
  const auto loaded = Loaded();
  const auto whole =
      std::count_if(loaded.begin(), loaded.end(), [](const auto& l) { return l.ends_with("1"); });
  EXPECT_GE(whole, 2);
  EXPECT_LT(whole, charts);
  EXPECT_THAT(Rows(), SizeIs(static_cast<std::size_t>(whole) * points));
}

// A known rain is drawn on a chart, traced, saved, stored and converted: its rows give the rain back.
TEST_P(Population, GivesBackTheRainOfATracedChart) {
  for (const ChartMethod method : {ChartMethod::Linear, ChartMethod::NonLinear}) {
    RainChart chart;
    chart.Paper.ChartMethod = static_cast<std::int16_t>(method);
    chart.Paper.TimeScale = 1 / 16.1F;
    chart.Paper.DepthScale = 0.125F;
    chart.Paper.MiddleToBottomMm = 10;
    if (method == ChartMethod::NonLinear) chart.FullMm = 100;
    const std::vector<RainPoint> rain{{7, 0},     {9.5, 0},     {10, 2.3}, {12, 14.9},
                                      {15, 20.1}, {24.4, 42.1}, {31, 42.1}};
    const PenLine line = DrawRain(rain, chart).value();
    const TracedChart traced = TraceChart(line, 1);
    const auto text = MakeChartText(traced.State, {"Core", "Agency", "Station", "RG12", "Operator"}, "");
    const Date start = traced.State.ChartStart();
    StoreText("RG12", start, "RG12.dat\r\n" + text->Text);
    Options.Overwrite = true;
    ASSERT_EQ(Convert({start}).ChartsConverted, 1);

    const std::vector<PenPoint> expected = ExpectedSeries(line, 1);
    auto table = Recordset::Open(Db, "chart").value();
    double sum = 0, count = 0;
    for (const PenPoint& point : expected) {
      ASSERT_FALSE(table.Eof());
      sum += NumberOf(table.Value("depth").value());
      EXPECT_NEAR(sum, point.Rain, 0.1 + 0.005 * ++count);
      const Date end = DateOf(table.Value("end_time").value()) + 2.0 / 24;
      EXPECT_NEAR((end - start) * 24, point.Hours, 2.0 / 60);
      ASSERT_TRUE(table.MoveNext());
    }
    EXPECT_TRUE(table.Eof());
    Run("DELETE FROM chart");
    Run("DELETE FROM chart_ascii");
  }
}

}  // namespace
}  // namespace hyetex::test
