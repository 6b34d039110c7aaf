// The time-depth series of a chart: the raw trace stretched to fit the chart's start, end and depth, whatever
// the scale of the tablet. Depths accumulate from the chart's start.
#pragma once

#include "chartfiles/chart_reader.h"

namespace hyetex {

/// Makes the series of `reading` from its chart and raw points, and fills in the chart's selected depth and
/// series count. With `useAlpha` and a selected alpha the raw points are moved by the pen's skew first.
/// Intervals shorter than `minimalLapse` minutes are joined into the next.
///
/// First points of segments and strips (codes 201, 204) and alpha points (202) are left out: the step to them
/// counts nothing, the step away from them does. A chart whose points span no time has slot 0 alone.
void BuildSeries(bool useAlpha, float minimalLapse, ChartReading& reading);

/// Whether a point with this comment has no slot in the series.
bool IsLeftOutOfSeries(const std::string& comment);

/// What the steps of a trace that count come to, in millimetres of the tablet: along the paper, and up.
struct TraceLength {
  float AlongMm = 0, RiseMm = 0;
};
TraceLength LengthOfTrace(const ChartReading& reading);

/// The depth that the series of a chart ends with, mm: its selected depth, else the manual gage's, else 0. A
/// depth of -1 is no value and never becomes rain.
float BaseDepth(const ChartRecord& chart);

}  // namespace hyetex
