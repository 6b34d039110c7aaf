// The action machine's tools: what a press on the board, a click on it, or a menu entry does.
#include "core/comments.h"
#include "core/numbers.h"
#include "digitizing/action_machine.h"

namespace hyetex {

void ActionMachine::RunTool(int index) {
  session_.CurrentTool = static_cast<std::int16_t>(index);
  PerformToolAction();
}

void ActionMachine::PerformToolAction() {
  const int current = session_.CurrentTool;
  if (current >= 0) view_.PlaceMarker(current);
  if (IsViewTool(current)) {
    if (current == tool::MoveBoard || (current == tool::Zoom && !session_.Zoomed)) RecordDrawingState();
  } else if (current >= 0) {
    Record({.What = JournalEvent::Kind::Tool, .Tool = current});
  }

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
      if (session_.Line.PapersAreFull()) {
        view_.ShowMessage("HYETEX 88",
                          "No more than " + ShortText(MaxPaper) + " strips can be attached to a chart.");
        break;
      }
      [[fallthrough]];
    case tool::Recovered:
    case tool::NewSegment:
    case tool::Level:
    case tool::Gap:
      ToggleWaiting(Tools()[static_cast<std::size_t>(current)]);
      break;
    case tool::SegmentComment:
      if (session_.Action != action::LassoDrag) ToggleWaiting(Tools()[tool::SegmentComment]);
      break;
    case tool::Alpha:
      ToggleAlpha();
      break;
    case tool::Erase:
      RemoveLastPoint();
      break;
    case tool::MoveBoard:
      session_.Action = action::MovingBoard;
      session_.SelectX = static_cast<float>(toolCursorLeft_);
      session_.SelectY = static_cast<float>(toolCursorTop_);
      break;
    case tool::CloseBoard:
      Layout.BoardVisible = false;
      view_.ShowBoard(false);
      session_.CursorButton = 0;
      break;
    case tool::GeneralComment:
      OpenCommentWindow({true, "Add a general Comment...", "", {}});
      break;
    case tool::Zoom:
      if (session_.Zoomed)
        ZoomOut();
      else if (session_.Action != action::ZoomDrag && session_.Action != action::ZoomStart)
        ToggleWaiting(Tools()[tool::Zoom]);
      break;
    case tool::Shrink:
      view_.ResizeDesk(0.9);
      break;
    case tool::Grow:
      view_.ResizeDesk(1.1);
      break;
    default:
      if (session_.Action == action::LassoDrag) PerformAction();
  }
  view_.HighlightTool(tool::None);
  session_.WaitForRelease = true;
  view_.UpdateMenus();
}

// A second press on a waiting tool takes it back.
void ActionMachine::ToggleWaiting(const Tool& tool) {
  if (session_.Action == *tool.WaitsIn) {
    BackToDrawing();
    return;
  }
  session_.Action = *tool.WaitsIn;
  view_.SetTitle(tool.Title);
  ShowInstruction(tool.Prompt);
  view_.ShowMarker(true);
}

void ActionMachine::ToggleAlpha() {
  session_.AlphaNext = !session_.AlphaNext;
  if (!session_.AlphaNext) {
    BackToDrawing();
    return;
  }
  const Tool& alpha = Tools()[tool::Alpha];
  view_.SetTitle(alpha.Title);
  ShowInstruction(alpha.Prompt);
  view_.ShowMarker(true);
}

void ActionMachine::LassoReleased() {
  std::vector<int> inside;
  const Trace& line = session_.Line;
  for (int i = 0; i <= line.LastPoint(); ++i)
    if (selection_->Holds(ScreenX(line.Point(i).TrueX()), ScreenY(line.Point(i).Y))) inside.push_back(i);
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
  if (session_.Action != action::ZoomDrag) RecordDrawingState();  // a tool was started during the drag
  if (chosen.Width == 0 || chosen.Height == 0) {                  // a click without a drag chooses nothing
    BackToDrawing();
    return;
  }
  const TabletExtents& tablet = session_.Line.Scales().Tablet;
  session_.ViewX0 = static_cast<float>(chosen.Left / session_.ScaleX);
  session_.ViewY0 = static_cast<float>((Layout.ScaleHeight - chosen.Top - chosen.Height) / session_.ScaleY);
  session_.ScaleX =
      static_cast<float>(Layout.ScaleWidth / (tablet.TabletWidthUnits * chosen.Width / Layout.ScaleWidth));
  session_.ScaleY = static_cast<float>(Layout.ScaleHeight /
                                       (tablet.TabletHeightUnits * chosen.Height / Layout.ScaleHeight));
  FinishZoom();
}

void ActionMachine::AutoZoom() {
  const ChartPaper& paper = session_.Line.Paper(session_.Line.CurrentPaper());
  const double width = paper.BottomRightX - paper.BottomLeftX;
  if (!IsCalibrated(paper) || width <= 0) return;
  RecordDrawingState();
  session_.ViewX0 = static_cast<float>(paper.BottomLeftX - width * 0.05);
  session_.ViewY0 = static_cast<float>(paper.BottomLeftY - session_.Line.Scales().HeightUnits());
  session_.ScaleX = session_.ScaleY = static_cast<float>(Layout.ScaleWidth / (width * 1.2));
  FinishZoom();
}

void ActionMachine::FinishZoom() {
  session_.Zoomed = true;
  view_.ShowZoomOutPicture(true);
  BackToDrawing();
  view_.DrawGraph();
}

void ActionMachine::ZoomOut() {
  session_.Zoomed = false;
  session_.ViewX0 = session_.ViewY0 = 0;
  ViewResized(Layout.ScaleWidth, Layout.ScaleHeight);
  view_.DrawGraph();
  view_.ShowZoomOutPicture(false);
}

void ActionMachine::ViewResized(double scaleWidth, double scaleHeight) {
  if (session_.Zoomed) {
    session_.ScaleX *= static_cast<float>(scaleWidth / Layout.ScaleWidth);
    session_.ScaleY *= static_cast<float>(scaleHeight / Layout.ScaleHeight);
  } else {
    const TabletExtents& tablet = session_.Line.Scales().Tablet;
    session_.ScaleX = static_cast<float>(scaleWidth / tablet.TabletWidthUnits);
    session_.ScaleY = static_cast<float>(scaleHeight / tablet.TabletHeightUnits);
  }
  Layout.ScaleWidth = scaleWidth;
  Layout.ScaleHeight = scaleHeight;
}

}  // namespace hyetex
