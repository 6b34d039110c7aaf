// The action machine's corrections: undo and redo, points that are moved, taken out or put in, and the ends
// of the page's bottom line.
#include <cmath>

#include "core/comments.h"
#include "core/numbers.h"
#include "core/text.h"
#include "digitizing/action_machine.h"
#include "digitizing/scan_placement.h"

namespace hyetex {
namespace {

// A pen goes back by less than this part of the page's length.
constexpr double BackwardPart = 0.05;

bool IsPosition(double x, double y) { return x >= 0 && x < SegmentMark && y >= 0 && y < SegmentMark; }

bool IsViewState(float state) {
  return state == action::MovingBoard || state == action::ZoomStart || state == action::ZoomDrag;
}

}  // namespace

// ---- History

// What only the view waits for is none of the chart's, and an open lasso ends in drawing by itself.
History::Rest ActionMachine::Resting() const {
  const bool drawing = IsViewState(state_.Action) || LassoIsOpen();
  return {drawing ? action::Drawing : state_.Action, state_.AlphaNext, state_.CornerX, state_.CornerY,
          state_.PageAngle};
}

// What is open is not finished: the comment belongs to what it was opened for.
void ActionMachine::Commit(std::string_view what) {
  if (pendingStep_.empty()) pendingStep_ = what;
  if (comment_) return;
  const auto shift = history_.Commit(session_, Resting(), pendingStep_);
  pendingStep_.clear();
  if (!shift) return;
  KeepSelected(*shift);
  view_.UpdateMenus();
}

void ActionMachine::KeepSelected(const History::Shift& shift) {
  if (state_.SelectedPoint >= 0)
    state_.SelectedPoint = static_cast<std::int16_t>(shift.Of(state_.SelectedPoint));
}

// A lasso that is being dragged, a tool that has been chosen, the first of two corners.
bool ActionMachine::Waits() const {
  const History::Rest now = Resting();
  return LassoIsOpen() || now.Action != history_.Settled().Action ||
         now.AlphaNext != history_.Settled().AlphaNext;
}

bool ActionMachine::CanUndo() const { return !comment_ && (Waits() || history_.CanUndo()); }

bool ActionMachine::CanRedo() const { return !comment_ && history_.CanRedo(); }

std::string ActionMachine::UndoText() const {
  if (!CanUndo()) return "Undo";
  if (!Waits()) return "Undo " + history_.UndoName();
  const bool corner = state_.Action == action::PageRightCorner || state_.Action == action::PaperRightCorner;
  return corner ? "Undo first corner" : "Undo choice of tool";
}

std::string ActionMachine::RedoText() const {
  return CanRedo() ? "Redo " + history_.RedoName() : std::string("Redo");
}

void ActionMachine::Undo() {
  Commit({});  // an end that was left without its comment
  if (!CanUndo()) return;
  Record({.What = JournalEvent::Kind::Undo});
  if (Waits())
    GoBackTo({});
  else
    GoBackTo(history_.Undo(session_));
}

void ActionMachine::Redo() {
  Commit({});
  if (!CanRedo()) return;
  Record({.What = JournalEvent::Kind::Redo});
  GoBackTo(history_.Redo(session_));
}

void ActionMachine::GoBackTo(const History::Shift& shift) {
  const History::Rest& rest = history_.Settled();
  DropDragShapes();
  session_.Saved = false;
  state_.Action = rest.Action;
  state_.AlphaNext = rest.AlphaNext;
  state_.CornerX = rest.CornerX;
  state_.CornerY = rest.CornerY;
  state_.PageAngle = rest.PageAngle;
  KeepSelected(shift);
  view_.ShowMarker(false);
  TellNextPress();
  view_.DrawGraph();
  view_.UpdateMenus();
}

// ---- Points

Result<void> ActionMachine::CheckPoint(int point) const {
  if (comment_) return Failure("Close the comment window first.");
  if (point < 0 || point > session_.Line.LastPoint()) return Failure("There is no point " + ShortText(point));
  return {};
}

// As a press there would be refused.
Result<void> ActionMachine::CheckPlace(double x, double y, int paper) const {
  const Trace& line = session_.Line;
  if (!IsPosition(x, y)) return Failure("This position lies beside the tablet.");
  if (!InsideBox(line.Scales(), x, y, line.Paper(paper)))
    return Failure("This position lies outside the chart.");
  if (!IsOnArc(line.Scales(), x, y, line.Paper(paper)))
    return Failure("This position lies too far from the chart for the arc of its pen.");
  return {};
}

double ActionMachine::StepOf(double fromX, double fromY, double toX, double toY, int paper) const {
  const Trace& line = session_.Line;
  const auto along = [&](double x, double y) {
    return static_cast<double>(TimeAlongPaper(line.Scales(), x, y, line.Paper(paper)));
  };
  return along(toX, toY) - along(fromX, fromY);
}

// A press so far back starts a new segment. Where a line already goes back, it may go back less.
Result<void> ActionMachine::CheckStep(const DigitizedPoint& from, const DigitizedPoint& to, int paper,
                                      double stepBefore) const {
  const double step = StepOf(from.TrueX(), from.Y, to.TrueX(), to.Y, paper);
  if (step < 0 && step <= -BackwardPart * BottomLength(session_.Line.Paper(paper)) && step < stepBefore)
    return Failure("A pen does not go back in time, and here the line would. Start a new segment instead.");
  return {};
}

// Whether the pen drops here as the instrument makes it drop at the end of a cycle.
bool ActionMachine::IsDrop(int from, int to) const {
  const Trace& line = session_.Line;
  if (from < 0 || to > line.LastPoint() || line.Point(to).StartsSegment()) return false;
  const int paper = line.PaperOfPoint(to);
  const double fullDrop = line.Scales().Is(ChartMethod::NonLinear) ? -0.8 : -0.6;
  return line.HeightOf(to, paper) - line.HeightOf(from, paper) < fullDrop * line.Scales().HeightUnits();
}

// A drop's code comes and goes with the drop. One that the operator has put where there is no drop stays, as
// long as the point goes on from another.
void ActionMachine::FollowDrop(int point, bool wasDrop) {
  Trace& line = session_.Line;
  if (point < 1 || point > line.LastPoint()) return;
  const std::string& comment = line.Point(point).Comment;
  const bool isDrop = IsDrop(point - 1, point);
  if (line.Point(point).StartsSegment() || (wasDrop && !isDrop)) {
    if (!HasCode(comment, CodeAlpha)) return;
    std::string kept;
    for (const std::string& entry : CommentEntries(comment))
      if (entry != CodeText(CodeAlpha)) AddCode(kept, entry);
    line.SetComment(point, std::move(kept));
  } else if (!wasDrop && isDrop && !line.Point(point - 1).StartsSegment()) {
    for (int code : {CodeAlpha, CodeLeveled, CodeGapEnd, CodeRecoveredEnd})
      if (HasCode(comment, code)) return;
    line.AddComment(point, CodeText(CodeAlpha));
  }
}

void ActionMachine::Corrected(std::string_view what) {
  session_.Saved = false;
  Commit(what);
  view_.DrawGraph();
  view_.UpdateMenus();
}

Result<void> ActionMachine::MovePoint(int point, double x, double y) {
  if (auto check = CheckPoint(point); !check) return check;
  Trace& line = session_.Line;
  if (auto place = CheckPlace(x, y, line.PaperOfPoint(point)); !place) return place;
  const DigitizedPoint now{x, y, {}, false};
  const auto step = [&](int from, int to) {
    return StepOf(line.Point(from).TrueX(), line.Point(from).Y, line.Point(to).TrueX(), line.Point(to).Y,
                  line.PaperOfPoint(to));
  };
  if (point > 0 && !line.Point(point).StartsSegment())
    if (auto back = CheckStep(line.Point(point - 1), now, line.PaperOfPoint(point), step(point - 1, point));
        !back)
      return back;
  if (point < line.LastPoint() && !line.Point(point + 1).StartsSegment())
    if (auto back =
            CheckStep(now, line.Point(point + 1), line.PaperOfPoint(point + 1), step(point, point + 1));
        !back)
      return back;

  Record({.What = JournalEvent::Kind::Move, .X = x, .Y = y, .Point = point});
  const bool drop = IsDrop(point - 1, point), dropBehind = IsDrop(point, point + 1);
  line.Move(point, x, y);
  FollowDrop(point, drop);
  FollowDrop(point + 1, dropBehind);
  Corrected("moved point");
  return {};
}

Result<void> ActionMachine::DeletePoint(int point) {
  if (auto check = CheckPoint(point); !check) return check;
  Record({.What = JournalEvent::Kind::Delete, .Point = point});
  Trace& line = session_.Line;
  const bool dropBehind = IsDrop(point, point + 1);
  line.Delete(point);
  if (point == 0 && line.LastPoint() >= 0) {
    if (!line.Point(0).Comment.empty()) line.ClearComment(0);  // the first point of a chart takes none
  } else {
    FollowDrop(point, dropBehind);
  }
  if (line.CurrentPaper() > 0 && line.Paper(line.CurrentPaper()).FirstPoint > line.LastPoint() &&
      Resting().Action == action::Drawing) {  // a strip without its first point
    state_.AlphaNext = false;
    state_.Action = action::PaperFirstPoint;
    TellNextPress();
  }
  Corrected("deleted point");
  return {};
}

Result<void> ActionMachine::InsertPoint(int before, double x, double y) {
  if (auto check = CheckPoint(before); !check) return check;
  Trace& line = session_.Line;
  if (line.IsFull())
    return Failure("The chart has " + ShortText(MaxPoint + 1) + " points and can hold no more.");
  if (before == 0 || line.Point(before).StartsSegment())
    return Failure("A point can only be put in between two points of one line.");
  const int paper = line.PaperOfPoint(before);
  if (auto place = CheckPlace(x, y, paper); !place) return place;
  const DigitizedPoint now{x, y, {}, false};
  if (auto back = CheckStep(line.Point(before - 1), now, paper, 0); !back) return back;
  if (auto back = CheckStep(now, line.Point(before), paper, 0); !back) return back;

  Record({.What = JournalEvent::Kind::Insert, .X = x, .Y = y, .Point = before});
  const bool drop = IsDrop(before - 1, before);
  line.Insert(before, x, y);
  FollowDrop(before, false);
  FollowDrop(before + 1, drop);
  Corrected("inserted point");
  return {};
}

Result<void> ActionMachine::MoveCorner(bool right, double x, double y) {
  if (comment_) return Failure("Close the comment window first.");
  Trace& line = session_.Line;
  const ChartPaper& paper = line.Paper(line.CurrentPaper());
  if (!IsCalibrated(paper)) return Failure("The page has not been set yet.");
  if (!IsPosition(x, y)) return Failure("This position lies beside the tablet.");
  const double leftX = right ? paper.BottomLeftX : x, rightX = right ? x : paper.BottomRightX;
  if (static_cast<float>(rightX) <= static_cast<float>(leftX))
    return Failure("The bottom-right corner must lie to the right of the bottom-left corner.");

  Record({.What = JournalEvent::Kind::Corner, .X = x, .Y = y, .Right = right});
  if (right)
    line.SetPage(paper.BottomLeftX, paper.BottomLeftY, x, y);
  else
    line.SetPage(x, y, paper.BottomRightX, paper.BottomRightY);
  state_.PageAngle = line.Paper(line.CurrentPaper()).Angle;
  Corrected("moved corner");
  return {};
}

// ---- The scan

Result<void> ActionMachine::PlaceScan(const ScanPlacement& placement) {
  if (const auto refusal = CheckPlacement(placement)) return Failure(*refusal);
  Record({.What = JournalEvent::Kind::Scan, .Scan = placement});
  session_.Scan = placement;
  view_.DrawGraph();
  return {};
}

}  // namespace hyetex
