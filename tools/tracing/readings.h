// From a chart that was read by eye, reading by reading, to the pen line on its paper.
#pragma once

#include <string_view>

#include "core/result.h"
#include "tracing/pen_line.h"

namespace hyetex {

/// How the readings lie on the paper. The defaults are those of a daily siphon chart.
struct ReadingScales {
  double MmPerHour = 16.1;
  double MmPerRain = 8;                 ///< mm of paper for each mm of rain
  double BottomReading = -0.4;          ///< what the printed band's bottom edge reads
  double FirstHour = 7, LastHour = 31;  ///< of the page
};

/// Rows "hour,reading_mm,kind" below that heading, in order of time. Kinds: "start" and "point" lie on the
/// line, "drop" is the pen at the bottom after a siphon emptied, "segment" the pen set down anew by the
/// observer. Where the pen left its line for a drop or a segment there is no reading; the line is taken to
/// run level up to there, so that no time is lost in the step.
Result<PenLine> DrawReadings(std::string_view csv, const ReadingScales& scales = {});

}  // namespace hyetex
