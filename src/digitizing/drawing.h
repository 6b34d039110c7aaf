// The chart view's picture: the outlines of the papers and the traced line, in the colours by which operators
// know gaps, recovered parts, alpha points and leveled points.
#pragma once

#include "core/trace.h"
#include "digitizing/desk_layout.h"
#include "platform/surface.h"

namespace hyetex {

/// Draws the whole view anew, in screen units (desk_layout.h). With `showPoints` each point gets a circle.
void DrawGraph(const Trace& line, const DeskLayout& layout, bool showPoints, Surface& surface);

}  // namespace hyetex
