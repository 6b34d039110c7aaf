// The digitizing window: the chart view with the tool board over it, and the session behind it. It hands what
// the tablet, the mouse and the menus say to the action machine, and shows what the machine asks for.
//
// For the windows of the save and the comment: they are opened through the desk, work on Machine(), and wake
// this window by EnableDesk(true) or the machine's CommentClosed(). While it is disabled, and while a box is
// up, what the tablet sends is thrown away; how many presses that were is told as soon as it listens again.
#pragma once

#include <QKeyEvent>
#include <QMdiSubWindow>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "digitizing/action_machine.h"
#include "digitizing/correcting.h"
#include "digitizing/desk_view.h"
#include "digitizing/lost_presses.h"
#include "digitizing/page_overlay.h"
#include "digitizing/resume.h"
#include "digitizing/shell_commands.h"
#include "digitizing/status_panels.h"
#include "digitizing/view.h"
#include "digitizing/windows/desk_panel.h"
#include "digitizing/windows/desk_scan.h"
#include "digitizing/windows/frmToolBox.h"
#include "digitizing/windows/magnifier.h"
#include "digitizing/windows/mouse_hand.h"
#include "digitizing/windows/picGraph.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"
#include "platform/serial_port.h"
#include "scan/trace_review.h"
#include "scan/trace_steps.h"

namespace hyetex {

/// What the program has traced of the chart's scan before this session.
struct EarlierTrace {
  /// Its journal, where a person is to look it over; else nothing.
  std::function<std::optional<std::string>()> Find = {};
  /// The chart is saved: the session's journal takes the place of that one, if there is one.
  std::function<Result<void>(std::string sessionJournal, double rainMm)> Keep = {};
  bool IsWanted = false;  ///< by the operator already
};

class frmHyetex : public FormWindow, public FocusListener, public DeskView, public SessionCommands {
  Q_OBJECT

 public:
  /// `tablet` is an index of TabletTypes(), `device` its serial port by name or path; empty: the mouse is its
  /// cursor. All references must outlive the window.
  frmHyetex(Desk& desk, Shell& shell, Dialogs& dialogs, Settings& settings, Session& session, int tablet,
            std::string device, QWidget* parent = nullptr);

  /// A scan for under the trace, before the session begins.
  void UseScan(std::shared_ptr<const ScanImage> scan);
  /// What comes of the scan's trace, before the session begins.
  void UseTrace(EarlierTrace trace) { earlier_ = std::move(trace); }
  /// Begins the session, once the window is shown: takes its remembered size, offers an unfinished chart,
  /// opens the tablet's port. Where the operator would rather keep another chart's unfinished journal, the
  /// window closes.
  void StartSession();

  ActionMachine& Machine() { return machine_; }
  /// Takes all points away, after its question; false if the operator keeps them.
  bool Redigitize();
  QSize sizeHint() const override;
  void FocusChanged(bool focused) override;

  // What the menus ask for
  void NewFile() override { machine_.NewFile(); }
  void SaveFile() override { RunTool(tool::SaveFile); }
  /// What is left to look at of a scan that the program has traced.
  const TraceReview& Review() const { return review_; }
  void RunTool(int tool) override;
  void AutoZoom() override { machine_.AutoZoom(); }
  void ShowBoard() override;
  void SetPageAgain() override;
  void PointsToggled() override { ShowView(); }
  bool HasMouse() const override { return mouse_; }
  void ToggleMagnifier() override;
  void MagnifyMore() override;
  void ToggleOverlay() override;
  void ToggleCorrecting() override;
  void InsertPoint() override;
  void TraceScan() override;
  void Undo() override;
  void Redo() override;
  bool HasPoints() const override { return session_.Line.LastPoint() >= 0; }

  // What the action machine asks for
  void ShowInstruction(std::string_view text) override;
  void SetTitle(std::string_view title) override;
  void SetBackground(Rgb colour) override { picGraph_->SetBackground(colour); }
  void DrawGraph() override;
  void UpdateMenus() override;
  void ShowBoard(bool visible) override;
  void MoveBoard(double left, double top) override;
  void HighlightTool(int tool) override { frmToolBox_->Highlight(tool); }
  void PlaceMarker(int tool) override { frmToolBox_->PlaceMarker(tool); }
  void ShowMarker(bool visible) override { frmToolBox_->ShowMarker(visible); }
  void ShowZoomOutPicture(bool zoomOut) override { frmToolBox_->SetZoomed(zoomOut); }
  void PlaceCrosshair(double x, double y, bool pressed) override;
  void PlaceToolCursor(double left, double top) override;
  void ShowDragShape(DragShape shape, const Rect& rect) override;
  void HideDragShape(DragShape shape) override { ShapeOf(shape)->hide(); }
  void EnableDesk(bool enabled) override;
  void OpenComment(const CommentRequest& request) override;
  void OpenSave() override;
  void CloseDesk() override;
  void ResizeDesk(double factor) override;
  void ShowMessage(std::string_view title, std::string_view text) override;
  bool MayRedigitize() override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void Closing() override;
  bool RemembersSize() const override { return false; }  // the tablet's proportions and frmHyetex-Height do
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  bool focusNextPrevChild(bool next) override;

 private:
  std::string_view IdlePrompt() const;

  // The session
  bool OfferUnfinishedChart();
  bool MayClose();
  void Resume(const UnfinishedChart& unfinished);
  void OpenPort();
  void OnTabletBytes(const QByteArray& bytes);
  bool ListensToTablet() const { return isEnabled() && boxes_ == 0 && !closing_; }
  BoxAnswer Ask(std::string_view title, const std::string& text, BoxButtons buttons, BoxIcon icon);
  void Lose(std::span<const std::uint8_t> bytes);
  void TellOfLostPresses();
  void TellOfLostTablet(const QString& why);
  void TellOfJournalTrouble();

  // The window
  QSize ViewSizeFor(int height) const;
  void ResizeView(QSize size);
  void FitView(QSize size);
  void RestoreLayout();
  void StoreLayout();
  void ClearPanels();
  void DragBoard(QPoint by);
  void ShowToolText(int tool);
  void Zoom(double steps, QPointF at);
  void ZoomByKey(double steps);
  void UpdatePanels();
  void UpdateUndo();
  QMdiSubWindow* Frame() const;

  // The mouse in the tablet's place: frmHyetex_mouse.cpp
  void BeginMouse();
  void FillFrame();
  void ShowView();
  void ShowMagnified();
  void Paint(Surface& surface, const DeskLayout& layout) const;
  void ShowModes();
  void UpdateOverlay();
  bool EscapeMouse();

  // Correcting points and the page: frmHyetex_correcting.cpp
  void LeaveCorrecting();
  void PaintCorrecting(Surface& surface, const DeskLayout& layout) const;

  // A scan that the program traces: frmHyetex_trace.cpp
  void TakeTrace(const ScanTrace& trace, const TracedSteps& steps);
  void TellOfDoubts(bool alsoOfNone = false);
  /// Nothing where the operator has cancelled it.
  template <typename Work>
  auto BesideScan(Work work) -> std::optional<decltype(work())>;
  Result<TraceWish> KnownOfChart() const;
  Result<ScanTracer> OpenTracer();
  void OpenEarlierTrace();
  void KeepReview();
  void ResumeDoubts(const std::string& journal);
  void ShowDoubt();
  void LeaveDoubts();
  void UpdateDoubts();
  void ConfirmDoubt();
  void RetraceDoubt();
  Result<void> PutBetween(int first, int last, const std::vector<std::pair<double, double>>& places);
  void PaintDoubts(Surface& surface, const DeskLayout& layout) const;
  bool MaySaveWithDoubts();

  // The scan under the trace: frmHyetex_scan.cpp
  void BeginScan();
  void LayScan(std::shared_ptr<const ScanImage> image);
  void FindScanAgain();
  Shape* ShapeOf(DragShape shape) { return shape == DragShape::Selection ? shpSelect : shpZoom; }

  Shell& shell_;
  Dialogs& dialogs_;
  Session& session_;
  const int tablet_;
  const std::string device_;
  SessionJournal journal_;
  ActionMachine machine_;
  StatusPanels panels_;
  LostPresses lost_;
  SerialPort* mscDig;

  picGraph* picGraph_;
  Shape *linHor, *linVer, *shpSelect, *shpZoom, *shpToolBox;
  frmToolBox* frmToolBox_;
  MouseHand* hand_;
  bool mouse_ = false;          // is the cursor: there is no tablet
  bool idle_ = true;            // nothing is waited for but the next point
  DeskPanel* panel_ = nullptr;  // beside the chart view, with the mouse
  Magnifier* magnifier_ = nullptr;
  std::shared_ptr<const ScanImage> openedScan_;
  DeskScan* scan_ = nullptr;  // null: there is none under the trace
  Correcting correcting_;
  bool corrects_ = false;       // the mouse corrects
  bool correctsDoubt_ = false;  // and does so for as long as a doubt is looked at
  bool overlay_ = false;        // the chart's own hours and depths are shown
  std::vector<OverlayLine> overlayLines_;
  std::optional<ScanTracer> tracer_;  // of the scan that the program has traced
  TraceReview review_;
  std::vector<std::pair<int, int>> stretches_;  // of the open doubts, as the line is now
  EarlierTrace earlier_;

  int boxes_ = 0;              // message boxes that are up
  bool watched_ = false;       // for being maximised
  bool started_ = false;       // the session is running
  bool replaying_ = false;     // an unfinished chart: nothing opens
  bool closing_ = false;       // asked for, not yet done
  bool keepsJournal_ = false;  // closes without its question, for another time
  bool missedBytes_ = false;   // what comes next does not follow on what came before
  bool losing_ = false;        // what has come since missedBytes_ was set is being counted
  bool toldOfJournal_ = false, tellingOfTablet_ = false, tellingOfLost_ = false;
};

}  // namespace hyetex
