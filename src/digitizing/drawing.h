// The chart view's picture: the outlines of the papers and the traced line, in the colours by which operators
// know gaps, recovered parts, alpha points and leveled points.
#pragma once

#include <span>

#include "core/trace.h"
#include "digitizing/desk_layout.h"
#include "digitizing/page_overlay.h"
#include "platform/surface.h"

namespace hyetex {

struct GraphStyle {
  bool ShowPoints = false;  ///< each point gets a circle
  /// There is a scan below: every line gets a white edge, so that it is seen on paper, grid and ink alike.
  /// Without one the lines in colour get a dark one: yellow and green would be lost on the desk's light
  /// green.
  bool OnScan = false;
};

/// Draws the whole view anew, in screen units (desk_layout.h).
void DrawGraph(const Trace& line, const DeskLayout& layout, const GraphStyle& style, Surface& surface);

/// The chart's own hours and depths, with what they are at their beginnings.
void DrawOverlay(std::span<const OverlayLine> lines, const DeskLayout& layout, Surface& surface);

/// A cross on a tablet position, as for a place that was measured from.
void DrawMark(double x, double y, const DeskLayout& layout, Surface& surface);

/// A ring around a place that can be taken hold of, or that has been.
void DrawHandle(double x, double y, bool selected, const DeskLayout& layout, Surface& surface);
/// Marks a stretch of the line that a person should look at, below the line itself.
void DrawDoubt(const Trace& line, int first, int last, bool shown, const DeskLayout& layout,
               Surface& surface);
/// A line to where a point is being dragged.
void DrawDragged(double x1, double y1, double x2, double y2, const DeskLayout& layout, Surface& surface);

}  // namespace hyetex
