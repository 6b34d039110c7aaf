#include "digitizing/desk_layout.h"

#include <algorithm>

namespace hyetex {
namespace {

// The board: three rows of six squares of 34 pixels, and a line of text below them.
constexpr int Columns = 6, Rows = ToolCount / Columns;
constexpr double Square = 510, Gap = 45, Margin = 90, ReadOutHeight = 315;
constexpr double BoardWidth = 2 * Margin + Columns * Square + (Columns - 1) * Gap;
constexpr double BoardHeight = 2 * Margin + Rows * (Square + Gap) + ReadOutHeight;

// How much of the view the home area takes.
constexpr double HomePart = 0.96;

}  // namespace

double HomeScale(const DeskLayout& layout) {
  return HomePart *
         std::min(layout.ScaleWidth / layout.Home->Width, layout.ScaleHeight / layout.Home->Height);
}

void ShowAround(DeskLayout& layout, double x, double y, double scale) {
  const TabletArea& home = *layout.Home;
  const double middleX = std::clamp(x, home.Left, home.Left + home.Width);
  const double middleY = std::clamp(y, home.Bottom, home.Bottom + home.Height);
  layout.ScaleX = layout.ScaleY = static_cast<float>(scale);
  layout.ViewX0 = static_cast<float>(middleX - layout.ScaleWidth / scale / 2);
  layout.ViewY0 = static_cast<float>(middleY - layout.ScaleHeight / scale / 2);
}

void ShowWhole(DeskLayout& layout, const TabletExtents& tablet) {
  layout.Zoomed = false;
  if (const auto& home = layout.Home) {
    ShowAround(layout, home->Left + home->Width / 2, home->Bottom + home->Height / 2, HomeScale(layout));
    return;
  }
  layout.ViewX0 = layout.ViewY0 = 0;
  layout.ScaleX = static_cast<float>(layout.ScaleWidth / tablet.TabletWidthUnits);
  layout.ScaleY = static_cast<float>(layout.ScaleHeight / tablet.TabletHeightUnits);
}

DeskLayout DefaultDeskLayout(const TabletExtents& tablet, double height) {
  DeskLayout layout;
  layout.ScaleHeight = height;
  layout.ScaleWidth = height * tablet.TabletWidthUnits / tablet.TabletHeightUnits;
  ShowWhole(layout, tablet);
  layout.Board = {layout.ScaleWidth - BoardWidth - Margin, Margin, BoardWidth, BoardHeight};
  for (int i = 0; i < ToolCount; ++i) {
    const int column = i % Columns, row = i / Columns;
    layout.Squares[static_cast<std::size_t>(i)] = {Margin + column * (Square + Gap),
                                                   Margin + row * (Square + Gap), Square, Square};
  }
  layout.ReadOut = {Margin, Margin + Rows * (Square + Gap), BoardWidth - 2 * Margin, ReadOutHeight};
  return layout;
}

std::pair<double, double> TabletPositionOfTool(const DeskLayout& layout, const TabletExtents& tablet,
                                               int tool) {
  const Rect& square = layout.Squares[static_cast<std::size_t>(tool)];
  const double x = layout.Board.Left + square.Left + square.Width / 2 - ToolCursorPoint;
  const double y = layout.Board.Top + square.Top + square.Height / 2 - ToolCursorPoint;
  return {x / layout.ScaleWidth * tablet.TabletWidthUnits,
          (layout.ScaleHeight - y) / layout.ScaleHeight * tablet.TabletHeightUnits};
}

}  // namespace hyetex
