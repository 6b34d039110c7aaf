// From known rain to the line that a recorder draws of it, so that what comes out of a traced chart can be
// held against what fell.
//
//   siphon    a straight pen climbs with the rain; at full height the siphon empties it and it falls to the
//   bottom arc       a pen on an arm swings up on an arc, and is set back to the bottom at full height bucket
//   each tip of the bucket moves the pen up by one step
#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "core/result.h"
#include "tracing/pen_line.h"

namespace hyetex {

struct RainPoint {
  double Hours = 0;
  double Rain = 0;  ///< mm since the first point
};

/// Rows "hour,mm" below that heading: hours that never go back, rain that never falls.
Result<std::vector<RainPoint>> ReadRain(std::string_view csv);

struct RainChart {
  ChartTypeRecord Paper;  ///< the method decides how the pen moves
  double FullMm = 80;     ///< pen height at which the instrument empties
  double TipMm = 0.5;     ///< mm of rain that tip the bucket
  struct Span {
    double From, To;
  };
  std::optional<Span> Gap;  ///< hours without ink; the rain in them is not recorded
  struct Shift {
    double At, Mm;
  };
  std::optional<Shift> Moved;  ///< a hand moves the pen up at this hour
};

Result<PenLine> DrawRain(std::span<const RainPoint> rain, const RainChart& chart);

}  // namespace hyetex
