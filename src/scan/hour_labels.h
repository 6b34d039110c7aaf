// Which line of a chart its hour stands on, by the numbers printed above the band: they are not read, but
// those of two digits are wider, and where they begin and end is the same on every form.
#pragma once

#include <optional>
#include <span>
#include <vector>

namespace hyetex {

struct LabelWidth {
  double Hours = 0;  ///< of its line, from wherever lines are counted
  double Width = 0;  ///< how much is printed beside its middle, in any unit
};

struct LabelledStart {
  std::optional<std::size_t> Start;  ///< by which nearly all numbers are as wide as they should be
  bool Against = false;              ///< the numbers speak against the first of the starts
};

/// Of `starts` (hours, counted as those of the labels), the one at which a page begins with `startHour` of
/// the day. None where the widths do not fall in two kinds, or another hour would do as well.
LabelledStart StartByLabels(std::vector<LabelWidth> labels, std::span<const double> starts, double startHour);

}  // namespace hyetex
