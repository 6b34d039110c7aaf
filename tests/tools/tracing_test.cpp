#include "digitizing/report_decoder.h"
#include "paths.h"
#include "support.h"
#include "tools/traced_chart.h"

namespace hyetex::test {
namespace {

std::vector<TabletReport> Decoded(const TabletType& tablet, std::string_view stream) {
  std::vector<TabletReport> reports;
  ReportDecoder decoder(tablet);
  for (; !stream.empty(); stream.remove_prefix(std::min<std::size_t>(stream.size(), 7))) {
    const std::string_view piece = stream.substr(0, 7);
    decoder.Receive({reinterpret_cast<const std::uint8_t*>(piece.data()), piece.size()},
                    [&](const TabletReport& report) { reports.push_back(report); });
  }
  return reports;
}

// A chart with every tool in it.
std::vector<JournalEvent> BusySteps(int tablet) {
  RainChart chart;
  chart.Paper.ChartMethod = 1;
  chart.Paper.TimeScale = 1 / 16.1F;
  chart.Paper.DepthScale = 0.125F;
  chart.Paper.MiddleToBottomMm = 12;
  chart.FullMm = 100;
  chart.Gap = {8, 9};
  chart.Moved = {15, 4};
  const std::vector<RainPoint> rain{{0, 0}, {7, 3}, {11, 16}, {14, 17}, {22, 30}, {24, 30}};
  PageLaid laid;
  laid.AttachAtHours = 16;
  laid.GeneralComment = "Rain began before the chart was laid";
  return TracePage(DrawRain(rain, chart).value(), TabletOf(tablet), laid).value();
}

class Tracing : public ::testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(AllTablets, Tracing, ::testing::Range(0, TabletTypeCount));

TEST_P(Tracing, StreamHoldsEachPressOnceAndNothingOffTheTablet) {
  const TabletType& tablet = TabletOf(GetParam());
  const DeskLayout layout = DefaultDeskLayout(tablet.Extents);
  const std::vector<JournalEvent> steps = BusySteps(GetParam());
  std::vector<std::pair<int, int>> expected, pressed;
  for (const JournalEvent& step : steps) {
    std::pair<double, double> at{step.X, step.Y};
    if (step.What == JournalEvent::Kind::Tool)
      at = TabletPositionOfTool(layout, tablet.Extents, step.Tool);
    else if (step.What != JournalEvent::Kind::Press)
      continue;
    expected.emplace_back(std::lround(at.first), std::lround(at.second));
  }
  bool held = false;
  for (const TabletReport& report : Decoded(tablet, EncodeSteps(tablet, steps))) {
    EXPECT_TRUE(report.X >= 0 && static_cast<float>(report.X) <= tablet.Extents.TabletWidthUnits &&
                report.Y >= 0 && static_cast<float>(report.Y) <= tablet.Extents.TabletHeightUnits)
        << report.X << " " << report.Y;
    const bool down = report.Button >= 0;
    if (down && !held) pressed.emplace_back(report.X, report.Y);
    if (down) {
      EXPECT_EQ(std::pair(report.X, report.Y), pressed.back()) << "moved while held";
    }
    held = down;
  }
  EXPECT_FALSE(held);
  EXPECT_EQ(pressed, expected);
}

TEST_P(Tracing, JournalReadsBackAsTheSameSteps) {
  const std::vector<JournalEvent> steps = BusySteps(GetParam());
  const Journal journal = ReadJournal(JournalText(GetParam(), steps));
  ASSERT_FALSE(journal.Error) << *journal.Error;
  EXPECT_EQ(journal.Tablet, GetParam());
  ASSERT_EQ(journal.Events.size(), steps.size());
  for (std::size_t i = 0; i < steps.size(); ++i)
    EXPECT_EQ(JournalLine(journal.Events[i]), JournalLine(steps[i])) << "step " << i;
}

TEST_P(Tracing, DemonstrationIsWhatTheToolsMakeToday) {
  const auto steps = TracePage(RealChart(), TabletOf(GetParam()), {}).value();
  const std::string number = std::to_string(GetParam());
  EXPECT_TRUE(ReadFile(test::Demo("streams/siphon-" + number + ".bin")) ==
              EncodeSteps(TabletOf(GetParam()), steps))
      << "run demo/make";
  EXPECT_EQ(ReadFile(test::Demo("journals/siphon-" + number + ".txt")), JournalText(GetParam(), steps))
      << "run demo/make";
}

TEST(TracingLimits, RefusesWhatDoesNotLieFreeOnTheTablet) {
  // A line that climbs where the tool board stands, if the page lies high enough.
  RainChart chart;
  chart.Paper.TimeScale = 0.1F;
  chart.Paper.DepthScale = 0.1F;
  const PenLine line = DrawRain(std::vector<RainPoint>{{0, 0}, {20, 0}, {24, 5}}, chart).value();
  const auto refusal = [&](double bottomMm, double rightMarginMm) {
    PageLaid laid;
    laid.BottomMm = bottomMm;
    laid.RightMarginMm = rightMarginMm;
    const auto steps = TracePage(line, TabletOf(3), laid);
    return steps ? std::string() : steps.error();
  };
  EXPECT_EQ(refusal(30, 8), "");
  EXPECT_THAT(refusal(-1, 8), ::testing::HasSubstr("off the tablet"));
  EXPECT_THAT(refusal(240, 8), ::testing::HasSubstr("under the tool board"));
  EXPECT_THAT(refusal(30, 290), ::testing::HasSubstr("no place to slide the paper"));
}

TEST(TracingLimits, MarksDropThatTheProgramWouldNotSee) {
  // A short pen's drop is no full fall of the pen; the operator marks it with the tool.
  RainChart chart;
  chart.Paper.TimeScale = 0.1F;
  chart.Paper.DepthScale = 0.2F;
  chart.FullMm = 50;
  const std::vector<RainPoint> rain{{0, 0}, {5, 8}, {12, 21}, {20, 26}};
  const TracedChart traced = TraceChart(DrawRain(rain, chart).value(), 0);
  const auto drops = std::ranges::count_if(traced.Reading.RawPoints,
                                           [](const RawPoint& p) { return HasCode(p.Comment, CodeAlpha); });
  EXPECT_EQ(drops, 2);
  EXPECT_NEAR(traced.Reading.Chart.DigitizedDepth, 26, 0.06);
}

TEST(TracingInput, NamesTheLineThatCannotBeRead) {
  using ::testing::HasSubstr;
  EXPECT_THAT(ReadRain("hour,mm\n0,0\n1,x\n").error(), HasSubstr("line 3"));
  EXPECT_THAT(ReadRain("hour,mm\n0,0\n# dry\n1,2,3\n").error(), HasSubstr("line 4"));
  EXPECT_THAT(ReadRain("hour,mm\n0,5\n1,4\n").error(), HasSubstr("line 3: goes back"));
  EXPECT_THAT(ReadRain("mm,hour\n0,0\n1,1\n").error(), HasSubstr("heading"));
  EXPECT_THAT(ReadRain("hour,mm\n0,0\n").error(), HasSubstr("fewer than two"));
  const std::string heading = "hour,reading_mm,kind\n";
  EXPECT_THAT(DrawReadings(heading + "7,0,start\n8,1,slide\n").error(), HasSubstr("\"slide\""));
  EXPECT_THAT(DrawReadings(heading + "7,0,start\n6,1,point\n").error(), HasSubstr("line 3"));
}

TEST(TracingInput, RefusesChartsThatCannotBeDrawn) {
  const std::vector<RainPoint> rain{{0, 0}, {5, 8}};
  const auto drawn = [&](auto change) {
    RainChart chart;
    change(chart);
    return DrawRain(rain, chart).has_value();
  };
  EXPECT_TRUE(drawn([](RainChart&) {}));
  EXPECT_FALSE(drawn([](RainChart& c) { c.FullMm = 0; }));
  EXPECT_FALSE(drawn([](RainChart& c) { c.Gap = {3, 6}; }));
  EXPECT_FALSE(drawn([](RainChart& c) { c.Gap = {3, 3}; }));
  EXPECT_FALSE(drawn([](RainChart& c) { c.Moved = {7, 1}; }));
}

}  // namespace
}  // namespace hyetex::test
