#include "digitizing/view.h"

#include <algorithm>
#include <cmath>

namespace hyetex {
namespace {

// Beyond this a unit of the coarsest tablet is as large as a tool's square.
constexpr double MostZoom = 50;

// The part of the tablet in which a page lies; from its lowest side on.
Rect BoundsOf(const ChartScales& scales, const ChartPaper& paper) {
  const double across = paper.BottomRightX - paper.BottomLeftX, up = paper.BottomRightY - paper.BottomLeftY;
  const double high = scales.HeightUnits() / std::hypot(across, up);
  const auto [left, right] = std::minmax(
      {paper.BottomLeftX, paper.BottomRightX, paper.BottomLeftX - up * high, paper.BottomRightX - up * high});
  const auto [bottom, top] =
      std::minmax({paper.BottomLeftY, paper.BottomRightY, paper.BottomLeftY + across * high,
                   paper.BottomRightY + across * high});
  return {left, bottom, right - left, top - bottom};
}

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

void ShowArea(DeskLayout& layout, const TabletExtents& tablet, const Rect& area) {
  if (layout.Home) {
    const double x = layout.TabletX(area.Left + area.Width / 2),
                 y = layout.TabletY(area.Top + area.Height / 2);
    const double larger = std::min(layout.ScaleWidth / std::max(area.Width, 1.0),
                                   layout.ScaleHeight / std::max(area.Height, 1.0));
    layout.Zoomed = true;
    ShowAround(layout, x, y, std::min(layout.ScaleX * larger, MostZoom * HomeScale(layout)));
    return;
  }
  // The most that a side may be stretched; a smaller area lies in the middle of what is shown.
  const auto show = [](float& origin, float& scale, double from, double size, double view, double whole) {
    const double middle = origin + (from + size / 2) / scale;
    const double shown = std::max(size / scale, whole / MostZoom);
    origin = static_cast<float>(std::clamp(middle - shown / 2, 0.0, std::max(0.0, whole - shown)));
    scale = static_cast<float>(view / shown);
  };
  const double fromBottom = layout.ScaleHeight - area.Top - area.Height;
  layout.Zoomed = true;
  show(layout.ViewX0, layout.ScaleX, area.Left, area.Width, layout.ScaleWidth, tablet.TabletWidthUnits);
  show(layout.ViewY0, layout.ScaleY, fromBottom, area.Height, layout.ScaleHeight, tablet.TabletHeightUnits);
}

void ShowPaper(DeskLayout& layout, const ChartScales& scales, const ChartPaper& paper) {
  const double width = paper.BottomRightX - paper.BottomLeftX;
  layout.Zoomed = true;
  layout.ViewX0 = static_cast<float>(paper.BottomLeftX - width * 0.05);
  layout.ViewY0 = static_cast<float>(paper.BottomLeftY - scales.HeightUnits());
  layout.ScaleX = layout.ScaleY = static_cast<float>(layout.ScaleWidth / (width * 1.2));

  const Rect page = BoundsOf(scales, paper);
  const double right = page.Left + page.Width, top = page.Top + page.Height;  // upwards, as the tablet
  if (layout.ScreenX(page.Left) >= 0 && layout.ScreenX(right) <= layout.ScaleWidth &&
      layout.ScreenY(page.Top) <= layout.ScaleHeight && layout.ScreenY(top) >= 0)
    return;
  // A high or a tilted page would lie outside: it is put in the middle.
  const double scale =
      std::min(layout.ScaleWidth / (page.Width * 1.2), layout.ScaleHeight / (page.Height * 1.2));
  layout.ViewX0 = static_cast<float>((page.Left + right - layout.ScaleWidth / scale) / 2);
  layout.ViewY0 = static_cast<float>((page.Top + top - layout.ScaleHeight / scale) / 2);
  layout.ScaleX = layout.ScaleY = static_cast<float>(scale);
}

void ResizeView(DeskLayout& layout, const TabletExtents& tablet, double scaleWidth, double scaleHeight) {
  const double wider = scaleWidth / layout.ScaleWidth, higher = scaleHeight / layout.ScaleHeight;
  const double middleX = layout.TabletX(layout.ScaleWidth / 2),
               middleY = layout.TabletY(layout.ScaleHeight / 2);
  layout.ScaleWidth = scaleWidth;
  layout.ScaleHeight = scaleHeight;
  if (!layout.Zoomed) {
    ShowWhole(layout, tablet);
    return;
  }
  if (layout.Home) {
    ShowAround(layout, middleX, middleY, layout.ScaleX * std::min(wider, higher));
    return;
  }
  layout.ScaleX *= static_cast<float>(wider);
  layout.ScaleY *= static_cast<float>(higher);
}

bool ZoomAround(DeskLayout& layout, const TabletExtents& tablet, double factor, double x, double y) {
  constexpr double justAbove = 1 + 1e-6;
  if (layout.Home) {
    const double whole = HomeScale(layout);
    const double scale = std::min(layout.ScaleX * factor, MostZoom * whole);
    if (scale < whole * justAbove) return false;
    // What lies there stays there; the middle of the view follows from that.
    ShowAround(layout, layout.TabletX(x) + (layout.ScaleWidth / 2 - x) / scale,
               layout.TabletY(y) + (y - layout.ScaleHeight / 2) / scale, scale);
    layout.Zoomed = true;
    return true;
  }
  const double wholeX = layout.ScaleWidth / tablet.TabletWidthUnits;
  const double wholeY = layout.ScaleHeight / tablet.TabletHeightUnits;
  // Scales that a drag rectangle has made unequal grow alike, and neither passes its limit.
  factor = std::min({factor, MostZoom * wholeX / layout.ScaleX, MostZoom * wholeY / layout.ScaleY});
  const double scaleX = std::max(layout.ScaleX * factor, wholeX);
  const double scaleY = std::max(layout.ScaleY * factor, wholeY);
  if (scaleX < wholeX * justAbove && scaleY < wholeY * justAbove) return false;

  const auto keep = [](double at, double viewed, double scale, double whole, double size) {
    return static_cast<float>(std::clamp(at - viewed / scale, 0.0, std::max(0.0, whole - size / scale)));
  };
  const double atX = layout.ViewX0 + x / layout.ScaleX;
  const double fromBottom = layout.ScaleHeight - y;
  const double atY = layout.ViewY0 + fromBottom / layout.ScaleY;
  layout.ViewX0 = keep(atX, x, scaleX, tablet.TabletWidthUnits, layout.ScaleWidth);
  layout.ViewY0 = keep(atY, fromBottom, scaleY, tablet.TabletHeightUnits, layout.ScaleHeight);
  layout.ScaleX = static_cast<float>(scaleX);
  layout.ScaleY = static_cast<float>(scaleY);
  layout.Zoomed = true;
  return true;
}

void Pan(DeskLayout& layout, const TabletExtents& tablet, double right, double down) {
  if (!layout.Zoomed) return;
  if (layout.Home) {
    ShowAround(layout, layout.TabletX(layout.ScaleWidth / 2 - right),
               layout.TabletY(layout.ScaleHeight / 2 - down), layout.ScaleX);
    return;
  }
  const auto move = [](float& origin, double by, double shown, double whole) {
    origin = static_cast<float>(std::clamp(origin + by, 0.0, std::max(0.0, whole - shown)));
  };
  move(layout.ViewX0, -right / layout.ScaleX, layout.ScaleWidth / layout.ScaleX, tablet.TabletWidthUnits);
  move(layout.ViewY0, down / layout.ScaleY, layout.ScaleHeight / layout.ScaleY, tablet.TabletHeightUnits);
}

void BringIntoView(DeskLayout& layout, const TabletExtents& tablet, double x, double y) {
  const auto outside = [](double at, double size) { return at < 0 ? -at : at > size ? size - at : 0; };
  const double right = outside(layout.ScreenX(x), layout.ScaleWidth);
  const double down = outside(layout.ScreenY(y), layout.ScaleHeight);
  if (right != 0 || down != 0) Pan(layout, tablet, right, down);
}

DeskLayout Magnified(double x, double y, double size, double scale) {
  DeskLayout view;
  view.ScaleWidth = view.ScaleHeight = size;
  view.ScaleX = view.ScaleY = static_cast<float>(scale);
  view.ViewX0 = static_cast<float>(x - size / scale / 2);
  view.ViewY0 = static_cast<float>(y - size / scale / 2);
  view.Zoomed = true;
  return view;
}

}  // namespace hyetex
