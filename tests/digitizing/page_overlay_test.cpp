// The lines over the paper, and what lies at a place, against the geometry's own numbers.
#include "digitizing/page_overlay.h"

#include <gtest/gtest.h>

#include "digitizing/desk.h"
#include "digitizing/point_search.h"

namespace hyetex::test {
namespace {

// What a point traced at a place of the paper in use would have as its time, measured from the paper's first.
Date TimeAt(const Session& session, double x, double y) {
  const Trace& line = session.Line;
  const int paper = line.CurrentPaper(), first = line.Paper(paper).FirstPoint;
  const bool traced = first <= line.LastPoint();
  const double along =
      TimeAlongPaper(line.Scales(), x, y, line.Paper(paper)) - (traced ? line.TimeAlong(first, paper) : 0);
  return session.PointTime(traced ? first : line.LastPoint()) +
         along / line.Scales().Tablet.TabletWidthUnits * line.Scales().Tablet.TabletWidthMm *
             line.Scales().ChartType.TimeScale / 24;
}

void ExpectRight(const Session& session, std::size_t leastHours, bool depths) {
  const auto lines = MakePageOverlay(session);
  const ChartScales& scales = session.Line.Scales();
  const ChartPaper& paper = session.Line.Paper(session.Line.CurrentPaper());
  std::size_t hours = 0, depthLines = 0;
  const double daysPerUnit = scales.ChartType.TimeScale / 24.0 / 10;
  double lastTime = 0, lastUp = -1;
  for (const OverlayLine& line : lines) {
    ASSERT_GE(line.Points.size(), 2U);
    for (const auto& [x, y] : line.Points) {
      if (line.IsHour) {
        EXPECT_NEAR(TimeAt(session, x, y), line.Time, 0.05 * daysPerUnit) << line.Label;
      } else {
        EXPECT_NEAR(HeightOnPaper(x, y, paper) / 10 * scales.ChartType.DepthScale, line.Depth, 1e-3);
      }
      EXPECT_GE(AlongBottom(x, y, paper), -0.01);
      EXPECT_LE(AlongBottom(x, y, paper), BottomLength(paper) + 0.01);
      EXPECT_LE(HeightOnPaper(x, y, paper), scales.HeightUnits() + 0.01);
    }
    if (line.IsHour && !line.Label.empty()) {
      if (hours++ > 0) {
        const double mm = (line.Time - lastTime) / daysPerUnit / 10;
        EXPECT_GE(mm, 2.99);
        EXPECT_LE(mm, 15.01);
      }
      lastTime = line.Time;
    } else if (!line.IsHour) {
      ++depthLines;
      const double up = HeightOnPaper(line.Points[0].first, line.Points[0].second, paper) / 10;
      if (lastUp >= 0) {
        EXPECT_GE(up - lastUp, 2.99);
        EXPECT_LE(up - lastUp, 15.01);
      }
      lastUp = up;
    }
  }
  EXPECT_GE(hours, leastHours);
  EXPECT_EQ(depthLines > 0, depths);
}

Session Sheet(float timeScale, float depthScale, int method, float middle) {
  ChartRecord chart;
  chart.StartTime = MakeDate(1998, 3, 5, 7, 20, 0);
  return {DeskTablet.Extents,
          {"Sheet", 100, depthScale, timeScale, static_cast<std::int16_t>(method), middle},
          chart};
}

TEST(PageOverlay, LiesWhereTheGeometrySays) {
  for (int method : {0, 1, 2})
    for (const float timeScale : {0.01F, 0.1F, 0.5F, 2.0F, 8.0F})
      for (const float tilt : {-180.0F, 0.0F, 240.0F}) {
        Session session = Sheet(timeScale, timeScale / 7, method, method == 1 ? 30.0F : 0.0F);
        EXPECT_TRUE(MakePageOverlay(session).empty());
        session.Line.SetPage(500, 500, 3500, 500 + tilt);
        ExpectRight(session, 20, method != 2);
        session.Line.Add(900, 800);  // the pen was set down behind the left end
        session.Line.Add(1900, 900);
        ExpectRight(session, 20, method != 2);
        session.Line.AttachPaper(600, 2000, 3400, 2000 - tilt / 2);
        ExpectRight(session, 18, method != 2);
        session.Line.AddFirstOfPaper(1000, 2300);
        session.Line.Add(1500, 2350);
        ExpectRight(session, 18, method != 2);
      }
}

TEST(PageOverlay, NamesHoursDaysAndDepths) {
  Session session = Sheet(0.5F, 0.1F, 0, 0);
  session.Line.SetPage(500, 500, 3500, 500);
  const auto lines = MakePageOverlay(session);
  ASSERT_GT(lines.size(), 3U);
  EXPECT_EQ(lines[0].Label, "08:00");  // the chart begins at 07:20; an hour takes 2 mm, two take 4
  EXPECT_EQ(lines[1].Label, "10:00");
  EXPECT_NEAR(lines[0].Points[0].first, 500 + 40 * 20 / 60.0, 0.1);
  EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [](const auto& l) { return l.Label == "06/03"; }));
  EXPECT_EQ(lines.back().Label, "10 mm");
}

TEST(PointSearch, FindsThePointAndTheLineButNotTheGapBetweenSegments) {
  Session session = Sheet(1, 0.1F, 0, 0);
  Trace& line = session.Line;
  EXPECT_EQ(PointAt(line, 0, 0, 1e9), -1);
  line.Add(100, 100);
  line.Add(200, 100);
  line.Add(200, 300, true);
  line.Add(300, 300);
  EXPECT_EQ(PointAt(line, 204, 297, 5), 2);
  EXPECT_EQ(PointAt(line, 204, 296, 5), -1);
  EXPECT_EQ(NearestSegmentAt(line, 150, 104, 5), 1);
  EXPECT_EQ(NearestSegmentAt(line, 260, 296, 5), 3);
  EXPECT_EQ(NearestSegmentAt(line, 200, 200, 50), -1);
  EXPECT_EQ(NearestSegmentAt(line, 310, 300, 5), -1);
}

}  // namespace
}  // namespace hyetex::test
