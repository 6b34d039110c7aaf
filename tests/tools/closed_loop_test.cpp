// Rain in, rain out: what is drawn of a known rain on a chart, traced on a tablet and saved, must come back.
#include <cmath>
#include <numbers>

#include "support.h"
#include "tools/traced_chart.h"

namespace hyetex::test {
namespace {

constexpr double Minute = 1.0 / 60;

// A day with dry hours, drizzle, two storms, and about 47 mm in all.
std::vector<RainPoint> DayOfRain() {
  return {{7, 0},       {9.5, 0},     {10, 2.3},    {10.4, 6.1}, {11.2, 7.7}, {12, 14.9},
          {12.5, 19.2}, {13.3, 19.2}, {15, 20.1},   {16.1, 27},  {17, 33.4},  {18, 34.2},
          {21, 34.2},   {22.7, 36.5}, {24.4, 42.1}, {26, 46.6},  {27, 46.9},  {31, 46.9}};
}

RainChart ChartOf(ChartMethod method) {
  RainChart chart;
  chart.Paper.Name = "Daily";
  chart.Paper.ChartMethod = static_cast<std::int16_t>(method);
  chart.Paper.TimeScale = 1 / 16.1F;
  chart.Paper.DepthScale = 0.125F;
  chart.Paper.MiddleToBottomMm = 10;
  if (method == ChartMethod::NonLinear) chart.FullMm = 100;
  return chart;
}

struct Case {
  int Tablet;
  ChartMethod Method;
};

class ClosedLoop : public ::testing::TestWithParam<Case> {
 protected:
  RainChart Chart = ChartOf(GetParam().Method);

  // Every press is rounded to whole units. The errors go both ways, so few of them add up.
  void ExpectRainBack(const PageLaid& laid = {}) {
    const PenLine line = DrawRain(DayOfRain(), Chart).value();
    const TracedChart traced = TraceChart(line, GetParam().Tablet, laid);
    const std::vector<PenPoint> expected = ExpectedSeries(line, GetParam().Tablet);
    const std::vector<SeriesPoint>& series = traced.Reading.SeriesPoints;
    ASSERT_EQ(traced.Reading.Chart.SeriesCount, static_cast<int>(expected.size()));
    // The page is wider than the smallest tablet.
    const int strips = traced.State.Line.CurrentPaper();
    ASSERT_EQ(strips, laid.AttachAtHours || GetParam().Tablet == 3 ? 1 : 0);

    const TabletExtents& size = TabletOf(GetParam().Tablet).Extents;
    const double across = size.TabletWidthUnits / size.TabletWidthMm;
    const double up = size.TabletHeightUnits / size.TabletHeightMm;
    const double storedSlack = 0.05;  // the file gives the total to a tenth of a millimetre
    const double depthSlack = 2 / up * Chart.Paper.DepthScale + storedSlack;
    // A page that lies askew is sheared where units differ across and up: a climb of the pen takes or gives
    // time that its drop, which is left out of the series, does not give back. As the end of the chart is
    // held, half of it shows.
    const double shear = std::abs(1 - up * up / across / across) * laid.AngleDegrees * std::numbers::pi / 180;
    const double climbed = line.Points.back().Rain / Chart.Paper.DepthScale;
    const double paperSlack = 3 / across + std::abs(shear) * climbed / 2;
    // A point that stands straight above the one before it is moved on by a minute.
    const double hoursSlack = paperSlack * Chart.Paper.TimeScale + 1.1 * Minute;

    const double total = line.Points.back().Rain;
    if (GetParam().Method != ChartMethod::TippingBucket) {
      EXPECT_NEAR(traced.Reading.Chart.DigitizedDepth, total, depthSlack);
    }
    for (std::size_t i = 0; i < expected.size(); ++i) {
      const SeriesPoint& point = series[i + 1];
      EXPECT_NEAR(point.Depth, expected[i].Rain, depthSlack) << "slot " << i + 1;
      EXPECT_NEAR((point.Time - traced.State.ChartStart()) * 24, expected[i].Hours, hoursSlack)
          << "slot " << i + 1;
    }
  }
};

TEST_P(ClosedLoop, GivesTheRainBack) { ExpectRainBack(); }

TEST_P(ClosedLoop, GivesTheRainBackFromPageTiltedTheOtherWay) { ExpectRainBack({.AngleDegrees = -0.2}); }

TEST_P(ClosedLoop, LeavesOutGapAndPenMovedByHand) {
  Chart.Gap = {11.5, 13};
  Chart.Moved = {19, 6};
  ExpectRainBack();
}

TEST_P(ClosedLoop, GoesOnAcrossStripLaidAtAnotherAngle) {
  ExpectRainBack({.StripAngleDegrees = -0.25, .AttachAtHours = 9.7});
}

std::vector<Case> AllCases() {
  std::vector<Case> cases;
  for (int tablet = 0; tablet < TabletTypeCount; ++tablet)
    for (ChartMethod method : {ChartMethod::Linear, ChartMethod::NonLinear, ChartMethod::TippingBucket})
      cases.push_back({tablet, method});
  return cases;
}

std::string NameOf(const ::testing::TestParamInfo<Case>& test) {
  constexpr const char* Methods[] = {"Linear", "NonLinear", "TippingBucket"};
  return "Tablet" + std::to_string(test.param.Tablet) + Methods[static_cast<int>(test.param.Method)];
}

INSTANTIATE_TEST_SUITE_P(AllTabletsAndMethods, ClosedLoop, ::testing::ValuesIn(AllCases()), NameOf);

class RealChartLoop : public ::testing::TestWithParam<int> {};

TEST_P(RealChartLoop, KeepsDepthDropsAndTimes) {
  const PenLine line = RealChart();
  const TracedChart traced = TraceChart(line, GetParam());
  EXPECT_NEAR(traced.Reading.Chart.DigitizedDepth, 53.1, 0.3);
  const auto drops = std::ranges::count_if(traced.Reading.RawPoints,
                                           [](const RawPoint& p) { return HasCode(p.Comment, CodeAlpha); });
  EXPECT_EQ(drops, 5);
  EXPECT_EQ(traced.State.Line.CurrentPaper(), GetParam() == 3 ? 1 : 0)
      << "only the smallest tablet needs a strip";

  const std::vector<PenPoint> expected = ExpectedSeries(line, GetParam());
  ASSERT_EQ(traced.Reading.Chart.SeriesCount, static_cast<int>(expected.size()));
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const double hours = (traced.Reading.SeriesPoints[i + 1].Time - traced.State.ChartStart()) * 24;
    EXPECT_NEAR(hours, expected[i].Hours, 2 * Minute) << "slot " << i + 1;
  }
}

TEST_P(RealChartLoop, JournalMakesTheSameChartAsTheStream) {
  const PenLine line = RealChart();
  const auto steps = TracePage(line, TabletOf(GetParam()), {}).value();
  const Session streamed = PlayStream(line, TabletOf(GetParam()), EncodeSteps(TabletOf(GetParam()), steps));
  Session replayed(TabletOf(GetParam()).Extents, line.Paper, ChartFor(line));
  SilentView view;
  ActionMachine machine(replayed, TabletOf(GetParam()), view);
  machine.Start();
  const Journal journal = ReadJournal(JournalText(GetParam(), steps));
  ASSERT_FALSE(journal.Error) << *journal.Error;
  ASSERT_TRUE(Replay(journal, machine));
  const ChartOrigin origin{"Core", "Agency", "Station", "RG12", "Operator"};
  EXPECT_EQ(MakeChartText(replayed, origin, "")->Text, MakeChartText(streamed, origin, "")->Text);
}

INSTANTIATE_TEST_SUITE_P(AllTablets, RealChartLoop, ::testing::Range(0, TabletTypeCount));

}  // namespace
}  // namespace hyetex::test
