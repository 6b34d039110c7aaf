// The line that a recorder's pen left on a chart, as the points at which an operator presses when tracing it.
// Places are millimetres of paper: along the bottom line from the page's bottom-left corner, and up from that
// line.
#pragma once

#include <span>
#include <vector>

#include "core/records.h"

namespace hyetex {

/// How the pen came to a point, and so how the operator marks it.
enum class PenStep {
  Point,    ///< along the line
  Drop,     ///< straight down, the instrument having emptied
  Segment,  ///< set down anew; the line goes on here
  GapEnd,   ///< nothing was recorded since the point before
  Leveled,  ///< moved by hand, not by rain
};

struct PenPoint {
  PenStep Step = PenStep::Point;
  double Hours = 0;  ///< since the page's left end
  double HeightMm = 0;
  double Rain = 0;  ///< mm recorded since the line's start
};

struct PenLine {
  ChartTypeRecord Paper;
  double Hours = 0;  ///< what the page spans
  std::vector<PenPoint> Points;

  /// Adds a point; one that goes straight on takes the place of the last, as nobody presses in the middle of
  /// a straight line.
  void Add(const PenPoint& point);
  double PageMm() const { return Hours / Paper.TimeScale; }
  /// Where a point lies along the paper. An arc pen writes to the left of its time, by nothing at the band's
  /// bottom and top and by the whole distance of the arc in its middle.
  double AlongMm(const PenPoint& point) const;
};

/// The same line with presses no farther than `mm` apart along the paper.
PenLine WithStepsWithin(const PenLine& line, double mm);

}  // namespace hyetex
