#include "database/conversion/chart_rows.h"

#include <cmath>
#include <random>

#include "chartfiles/series.h"
#include "core/numbers.h"
#include "database/stored_charts.h"

namespace hyetex::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::vector<StationRecord> Stations{{"Hill", "RG7", 0, 0}, {"North", "rg12", 0, 0}};
constexpr float TwoHours = 2.0F / 24;

ChartRows RowsOf(const StoredChart& chart, bool manual = false, float gmtShift = TwoHours,
                 const ComputationVariables& variables = {}) {
  ChartReading reading;
  const auto read = ReadChartToConvert(chart.Text(), variables, Stations, reading);
  EXPECT_TRUE(read.has_value()) << read.error();
  return read ? MakeChartRows(reading, manual, gmtShift) : ChartRows{};
}

std::vector<std::string> Lines(const ChartRows& chart) {
  std::vector<std::string> lines;
  for (const ChartRow& row : chart.Rows)
    lines.push_back(GeneralDateText(row.Start) + " " + TimeText(row.End) + " " +
                    (row.Depth ? ExactText(*row.Depth) : "none") + "|" + row.Comment);
  return lines;
}

double Sum(const ChartRows& chart) {
  double sum = 0;
  for (const ChartRow& row : chart.Rows) sum += row.Depth.value_or(0);
  return sum;
}

TEST(ChartRows, AreStepsInGmt) {
  EXPECT_THAT(Lines(RowsOf({})),
              ElementsAre("05/03/1998 08:00:00 08:30:00 2.5| ", "05/03/1998 08:30:00 09:00:00 0|CODE205",
                          "05/03/1998 09:00:00 09:30:00 2.5| ", "05/03/1998 09:30:00 10:00:00 5| "));
  EXPECT_THAT(Lines(RowsOf({.Method = 1, .Points = {"60,20,", "90,5,", "120,10,CODE205"}}, true, -TwoHours)),
              ElementsAre("05/03/1998 12:00:00 13:00:00 48| ", "05/03/1998 13:00:00 13:30:00 -36| ",
                          "05/03/1998 13:30:00 14:00:00 0|CODE205"))
      << "a falling step of a non-linear chart takes depth off again";
}

TEST(ChartRows, ScaleToTheDepthThatCounts) {
  const struct {
    StoredChart Chart;
    bool Manual;
    double Sum;
    const char* Note;
  } cases[] = {{{}, false, 10, nullptr},
               {{}, true, 12, nullptr},
               {{.Selected = "8"}, false, 10, nullptr},
               {{.Selected = "8"}, true, 12, nullptr},
               {{.Selected = "8", .Manual = "0"}, true, 8, nullptr},
               {{.Selected = "8", .Manual = "-1"}, true, 8, "no manual depth is known"},
               {{.Digitized = "0", .Selected = "0"}, false, 12, nullptr},
               {{.Digitized = "0", .Selected = "0", .Manual = "0"}, true, 0, nullptr},
               {{.Manual = "3.3", .Points = {"60,5,", "120,5,CODE203"}}, true, 3.3, nullptr}};
  for (const auto& c : cases) {
    const ChartRows rows = RowsOf(c.Chart, c.Manual);
    EXPECT_NEAR(Sum(rows), c.Sum, 1e-9);
    EXPECT_NEAR(rows.ChosenDepth.value_or(0), c.Sum, 1e-9) << "is written down beside the rows";
    if (c.Note != nullptr)
      EXPECT_THAT(rows.Notes, ElementsAre(HasSubstr(c.Note)));
    else
      EXPECT_THAT(rows.Notes, IsEmpty());
  }
}

TEST(ChartRows, RoundHalvesToEven) {
  // One second a millimetre; an exact half of 10 seconds is a matter of the last bit, so each lies beside it.
  const StoredChart chart{.End = MakeDate(1998, 3, 5, 10, 1),
                          .Digitized = "4",
                          .Selected = "4",
                          .Points = {"4.9,1,", "15.1,2,", "24.9,9,", "60,32,"}};
  EXPECT_THAT(Lines(RowsOf(chart, false, 0)),
              ElementsAre("05/03/1998 10:00:00 10:00:00 0.12| ", "05/03/1998 10:00:00 10:00:20 0.12| ",
                          "05/03/1998 10:00:20 10:00:20 0.88| ", "05/03/1998 10:00:20 10:01:00 2.88| "));
}

TEST(ChartRows, KeepRainAndTimeOfShortLastSteps) {
  const StoredChart chart{.End = MakeDate(1998, 3, 5, 10, 8),
                          .Points = {"5,5,", "6,6,", "7,7,CODE203", "8,10,"}};
  EXPECT_THAT(Lines(RowsOf(chart, false, 0, {.MinimalLapse = 5})),
              ElementsAre("05/03/1998 10:00:00 10:08:00 10| "));
  EXPECT_THAT(Lines(RowsOf(chart, false, 0, {.MinimalLapse = 60})),
              ElementsAre("05/03/1998 10:00:00 10:08:00 10| "));
  const StoredChart gap{.End = MakeDate(1998, 3, 5, 10, 8), .Points = {"2,2,", "7,2,CODE205", "8,10,"}};
  EXPECT_THAT(Lines(RowsOf(gap, false, 0, {.MinimalLapse = 2})),
              ElementsAre("05/03/1998 10:00:00 10:02:00 2| ", "05/03/1998 10:02:00 10:08:00 8|CODE205"));
}

// Moments that were moved on, a start and an end off the 10 seconds: all rain stays, none of it outside.
TEST(ChartRows, StayWithinTheChart) {
  const StoredChart held{.Points = {"30,5,", "119.99,10,", "120,12,", "120,14,CODE203", "120,20,"}};
  EXPECT_THAT(Lines(RowsOf(held, false, 0)), ElementsAre("05/03/1998 10:00:00 10:30:00 2.78| ",
                                                         "05/03/1998 10:30:00 12:00:00 7.22|CODE203"));
  const StoredChart odd{.Start = MakeDate(1998, 3, 5, 10, 0, 4),
                        .End = MakeDate(1998, 3, 5, 10, 0, 58),
                        .Points = {"27,5,", "54,20,"}};
  EXPECT_THAT(Lines(RowsOf(odd, false, 0)),
              ElementsAre("05/03/1998 10:00:04 10:00:30 2.5| ", "05/03/1998 10:00:30 10:00:58 7.5| "));
  const StoredChart brief{.Start = MakeDate(1998, 3, 5, 10, 0, 6),
                          .End = MakeDate(1998, 3, 5, 10, 0, 9),
                          .Points = {"1,5,", "2,7,CODE205", "3,20,"}};
  EXPECT_THAT(Lines(RowsOf(brief, false, 0)), ElementsAre("05/03/1998 10:00:06 10:00:09 10| "));
}

TEST(ChartRows, AddUpToTheChart) {
  std::mt19937 random(7);
  const auto pick = [&](double least, double most) {
    return std::uniform_real_distribution<double>(least, most)(random);
  };
  for (int round = 0; round < 300; ++round) {
    StoredChart chart{.End = MakeDate(1998, 3, 5, 10) + pick(0.1, 8),
                      .Method = round % 3,
                      .Digitized = RoundedText(pick(1, 300), 1),
                      .Selected = RoundedText(pick(1, 300), 1),
                      .Alpha = round % 2 == 0 ? "None" : RoundedText(pick(-0.05, 0.05), 6),
                      .Points = {}};
    double x = 0, y = 0;
    const int points = 2 + static_cast<int>(pick(0, 400));
    for (int i = 0; i < points; ++i) {
      x += pick(0.05, 3);
      y += pick(-0.4, 1.2);
      const double kind = pick(0, 1);
      const char* code = kind < 0.05 ? "CODE205" : kind < 0.1 ? "CODE203" : kind < 0.15 ? "CODE201" : "";
      chart.Points.push_back(RoundedText(x, 2) + "," + RoundedText(y, 2) + "," +
                             (i + 1 < points ? code : ""));
    }
    const ComputationVariables variables{
        .UseAlpha = round % 4 == 1, .MinimalLapse = round % 5 == 0 ? static_cast<float>(pick(0, 60)) : 0};
    const bool manual = round % 7 == 0;
    const auto shift = static_cast<float>(pick(-12, 12) / 24);
    const ChartRows rows = RowsOf(chart, manual, shift, variables);
    SCOPED_TRACE(chart.Text());
    ASSERT_FALSE(rows.Rows.empty());
    const double chosen = LeadingNumber(manual ? chart.Manual : chart.Digitized);
    EXPECT_NEAR(Sum(rows), chosen, 0.005 * static_cast<double>(rows.Rows.size()) + 1e-4);
    EXPECT_LE(SecondsOf(rows.Start), SecondsOf(rows.Rows.front().Start));
    EXPECT_LE(SecondsOf(rows.Rows.back().End), SecondsOf(rows.End));
    EXPECT_GE(SecondsOf(rows.Rows.back().End), SecondsOf(RoundedTime(rows.End)) - 10);
    for (std::size_t i = 1; i < rows.Rows.size(); ++i) ASSERT_EQ(rows.Rows[i].Start, rows.Rows[i - 1].End);
  }
}

TEST(ChartRows, SayWhyChartGivesNone) {
  const Date start = MakeDate(1998, 3, 5, 10);
  const struct {
    std::string Text;
    const char* Why;
  } cases[] = {{"", "no chart text"},
               {"\r\n", "no chart text"},
               {"RG12-19980305-1000.dat\r\n\x01\x02garbage", "names no instrument"},
               {StoredChart{.Instrument = "RG99"}.Text(), "no station has the instrument code RG99"},
               {StoredChart{.Points = {}}.Text(), "no points"},
               {StoredChart{.Points = {"0,0,"}}.Text(), "span no time"},
               {StoredChart{.End = start}.Text(), "does not end after its start"},
               {StoredChart{.End = start - 1, .Comment = "CODE213"}.Text(), "does not end after its start"},
               {StoredChart{}.Text().substr(0, 70), "has no start"}};
  for (const auto& c : cases) {
    ChartReading reading;
    const auto read = ReadChartToConvert(c.Text, {}, Stations, reading);
    ASSERT_FALSE(read.has_value()) << c.Text;
    EXPECT_THAT(read.error(), HasSubstr(c.Why));
  }
}

}  // namespace
}  // namespace hyetex::test
