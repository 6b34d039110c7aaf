// A drawn scan is held against what it was drawn from: where its lines lie, what is pressed on it, and what
// the rain comes to that is traced from it.
#include "scans/drawn_scan.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

#include "scans/form.h"
#include "scans/scan_damage.h"
#include "support.h"
#include "tools/traced_chart.h"
#include "tracing/table.h"

namespace hyetex::test {
namespace {

PenLine LineOf(ChartMethod method) {
  RainChart chart;
  chart.Paper.ChartMethod = static_cast<std::int16_t>(method);
  chart.Paper.TimeScale = 1 / 16.1F;
  chart.Paper.DepthScale = 0.125F;
  chart.Paper.MiddleToBottomMm = 10;
  if (method == ChartMethod::NonLinear) chart.FullMm = 100;
  const std::vector<RainPoint> rain{{7, 0},       {9.5, 0},     {10, 2.3},  {11.2, 7.7}, {12, 14.9},
                                    {13.3, 19.2}, {15, 20.1},   {16.1, 27}, {17, 33.4},  {18, 34.2},
                                    {21, 34.2},   {22.7, 36.5}, {26, 46.6}, {27, 46.9},  {31, 46.9}};
  return DrawRain(rain, chart).value();
}

// Nothing but the form and the pen.
ScanStyle CleanStyle() {
  ScanStyle style;
  style.Dpi = 150;
  style.Mode = ScanMode::Grey;
  style.Grid = {0, 0, 0};
  style.PrintInk = 1;
  style.Worn = style.Mottled = style.BlurPx = style.Noise = style.Unsteady = style.TrembleMm = 0;
  return style;
}

bool SameImage(const cv::Mat& a, const cv::Mat& b) {
  return a.size() == b.size() && a.type() == b.type() && cv::norm(a, b, cv::NORM_INF) == 0;
}

class DrawnScanOf : public ::testing::TestWithParam<ChartMethod> {
 protected:
  const PenLine Line = LineOf(GetParam());

  void ExpectRainBack(const ScanStyle& style) {
    const DrawnScan scan = DrawScan(Line, style, 4).value();
    const TabletType& tablet = TabletOf(ScanTablet);
    Session session(tablet.Extents, Line.Paper, ChartFor(Line));
    SilentView view;
    ActionMachine machine(session, tablet, view);
    machine.Start();
    const Journal journal = ReadJournal(JournalText(ScanTablet, MouseSteps(scan, PlacementOf(scan))));
    ASSERT_FALSE(journal.Error) << *journal.Error;
    ASSERT_TRUE(Replay(journal, machine));
    TracedChart traced{std::move(session), {}};
    const auto text = MakeChartText(traced.State, {"Core", "Agency", "Station", "RG12", "Operator"}, "");
    ASSERT_TRUE(text) << text.error();
    ReadChartText(text->Text, ChartFileName("RG12", traced.State.ChartStart()), {}, traced.Reading);

    const std::vector<PenPoint> expected = ExpectedSeries(Line, ScanTablet);
    const double total = Line.Points.back().Rain;
    const std::vector<SeriesPoint>& series = traced.Reading.SeriesPoints;
    ASSERT_EQ(traced.Reading.Chart.SeriesCount, static_cast<int>(expected.size()));
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_NEAR(series[i + 1].Depth, expected[i].Rain, 0.005 * total) << "point " << i;
      EXPECT_NEAR((series[i + 1].Time - traced.State.ChartStart()) * 24, expected[i].Hours, 0.03)
          << "point " << i;
    }
  }
};
std::string NameOfMethod(const ::testing::TestParamInfo<ChartMethod>& test) {
  constexpr const char* words[] = {"Linear", "NonLinear", "TippingBucket"};
  return words[static_cast<int>(test.param)];
}
INSTANTIATE_TEST_SUITE_P(AllMethods, DrawnScanOf,
                         ::testing::Values(ChartMethod::Linear, ChartMethod::NonLinear,
                                           ChartMethod::TippingBucket),
                         NameOfMethod);

TEST_P(DrawnScanOf, GivesTheRainBackWhenTracedWithMouse) {
  for (const int quarters : {0, 1, 2, 3}) {
    SCOPED_TRACE(quarters);
    ScanStyle style = CleanStyle();
    style.Shape.TiltDegrees = quarters % 2 == 0 ? 1.3 : -2.1;
    style.Shape.Quarters = quarters;
    ExpectRainBack(style);
  }
}

// From the darkest place near each crossing of the printed lines, by the geometry that charts are traced
// with.
TEST_P(DrawnScanOf, PrintsItsGridWhereTheChartsGeometryHasIt) {
  ScanStyle style = CleanStyle();
  style.Dpi = 300;
  style.Shape.TiltDegrees = 0.8;
  const DrawnScan scan = DrawScan(Line, style, 1).value();
  const ScanPlacement placement = PlacementOf(scan);
  const ChartScales scales{TabletOf(ScanTablet).Extents, Line.Paper};
  ChartPaper paper;
  const auto lay = [&](cv::Point2d place) { return TabletPosition(placement, place.x, place.y); };
  const auto [leftX, leftY] = lay(scan.BottomLeft);
  const auto [rightX, rightY] = lay(scan.BottomRight);
  paper.BottomLeftX = static_cast<float>(leftX);
  paper.BottomLeftY = static_cast<float>(leftY);
  paper.BottomRightX = static_cast<float>(rightX);
  paper.BottomRightY = static_cast<float>(rightY);
  const double unitsPerMm = scales.Tablet.TabletWidthUnits / scales.Tablet.TabletWidthMm;

  int seen = 0;
  for (int hour = 1; hour < 24; ++hour)
    for (const double up : {8.4, 33.9, 50.2, 61.4, 90.8}) {  // between the depths' lines
      const cv::Point2d place = scan.PlaceOf(hour, up);
      // Off the pen's line, the numbers, and the words.
      const cv::Rect near(static_cast<int>(place.x) - 9, static_cast<int>(place.y), 19, 1);
      cv::Mat row = 255 - scan.Image(near);
      row.setTo(0, row < 100);
      const double ink = cv::sum(row)[0];
      if (ink < 500 || ink > 900) continue;
      double middle = 0;
      for (int i = 0; i < row.cols; ++i) middle += row.at<std::uint8_t>(0, i) * (near.x + i + 0.5) / ink;
      const auto [x, y] = lay({middle, near.y + 0.5});
      EXPECT_NEAR(TimeAlongPaper(scales, x, y, paper) / unitsPerMm * Line.Paper.TimeScale, hour, 0.006)
          << hour << " h at " << up << " mm";
      ++seen;
    }
  EXPECT_GT(seen, 60);
}

TEST_P(DrawnScanOf, HasItsLineWhereThePressesAre) {
  ScanStyle style = CleanStyle();
  style.Grid = style.Paper;  // no print
  style.Shape = {.TiltDegrees = 1,
                 .ShearDegrees = 0.5,
                 .ShrunkAcross = 0.02,
                 .ShrunkUp = -0.01,
                 .WarpMm = 2,
                 .Quarters = 1};
  const DrawnScan scan = DrawScan(Line, style, 7).value();
  for (const ScanPress& press : scan.Presses)
    EXPECT_LT(scan.Image.at<std::uint8_t>(static_cast<int>(press.Place.y), static_cast<int>(press.Place.x)),
              150)
        << press.Point.Hours;
}

class DrawnScans : public ::testing::Test {
 protected:
  static DrawnScan Draw(const ScanStyle& style, std::uint64_t seed = 1) {
    return DrawScan(LineOf(ChartMethod::Linear), style, seed).value();
  }
  static ScanStyle Style() {
    ScanStyle style;
    style.Dpi = 80;
    return style;
  }
};

TEST_F(DrawnScans, EachDamageIsSeenAndLeavesTheTruth) {
  const DrawnScan whole = Draw(Style());
  std::string all;
  for (const ScanDamage& damage : ScanDamages()) {
    SCOPED_TRACE(std::string(damage.Name));
    ScanStyle style = Style();
    ASSERT_TRUE(Damage(style, damage.Name, 1));
    const DrawnScan hurt = Draw(style);
    EXPECT_FALSE(SameImage(hurt.Image, whole.Image));
    ASSERT_EQ(hurt.Presses.size(), whole.Presses.size());
    for (std::size_t i = 0; i < hurt.Presses.size(); ++i) {
      EXPECT_EQ(hurt.Presses[i].Point.Rain, whole.Presses[i].Point.Rain);
      EXPECT_TRUE(cv::Rect2d({}, hurt.Image.size()).contains(hurt.Presses[i].Place));
    }
    // What does not move the paper leaves every place where it was.
    if (style.Dpi == 80 && style.Shape.TiltDegrees == 0 && style.Shape.ShearDegrees == 0 &&
        style.Shape.ShrunkUp == 0 && style.Shape.WarpMm == 0 && style.Shape.BorderMm == 0) {
      EXPECT_EQ(hurt.Presses.back().Place, whole.Presses.back().Place);
    }
    all += (all.empty() ? "" : ",") + std::string(damage.Name) + "=1";
  }
  ScanStyle worst = Style();
  ASSERT_TRUE(Damage(worst, all, 1));
  EXPECT_FALSE(Draw(worst).Image.empty());
}

TEST_F(DrawnScans, SeedDecidesAll) {
  ScanStyle style = Style();
  ASSERT_TRUE(
      Damage(style, "warp,folds,stains,holes,writing,marks,unsteady,dotted,gaps,blots,noise,salt", 1));
  const cv::Mat image = Draw(style, 3).Image;
  EXPECT_TRUE(SameImage(Draw(style, 3).Image, image));
  EXPECT_FALSE(SameImage(Draw(style, 4).Image, image));
}

TEST_F(DrawnScans, OneBitHoldsOnlyBlackAndWhite) {
  for (const bool dither : {false, true}) {
    ScanStyle style = Style();
    style.Mode = ScanMode::Bits;
    style.Dither = dither;
    const cv::Mat image = Draw(style).Image;
    ASSERT_EQ(image.channels(), 1);
    EXPECT_EQ(cv::countNonZero((image != 0) & (image != 255)), 0);
    const double white = cv::countNonZero(image) / static_cast<double>(image.total());
    EXPECT_GT(white, 0.5);
    EXPECT_LT(white, 0.99);
  }
}

TEST_F(DrawnScans, TruthTellsRainAndPlace) {
  const DrawnScan scan = Draw(Style());
  const auto rows = ReadTable(TruthText(scan, 7), "hour,mm,x,y,kind", 4, 1).value();
  ASSERT_EQ(rows.size(), scan.Presses.size());
  EXPECT_EQ(rows.front().Words[0], "start");
  EXPECT_NEAR(rows.back().Numbers[0], 31, 1e-4);
  EXPECT_NEAR(rows.back().Numbers[1], 46.9, 1e-3);
  EXPECT_NEAR(rows.back().Numbers[2], scan.Presses.back().Place.x, 0.01);
  EXPECT_EQ(std::ranges::count_if(rows, [](const TableRow& row) { return row.Words[0] == "drop"; }), 4);
}

TEST_F(DrawnScans, RefusesWhatCannotBeDrawn) {
  ScanStyle style = Style();
  style.Dpi = 5000;
  EXPECT_FALSE(DrawScan(LineOf(ChartMethod::Linear), style, 1));
  EXPECT_FALSE(DrawScan(PenLine(), Style(), 1));
  for (const char* list : {"rust", "tilt=2", "tilt=", "tilt=-0.1", "tilt,,holes", "tilt=nan"})
    EXPECT_FALSE(Damage(style, list, 1)) << list;
}

}  // namespace
}  // namespace hyetex::test
