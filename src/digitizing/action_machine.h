// Gives every press of the tablet's cursor its meaning: calibrating the page, tracing points, running the
// tools of the board. All that the operator does passes through here, from the tablet, the mouse, a menu or a
// journal.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/session.h"
#include "digitizing/desk_layout.h"
#include "digitizing/desk_state.h"
#include "digitizing/desk_view.h"
#include "digitizing/history.h"
#include "digitizing/journal.h"
#include "digitizing/report_decoder.h"
#include "digitizing/tools.h"
#include "digitizing/view.h"

namespace hyetex {

class ActionMachine {
 public:
  /// `journal` may be null. All references are kept.
  ActionMachine(Session& session, const TabletType& tablet, DeskView& view, JournalSink* journal = nullptr);

  const Session& CurrentSession() const { return session_; }
  DeskState& State() { return state_; }
  const DeskState& State() const { return state_; }

  DeskLayout Layout;
  /// Fits the scales to the chart view's present size; the part in view stays when zoomed.
  void ViewResized(double scaleWidth, double scaleHeight);

  /// Opens the session: waits for the page's first corner.
  void Start();
  /// Bytes from the tablet.
  void Receive(std::span<const std::uint8_t> bytes);
  /// Forgets a report of which only a part has come: the next bytes do not follow on it.
  void ForgetReceived() { decoder_.Clear(); }
  /// One report, with all that follows from it.
  void HandleReport(const TabletReport& report);

  /// The mouse in the tablet's place: its position in report units, and the tablet's button that is down (-1
  /// for none). The board is not under it; its squares are clicked.
  void Point(double x, double y, int button);

  /// A press at a position, whatever the button and the board.
  void PressAt(double x, double y);
  /// A press at the cursor's position.
  void PerformAction();
  /// Runs the current tool.
  void PerformToolAction();
  void RunTool(int tool);
  void RemoveLastPoint();
  void Redigitize();
  void NewFile() { view_.CloseDesk(); }
  void SaveFile();
  /// Takes back what the next press waits for; a page that has not been set goes on waiting for its corners.
  void Escape();
  /// Waits for the two corners of the paper in use once more. Its points stay.
  void SetPageAgain();

  /// Takes back what the session waits for (a tool, the first of two corners, a lasso); where it waits for
  /// nothing, the last change of points, papers or comments. Does nothing while the comment window is open,
  /// and with nothing to take back. View, board and scan stay as they are.
  void Undo();
  /// Makes the last change again that was taken back; there is none after another change.
  void Redo();
  bool CanUndo() const;
  bool CanRedo() const;
  /// For a menu: "Undo", and what it would take back ("Undo point"); likewise for Redo.
  std::string UndoText() const;
  std::string RedoText() const;

  /// Corrections, in report units. Each refuses, in words and with nothing changed, what a press would be
  /// refused for: a place outside the point's paper or off its arc, and a line that goes back in time. Tools
  /// that wait go on waiting.
  Result<void> MovePoint(int point, double x, double y);
  /// The rest of a segment goes on without its first point, and a strip begins with the next one.
  Result<void> DeletePoint(int point);
  /// Puts a point in before another one of the same segment.
  Result<void> InsertPoint(int before, double x, double y);
  /// Puts an end of the bottom line of the paper in use somewhere else. Points stay on the tablet.
  Result<void> MoveCorner(bool right, double x, double y);
  /// Where the scan lies from now on. Undo does not take it back.
  Result<void> PlaceScan(const ScanPlacement& placement);

  /// Shows the current paper as large as the view allows.
  void AutoZoom();
  void ZoomOut();

  /// The comment window. While it is open all that the tablet sends is thrown away.
  bool CommentIsOpen() const { return comment_.has_value(); }
  const std::optional<CommentRequest>& OpenCommentRequest() const { return comment_; }
  /// Adds the comment that code and text make to what the window was opened for; no comment if both are
  /// empty. Says why a text cannot be taken.
  std::optional<std::string> AddComment(std::string_view code, std::string_view text);
  void ClearComments();
  /// The window has closed. The end of a gap or of a recovered segment that was given no comment is taken
  /// back: without its code it would be a point like any other.
  void CommentClosed();
  /// The same for a journal's steps, which say by themselves what was taken back.
  void LeaveComment();

  /// Why a press here cannot be the right corner that is waited for; nothing if it can.
  std::optional<std::string> RefuseCorner(double x) const;

  /// A lasso is being dragged, whatever tool the mouse or a menu has started since.
  bool LassoIsOpen() const { return selection_.has_value(); }
  /// Ends a lasso over these points: opens the comment window for them, if one of them takes a comment.
  void EndLasso(const std::vector<int>& points);

  std::string_view Instruction() const { return instruction_; }

 private:
  // Reports
  void ActOnButton();
  void FindOverToolBox();
  void PlaceCursor();
  void PlaceToolCursor();
  void ReadCursor();
  void GiveToolTip();
  void StretchDragShape();
  void DragBoard();

  // Presses
  struct ActionState {
    float Number;  // DeskState::Action
    void (ActionMachine::*Press)();
    bool StoresPoint;                // when drawing only near the paper
    bool LaysPaper;                  // the press may be meant for what lies under the tool board
    bool Journaled;                  // the press changes more than the view
    std::string_view Title, Prompt;  // what the press is for
    std::string_view Step;           // what Undo calls it
  };
  static const ActionState& StateOf(float action);
  const ActionState& CurrentState() const { return StateOf(state_.Action); }
  bool RefusePress();
  bool RefusePaper();
  bool StoresPoint() const;
  void DrawPoint();
  void StartSegment();
  void FirstPaperCorner();
  void SecondPaperCorner();
  void FirstPointOfPaper();
  void FirstPageCorner();
  void SecondPageCorner();
  void StartLasso() { StartDrag(DragShape::Selection, action::LassoDrag); }
  void StartZoom() { StartDrag(DragShape::Zoom, action::ZoomDrag); }
  void DropDragShapes();
  void StartDrag(DragShape shape, float next);
  void LevelPoint();
  void EndGap();
  void EndRecovered();
  void StoreMarkedEnd(int code, std::vector<std::string> choices);
  void DoNothing() {}

  // Tools
  void RunCurrentTool(int current);
  void ToggleWaiting(const Tool& tool);
  void ToggleAlpha();
  bool NeedsPage(int tool) const;
  void BackToDrawing();
  void LassoReleased();
  bool PointsTakeComment() const;
  void OpenCommentWindow(CommentRequest request);
  void LoadZoom();
  void FinishZoom();

  // History and corrections
  History::Rest Resting() const;
  void Commit(std::string_view what);
  void CommitComment();
  bool Waits() const;
  void GoBackTo(const History::Shift& shift);
  void KeepSelected(const History::Shift& shift);
  Result<void> CheckPoint(int point) const;
  Result<void> CheckPlace(double x, double y, int paper) const;
  Result<void> CheckStep(const DigitizedPoint& from, const DigitizedPoint& to, int paper,
                         double stepBefore) const;
  double StepOf(double fromX, double fromY, double toX, double toY, int paper) const;
  bool IsDrop(int from, int to) const;
  void FollowDrop(int point, bool wasDrop);
  void Corrected(std::string_view what);

  // Journal
  void Record(const JournalEvent& event) const;
  void RecordEscape();
  void RecordDrawingState();
  void RecordPress();

  void ShowInstruction(std::string_view text);
  void TellNextPress();
  void TakeCorner();
  const TabletExtents& Extents() const { return session_.Line.Scales().Tablet; }

  Session& session_;
  DeskState state_;
  const TabletType& tablet_;
  DeskView& view_;
  JournalSink* journal_;
  ReportDecoder decoder_;
  std::string instruction_;
  bool tipShown_ = false;  // in place of the instruction
  double toolCursorLeft_ = 0, toolCursorTop_ = 0;
  std::optional<Rect> selection_, zoom_;  // the drag rectangles that are shown
  std::optional<CommentRequest> comment_;
  History history_;
  std::string pendingStep_;  // what has changed something since the last step, by its first name
};

}  // namespace hyetex
