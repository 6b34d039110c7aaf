// What the action machine asks of the digitizing window. Positions and sizes are screen units
// (desk_layout.h).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/colour.h"
#include "digitizing/desk_layout.h"

namespace hyetex {

/// The window's title while the chart is drawn, and that of its messages.
inline constexpr std::string_view DrawingTitle = "HYETEX 88";

inline constexpr Rgb LightBlue{192, 192, 255};    ///< waiting for the page's first corner
inline constexpr Rgb LightOrange{255, 192, 128};  ///< waiting for its second
inline constexpr Rgb LightGreen{192, 255, 192};   ///< the page is calibrated

enum class DragShape { Selection, Zoom };

/// What the comment window is opened with.
struct CommentRequest {
  bool General = false;  ///< for the whole chart, not for the selected points
  std::string Title;     ///< empty: the window's own
  std::string Code;
  std::vector<std::string> Choices;
};

class DeskView {
 public:
  virtual ~DeskView() = default;

  virtual void ShowInstruction(std::string_view text) = 0;  ///< in the status bar; empty clears it
  virtual void SetTitle(std::string_view title) = 0;
  virtual void SetBackground(Rgb colour) = 0;
  virtual void DrawGraph() = 0;
  virtual void UpdateMenus() = 0;

  virtual void ShowBoard(bool visible) = 0;
  virtual void MoveBoard(double left, double top) = 0;
  virtual void HighlightTool(int tool) = 0;  ///< -1 takes the highlight off all squares
  virtual void PlaceMarker(int tool) = 0;    ///< on that square; shown or not stays as it is
  virtual void ShowMarker(bool visible) = 0;
  virtual void ShowZoomOutPicture(bool zoomOut) = 0;

  virtual void PlaceCrosshair(double x, double y, bool pressed) = 0;  ///< and hide the tool cursor
  virtual void PlaceToolCursor(double left, double top) = 0;  ///< on the board; and hide the crosshair
  virtual void ShowDragShape(DragShape shape, const Rect& rect) = 0;
  virtual void HideDragShape(DragShape shape) = 0;

  virtual void EnableDesk(bool enabled) = 0;
  virtual void OpenComment(const CommentRequest& request) = 0;
  virtual void OpenSave() = 0;
  virtual void CloseDesk() = 0;  ///< with its question if the chart is not saved
  virtual void ResizeDesk(double factor) = 0;
  virtual void ShowMessage(std::string_view title, std::string_view text) = 0;
  /// Whether all points may be taken away.
  virtual bool MayRedigitize() = 0;
};

/// Shows nothing: for sessions without a screen.
class SilentView : public DeskView {
 public:
  void ShowInstruction(std::string_view) override {}
  void SetTitle(std::string_view) override {}
  void SetBackground(Rgb) override {}
  void DrawGraph() override {}
  void UpdateMenus() override {}
  void ShowBoard(bool) override {}
  void MoveBoard(double, double) override {}
  void HighlightTool(int) override {}
  void PlaceMarker(int) override {}
  void ShowMarker(bool) override {}
  void ShowZoomOutPicture(bool) override {}
  void PlaceCrosshair(double, double, bool) override {}
  void PlaceToolCursor(double, double) override {}
  void ShowDragShape(DragShape, const Rect&) override {}
  void HideDragShape(DragShape) override {}
  void EnableDesk(bool) override {}
  void OpenComment(const CommentRequest&) override {}
  void OpenSave() override {}
  void CloseDesk() override {}
  void ResizeDesk(double) override {}
  void ShowMessage(std::string_view, std::string_view) override {}
  bool MayRedigitize() override { return true; }
};

}  // namespace hyetex
