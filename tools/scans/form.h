// The printed form of a chart: its grid, numbers and words.
#pragma once

#include "scans/brush.h"
#include "scans/scan_style.h"
#include "tracing/pen_line.h"

namespace hyetex {

/// What is printed where, for a chart type's scales.
struct ChartForm {
  double BandMm = 0;                      ///< height of the band
  double MinorHours = 0, MajorHours = 0;  ///< between the lines of the hours
  double MinorRain = 0, MajorRain = 0;    ///< mm, between the lines of the depths
  double FromHour = 0, ToHour = 0;        ///< printed, since the page's left end
  cv::Rect2d Paper;                       ///< mm, as ScannedSheet takes it
};
ChartForm FormOf(const PenLine& line, const ScanStyle& style);

void PrintForm(const ChartForm& form, const PenLine& line, const ScanStyle& style, std::uint64_t seed,
               InkLayer& grid, InkLayer& letters);

}  // namespace hyetex
