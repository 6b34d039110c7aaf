#include "digitizing/action_machine.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/comments.h"
#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {

ActionMachine::ActionMachine(Session& session, const TabletType& tablet, DeskView& view, JournalSink* journal)
    : session_(session), tablet_(tablet), view_(view), journal_(journal), decoder_(tablet) {
  Layout = DefaultDeskLayout(tablet.Extents);
}

void ActionMachine::Start(Date now) {
  state_.SessionStamp = std::nearbyint(now * 24) / 24;
  state_.Action = action::PageLeftCorner;
  view_.SetTitle("Setting the page angle");
  ShowInstruction("Click the bottom left point of the page");
  view_.SetBackground(LightBlue);
}

// ---- Presses

void ActionMachine::PressAt(double x, double y) {
  state_.CursorX = x;
  state_.CursorY = y;
  PlaceCursor();
  PerformAction();
}

bool ActionMachine::StoresPoint() const {
  const Trace& line = session_.Line;
  return CurrentState().StoresPoint &&
         (state_.Action != action::Drawing ||
          InsideBox(line.Scales(), state_.CursorX, state_.CursorY, line.Paper(line.CurrentPaper())));
}

// A press that cannot be kept is refused before anything has changed.
bool ActionMachine::RefusePress() {
  const Trace& line = session_.Line;
  if (!StoresPoint()) return false;
  if (line.IsFull()) {
    view_.ShowMessage(DrawingTitle,
                      "The chart has " + ShortText(MaxPoint + 1) +
                          " points and can hold no more. Save it, or delete points, before you go on.");
    return true;
  }
  if (!IsOnArc(line.Scales(), state_.CursorX, state_.CursorY, line.Paper(line.CurrentPaper()))) {
    view_.ShowMessage(
        DrawingTitle,
        "This point lies too far from the chart for the arc of its pen. Click on the pen line.");
    return true;
  }
  return false;
}

bool ActionMachine::RefusePaper() {
  if (!session_.Line.PapersAreFull()) return false;
  view_.ShowMessage(DrawingTitle,
                    "No more than " + ShortText(MaxPaper) + " strips can be attached to a chart.");
  return true;
}

void ActionMachine::PerformAction() {
  if (RefusePress()) return;
  RecordPress();
  view_.ShowMarker(false);
  session_.Saved = false;
  const auto press = CurrentState().Press;
  if (state_.Action == action::Drawing) {
    (this->*press)();
    return;
  }
  state_.AlphaNext = false;
  (this->*press)();
  state_.WaitForRelease = true;
  view_.UpdateMenus();
}

void ActionMachine::DrawPoint() {
  Trace& line = session_.Line;
  const int paper = line.CurrentPaper(), last = line.LastPoint();
  const double x = state_.CursorX, y = state_.CursorY;
  if (!StoresPoint()) return;

  if (last > 0) {
    const float step = TimeAlongPaper(line.Scales(), x, y, line.Paper(paper)) - line.TimeAlong(last, paper);
    // A pen does not go back in time: this is where the operator goes on with another part of the line.
    if (step < 0 && step <= -0.05 * BottomLength(line.Paper(paper))) {
      StartSegment();
      state_.WaitForRelease = true;
      view_.UpdateMenus();
      return;
    }
  }
  if (last >= 0 && !line.Point(last).StartsSegment()) {
    const float rise = HeightOnPaper(x, y, line.Paper(paper)) - line.HeightOf(last, paper);
    const double fullDrop = line.Scales().Is(ChartMethod::NonLinear) ? -0.8 : -0.6;
    if (rise < fullDrop * line.Scales().HeightUnits()) state_.AlphaNext = true;
  }
  line.Add(x, y, false, state_.AlphaNext ? CodeText(CodeAlpha) : std::string());
  state_.AlphaNext = false;
  view_.DrawGraph();
  if (last < 0) SetReference(state_.SessionStamp, 0);
  state_.WaitForRelease = false;
}

void ActionMachine::StartSegment() {
  session_.Line.Add(state_.CursorX, state_.CursorY, true);
  SetReference(state_.CursorTime, state_.CursorDepth);
  BackToDrawing();
  view_.DrawGraph();
}

void ActionMachine::TakeCorner() {
  state_.CornerX = static_cast<float>(state_.CursorX);
  state_.CornerY = static_cast<float>(state_.CursorY);
}

void ActionMachine::FirstPaperCorner() {
  TakeCorner();
  state_.Action = action::PaperRightCorner;
  ShowInstruction("Click the bottom-right corner of the new paper");
  view_.ShowMarker(true);
}

void ActionMachine::SecondPaperCorner() {
  Trace& line = session_.Line;
  if (static_cast<float>(state_.CursorX) == state_.CornerX) return;  // no line stands upright
  if (RefusePaper()) {
    BackToDrawing();
    return;
  }
  line.AttachPaper(state_.CornerX, state_.CornerY, state_.CursorX, state_.CursorY);
  state_.PageAngle = line.Paper(line.CurrentPaper()).Angle;
  MoveReference();
  view_.DrawGraph();
  ShowInstruction("Click the first point of the new paper and continue drawing normally");
  state_.Action = action::PaperFirstPoint;
  view_.ShowMarker(false);
}

// The paper's FirstPoint has been this point since its corners were set; a point erased in between moves it.
void ActionMachine::FirstPointOfPaper() {
  session_.Line.AddFirstOfPaper(state_.CursorX, state_.CursorY);
  SetReference(state_.CursorTime, state_.CursorDepth);
  BackToDrawing();
  view_.DrawGraph();
}

void ActionMachine::FirstPageCorner() {
  TakeCorner();
  state_.Action = action::PageRightCorner;
  ShowInstruction("Click the bottom-right Corner of the Page");
  view_.SetBackground(LightOrange);
}

void ActionMachine::SecondPageCorner() {
  if (static_cast<float>(state_.CursorX) == state_.CornerX) return;
  session_.Line.SetPage(state_.CornerX, state_.CornerY, state_.CursorX, state_.CursorY);
  state_.PageAngle = session_.Line.Paper(0).Angle;
  BackToDrawing();
  view_.SetBackground(LightGreen);
  view_.DrawGraph();
  Layout.BoardVisible = true;
  view_.ShowBoard(true);
}

void ActionMachine::StartDrag(DragShape shape, float next) {
  state_.SelectX = static_cast<float>(Layout.ScreenX(state_.CursorX));
  state_.SelectY = static_cast<float>(Layout.ScreenY(state_.CursorY));
  std::optional<Rect>& rect = shape == DragShape::Selection ? selection_ : zoom_;
  rect = Rect{state_.SelectX, state_.SelectY, 0, 0};
  view_.ShowDragShape(shape, *rect);
  state_.Action = next;
}

void ActionMachine::LevelPoint() {
  session_.Line.Add(state_.CursorX, state_.CursorY, false, CodeText(CodeLeveled));
  view_.DrawGraph();
  BackToDrawing();
}

void ActionMachine::EndGap() {
  StoreMarkedEnd(CodeGapEnd, {"Pen did not record", "Clock malfunction", "Instrument did not cycle",
                              "Instrument stopped after cycle", "Pen recorded on the metal strip"});
}

void ActionMachine::EndRecovered() {
  StoreMarkedEnd(CodeRecoveredEnd, {"Pen did not record", "Pen recorded on the metal strip"});
}

void ActionMachine::StoreMarkedEnd(int code, std::vector<std::string> choices) {
  Trace& line = session_.Line;
  line.Add(state_.CursorX, state_.CursorY);
  BackToDrawing();
  for (int i = 0; i <= line.LastPoint(); ++i) line.Select(i, i == line.LastPoint());
  view_.DrawGraph();
  OpenCommentWindow({false, "", ShortText(code), std::move(choices)});
}

void ActionMachine::MoveReference() {
  state_.RefX = static_cast<float>(state_.CursorX);
  state_.RefY = static_cast<float>(state_.CursorY);
}

void ActionMachine::SetReference(Date time, float depth) {
  MoveReference();
  state_.RefTime = time;
  state_.RefDepth = depth;
}

void ActionMachine::RemoveLastPoint() {
  Trace& line = session_.Line;
  const int last = line.LastPoint();
  if (last < 0) return;
  if (last == 0) {
    state_.RefX = state_.RefY = 0;
  } else if (line.Point(last).StartsSegment()) {
    int start = last - 1;
    while (start > 0 && !line.Point(start).StartsSegment()) --start;
    state_.RefX = static_cast<float>(line.Point(start).TrueX());
    state_.RefY = static_cast<float>(line.Point(start).Y);
  }
  line.RemoveLast();
  view_.DrawGraph();
}

void ActionMachine::Redigitize() {
  session_.Line.Clear();
  state_.RefX = state_.RefY = 0;
  view_.DrawGraph();
  session_.Saved = false;
}

void ActionMachine::SaveFile() {
  view_.EnableDesk(false);
  view_.OpenSave();
}

void ActionMachine::Escape() {
  Record({.What = JournalEvent::Kind::Escape});
  selection_.reset();
  zoom_.reset();
  view_.HideDragShape(DragShape::Selection);
  view_.HideDragShape(DragShape::Zoom);
  state_.AlphaNext = false;
  BackToDrawing();
  view_.DrawGraph();
}

void ActionMachine::BackToDrawing() {
  state_.Action = action::Drawing;
  ShowInstruction("");
  view_.SetTitle(DrawingTitle);
  view_.ShowMarker(false);
}

void ActionMachine::ShowInstruction(std::string_view text) {
  instruction_ = text;
  view_.ShowInstruction(text);
}

// ---- Comments

// The first point of a chart takes no comment.
bool ActionMachine::PointsTakeComment() const {
  const Trace& line = session_.Line;
  for (int i = 1; i <= line.LastPoint(); ++i)
    if (line.Point(i).Selected) return true;
  return false;
}

void ActionMachine::OpenCommentWindow(CommentRequest request) {
  if (!request.General && !PointsTakeComment()) return;
  view_.EnableDesk(false);
  comment_ = std::move(request);
  decoder_.Clear();
  view_.OpenComment(*comment_);
}

std::optional<std::string> ActionMachine::AddComment(std::string_view code, std::string_view text) {
  const std::string line = OneLine(text);
  if (auto refusal = CheckOneLine(line)) return refusal;
  const std::string entry = MakeComment(code, line);
  if (entry.empty() || !comment_) return std::nullopt;
  const std::string plainCode = code.empty() ? std::string() : ShortText(LeadingFloat(code));
  Record({.What = comment_->General ? JournalEvent::Kind::General : JournalEvent::Kind::Comment,
          .Code = plainCode,
          .Text = line});
  session_.Saved = false;
  if (comment_->General) {
    AddCode(session_.Chart.GeneralComment, entry);
    return std::nullopt;
  }
  Trace& trace = session_.Line;
  for (int i = 1; i <= trace.LastPoint(); ++i)
    if (trace.Point(i).Selected) trace.AddComment(i, entry);
  view_.DrawGraph();
  return std::nullopt;
}

void ActionMachine::ClearComments() {
  if (!comment_) return;
  Record({.What = JournalEvent::Kind::Clear});
  session_.Saved = false;
  if (comment_->General) {
    session_.Chart.GeneralComment.clear();
    return;
  }
  Trace& line = session_.Line;
  for (int i = 1; i <= line.LastPoint(); ++i)
    if (line.Point(i).Selected) line.ClearComment(i);
  view_.DrawGraph();
}

void ActionMachine::CommentClosed() {
  comment_.reset();
  view_.EnableDesk(true);
}

// ---- Journal

void ActionMachine::Record(const JournalEvent& event) const {
  if (journal_ != nullptr) journal_->Record(event);
}

// What only changes the view is not replayed. Where it has taken a waiting tool out of its wait, the journal
// says so in words that do the same to the trace.
void ActionMachine::RecordDrawingState() const {
  if (state_.Action == action::Drawing || LassoIsOpen()) return;  // an open lasso ends in drawing by itself
  Record({.What = JournalEvent::Kind::Escape});
  if (state_.AlphaNext) Record({.What = JournalEvent::Kind::Tool, .Tool = tool::Alpha});
}

void ActionMachine::RecordPress() const {
  if (CurrentState().Journaled)
    Record({.What = JournalEvent::Kind::Press, .X = state_.CursorX, .Y = state_.CursorY});
  else if (state_.AlphaNext)
    Record({.What = JournalEvent::Kind::Escape});
}

}  // namespace hyetex
