// Where the chart view and the tool board lie on the screen, and so on the tablet: the view shows the
// tablet's whole area, or the part that is zoomed on, and a press on what is under the board runs a tool. In
// screen units, from the left and top of the chart view.
#pragma once

#include <array>
#include <optional>
#include <utility>

#include "core/geometry.h"
#include "core/rect.h"
#include "digitizing/tools.h"

namespace hyetex {

/// How far the point of the board's cursor lies from its left and its top.
inline constexpr double ToolCursorPoint = 120;

/// A part of the tablet, in report units.
struct TabletArea {
  double Left = 0, Bottom = 0, Width = 0, Height = 0;

  bool operator==(const TabletArea&) const = default;
};

/// The window keeps this true when it is resized or the board is dragged.
struct DeskLayout {
  double ScaleWidth = 1, ScaleHeight = 1;  ///< size of the chart view
  float ViewX0 = 0, ViewY0 = 0;            ///< tablet position of the view's left and bottom edges
  float ScaleX = 1, ScaleY = 1;            ///< screen units for each report unit
  bool Zoomed = false;
  /// Where the mouse is the cursor: what is in view when it is not zoomed, such as the place of a scan, with
  /// a little around it and always at one scale in both directions. None: the tablet's area fills the view.
  std::optional<TabletArea> Home;

  Rect Board;                             ///< in the chart view
  std::array<Rect, ToolCount> Squares{};  ///< on the board
  Rect ReadOut;                           ///< on the board: time and depth under the cursor
  bool BoardVisible = false;

  /// Where a tablet position (report units) lies in the chart view.
  double ScreenX(double x) const { return (x - ViewX0) * ScaleX; }
  double ScreenY(double y) const { return ScaleHeight - (y - ViewY0) * ScaleY; }
  /// The tablet position that lies there in the chart view.
  double TabletX(double screenX) const { return ViewX0 + screenX / ScaleX; }
  double TabletY(double screenY) const { return ViewY0 + (ScaleHeight - screenY) / ScaleY; }
};

/// The scale at which the home area, which there must be, is just whole in the view.
double HomeScale(const DeskLayout& layout);
/// Puts a tablet position in the middle of the view at a scale; one that lies outside the home area gives way
/// to the nearest that does not, so that a scan is never out of sight.
void ShowAround(DeskLayout& layout, double x, double y, double scale);

/// Shows the home area, or the tablet's whole area, in the view.
void ShowWhole(DeskLayout& layout, const TabletExtents& tablet);

/// A view of `height` with the tablet's proportions, and the board in its top right corner: what a new
/// installation starts with, and what a session without a screen has.
DeskLayout DefaultDeskLayout(const TabletExtents& tablet, double height = 12000);

/// The tablet position (report units) that lies on a tool's square in the unzoomed view.
std::pair<double, double> TabletPositionOfTool(const DeskLayout& layout, const TabletExtents& tablet,
                                               int tool);

}  // namespace hyetex
