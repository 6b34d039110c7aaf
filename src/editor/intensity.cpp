#include "editor/intensity.h"

#include <algorithm>
#include <cmath>

#include "core/dates.h"

namespace hyetex {
namespace {

constexpr double MostBars = 20000, Sliver = 0.01 / SecondsPerDay;

}  // namespace

double IntensityBetween(const SeriesPoint& from, const SeriesPoint& to) {
  const double hours = (to.Time - from.Time) * 24;
  return hours > 0 ? (static_cast<double>(to.Depth) - from.Depth) / hours : 0;
}

std::vector<GraphBar> IntensityBars(std::span<const SeriesPoint> series, double& minutes) {
  std::vector<GraphBar> bars;
  if (series.size() < 2 || !(minutes > 0)) return bars;
  const double begin = series.front().Time, end = series.back().Time;
  minutes = std::max(minutes, (end - begin) * MinutesPerDay / MostBars);
  const double step = minutes / MinutesPerDay, midnight = std::floor(begin);

  std::size_t at = 1;
  const auto depthAt = [&](double time) {
    while (at + 1 < series.size() && series[at].Time < time) ++at;
    const SeriesPoint &from = series[at - 1], &to = series[at];
    const double share = std::clamp((time - from.Time) / (to.Time - from.Time), 0.0, 1.0);
    return from.Depth + share * (static_cast<double>(to.Depth) - from.Depth);
  };
  double from = begin, depth = series.front().Depth;
  for (double k = std::floor((begin - midnight) / step) + 1; from < end - Sliver; ++k) {
    const double to = std::min(midnight + k * step, end);
    if (to < from + Sliver) continue;
    const double now = depthAt(to);
    if (const double fallen = now - depth; std::abs(fallen) > 1e-9)
      bars.push_back({from, to, fallen / ((to - from) * 24)});
    from = to;
    depth = now;
  }
  return bars;
}

}  // namespace hyetex
