#include "chartfiles/series.h"

#include <random>

#include "support.h"

namespace hyetex::test {
namespace {

using ::testing::ElementsAreArray;
using ::testing::Pointwise;

constexpr double Minute = 1.0 / 24 / 60;

// A chart of one day from day 100 on, 10 mm deep.
ChartReading Chart(std::vector<RawPoint> points, ChartMethod method = ChartMethod::Linear) {
  ChartReading reading;
  reading.Chart.ChartMethod = static_cast<std::int16_t>(method);
  reading.Chart.StartTime = 100;
  reading.Chart.EndTime = 101;
  reading.Chart.SelectedDepth = 10;
  reading.Chart.SelectedAlpha = NoAlpha;
  reading.RawPoints = std::move(points);
  reading.RawPoints.insert(reading.RawPoints.begin(), RawPoint{});
  reading.Chart.RawCount = static_cast<std::int16_t>(reading.RawPoints.size() - 1);
  return reading;
}

std::vector<double> Times(const ChartReading& reading) {
  std::vector<double> times;
  for (const SeriesPoint& point : reading.SeriesPoints) times.push_back(point.Time - 100);
  return times;
}
std::vector<double> Depths(const ChartReading& reading) {
  std::vector<double> depths;
  for (const SeriesPoint& point : reading.SeriesPoints) depths.push_back(point.Depth);
  return depths;
}

MATCHER(IsClose, "") { return std::abs(std::get<0>(arg) - std::get<1>(arg)) < 1e-6; }

TEST(Series, WorkedCharts) {
  const auto trace = [](const char* at, const char* comment) {
    std::vector<RawPoint> points{{10, 0, ""}, {20, 10, ""}, {30, 5, ""}, {40, 20, ""}};
    if (*at != '\0') points[static_cast<std::size_t>(*at - '1')].Comment = comment;
    return points;
  };
  const std::vector<double> quarters{0, 0.25, 0.5, 0.75, 1};
  struct {
    const char *At, *Comment;  // on which of the four points
    ChartMethod Method;
    std::vector<double> Times, Depths;
  } const cases[] = {// Rises of 10 and 15; the fall of 5 counts on an arc only.
                     {"", "", ChartMethod::Linear, quarters, {0, 0, 4, 4, 10}},
                     {"", "", ChartMethod::TippingBucket, quarters, {0, 0, 4, 4, 10}},
                     {"", "", ChartMethod::NonLinear, quarters, {0, 0, 5, 2.5, 10}},
                     // The step to a point that is left out counts nothing, the step away from it does.
                     {"3", "CODE201", ChartMethod::Linear, {0, 1 / 3., 2 / 3., 1}, {0, 0, 4, 10}},
                     {"3", "Ink::CODE202", ChartMethod::NonLinear, {0, 1 / 3., 2 / 3., 1}, {0, 0, 4, 10}},
                     {"3", "CODE204", ChartMethod::Linear, {0, 1 / 3., 2 / 3., 1}, {0, 0, 4, 10}},
                     {"4", "CODE201", ChartMethod::Linear, {0, 1 / 3., 2 / 3., 1}, {0, 0, 10, 10}},
                     // Time without depth.
                     {"2", "CODE203", ChartMethod::Linear, quarters, {0, 0, 0, 0, 10}},
                     {"4", "CODE205 + Clock malfunction", ChartMethod::Linear, quarters, {0, 0, 10, 10, 10}},
                     {"3", "CODE205", ChartMethod::NonLinear, quarters, {0, 0, 4, 4, 10}},
                     {"2", "CODE206", ChartMethod::Linear, quarters, {0, 0, 4, 4, 10}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.At) + " " + c.Comment + ", method " +
                 std::to_string(static_cast<int>(c.Method)));
    ChartReading reading = Chart(trace(c.At, c.Comment), c.Method);
    BuildSeries(false, 0, reading);
    EXPECT_EQ(reading.Chart.SeriesCount, static_cast<int>(c.Times.size()) - 1);
    EXPECT_THAT(Times(reading), Pointwise(IsClose(), c.Times));
    EXPECT_THAT(Depths(reading), Pointwise(IsClose(), c.Depths));
  }
}

TEST(Series, TakesTheSkewOutFromTheLowestPointUp) {
  struct {
    bool UseAlpha;
    float Alpha;
    std::vector<double> X;
  } const cases[] = {{true, 0.5F, {0, 12, 20, 35}},
                     {true, -2, {0, 2, 20, 10}},
                     {true, NoAlpha, {0, 10, 20, 30}},
                     {false, 0.5F, {0, 10, 20, 30}}};
  for (const auto& c : cases) {
    ChartReading reading = Chart({{10, 8, ""}, {20, 4, ""}, {30, 14, ""}}, ChartMethod::NonLinear);
    reading.Chart.SelectedAlpha = c.Alpha;
    BuildSeries(c.UseAlpha, 0, reading);
    for (std::size_t i = 0; i < c.X.size(); ++i) EXPECT_EQ(reading.RawPoints[i].X, c.X[i]) << c.Alpha;
  }
}

TEST(Series, EndsWithTheDepthThatCounts) {
  struct {
    float Selected, Digitized, Manual, SelectedAfter, Last;
  } const cases[] = {{3, 4, 5, 3, 3},
                     {0, 4, 5, 4, 4},
                     {0, 0, 5, 0, 5},
                     {0, 0, 0, 0, 0},
                     {NoDepth, 4, 5, NoDepth, 5},
                     {0, NoDepth, 5, NoDepth, 5},
                     {0, 0, NoDepth, 0, 0},
                     {NoDepth, NoDepth, NoDepth, NoDepth, 0}};
  for (const auto& c : cases) {
    ChartReading reading = Chart({{1, 1, ""}, {2, 2, ""}});
    reading.Chart.SelectedDepth = c.Selected;
    reading.Chart.DigitizedDepth = c.Digitized;
    reading.Chart.ManualDepth = c.Manual;
    BuildSeries(false, 0, reading);
    SCOPED_TRACE(std::to_string(c.Selected) + " " + std::to_string(c.Digitized));
    EXPECT_EQ(reading.Chart.SelectedDepth, c.SelectedAfter);
    EXPECT_EQ(reading.SeriesPoints.back().Depth, c.Last);
    EXPECT_EQ(reading.SeriesPoints.back().Time, 101);
  }
}

TEST(Series, SurvivesChartsWithoutRainOrWithoutTime) {
  ChartReading dry = Chart({{1, 0, ""}, {2, 0, ""}, {3, 0, ""}});
  BuildSeries(false, 0, dry);
  EXPECT_THAT(Depths(dry), ElementsAreArray({0, 0, 0, 0}));

  for (const auto& points :
       {std::vector<RawPoint>{{0, 0, ""}}, {}, {{5, 3, "CODE201"}, {9, 4, "CODE202"}}, {{1e300, 1, ""}}}) {
    ChartReading reading = Chart(points);
    BuildSeries(true, 5, reading);
    EXPECT_EQ(reading.Chart.SeriesCount, 0);
    EXPECT_THAT(Times(reading), ElementsAreArray({0}));
    EXPECT_EQ(reading.Chart.EndTime, 101);
  }
}

TEST(Series, TimesThatStandStillOrGoBackAreCarriedForward) {
  ChartReading reading = Chart({{20, 0, ""}, {20, 1, ""}, {10, 2, ""}, {20, 3, ""}, {40, 4, ""}});
  BuildSeries(false, 0, reading);
  EXPECT_THAT(Times(reading),
              Pointwise(IsClose(), {0.0, 0.5, 0.5 + Minute, 0.5 + 2 * Minute, 0.5 + 3 * Minute, 1.0}));
}

// As it is told: at the first interval that is too short its end goes, and the look begins again.
void JoinOneByOne(float minutes, std::vector<SeriesPoint>& series) {
  const auto lapse = static_cast<float>(static_cast<double>(minutes) / 24 / 60);
  for (std::size_t i = 1; i < series.size(); ++i)
    if (lapse > static_cast<float>(series[i].Time - series[i - 1].Time)) {
      series.erase(series.begin() + static_cast<std::ptrdiff_t>(i));
      i = 0;
    }
}

TEST(Series, JoinsShortStepsAsOneByOneWould) {
  std::mt19937 random(3);
  const auto pick = [&](int most) { return std::uniform_int_distribution(0, most)(random); };
  for (int round = 0; round < 200; ++round) {
    // Steps of 0 to 9 minutes, many of them exactly the lapse.
    std::vector<RawPoint> points;
    double x = 0;
    for (int i = 0; i < 60; ++i) points.push_back({x += pick(9), 1.0 * pick(49), ""});
    const auto lapse = static_cast<float>(pick(11)) + (round % 2 == 0 ? 0 : 0.5F);
    ChartReading all = Chart(points);
    all.Chart.EndTime = 100 + x * Minute;
    ChartReading joined = all;
    BuildSeries(false, 0, all);
    BuildSeries(false, lapse, joined);
    if (lapse > 0) JoinOneByOne(lapse, all.SeriesPoints);
    ASSERT_EQ(Times(joined), Times(all)) << "lapse " << lapse;
    ASSERT_EQ(Depths(joined), Depths(all));
    ASSERT_EQ(joined.Chart.SeriesCount, static_cast<int>(all.SeriesPoints.size()) - 1);
  }
  std::vector<RawPoint> minutes;
  for (int i = 1; i <= 15; ++i) minutes.push_back({i * 1.0, i * 1.0, ""});
  ChartReading reading = Chart(minutes);
  reading.Chart.EndTime = 100 + 15 * Minute;
  BuildSeries(false, 5, reading);
  EXPECT_THAT(Times(reading), Pointwise(IsClose(), {0.0, 5 * Minute, 10 * Minute, 15 * Minute}));
  EXPECT_EQ(reading.SeriesPoints.back().Depth, 10) << "the rain of what was joined is not lost";
}

}  // namespace
}  // namespace hyetex::test
