#include "digitizing/view.h"

#include <algorithm>
#include <cmath>

namespace hyetex {
namespace {

// Beyond this a unit of the coarsest tablet is as large as a tool's square.
constexpr double MostZoom = 50;

}  // namespace

ViewSize KeepProportions(ViewSize before, ViewSize now, const TabletExtents& tablet) {
  const double ratio = static_cast<double>(tablet.TabletWidthUnits) / tablet.TabletHeightUnits;
  if (now.Height == before.Height && now.Width != before.Width)
    return {now.Width, static_cast<int>(std::lround(now.Width / ratio))};
  return {static_cast<int>(std::lround(now.Height * ratio)), now.Height};
}

void KeepBoardInside(DeskLayout& layout) {
  Rect& board = layout.Board;
  board.Left = std::max(0.0, std::min(board.Left, layout.ScaleWidth - board.Width));
  board.Top = std::max(0.0, std::min(board.Top, layout.ScaleHeight - board.Height));
}

bool ZoomAround(Session& session, const DeskLayout& layout, double factor, double x, double y) {
  const TabletExtents& tablet = session.Line.Scales().Tablet;
  const double wholeX = layout.ScaleWidth / tablet.TabletWidthUnits;
  const double wholeY = layout.ScaleHeight / tablet.TabletHeightUnits;
  // Scales that a drag rectangle has made unequal grow alike, and neither passes its limit.
  factor = std::min({factor, MostZoom * wholeX / session.ScaleX, MostZoom * wholeY / session.ScaleY});
  const double scaleX = std::max(session.ScaleX * factor, wholeX);
  const double scaleY = std::max(session.ScaleY * factor, wholeY);
  constexpr double justAbove = 1 + 1e-6;
  if (scaleX < wholeX * justAbove && scaleY < wholeY * justAbove) return false;

  const auto keep = [](double at, double viewed, double scale, double whole, double size) {
    return static_cast<float>(std::clamp(at - viewed / scale, 0.0, std::max(0.0, whole - size / scale)));
  };
  const double atX = session.ViewX0 + x / session.ScaleX;
  const double fromBottom = layout.ScaleHeight - y;
  const double atY = session.ViewY0 + fromBottom / session.ScaleY;
  session.ViewX0 = keep(atX, x, scaleX, tablet.TabletWidthUnits, layout.ScaleWidth);
  session.ViewY0 = keep(atY, fromBottom, scaleY, tablet.TabletHeightUnits, layout.ScaleHeight);
  session.ScaleX = static_cast<float>(scaleX);
  session.ScaleY = static_cast<float>(scaleY);
  session.Zoomed = true;
  return true;
}

}  // namespace hyetex
