// What part of the tablet the chart view shows, and how large it is. Sizes and positions of the view are
// screen units (desk_layout.h) unless a name says pixels.
#pragma once

#include "core/session.h"
#include "digitizing/desk_layout.h"

namespace hyetex {

/// Where a tablet position (report units) lies in the chart view.
inline double ScreenX(const Session& session, double x) { return (x - session.ViewX0) * session.ScaleX; }
inline double ScreenY(const Session& session, const DeskLayout& layout, double y) {
  return layout.ScaleHeight - (y - session.ViewY0) * session.ScaleY;
}

struct ViewSize {
  int Width = 0, Height = 0;

  bool operator==(const ViewSize&) const = default;
};

/// The size, in pixels, that a view of the tablet's proportions takes when it is resized from `before` to
/// `now`: the width follows the height, or, where only the width has changed, the height follows it.
ViewSize KeepProportions(ViewSize before, ViewSize now, const TabletExtents& tablet);

/// Moves a board that lies outside the view back into it.
void KeepBoardInside(DeskLayout& layout);

/// Shows the tablet `factor` times as large as now, what lies at (x, y) of the view staying there as far as
/// the tablet's edges allow. Returns false, and changes nothing, where the whole tablet would be in view:
/// then the way is to zoom out. A waiting tool goes on waiting.
bool ZoomAround(Session& session, const DeskLayout& layout, double factor, double x, double y);

}  // namespace hyetex
