// Rain intensities of a series.
#pragma once

#include <span>
#include <vector>

#include "core/records.h"
#include "graph/graph.h"

namespace hyetex {

/// Mean intensities (mm/h) of steps of `minutes` that are counted from midnight, cut to the chart's begin and
/// end. Steps without rain are left out. So that there are no more than 20,000, steps may be longer than
/// asked for; the longer step comes back in `minutes`.
std::vector<GraphBar> IntensityBars(std::span<const SeriesPoint> series, double& minutes);

/// Mean intensity between two moments of a series, mm/h; 0 where no time lies between them.
double IntensityBetween(const SeriesPoint& from, const SeriesPoint& to);

}  // namespace hyetex
