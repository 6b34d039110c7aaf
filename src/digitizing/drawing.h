// The chart view's picture: the outlines of the papers and the traced line, in the colours by which operators
// know gaps, recovered parts, alpha points and leveled points.
#pragma once

#include "core/trace.h"
#include "digitizing/desk_layout.h"
#include "platform/surface.h"

namespace hyetex {

struct GraphStyle {
  bool ShowPoints = false;  ///< each point gets a circle
  /// There is a scan below: every line gets a white edge, so that it is seen on paper, grid and ink alike.
  bool OnScan = false;
};

/// Draws the whole view anew, in screen units (desk_layout.h).
void DrawGraph(const Trace& line, const DeskLayout& layout, const GraphStyle& style, Surface& surface);

/// A cross on a tablet position, as for a place that was measured from.
void DrawMark(double x, double y, const DeskLayout& layout, Surface& surface);

}  // namespace hyetex
