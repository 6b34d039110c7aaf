// A digitizing desk without a screen: a tablet of ten units to the millimetre, so that the chart's band is
// 1000 units high, and a view that remembers what it was last told.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "digitizing/action_machine.h"

namespace hyetex::test {

struct RecordingView : SilentView {
  std::string Title, Instruction, Message;
  Rgb Background{0, 0, 0};
  bool Board = false, Marker = false, Enabled = true, Pressed = false, ZoomOutPicture = false;
  int Highlight = -2, MarkedTool = -1, Saves = 0, Closes = 0;
  double Factor = 1;
  std::optional<Rect> Shape;

  void ShowInstruction(std::string_view text) override { Instruction = text; }
  void SetTitle(std::string_view title) override { Title = title; }
  void SetBackground(Rgb colour) override { Background = colour; }
  void ShowBoard(bool visible) override { Board = visible; }
  void HighlightTool(int tool) override { Highlight = tool; }
  void PlaceMarker(int tool) override { MarkedTool = tool; }
  void ShowMarker(bool visible) override { Marker = visible; }
  void ShowZoomOutPicture(bool zoomOut) override { ZoomOutPicture = zoomOut; }
  void PlaceCrosshair(double, double, bool pressed) override { Pressed = pressed; }
  void ShowDragShape(DragShape, const Rect& rect) override { Shape = rect; }
  void HideDragShape(DragShape) override { Shape.reset(); }
  void EnableDesk(bool enabled) override { Enabled = enabled; }
  void OpenSave() override { ++Saves; }
  void CloseDesk() override { ++Closes; }
  void ResizeDesk(double factor) override { Factor *= factor; }
  void ShowMessage(std::string_view, std::string_view text) override { Message = text; }
};

/// What the next press means, and how the desk says so.
struct Shown {
  float Action;
  std::string Title, Instruction = {};

  bool operator==(const Shown&) const = default;
};
inline std::ostream& operator<<(std::ostream& out, const Shown& shown) {
  return out << shown.Action << " / " << shown.Title << " / " << shown.Instruction;
}

inline const TabletType DeskTablet{"Desk", WireFormat::Ascii, {}, "", 0, 2, {4000, 4000, 400, 400}};

inline ChartRecord ChartOf1998() {
  ChartRecord chart;
  chart.StartTime = MakeDate(1998, 3, 5);
  return chart;
}

struct Desk {
  explicit Desk(ChartMethod method = ChartMethod::Linear, float middleToBottomMm = 0,
                JournalSink* journal = nullptr, float heightMm = 100)
      : Traced(DeskTablet.Extents,
               {"Weekly", heightMm, 0.1F, 2, static_cast<std::int16_t>(method), middleToBottomMm},
               ChartOf1998()),
        Machine(Traced, DeskTablet, View, journal) {
    Machine.Start();
  }
  /// The page from (500, 500) to (3500, 500): 5% of its length are 150 units.
  Desk& Calibrated() { return Click(500, 500).Click(3500, 500); }
  Desk& Report(int x, int y, int button = -1) {
    Machine.HandleReport({x, y, button});
    return *this;
  }
  Desk& Click(int x, int y, int button = 0) { return Report(x, y).Report(x, y, button).Report(x, y); }
  Desk& Drag(int x, int y, int toX, int toY) {
    return Report(x, y).Report(x, y, 0).Report(toX, toY, 0).Report(toX, toY);
  }
  /// A tool by the mouse or a menu.
  Desk& Tool(int tool) {
    Machine.RunTool(tool);
    return *this;
  }
  /// Brings the tablet's cursor over a square of the board, with or without a button.
  Desk& OnSquare(int tool, int button = -1, int dx = 0, int dy = 0) {
    const auto [x, y] = TabletPositionOfTool(Machine.Layout, DeskTablet.Extents, tool);
    return Report(static_cast<int>(x) + dx, static_cast<int>(y) + dy, button);
  }
  Desk& Comment(std::string_view code, std::string_view text) {
    Machine.AddComment(code, text);
    Machine.CommentClosed();
    return *this;
  }
  const Trace& Line() const { return Traced.Line; }
  int Last() const { return Line().LastPoint(); }
  const DigitizedPoint& LastOne() const { return Line().Point(Last()); }
  const DeskState& State() const { return Machine.State(); }
  /// As they stand.
  Shown IsShown() const { return {State().Action, View.Title, View.Instruction}; }
  bool IsDrawing() const { return IsShown() == Shown{action::Drawing, "HYETEX 88"} && !View.Marker; }

  RecordingView View;
  Session Traced;
  ActionMachine Machine;
};

}  // namespace hyetex::test
