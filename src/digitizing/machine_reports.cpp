// The action machine's side towards the tablet: what each report does to the cursor, and when it is a press.
#include <algorithm>
#include <cmath>
#include <utility>

#include "digitizing/action_machine.h"

namespace hyetex {

void ActionMachine::Receive(std::span<const std::uint8_t> bytes) {
  if (comment_) {
    decoder_.Clear();
    return;
  }
  const bool endedOnReport =
      decoder_.Receive(bytes, [this](const TabletReport& report) { HandleReport(report); });
  if (!endedOnReport && !comment_) ActOnButton();
}

void ActionMachine::HandleReport(const TabletReport& report) {
  if (comment_) return;  // opened by an earlier report of the same chunk
  state_.CursorX = report.X;
  state_.CursorY = report.Y;
  state_.CursorButton = static_cast<std::int16_t>(report.Button);
  FindOverToolBox();
  if (state_.OverToolBox)
    PlaceToolCursor();
  else
    PlaceCursor();
  ActOnButton();
}

void ActionMachine::Point(double x, double y, int button) {
  if (comment_) return;
  state_.CursorX = x;
  state_.CursorY = y;
  state_.CursorButton = static_cast<std::int16_t>(button);
  state_.OverToolBox = false;
  PlaceCursor();
  ActOnButton();
}

void ActionMachine::FindOverToolBox() {
  const bool dragging = selection_ || zoom_;
  state_.OverToolBox = Layout.BoardVisible && !dragging && !CurrentState().LaysPaper &&
                       Layout.Board.Holds(Layout.ScreenX(state_.CursorX), Layout.ScreenY(state_.CursorY));
}

void ActionMachine::ActOnButton() {
  const bool down = state_.CursorButton >= 0;
  if (!down) {
    state_.ButtonHeld = false;
    if (state_.Action == action::MovingBoard) BackToDrawing();
    if (selection_) LassoReleased();
    if (zoom_) LoadZoom();
    state_.WaitForRelease = false;
    return;
  }
  const bool boardButton = state_.CursorButton == tablet_.ToolBoxButton;
  if (!state_.ButtonHeld && !state_.WaitForRelease) {
    state_.ButtonHeld = true;
    if (state_.OverToolBox) {
      PerformToolAction();
    } else if (!boardButton) {
      PerformAction();
    } else if (state_.Action == action::Drawing) {
      Layout.BoardVisible = !Layout.BoardVisible;
      view_.ShowBoard(Layout.BoardVisible);
      view_.HighlightTool(tool::None);
    }
    return;
  }
  if (!state_.ButtonHeld) return;
  if (!boardButton) StretchDragShape();
  if (state_.Action == action::MovingBoard && state_.OverToolBox) DragBoard();
}

void ActionMachine::StretchDragShape() {
  const DragShape shape = state_.Action == action::LassoDrag ? DragShape::Selection : DragShape::Zoom;
  std::optional<Rect>& rect = shape == DragShape::Selection ? selection_ : zoom_;
  if (!rect) return;
  const double x = Layout.ScreenX(state_.CursorX), y = Layout.ScreenY(state_.CursorY);
  rect = Rect{std::min<double>(x, state_.SelectX), std::min<double>(y, state_.SelectY),
              std::abs(x - state_.SelectX), std::abs(y - state_.SelectY)};
  view_.ShowDragShape(shape, *rect);
}

void ActionMachine::DragBoard() {
  Layout.Board.Left += toolCursorLeft_ - state_.SelectX;
  Layout.Board.Top += toolCursorTop_ - state_.SelectY;
  KeepBoardInside(Layout);
  view_.MoveBoard(Layout.Board.Left, Layout.Board.Top);
  toolCursorLeft_ = state_.SelectX;
  toolCursorTop_ = state_.SelectY;
  view_.PlaceToolCursor(toolCursorLeft_, toolCursorTop_);
}

void ActionMachine::ReadCursor() {
  const Trace& line = session_.Line;
  const double x = state_.CursorX, y = state_.CursorY;
  const ChartPaper& paper = line.Paper(line.CurrentPaper());
  const bool layingPaper = CurrentState().LaysPaper && state_.Action != action::PaperFirstPoint;
  state_.Reading.reset();
  if (layingPaper || !InsideBox(line.Scales(), x, y, paper) || !IsOnArc(line.Scales(), x, y, paper)) return;
  state_.Reading = CursorReading{session_.ChartStart() + line.TimeAt(x, y), line.DepthAt(x, y)};
  if (line.Scales().Is(ChartMethod::TippingBucket)) state_.Reading->Depth.reset();
}

void ActionMachine::PlaceCursor() {
  ReadCursor();
  if (std::exchange(tipShown_, false)) view_.ShowInstruction(instruction_);
  view_.PlaceCrosshair(Layout.ScreenX(state_.CursorX), Layout.ScreenY(state_.CursorY),
                       state_.CursorButton >= 0);
}

void ActionMachine::PlaceToolCursor() {
  const auto toTen = [](double t) { return std::nearbyint(t / 10) * 10; };
  const double left = toTen(Layout.ScreenX(state_.CursorX) - Layout.Board.Left);
  const double top = toTen(Layout.ScreenY(state_.CursorY) - Layout.Board.Top);
  ReadCursor();
  toolCursorLeft_ = left;
  toolCursorTop_ = top;
  view_.PlaceToolCursor(left, top);
  GiveToolTip();
}

void ActionMachine::GiveToolTip() {
  state_.CurrentTool = tool::None;
  for (int i = 0; i < ToolCount; ++i)
    if (Layout.Squares[static_cast<std::size_t>(i)].Holds(toolCursorLeft_ + ToolCursorPoint,
                                                          toolCursorTop_ + ToolCursorPoint))
      state_.CurrentTool = static_cast<std::int16_t>(i);
  view_.HighlightTool(state_.CurrentTool);
  const std::string_view text = GetToolText(state_.CurrentTool, Layout.Zoomed);
  if (text.empty()) state_.CurrentTool = tool::None;
  tipShown_ = !text.empty();
  view_.ShowInstruction(tipShown_ ? text : instruction_);
}

}  // namespace hyetex
