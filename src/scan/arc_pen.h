// What is special to a chart whose pen swings on an arc: it may fall as it rises, what it falls counts as
// rain, and at its full height an arm sets it back to the foot.
#pragma once

#include <vector>

#include "scan/path_points.h"
#include "scan/scan_trace.h"

namespace hyetex {

/// The page's two ends are printed as lines of their own. Where they stand on no line of the hours, nothing
/// else takes them out of the ink.
void TakeOutPageEnds(PenInk& ink, const FlatChart& flat, double pageMm);
/// Under such an end the line runs on as it is seen beside it, unless it rises there.
void LevelPageEnds(PenPath& path, const FlatChart& flat, double pageMm);

/// The points of a path as they are pressed on such a chart. A setting back begins a segment, so that its
/// fall is no rain. Falls of less than half a millimetre are the pen's trembling and are levelled. No fall
/// along the line is so long that a session would take it for an emptying.
std::vector<PathPoint> PointsOnArc(std::vector<PathPoint> points, double pageHeightMm);

/// Rain falls into such an instrument and does not come out: each fall of the line by a millimetre or more is
/// put up for a look. Their points are still none.
std::vector<TraceDoubt> DoubtsOfFalls(const std::vector<PathPoint>& points, const TraceWish& wish);

}  // namespace hyetex
