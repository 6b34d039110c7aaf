#include "rain/chart_review.h"

#include <limits>

#include "database/conversion/population_fixture.h"

namespace hyetex::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> Told(const std::vector<ReviewLine>& lines) {
  std::vector<std::string> told;
  for (const ReviewLine& line : lines)
    told.push_back(std::string(TroubleName(line.Trouble)) + " " + GeneralDateText(line.From) + " - " +
                   GeneralDateText(line.To) + ": " + line.Detail);
  return told;
}

ReviewedChart Day(int day, double hours = 24) {
  const Date start = MakeDate(1998, 3, day, 7);
  return {.ChartDate = start,
          .Start = start,
          .End = start + hours / 24,
          .Depth = 10,
          .Gage = 10,
          .Reliability = 1,
          .Converted = true};
}

TEST(ChartReviewList, TellsTimeWithoutAChartAndOverlapsInAnyOrder) {
  ReviewedChart late = Day(9);
  late.Start -= 1.0 / 24;  // an hour into the one before
  ReviewedChart within = Day(9, 2);
  within.Start = within.ChartDate = MakeDate(1998, 3, 9, 12);
  within.End = MakeDate(1998, 3, 9, 14);
  EXPECT_THAT(
      Told(ReviewOf({late, Day(5), Day(8), within, Day(10, 24)})),
      ElementsAre(
          "No chart 06/03/1998 07:00:00 - 08/03/1998 07:00:00: 2 days without a chart",
          "Overlap 09/03/1998 06:00:00 - 09/03/1998 07:00:00: begins 1 h before the chart before it ends",
          "Overlap 09/03/1998 12:00:00 - 09/03/1998 14:00:00: begins 19 h before the chart before it "
          "ends, and lies within it"))
      << "what a longer chart covers is not missing behind a shorter one";
  EXPECT_THAT(ReviewOf({}), IsEmpty());
}

TEST(ChartReviewList, LetsThePaperBeChanged) {
  ReviewedChart next = Day(6);
  next.Start += 1.0 / 24;
  EXPECT_THAT(ReviewOf({Day(5), next}), IsEmpty());
  next.Start += 2.0 / 86400;
  EXPECT_THAT(Told(ReviewOf({Day(5), next})),
              ElementsAre("No chart 06/03/1998 07:00:00 - 06/03/1998 08:00:02: 1 h without a chart"));
}

TEST(ChartReviewList, HoldsDepthsAgainstTheGage) {
  const auto differs = [](float depth, float gage, bool defective = false) {
    ReviewedChart chart = Day(5);
    chart.Depth = depth;
    chart.Gage = gage;
    chart.Defective = defective;
    const auto lines = ReviewOf({chart});
    return lines.empty() ? std::string() : lines.front().Detail;
  };
  EXPECT_EQ(differs(10.5F, 10), "") << "just five percent";
  EXPECT_EQ(differs(9.5F, 10), "");
  EXPECT_EQ(differs(10.6F, 10), "10.6 mm, manual gage 10 mm (+6%)");
  EXPECT_EQ(differs(8, 12.5F), "8 mm, manual gage 12.5 mm (-36%)");
  EXPECT_EQ(differs(0.4F, 0), "0.4 mm, manual gage 0 mm");
  EXPECT_EQ(differs(0, 0), "");
  EXPECT_EQ(differs(-1, 10), "") << "an unknown depth is no difference";
  EXPECT_EQ(differs(10, -1), "");
  EXPECT_EQ(differs(0, 12, true), "") << "the gage's depth stands for it";
  EXPECT_EQ(differs(std::numeric_limits<float>::quiet_NaN(), 10), "");
}

TEST(ChartReviewList, TellsAllThatAilsAChartAndWhereItIsMended) {
  ReviewedChart chart = Day(5);
  chart.End = 0;
  chart.Converted = false;
  chart.ConvertedOn = MakeDate(2020, 1, 2, 3, 4, 5);
  chart.Gage = 20;
  chart.Reliability = 3;
  ReviewedChart unknown = Day(5);
  unknown.Start = unknown.ChartDate = MakeDate(1998, 3, 5, 7, 30);
  unknown.Converted.reset();
  const auto lines = ReviewOf({unknown, chart});
  std::vector<ChartTrouble> troubles;
  std::vector<MendedIn> places;
  for (const ReviewLine& line : lines) {
    EXPECT_EQ(line.ChartDate, chart.ChartDate);
    troubles.push_back(line.Trouble);
    places.push_back(WhereMended(line.Trouble));
  }
  using enum ChartTrouble;
  EXPECT_THAT(troubles, ElementsAre(Damaged, NotConverted, DepthDiffers, Unreliable));
  EXPECT_THAT(places,
              ElementsAre(MendedIn::Editor, MendedIn::Populating, MendedIn::Editor, MendedIn::Editor));
  EXPECT_EQ(lines[1].Detail, "changed since it was converted on 02/01/2020 03:04:05");
  EXPECT_EQ(WhereMended(Missing), MendedIn::Staging);
}

class ChartReviewRead : public PopulationFixture {
 protected:
  ChartReview Read(const std::string& code = "rg12") {
    UnwatchedProgress progress;
    auto review = ReviewCharts(Database, code, Lists.Stations, progress);
    EXPECT_TRUE(review) << review.error().Description;
    return review.value_or(ChartReview());
  }
};
HYETEX_ON_ALL_ENGINES(ChartReviewRead);

TEST_P(ChartReviewRead, ReadsTheStoredChartsOfOneInstrument) {
  const Date day = MakeDate(1998, 3, 5, 10);
  Store({.Start = day, .End = day + 1, .Manual = "10"});
  Store({.Start = day + 3, .End = day + 4, .Digitized = "11", .Selected = "0", .Manual = "10"});
  Store({.Start = day + 3.5, .End = day + 5, .Manual = "-1", .Comment = "CODE213"});
  StoreText("RG7", day + 1, StoredChart{}.Text());
  StoreText("RG12", day + 5, "rubbish");
  Convert({day, day + 3.5});
  const ChartReview review = Read();
  EXPECT_EQ(review.Charts, 4);
  EXPECT_TRUE(review.TellsConverted);
  EXPECT_THAT(
      Told(review.Lines),
      ElementsAre(
          "No chart 06/03/1998 10:00:00 - 08/03/1998 10:00:00: 2 days without a chart",
          "Not converted 08/03/1998 10:00:00 - 09/03/1998 10:00:00: no rain of it in CHART yet",
          "Depth and gage differ 08/03/1998 10:00:00 - 09/03/1998 10:00:00: 11 mm, manual gage 10 mm (+10%)",
          "Overlap 08/03/1998 22:00:00 - 09/03/1998 10:00:00: begins 12 h before the chart before it ends",
          "Damaged 10/03/1998 10:00:00 - 30/12/1899: its text has no end behind its start",
          "Not converted 10/03/1998 10:00:00 - 30/12/1899: no rain of it in CHART yet"));
  EXPECT_THAT(Read("RG99").Lines, IsEmpty());
}

// A changed chart is told apart from a new one by the book; without mark and book nobody knows.
TEST_P(ChartReviewRead, GoesByTheMarkThenByTheBookOfConversions) {
  const Date day = MakeDate(1998, 3, 5, 10);
  Store({.Start = day, .End = day + 1, .Manual = "10"});
  Convert({day});
  EXPECT_THAT(Read().Lines, IsEmpty());
  Run("UPDATE chart_ascii SET loaded = 0");
  ASSERT_EQ(Read().Lines.size(), 1U);
  EXPECT_TRUE(Read().Lines[0].Detail.starts_with("changed since it was converted on "));
  Run("ALTER TABLE chart_ascii DROP COLUMN loaded");
  EXPECT_THAT(Read().Lines, IsEmpty());
  Run("DELETE FROM chart_conversion");
  EXPECT_EQ(Read().Lines.size(), 1U);
  Run("DROP TABLE chart_conversion");
  EXPECT_THAT(Read().Lines, IsEmpty());
  EXPECT_FALSE(Read().TellsConverted);
}

TEST_P(ChartReviewRead, StopsWhereTheOperatorWantsNoMore) {
  class Second : public Progress {
   public:
    bool Step(std::int64_t done, std::int64_t, std::string_view) override { return done < 1; }
  } progress;
  const Date day = MakeDate(1998, 3, 5, 10);
  for (int i = 0; i < 3; ++i) Store({.Start = day + i, .End = day + i + 1, .Manual = "10"});
  const auto review = ReviewCharts(Database, "RG12", Lists.Stations, progress);
  ASSERT_TRUE(review);
  EXPECT_TRUE(review->Stopped);
  EXPECT_EQ(review->Charts, 1);
}

}  // namespace
}  // namespace hyetex::test
