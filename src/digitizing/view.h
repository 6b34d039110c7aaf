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

/// Shows what lies in `area`, a rectangle of the view as it is; a very small one with what is around it. With
/// a home area it is shown at one scale in both directions.
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

/// Moves what is in view by so much to the right and down, as far as the edges allow. A view that is not
/// zoomed stays.
void Pan(DeskLayout& layout, const TabletExtents& tablet, double right, double down);
/// Moves the view just as far as it takes to have a tablet position in it, where it is zoomed.
void BringIntoView(DeskLayout& layout, const TabletExtents& tablet, double x, double y);

/// The view of a magnifier: a square of `size` with a tablet position in its middle, at a scale of screen
/// units for each report unit.
DeskLayout Magnified(double x, double y, double size, double scale);

}  // namespace hyetex
