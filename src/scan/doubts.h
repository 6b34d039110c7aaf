// Which parts of a path are not to be believed, and why: in words that an operator can act on.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "scan/path_points.h"
#include "scan/scan_trace.h"

namespace hyetex {

/// A moment of a chart, hours since its start, as "08:02"; on charts of more than a day "08:02 of day 3".
std::string MomentText(const TraceWish& wish, double hour);
/// "3.2"
std::string MmText(double value);

/// How sure each column of a path is, 0 to 1: by its ink, and by how much the best other way costs more.
std::vector<float> ConfidenceOfColumns(const PenPath& path);

/// The share of the sheet's pen ink within the pen's reach that lies on the path or its falls.
double ExplainedInk(const PenPath& path, std::span<const FallLine> falls, const FlatChart& flat,
                    const PenInk& ink, const PenReach& reach);

struct DoubtQuestion {
  const PenPath& Path;
  const FlatChart& Flat;
  const PenInk& Ink;
  std::span<const FallLine> Falls, Uprights;  ///< the latter, as high as falls, are none
  const PenReach& Reach;
  const TraceWish& Wish;
};
/// The doubts about a path's stretches, in order of time; their points are still none.
std::vector<TraceDoubt> DoubtsOfPath(const DoubtQuestion& about);
/// About the sum, where another one is known.
std::vector<TraceDoubt> DoubtsOfDepth(double rainMm, const TraceWish& wish);

}  // namespace hyetex
