// The action machine's side towards the tablet: what each report does to the cursor, and when it is a press.
#include <algorithm>
#include <cmath>

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
  session_.CursorX = report.X;
  session_.CursorY = report.Y;
  session_.CursorButton = static_cast<std::int16_t>(report.Button);
  FindOverToolBox();
  if (session_.OverToolBox)
    PlaceToolCursor();
  else
    PlaceCursor();
  ActOnButton();
}

void ActionMachine::FindOverToolBox() {
  const bool dragging = selection_ || zoom_;
  const bool takingCorners = session_.Action >= 1 && session_.Action < 6;
  session_.OverToolBox = Layout.BoardVisible && !dragging && !takingCorners &&
                         Layout.Board.Holds(ScreenX(session_.CursorX), ScreenY(session_.CursorY));
}

void ActionMachine::ActOnButton() {
  const bool down = session_.CursorButton >= 0;
  if (!down) {
    session_.ButtonHeld = false;
    if (session_.Action == action::MovingBoard) session_.Action = action::Drawing;
    if (selection_) LassoReleased();
    if (zoom_) LoadZoom();
    session_.WaitForRelease = false;
    return;
  }
  const bool boardButton = session_.CursorButton == tablet_.ToolBoxButton;
  if (!session_.ButtonHeld && !session_.WaitForRelease) {
    session_.ButtonHeld = true;
    if (session_.OverToolBox) {
      PerformToolAction();
    } else if (!boardButton) {
      PerformAction();
    } else if (session_.Action == action::Drawing) {
      Layout.BoardVisible = !Layout.BoardVisible;
      view_.ShowBoard(Layout.BoardVisible);
      view_.HighlightTool(tool::None);
    }
    return;
  }
  if (!session_.ButtonHeld) return;
  if (!boardButton) StretchDragShape();
  if (session_.Action == action::MovingBoard && session_.OverToolBox) DragBoard();
}

void ActionMachine::StretchDragShape() {
  const DragShape shape = session_.Action == action::LassoDrag ? DragShape::Selection : DragShape::Zoom;
  std::optional<Rect>& rect = shape == DragShape::Selection ? selection_ : zoom_;
  if (!rect) return;
  const double x = ScreenX(session_.CursorX), y = ScreenY(session_.CursorY);
  rect = Rect{std::min<double>(x, session_.SelectX), std::min<double>(y, session_.SelectY),
              std::abs(x - session_.SelectX), std::abs(y - session_.SelectY)};
  view_.ShowDragShape(shape, *rect);
}

void ActionMachine::DragBoard() {
  Layout.Board.Left += toolCursorLeft_ - session_.SelectX;
  Layout.Board.Top += toolCursorTop_ - session_.SelectY;
  view_.MoveBoard(Layout.Board.Left, Layout.Board.Top);
  toolCursorLeft_ = session_.SelectX;
  toolCursorTop_ = session_.SelectY;
  view_.PlaceToolCursor(toolCursorLeft_, toolCursorTop_);
}

void ActionMachine::PlaceCursor() {
  const int last = session_.Line.LastPoint();
  if (last < 0) {
    session_.CursorTime = session_.ChartStart();
    session_.CursorDepth = 0;
  } else {
    const DigitizedPoint& point = session_.Line.Point(last);
    const double dx = session_.CursorX - point.TrueX(), dy = session_.CursorY - point.Y;
    const double sine = std::sin(session_.PageAngle), cosine = std::cos(session_.PageAngle);
    session_.CursorTime =
        session_.PointTime(last) + (dy * sine + dx * cosine) / session_.UnitsPerHourAtOneHourPerMm();
    session_.CursorDepth =
        static_cast<float>((dy * cosine - dx * sine) / session_.UnitsPerMmVertical() + session_.RefDepth);
  }
  view_.PlaceCrosshair(ScreenX(session_.CursorX), ScreenY(session_.CursorY), session_.CursorButton >= 0);
}

void ActionMachine::PlaceToolCursor() {
  const auto toTen = [](double t) { return std::nearbyint(t / 10) * 10; };
  const double left = toTen(ScreenX(session_.CursorX) - Layout.Board.Left);
  const double top = toTen(ScreenY(session_.CursorY) - Layout.Board.Top);

  const double dx = session_.CursorX - session_.RefX, dy = session_.CursorY - session_.RefY;
  const double sine = std::sin(session_.PageAngle), cosine = std::cos(session_.PageAngle);
  session_.CursorTime = session_.RefTime + (dy * sine + dx * cosine) / session_.UnitsPerHourAtOneHourPerMm();
  session_.CursorDepth =
      static_cast<float>(session_.RefDepth + (dy * cosine - dx * sine) / session_.UnitsPerMmVertical());

  toolCursorLeft_ = left;
  toolCursorTop_ = top;
  view_.PlaceToolCursor(left, top);
  GiveToolTip();
}

void ActionMachine::GiveToolTip() {
  session_.CurrentTool = tool::None;
  for (int i = 0; i < ToolCount; ++i)
    if (Layout.Squares[static_cast<std::size_t>(i)].Holds(toolCursorLeft_ + ToolCursorPoint,
                                                          toolCursorTop_ + ToolCursorPoint))
      session_.CurrentTool = static_cast<std::int16_t>(i);
  view_.HighlightTool(session_.CurrentTool);
  const std::string_view text = GetToolText(session_.CurrentTool, session_.Zoomed);
  if (text.empty()) session_.CurrentTool = tool::None;
  if (text != instruction_) ShowInstruction(text);
}

}  // namespace hyetex
