// Which traced point, or which piece of the line between two, lies at a position. Positions are report units.
#pragma once

#include "core/trace.h"

namespace hyetex {

/// The nearest point within `reach`, the last of several at one place; -1 for none.
int PointAt(const Trace& line, double x, double y, double reach);

/// The index of the point before which a new one at this position belongs: the nearest piece of the line
/// between two points of one segment that comes within `reach`. -1 for none: there is no line between the end
/// of a segment and the start of the next.
int NearestSegmentAt(const Trace& line, double x, double y, double reach);

}  // namespace hyetex
