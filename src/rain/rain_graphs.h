// Rain as graphs, for windows, paper and pictures alike.
#pragma once

#include <string>
#include <vector>

#include "graph/graph.h"
#include "rain/rain_steps.h"

namespace hyetex {

struct RainGraphOptions {
  std::string Title;
  RainClock Clock = {};
  double FontPoints = 10;
  bool Grid = true;
  bool Mass = true;  ///< the sum since the begin, on an axis of its own
};

/// The sum as a curve on the left, bars of the depth of each step on the right (on the left without the sum),
/// and stretches that nothing is known of shaded apart, those that are known in part lighter. `steps` follow
/// one another. Of more than `MostRainBars` some make up one bar, as the title of the axis says. X is in
/// local `Date`s.
Graph MakeRainGraph(const std::vector<RainStep>& steps, const RainGraphOptions& options);
inline constexpr std::size_t MostRainBars = 4000;

/// The steps, by their place among `steps`, that lie at a local date; nothing outside of them.
std::optional<std::size_t> StepAt(const std::vector<RainStep>& steps, Date local, const RainClock& clock);

}  // namespace hyetex
