// Charts of an arc pen and of a tipping bucket trace themselves, and become the chart files that they should.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "digitizing/action_machine.h"
#include "scan/arc_pen.h"
#include "scan/scan_trace.h"
#include "scan/trace_steps.h"
#include "scans/scan_damage.h"
#include "scans/scan_file.h"
#include "support.h"
#include "tracing/rain.h"

namespace hyetex {
namespace {

using test::TempFolder;
using ::testing::HasSubstr;
using Rains = std::vector<RainPoint>;

// Four days from 7:00, so that the page starts between two printed lines: showers, and a setting back.
const Rains DaysOfRain{{0, 0},   {13, 0},  {15, 4},  {22, 7},    {30, 9.5}, {55, 9.5},
                       {58, 14}, {64, 20}, {70, 26}, {73, 26.6}, {90, 29},  {96, 29}};

RainChart ArcPaper() {
  RainChart chart;
  chart.Paper = {"Weekly arc", 100, 0.25F, 0.5F, static_cast<std::int16_t>(ChartMethod::NonLinear), 12};
  chart.FullMm = 100;
  return chart;
}
RainChart TippingPaper() {
  RainChart chart;
  chart.Paper = {"Daily tipping bucket",
                 85.2F,
                 0.125F,
                 1 / 16.1F,
                 static_cast<std::int16_t>(ChartMethod::TippingBucket),
                 0};
  chart.TipMm = 0.5;
  return chart;
}

struct Scanned {
  TempFolder Folder;
  PenLine Line;
  TraceWish Wish;

  Scanned(const Rains& rain, const RainChart& chart) : Line(*DrawRain(rain, chart)) {
    Wish.Paper = Line.Paper;
    Wish.StartHour = 7;
    Wish.Hours = Line.Hours;
  }
  ScanImage Draw(const std::string& damage) const { return Draw(Line, damage); }
  ScanImage Draw(const PenLine& line, const std::string& damage) const {
    ScanStyle style;
    style.Dpi = 170;
    style.ZeroMm = Line.Paper.MiddleToBottomMm > 0 ? 0 : 3.2;
    style.BandMm = Line.Paper.ChartHeightMm;
    EXPECT_TRUE(Damage(style, damage, 5));
    const auto drawn = DrawScan(line, style, 5);
    const std::string path = Folder / (style.JpegQuality ? "scan.jpg" : "scan.png");
    test::WriteFile(path, *EncodeScan(drawn->Image, path, 170, style.JpegQuality.value_or(92)));
    return *ScanImage::Open(path);
  }
  double Rain() const { return Line.Points.back().Rain; }
};

// The session that a trace's journal makes.
Session SessionOf(const ScanTracer& tracer, const ScanTrace& trace, const ScanImage& image,
                  const TraceWish& wish) {
  const auto steps = StepsOfTrace(trace, tracer, image, wish);
  EXPECT_TRUE(steps) << steps.error();
  const Journal journal = ReadJournal(JournalOfTrace(*steps, trace));
  EXPECT_FALSE(journal.Error);
  Session session(TabletTypes()[ScanTablet].Extents, wish.Paper, {});
  SilentView view;
  ActionMachine machine(session, TabletTypes()[ScanTablet], view);
  machine.Start();
  EXPECT_TRUE(Replay(journal, machine));
  return session;
}

TEST(ArcScan, GivesTheRainOfItsDaysAndGoesTheRoadOfEveryChart) {
  const Scanned scanned(DaysOfRain, ArcPaper());
  for (const char* damage : {"", "tilt=0.5,grey,stains=0.4", "jpeg=0.5,shrink=0.4"}) {
    SCOPED_TRACE(damage);
    const ScanImage image = scanned.Draw(damage);
    const auto tracer = ScanTracer::Open(image, scanned.Wish);
    ASSERT_TRUE(tracer) << tracer.error();
    const ScanTrace trace = tracer->Trace();
    ASSERT_NE(trace.Verdict, TraceVerdict::NotTraced) << trace.Doubts.front().Why;
    EXPECT_NEAR(trace.RainMm, scanned.Rain(), 0.015 * scanned.Rain());
    ASSERT_EQ(trace.EmptyingHours.size(), 1U) << "the pen is set back at 25 mm";
    EXPECT_NEAR(trace.EmptyingHours[0], 69, 0.3);
    for (const TraceDoubt& doubt : trace.Doubts) EXPECT_THAT(doubt.Why, Not(HasSubstr("confirm the hour")));

    const Session session = SessionOf(*tracer, trace, image, scanned.Wish);
    const int last = session.Line.LastPoint();
    EXPECT_NEAR(session.TotalDepth(last), scanned.Rain(), 0.015 * scanned.Rain());
    EXPECT_NEAR(session.Line.TimeTo(last) * 24, scanned.Wish.Hours, 0.1);
    // The arc is off the presses again: rain falls when it fell.
    for (const auto& [hour, mm] : {std::pair(30.0, 9.5), {64.0, 20.0}, {90.0, 29.0}}) {
      int point = 0;
      while (point < last && session.Line.TimeTo(point + 1) * 24 <= hour) ++point;
      EXPECT_NEAR(session.TotalDepth(point), mm, 0.6) << hour;
    }
  }
}

TEST(ArcScan, LevelsWhatTremblesAndTellsWhatFalls) {
  using Step = PathPoint::Step;
  const std::vector<PathPoint> path{{Step::Along, 0, 10, 0},      {Step::Along, 5, 10.3, 40},
                                    {Step::Along, 9, 9.9, 70},    {Step::Along, 12, 12, 90},
                                    {Step::Along, 20, 12.2, 150}, {Step::Along, 30, 7.8, 230},
                                    {Step::Along, 40, 99, 300},   {Step::Drop, 41, 0, 305},
                                    {Step::Along, 60, 95, 400},   {Step::Along, 80, 2, 500}};
  const std::vector<PathPoint> points = PointsOnArc(path, 100);
  double counted = 0, longest = 0;
  for (std::size_t i = 1; i < points.size(); ++i) {
    if (points[i].How != Step::Along) continue;
    counted += std::abs(points[i].HeightMm - points[i - 1].HeightMm);
    longest = std::max(longest, points[i - 1].HeightMm - points[i].HeightMm);
  }
  EXPECT_NEAR(counted, 2.2 + 4.4 + 91.2 + 95 + 93, 1e-6);
  EXPECT_LT(longest, 80) << "a session would take such a fall for an emptying";
  const auto segment = std::find_if(points.begin(), points.end(),
                                    [](const PathPoint& point) { return point.How == Step::Segment; });
  ASSERT_NE(segment, points.end());
  EXPECT_EQ((segment - 1)->AlongMm, segment->AlongMm) << "a segment takes no time";
  EXPECT_TRUE(std::none_of(points.begin(), points.end(),
                           [](const PathPoint& point) { return point.How == Step::Drop; }));

  TraceWish wish;
  wish.Paper = ArcPaper().Paper;
  wish.StartHour = 7;
  wish.Hours = 96;
  const auto doubts = DoubtsOfFalls(points, wish);
  ASSERT_EQ(doubts.size(), 2U);
  EXPECT_THAT(doubts[0].Why, HasSubstr("From 17:00 of day 1 to 22:00 of day 1 the line falls by 1.1 mm"));
}

TEST(TippingScan, HasAllItsTips) {
  // A shower, 13 mm within an hour that set the pen back, and drizzle.
  const Rains rain{{0, 0}, {1.5, 0}, {2.6, 3.1}, {4, 3.1}, {5, 16.2}, {7.5, 16.3}, {11, 18.2}, {12, 18.2}};
  const Scanned scanned(rain, TippingPaper());
  ASSERT_NEAR(scanned.Rain(), 18, 1e-6);
  for (const char* damage : {"", "tilt=0.5,grey,jpeg=0.4"}) {
    SCOPED_TRACE(damage);
    const ScanImage image = scanned.Draw(damage);
    const auto tracer = ScanTracer::Open(image, scanned.Wish);
    ASSERT_TRUE(tracer) << tracer.error();
    const ScanTrace trace = tracer->Trace();
    ASSERT_NE(trace.Verdict, TraceVerdict::NotTraced) << trace.Doubts.front().Why;
    EXPECT_EQ(std::lround(trace.RainMm / 0.5), 36);
    EXPECT_EQ(trace.EmptyingHours.size(), 1U);

    // Each tip that stands by itself is one upright step, at its own time.
    const auto inStorm = [](double hour) { return hour > 4 && hour < 5.1; };
    std::vector<double> tips;
    for (std::size_t i = 1; i < trace.Points.size(); ++i) {
      const ScanPoint &from = trace.Points[i - 1], &to = trace.Points[i];
      const double hour = to.AlongMm / 16.1, rise = to.HeightMm - from.HeightMm;
      if (to.How != ScanPoint::Step::Along || rise < 0.5 || inStorm(hour)) continue;
      EXPECT_EQ(to.AlongMm, from.AlongMm);
      EXPECT_NEAR(rise, 4, 0.4) << hour;
      tips.push_back(hour);
    }
    std::vector<double> drawn;
    for (std::size_t i = 1; i < scanned.Line.Points.size(); ++i)
      if (const PenPoint& at = scanned.Line.Points[i];
          at.Rain > scanned.Line.Points[i - 1].Rain && !inStorm(at.Hours))
        drawn.push_back(at.Hours);
    EXPECT_THAT(tips, ::testing::Pointwise(::testing::DoubleNear(0.03), drawn));
    const Session session = SessionOf(*tracer, trace, image, scanned.Wish);
    EXPECT_EQ(session.TotalDepth(session.Line.LastPoint()), 0) << "the gage tells its depth";
    EXPECT_NEAR(session.Line.TimeTo(session.Line.LastPoint()) * 24, 12, 0.03);
  }
}

TEST(OtherPensScan, TellsTheWrongChartTypeAndABlankSheet) {
  // A straight sheet for an arc's, an arc's for a straight one, and no line at all.
  const Scanned tipping({{0, 0}, {2, 3}, {12, 9}}, TippingPaper());
  TraceWish arc = tipping.Wish;
  arc.Paper.ChartMethod = static_cast<std::int16_t>(ChartMethod::NonLinear);
  arc.Paper.MiddleToBottomMm = 12;
  const ScanTrace straight = TraceScan(tipping.Draw(""), arc);
  EXPECT_EQ(straight.Verdict, TraceVerdict::NotTraced);
  EXPECT_THAT(straight.Doubts.front().Why, HasSubstr("other arcs than those of the chart type"));

  const Scanned week(DaysOfRain, ArcPaper());
  TraceWish siphon = week.Wish;
  siphon.Paper.ChartMethod = static_cast<std::int16_t>(ChartMethod::Linear);
  const ScanTrace bent = TraceScan(week.Draw(""), siphon);
  EXPECT_EQ(bent.Verdict, TraceVerdict::NotTraced);
  EXPECT_THAT(bent.Doubts.front().Why, HasSubstr("the chart type has a straight pen"));

  PenLine none = week.Line;
  for (PenPoint& point : none.Points) point.Step = PenStep::GapEnd;
  EXPECT_THAT(TraceScan(week.Draw(none, ""), week.Wish).Doubts.front().Why, HasSubstr("No pen line"));
}

}  // namespace
}  // namespace hyetex
