#include "digitizing/action_machine.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/comments.h"
#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {
namespace {

constexpr std::string_view AlphaTitle = "Toggling an alpha sign";
constexpr std::string_view AlphaPrompt = "Click at the point where the instrument has finished cycling";
constexpr std::string_view OutsidePrompt =
    "This press lies outside the chart and was not stored. Click on the pen line";

}  // namespace

ActionMachine::ActionMachine(Session& session, const TabletType& tablet, DeskView& view, JournalSink* journal)
    : session_(session), tablet_(tablet), view_(view), journal_(journal), decoder_(tablet) {
  Layout = DefaultDeskLayout(tablet.Extents);
  history_.Begin(session_, Resting());
}

void ActionMachine::Start() {
  state_.Action = action::PageLeftCorner;
  history_.Begin(session_, Resting());
  TellNextPress();
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

// A page from right to left would run time backwards and turn its heights over.
std::optional<std::string> ActionMachine::RefuseCorner(double x) const {
  const bool right = state_.Action == action::PageRightCorner || state_.Action == action::PaperRightCorner;
  if (!right || static_cast<float>(x) >= state_.CornerX) return std::nullopt;
  return "The bottom-right corner cannot lie left of the bottom-left corner. Click it again, or press Escape "
         "to begin with the left corner.";
}

void ActionMachine::PerformAction() {
  if (RefusePress()) return;
  if (const auto refusal = RefuseCorner(state_.CursorX)) {
    view_.ShowMessage(DrawingTitle, *refusal);
    return;
  }
  RecordPress();
  view_.ShowMarker(false);
  session_.Saved = false;
  const auto press = CurrentState().Press;
  const std::string_view step = CurrentState().Step;
  if (state_.Action == action::Drawing) {
    (this->*press)();
    Commit(step);
    return;
  }
  state_.AlphaNext = false;
  (this->*press)();
  Commit(step);
  state_.WaitForRelease = true;
  view_.UpdateMenus();
}

void ActionMachine::DrawPoint() {
  Trace& line = session_.Line;
  const int paper = line.CurrentPaper(), last = line.LastPoint();
  const double x = state_.CursorX, y = state_.CursorY;
  if (!StoresPoint()) {
    ShowInstruction(OutsidePrompt);
    return;
  }

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
  TellNextPress();
  state_.WaitForRelease = false;
}

void ActionMachine::StartSegment() {
  session_.Line.Add(state_.CursorX, state_.CursorY, true);
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
  TellNextPress();
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
  view_.DrawGraph();
  state_.Action = action::PaperFirstPoint;
  TellNextPress();
  view_.ShowMarker(false);
}

// The paper's FirstPoint has been this point since its corners were set; a point erased in between moves it.
void ActionMachine::FirstPointOfPaper() {
  session_.Line.AddFirstOfPaper(state_.CursorX, state_.CursorY);
  BackToDrawing();
  view_.DrawGraph();
}

void ActionMachine::FirstPageCorner() {
  TakeCorner();
  state_.Action = action::PageRightCorner;
  TellNextPress();
}

void ActionMachine::SecondPageCorner() {
  if (static_cast<float>(state_.CursorX) == state_.CornerX) return;
  Trace& line = session_.Line;
  line.SetPage(state_.CornerX, state_.CornerY, state_.CursorX, state_.CursorY);
  const ChartPaper& paper = line.Paper(line.CurrentPaper());
  state_.PageAngle = paper.Angle;
  BackToDrawing();
  if (line.CurrentPaper() > 0 && paper.FirstPoint > line.LastPoint()) {  // a strip without its first point
    state_.Action = action::PaperFirstPoint;
    TellNextPress();
  }
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

void ActionMachine::RemoveLastPoint() {
  if (session_.Line.LastPoint() < 0) return;
  session_.Line.RemoveLast();
  view_.DrawGraph();
}

void ActionMachine::Redigitize() {
  session_.Line.Clear();
  view_.DrawGraph();
  session_.Saved = false;
}

void ActionMachine::SaveFile() {
  view_.EnableDesk(false);
  view_.OpenSave();
}

void ActionMachine::Escape() {
  Record({.What = JournalEvent::Kind::Escape});
  DropDragShapes();
  state_.AlphaNext = false;
  BackToDrawing();
  Commit({});
  history_.Settle(Resting());
  view_.DrawGraph();
  view_.UpdateMenus();
}

void ActionMachine::SetPageAgain() {
  Record({.What = JournalEvent::Kind::Page});
  DropDragShapes();
  state_.AlphaNext = false;
  state_.Action = action::PageLeftCorner;
  view_.ShowMarker(false);
  TellNextPress();
}

void ActionMachine::DropDragShapes() {
  selection_.reset();
  zoom_.reset();
  view_.HideDragShape(DragShape::Selection);
  view_.HideDragShape(DragShape::Zoom);
}

// Without a page there is nothing to draw on.
void ActionMachine::BackToDrawing() {
  state_.Action = IsCalibrated(session_.Line.Paper(0)) ? action::Drawing : action::PageLeftCorner;
  view_.ShowMarker(false);
  TellNextPress();
}

void ActionMachine::TellNextPress() {
  const ActionState& state = CurrentState();
  const bool alpha = state_.AlphaNext && state_.Action == action::Drawing;
  view_.SetTitle(alpha ? AlphaTitle : state.Title);
  ShowInstruction(alpha ? AlphaPrompt : state.Prompt);
  view_.SetBackground(state_.Action == action::PageLeftCorner    ? LightBlue
                      : state_.Action == action::PageRightCorner ? LightOrange
                                                                 : LightGreen);
}

void ActionMachine::ShowInstruction(std::string_view text) {
  instruction_ = text;
  tipShown_ = false;
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
    CommitComment();
    return std::nullopt;
  }
  Trace& trace = session_.Line;
  for (int i = 1; i <= trace.LastPoint(); ++i)
    if (trace.Point(i).Selected) trace.AddComment(i, entry);
  CommitComment();
  view_.DrawGraph();
  return std::nullopt;
}

// The window may stay open for more; each entry is a step, the first one together with the end it belongs to.
void ActionMachine::CommitComment() {
  std::optional<CommentRequest> open;
  open.swap(comment_);
  Commit("comment");
  open.swap(comment_);
}

void ActionMachine::ClearComments() {
  if (!comment_) return;
  Record({.What = JournalEvent::Kind::Clear});
  session_.Saved = false;
  if (comment_->General) {
    session_.Chart.GeneralComment.clear();
    Commit("clearing of comments");
    return;
  }
  Trace& line = session_.Line;
  for (int i = 1; i <= line.LastPoint(); ++i)
    if (line.Point(i).Selected) line.ClearComment(i);
  Commit("clearing of comments");
  view_.DrawGraph();
}

void ActionMachine::CommentClosed() {
  const bool marksEnd = comment_ && !comment_->General && !comment_->Code.empty();
  const Trace& line = session_.Line;
  if (marksEnd && line.LastPoint() > 0 && line.Point(line.LastPoint()).Comment.empty()) {
    Record({.What = JournalEvent::Kind::Tool, .Tool = tool::Erase});
    RemoveLastPoint();
    comment_->Code.clear();  // there is no end any more
  }
  LeaveComment();
}

void ActionMachine::LeaveComment() {
  const Trace& line = session_.Line;
  // An end that got no comment is no step of its own: the journal takes it back, or goes on with it.
  const bool openEnd = comment_ && !comment_->General && !comment_->Code.empty() && line.LastPoint() > 0 &&
                       line.Point(line.LastPoint()).Comment.empty();
  comment_.reset();
  if (!openEnd) Commit({});
  view_.EnableDesk(true);
}

// ---- Journal

void ActionMachine::Record(const JournalEvent& event) const {
  if (journal_ != nullptr) journal_->Record(event);
}

void ActionMachine::RecordEscape() {
  Record({.What = JournalEvent::Kind::Escape});
  history_.Settle({action::Drawing, false, state_.CornerX, state_.CornerY, state_.PageAngle});
}

// What only changes the view is not replayed. Where it has taken a waiting tool out of its wait, the journal
// says so in words that do the same to the trace.
void ActionMachine::RecordDrawingState() {
  if (state_.Action == action::Drawing || LassoIsOpen()) return;  // an open lasso ends in drawing by itself
  RecordEscape();
  if (state_.AlphaNext) Record({.What = JournalEvent::Kind::Tool, .Tool = tool::Alpha});
}

void ActionMachine::RecordPress() {
  if (CurrentState().Journaled)
    Record({.What = JournalEvent::Kind::Press, .X = state_.CursorX, .Y = state_.CursorY});
  else if (state_.AlphaNext)
    RecordEscape();
}

}  // namespace hyetex
