// The action machine's tools: what a press on the board, a click on it, or a menu entry does.
#include "core/comments.h"
#include "core/numbers.h"
#include "digitizing/action_machine.h"

namespace hyetex {

void ActionMachine::RunTool(int index) {
  state_.CurrentTool = static_cast<std::int16_t>(index);
  PerformToolAction();
}

// Board tools that wait for a press would take the page's own corners from it.
bool ActionMachine::NeedsPage(int index) const {
  if (index < 0 || IsCalibrated(session_.Line.Paper(0))) return false;
  return index == tool::Alpha || index == tool::MoveBoard ||
         Tools()[static_cast<std::size_t>(index)].WaitsIn.has_value();
}

void ActionMachine::PerformToolAction() {
  const int current = state_.CurrentTool;
  if (NeedsPage(current)) {
    ShowInstruction("The page comes first. " + std::string(CurrentState().Prompt));
    return;
  }
  if (current >= 0) view_.PlaceMarker(current);
  // Before it is recorded: a replay does not ask again.
  if (current == tool::Redigitize && session_.Line.LastPoint() >= 0 && !view_.MayRedigitize()) {
    view_.HighlightTool(tool::None);
    state_.WaitForRelease = true;
    return;
  }
  if (IsViewTool(current)) {
    if (current == tool::MoveBoard || (current == tool::Zoom && !Layout.Zoomed)) RecordDrawingState();
  } else if (current >= 0) {
    Record({.What = JournalEvent::Kind::Tool, .Tool = current});
  }

  RunCurrentTool(current);
  if (current == tool::NewFile) return;
  if (current == tool::Redigitize || current == tool::Erase)
    Commit(current == tool::Erase ? "Erase" : "Redigitize");
  view_.HighlightTool(tool::None);
  state_.WaitForRelease = true;
  view_.UpdateMenus();
}

void ActionMachine::RunCurrentTool(int current) {
  switch (current) {
    case tool::NewFile:
      NewFile();
      return;
    case tool::SaveFile:
      SaveFile();
      break;
    case tool::Redigitize:
      Redigitize();
      break;
    case tool::AttachPaper:
      if (session_.Line.LastPoint() < 0) break;
      if (RefusePaper()) break;
      [[fallthrough]];
    case tool::Recovered:
    case tool::NewSegment:
    case tool::Level:
    case tool::Gap:
      ToggleWaiting(Tools()[static_cast<std::size_t>(current)]);
      break;
    case tool::SegmentComment:
      if (state_.Action != action::LassoDrag) ToggleWaiting(Tools()[tool::SegmentComment]);
      break;
    case tool::Alpha:
      ToggleAlpha();
      break;
    case tool::Erase:
      RemoveLastPoint();
      break;
    case tool::MoveBoard:
      state_.Action = action::MovingBoard;
      TellNextPress();
      state_.SelectX = static_cast<float>(toolCursorLeft_);
      state_.SelectY = static_cast<float>(toolCursorTop_);
      break;
    case tool::CloseBoard:
      Layout.BoardVisible = false;
      view_.ShowBoard(false);
      state_.CursorButton = 0;
      break;
    case tool::GeneralComment:
      OpenCommentWindow({true, "Add a general Comment...", "", {}});
      break;
    case tool::Zoom:
      if (Layout.Zoomed)
        ZoomOut();
      else if (state_.Action != action::ZoomDrag && state_.Action != action::ZoomStart)
        ToggleWaiting(Tools()[tool::Zoom]);
      break;
    case tool::Shrink:
      view_.ResizeDesk(0.9);
      break;
    case tool::Grow:
      view_.ResizeDesk(1.1);
      break;
    default:
      if (state_.Action == action::LassoDrag) PerformAction();
  }
}

// A second press on a waiting tool takes it back.
void ActionMachine::ToggleWaiting(const Tool& tool) {
  if (state_.Action == *tool.WaitsIn) {
    BackToDrawing();
    return;
  }
  state_.Action = *tool.WaitsIn;
  TellNextPress();
  view_.ShowMarker(true);
}

void ActionMachine::ToggleAlpha() {
  state_.AlphaNext = !state_.AlphaNext;
  if (!state_.AlphaNext) {
    BackToDrawing();
    return;
  }
  TellNextPress();
  view_.ShowMarker(true);
}

void ActionMachine::LassoReleased() {
  std::vector<int> inside;
  const Trace& line = session_.Line;
  for (int i = 0; i <= line.LastPoint(); ++i)
    if (selection_->Holds(Layout.ScreenX(line.Point(i).TrueX()), Layout.ScreenY(line.Point(i).Y)))
      inside.push_back(i);
  EndLasso(inside);
}

void ActionMachine::EndLasso(const std::vector<int>& points) {
  Record({.What = JournalEvent::Kind::Select, .Points = points});
  Trace& line = session_.Line;
  for (int i = 0; i <= line.LastPoint(); ++i) line.Select(i, false);
  for (int i : points) line.Select(i, true);
  selection_.reset();
  view_.HideDragShape(DragShape::Selection);
  BackToDrawing();
  OpenCommentWindow({false, "Add a Comment for a segment...", "", {}});
}

// ---- Zoom

void ActionMachine::LoadZoom() {
  const Rect chosen = *zoom_;
  zoom_.reset();
  view_.HideDragShape(DragShape::Zoom);
  if (state_.Action != action::ZoomDrag) RecordDrawingState();  // a tool was started during the drag
  if (chosen.Width == 0 || chosen.Height == 0) {                // a click without a drag chooses nothing
    BackToDrawing();
    return;
  }
  ShowArea(Layout, Extents(), chosen);
  FinishZoom();
}

void ActionMachine::AutoZoom() {
  const ChartPaper& paper = session_.Line.Paper(session_.Line.CurrentPaper());
  if (!IsCalibrated(paper) || paper.BottomRightX <= paper.BottomLeftX) return;
  RecordDrawingState();
  ShowPaper(Layout, session_.Line.Scales(), paper);
  FinishZoom();
}

void ActionMachine::FinishZoom() {
  view_.ShowZoomOutPicture(true);
  BackToDrawing();
  view_.DrawGraph();
}

void ActionMachine::ZoomOut() {
  ShowWhole(Layout, Extents());
  view_.DrawGraph();
  view_.ShowZoomOutPicture(false);
}

void ActionMachine::ViewResized(double scaleWidth, double scaleHeight) {
  ResizeView(Layout, Extents(), scaleWidth, scaleHeight);
}

}  // namespace hyetex
