#include "core/geometry.h"

#include <cmath>

namespace hyetex {
namespace {

// Ten units to the millimetre both ways, so that a band of 100 mm is 1000 units high.
ChartScales Scales(ChartMethod method, float middleToBottomMm = 0) {
  return {{4000, 4000, 400, 400},
          {"Weekly", 100, 0.1F, 2, static_cast<std::int16_t>(method), middleToBottomMm}};
}

TEST(Geometry, MeasuresAlongAndAboveTheBottomLine) {
  const ChartPaper level{100, 200, 3100, 200, 0, 0};
  EXPECT_FLOAT_EQ(HeightOnPaper(500, 950, level), 750);
  EXPECT_FLOAT_EQ(HeightOnPaper(500, 150, level), -50);
  EXPECT_DOUBLE_EQ(AlongBottom(500, 950, level), 400);
  const ChartPaper sloped{0, 0, 400, 300, 0, 0};  // 3-4-5: one along is (0.8, 0.6), one up is (-0.6, 0.8)
  EXPECT_FLOAT_EQ(HeightOnPaper(80 - 30, 60 + 40, sloped), 50);
  EXPECT_DOUBLE_EQ(AlongBottom(80 - 30, 60 + 40, sloped), 100);
  const ChartPaper none;
  EXPECT_EQ(HeightOnPaper(5, 6, none), 0);
  EXPECT_EQ(AlongBottom(5, 6, none), 0);
  EXPECT_FALSE(IsCalibrated(none));
  for (const ChartPaper& paper : {level, ChartPaper{-9, 0, 0, 4, 0, 0}, ChartPaper{-9, 0, 4, 0, 0, 0}})
    EXPECT_TRUE(IsCalibrated(paper));
}

TEST(Geometry, CorrectsForTheArcAtEveryHeight) {
  const ChartScales arc = Scales(ChartMethod::NonLinear, 12.5F);  // D 125, H 1000: R = 1062.5
  const ChartPaper page{100, 200, 3100, 200, 0, 0};
  const auto time = [&](double height) { return TimeAlongPaper(arc, 600, 200 + height, page); };
  EXPECT_NEAR(time(0), 500, 1e-3);
  EXPECT_NEAR(time(1000), 500, 1e-3);
  EXPECT_NEAR(time(500), 625, 1e-3);
  EXPECT_NEAR(time(250), 500 + 125 - 1062.5 + std::sqrt(1062.5 * 1062.5 - 250 * 250), 1e-3);
  for (const ChartMethod straight : {ChartMethod::Linear, ChartMethod::TippingBucket})
    EXPECT_FLOAT_EQ(TimeAlongPaper(Scales(straight, 12.5F), 600, 700, page), 500);
  EXPECT_TRUE(IsOnArc(arc, 600, 200 + 500 + 1062, page));
  EXPECT_FALSE(IsOnArc(arc, 600, 200 + 500 + 1063, page));
  EXPECT_TRUE(IsOnArc(Scales(ChartMethod::Linear), 600, 1e6, page));
  EXPECT_TRUE(std::isfinite(time(9000)));
  EXPECT_FLOAT_EQ(TimeAlongPaper(Scales(ChartMethod::NonLinear, 0), 600, 700, page), 500);
}

TEST(Geometry, TheBoxReachesAFifthOutside) {
  const ChartScales scales = Scales(ChartMethod::Linear);
  const ChartPaper page{1000, 1000, 3000, 1000, 0, 0};
  const struct {
    double X, Y;
    bool Inside;
  } cases[] = {{2000, 1500, true},  {601, 1000, true}, {599, 1000, false}, {3399, 2199, true},
               {3401, 1500, false}, {2000, 801, true}, {2000, 799, false}, {2000, 2201, false}};
  for (const auto& c : cases) EXPECT_EQ(InsideBox(scales, c.X, c.Y, page), c.Inside) << c.X << " " << c.Y;
  EXPECT_FALSE(InsideBox(scales, 0, 0, ChartPaper{-500, 0, 0, 0, 0, 0}));
}

TEST(Geometry, RefusesChartsThatCannotBeTraced) {
  for (const auto& [distance, refused] :
       {std::pair(0.0F, true), std::pair(50.0F, false), std::pair(51.0F, true)})
    EXPECT_EQ(CheckChartScales(Scales(ChartMethod::NonLinear, distance)).has_value(), refused) << distance;
  EXPECT_TRUE(CheckChartScales(Scales(static_cast<ChartMethod>(3))));
  for (const float bad : {0.0F, -1.0F, NAN, HUGE_VALF}) {
    ChartScales scales = Scales(ChartMethod::Linear);
    EXPECT_FALSE(CheckChartScales(scales));
    scales.ChartType.TimeScale = bad;
    EXPECT_TRUE(CheckChartScales(scales)) << bad;
  }
}

}  // namespace
}  // namespace hyetex
