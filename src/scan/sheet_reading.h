// The ink of a chart laid flat, read as the line of a pen: which upright strokes are limbs and which are the
// lines that a falling pen has left, where the instrument empties, and so the path.
#pragma once

#include <span>
#include <vector>

#include "core/records.h"
#include "scan/pen_path.h"

namespace hyetex {

struct SheetReading {
  ChartMethod Method = ChartMethod::Linear;
  FlatChart Flat;
  PenInk Ink;  ///< after TellFalls without the falls' lines
  PenReach Reach;
  PenCosts Costs;
  int First = 0, Past = 0;                ///< columns of the page
  std::vector<FallLine> Falls, Uprights;  ///< the latter, as high as falls, are none

  /// Tells falls from limbs, and learns from the chart's own falls where the pen falls from and to. Upright
  /// lines are taken for falls at first, then each is read as the cheapest path would have it.
  void TellFalls();
  /// The whole page, or a stretch of it.
  PenPath Path() const { return Path(First, Past, {}); }
  PenPath Path(int first, int past, const PathEnds& ends) const;

 private:
  struct Lines;
  PenPath Sketch() const;
  void Lift(PenPath& path) const;
  void Take(const PenInk& whole, const Lines& lines);
  void TellCluster(const PenInk& whole, const PenPath& path, Lines& lines, std::size_t from,
                   std::size_t past);
  void LearnReach(const PenPath& path);
};

}  // namespace hyetex
