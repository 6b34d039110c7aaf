// What part of the tablet the chart view shows, and how large it is. Sizes and positions of the view are
// screen units (desk_layout.h) unless a name says pixels.
#pragma once

#include "core/geometry.h"
#include "digitizing/desk_layout.h"

namespace hyetex {

struct ViewSize {
  int Width = 0, Height = 0;

  bool operator==(const ViewSize&) const = default;
};

/// The size, in pixels, that a view of the tablet's proportions takes when it is resized from `before` to
/// `now`: the width follows the height, or, where only the width has changed, the height follows it.
ViewSize KeepProportions(ViewSize before, ViewSize now, const TabletExtents& tablet);

/// Moves a board that lies outside the view back into it.
void KeepBoardInside(DeskLayout& layout);

/// Shows what lies in `area`, a rectangle of the view as it is; a very small one with what is around it.
void ShowArea(DeskLayout& layout, const TabletExtents& tablet, const Rect& area);
/// Shows a paper, which must have a width, whole and about as large as the view allows; the same scale in X
/// and Y.
void ShowPaper(DeskLayout& layout, const ChartScales& scales, const ChartPaper& paper);
/// Fits the scales to the view's new size; the part in view stays when zoomed.
void ResizeView(DeskLayout& layout, const TabletExtents& tablet, double scaleWidth, double scaleHeight);

/// Shows the tablet `factor` times as large as now, what lies at (x, y) of the view staying there as far as
/// the tablet's edges allow. Returns false, and changes nothing, where the whole tablet would be in view:
/// then the way is to zoom out. A waiting tool goes on waiting.
bool ZoomAround(DeskLayout& layout, const TabletExtents& tablet, double factor, double x, double y);

}  // namespace hyetex
