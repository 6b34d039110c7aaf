// Scans of known days on a siphon recorder's chart, drawn with the damage that a test wants.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "scan/scan_trace.h"
#include "scans/scan_damage.h"
#include "scans/scan_file.h"
#include "support.h"
#include "tracing/rain.h"

namespace hyetex::test {

inline constexpr double ZeroMm = 3.2, FullMm = 80;

// Half a day, so that it is soon drawn: a shower, a heavy storm that empties the recorder twice, and drizzle.
inline PenLine DayOf(const std::vector<RainPoint>& rain) {
  RainChart chart;
  chart.Paper.Name = "Daily siphon";
  chart.Paper.TimeScale = 1 / 16.1F;
  chart.Paper.DepthScale = 0.125F;
  chart.Paper.ChartHeightMm = static_cast<float>(ZeroMm + FullMm + 2);
  chart.FullMm = FullMm;
  return *DrawRain(rain, chart);
}
inline PenLine Day() {
  const std::vector<RainPoint> rain{{0, 0},    {1.5, 0},  {2.1, 2.1},  {4, 2.1}, {4.3, 6}, {4.7, 17},
                                    {5.1, 23}, {7, 23.4}, {8.5, 23.4}, {10, 25}, {11, 26}, {12, 26}};
  return DayOf(rain);
}

struct Sheets {
  TempFolder Folder;
  PenLine Line = Day();
  std::optional<DrawnScan> Drawn;

  ScanImage Draw(const std::string& damage, int quarters = 0) {
    ScanStyle style;
    style.Dpi = 170;
    style.ZeroMm = ZeroMm;
    style.BandMm = Line.Paper.ChartHeightMm;
    style.Shape.Quarters = quarters;
    EXPECT_TRUE(Damage(style, damage, 5));
    auto drawn = DrawScan(Line, style, 5);
    Drawn.emplace(*std::move(drawn));
    const std::string path = Folder / (style.JpegQuality ? "scan.jpg" : "scan.png");
    WriteFile(path, *EncodeScan(Drawn->Image, path, std::nullopt, style.JpegQuality.value_or(92)));
    return *ScanImage::Open(path);
  }
  TraceWish Wish() const {
    TraceWish wish;
    wish.Paper = Line.Paper;
    wish.StartHour = 7;
    wish.Hours = Line.Hours;
    return wish;
  }
};

}  // namespace hyetex::test
