// The printed grid is followed over sheets that are swollen, blurred, worn or turned, and what is no such
// grid is told as that.
#include "scan/lattice.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

#include "scans/drawn_scan.h"
#include "scans/scan_damage.h"
#include "scans/scan_file.h"
#include "support.h"
#include "tracing/rain.h"

namespace hyetex {
namespace {

using test::TempFolder;

constexpr double ZeroMm = 3.2, HighMm = 85.2, HourMm = 16.1;

class LatticeOf : public ::testing::Test {
 protected:
  LatticeOf() {
    RainChart chart;
    chart.Paper.Name = "Daily siphon";
    chart.Paper.TimeScale = 1 / 16.1F;
    chart.Paper.DepthScale = 0.125F;
    chart.Paper.ChartHeightMm = static_cast<float>(HighMm);
    chart.FullMm = 80;
    Line = *DrawRain(std::vector<RainPoint>{{0, 0}, {3, 1}, {8, 6}, {9, 17}, {20, 18}, {24, 18}}, chart);
  }
  DrawnScan Draw(const std::string& damage, double dpi, int quarters = 0) const {
    ScanStyle style;
    style.Dpi = dpi;
    style.ZeroMm = ZeroMm;
    style.BandMm = HighMm;
    style.Shape.Quarters = quarters;
    EXPECT_TRUE(Damage(style, damage, 11));
    return *DrawScan(Line, style, 11);
  }
  Result<Lattice> Find(const cv::Mat& image, double hours = 24) const {
    const std::string path = Folder / "scan.png";
    test::WriteFile(path, *EncodeScan(image, path, std::nullopt));
    const auto opened = ScanImage::Open(path);
    return Lattice::Find(*opened, {Line.Paper, 7, hours});
  }

  TempFolder Folder;
  PenLine Line;
};

TEST_F(LatticeOf, SwollenBlurredWornAndTurnedSheetsIsWithinThreeTenthsOfAMillimetre) {
  const struct {
    const char* Damage;
    double Dpi;
    int Quarters;
    bool Told;  // the start may be told as to be confirmed
  } cases[] = {{"warp=1", 200, 0, false},
               {"warp=0.7,tilt=0.6,shrink=1,shear=0.5", 150, 1, false},
               {"blur=0.5,pale=0.3", 250, 0, true},
               {"bits=0.4,worn=0.3,warp=0.4", 240, 2, true},
               {"bits=0.5,tilt=0.4,warp=0.4,writing=0.4", 300, 0, true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Damage);
    const DrawnScan drawn = Draw(c.Damage, c.Dpi, c.Quarters);
    const auto lattice = Find(drawn.Image);
    ASSERT_TRUE(lattice) << lattice.error();
    EXPECT_TRUE(c.Told || lattice->Doubts().empty());
    std::vector<double> off;
    for (double hour = 0; hour <= 24; hour += 0.5)
      for (double mm = 0; mm <= 80; mm += 8) {
        const cv::Point2d at = lattice->ToPaper(drawn.PlaceOf(hour, mm));
        const double x = at.x - hour * HourMm;
        off.push_back(std::hypot(c.Told ? x - HourMm * std::round(x / HourMm) : x, at.y - mm));
      }
    std::sort(off.begin(), off.end());
    EXPECT_LT(off[off.size() * 95 / 100], 0.3);
  }
}

TEST_F(LatticeOf, AShortPageIsToldByItsNumbersWhereItsGridLeavesTwoStarts) {
  // A page of 23 hours in a grid of 25: the lines alone leave its start open.
  const DrawnScan drawn = Draw("", 150);
  const auto lattice = Find(drawn.Image, 23);
  ASSERT_TRUE(lattice) << lattice.error();
  EXPECT_THAT(lattice->Doubts(), ::testing::IsEmpty());
  EXPECT_NEAR(lattice->ToPaper(drawn.PlaceOf(5, 40)).x, 5 * HourMm, 0.2);
}

TEST_F(LatticeOf, WhatIsNoGridIsNoneInWords) {
  cv::Mat text(700, 2600, CV_8UC1, cv::Scalar(250));
  for (int row = 0; row < 22; ++row)
    for (int column = 0; column < 6; ++column)
      cv::putText(text, "Rain fell at " + std::to_string(row * 6 + column),
                  {30 + 420 * column, 40 + 30 * row}, cv::FONT_HERSHEY_COMPLEX, 0.8, cv::Scalar(30), 2);
  const auto page = Find(text);
  EXPECT_TRUE(!page || page->Doubts().size() >= 2) << "rows of words are lines to a spectrum, too";

  // Graph paper: lines enough, and none of them apart as an hour and a depth are.
  cv::Mat graph(760, 2680, CV_8UC1, cv::Scalar(250));
  for (int x = 8; x < graph.cols; x += 20) cv::line(graph, {x, 0}, {x, graph.rows}, cv::Scalar(90), 1);
  for (int y = 8; y < graph.rows; y += 31) cv::line(graph, {0, y}, {graph.cols, y}, cv::Scalar(90), 1);
  const auto squares = Find(graph);
  EXPECT_TRUE(!squares || !squares->Doubts().empty());
}

}  // namespace
}  // namespace hyetex
