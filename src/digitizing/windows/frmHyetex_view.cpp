// The digitizing window as a window: its size, the cursor and the board, the keys and the wheel, the panels.
#include <QMdiSubWindow>
#include <QTimer>
#include <cmath>
#include <utility>

#include "digitizing/windows/frmHyetex.h"
#include "digitizing/windows/units.h"
#include "platform/controls.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr double ZoomStep = 1.25;  // for each notch of the wheel
constexpr int OutlineMargin = 3;   // of shpToolBox around the board, pixels
// Behind a doubt's own words; the panel has room for more.
constexpr std::string_view DoubtPrompt = " (Return: right, drag: correct, R: anew, Escape: back)";

}  // namespace

// ---- Focus

QMdiSubWindow* frmHyetex::Frame() const { return qobject_cast<QMdiSubWindow*>(parentWidget()); }

void frmHyetex::showEvent(QShowEvent* event) {
  FormWindow::showEvent(event);
  // The tablet's proportions leave no use for the rest of the shell.
  if (QMdiSubWindow* frame = Frame(); frame && !std::exchange(watched_, true))
    connect(frame, &QMdiSubWindow::windowStateChanged, frame,
            [this, frame](Qt::WindowStates, Qt::WindowStates state) {
              if (state.testFlag(Qt::WindowMaximized) && !HasMouse())
                QTimer::singleShot(0, frame, &QWidget::showNormal);
            });
}

void frmHyetex::FocusChanged(bool focused) {
  if (!started_ || closing_) return;
  desk_.Flags.SetOpen(WindowId::Digitizing, true);
  if (!focused) {
    shell_.NotDigitizing();
    return;
  }
  shell_.Digitizing(*this);
  machine_.State().CursorButton = -1;
  UpdateMenus();
  ShowModes();
  ShowInstruction(machine_.Instruction());
}

// ---- Size

QSize frmHyetex::ViewSizeFor(int height) const {
  const ViewSize size = KeepProportions({}, {0, height}, session_.Line.Scales().Tablet);
  return {size.Width, size.Height};
}

void frmHyetex::resizeEvent(QResizeEvent* event) {
  FormWindow::resizeEvent(event);
  if (!started_ || isMinimized() || (Frame() && Frame()->isMinimized())) return;
  const QSize before = event->oldSize(), now = event->size();
  if (HasMouse()) return FitView(now);
  const ViewSize kept = KeepProportions({before.width(), before.height()}, {now.width(), now.height()},
                                        session_.Line.Scales().Tablet);
  const QSize fitting(kept.Width, kept.Height);
  FitView(fitting);
  if (fitting != now && isVisible())
    QTimer::singleShot(0, this, [this, fitting] {
      if (picGraph_->size() == fitting) ResizeView(fitting);
    });
}

void frmHyetex::ResizeView(QSize size) {
  QWidget* outer = Frame() ? static_cast<QWidget*>(Frame()) : this;
  outer->resize(outer->size() + size.expandedTo(minimumSize()) - this->size());
}

void frmHyetex::FitView(QSize size) {
  if (HasMouse()) {
    panel_->setGeometry(size.width() - panel_->width(), 0, panel_->width(), size.height());
    size.rwidth() -= panel_->width();
  }
  picGraph_->resize(size);
  machine_.ViewResized(size.width() * UnitsPerPixel, size.height() * UnitsPerPixel);
  if (!HasMouse()) {
    KeepBoardInside(machine_.Layout);
    frmToolBox_->Arrange(machine_.Layout);
    MoveBoard(machine_.Layout.Board.Left, machine_.Layout.Board.Top);
  }
  linHor->resize(2 * size.width(), 1);
  linVer->resize(1, 2 * size.height());
  DrawGraph();
}

void frmHyetex::ResizeDesk(double factor) {
  if (replaying_) return;
  ResizeView(HasMouse() ? size() * factor : ViewSizeFor(qRound(picGraph_->height() * factor)));
}

// ---- What the machine shows

void frmHyetex::ShowInstruction(std::string_view text) {
  idle_ = text.empty();
  if (scan_ != nullptr) scan_->Panel()->ShowDoubt(review_.Words());
  if (review_.Shown() != nullptr)
    return shell_.ShowPanel(panel::Instruction, review_.Words() + std::string(DoubtPrompt));
  if (corrects_) return shell_.ShowPanel(panel::Instruction, CorrectingPrompt);
  shell_.ShowPanel(panel::Instruction, idle_ ? IdlePrompt() : text);
}

// Whoever has a mouse may see the desk for the first time, and nobody beside the tablet to ask.
std::string_view frmHyetex::IdlePrompt() const {
  if (!HasMouse() || session_.Line.LastPoint() >= 0 || machine_.State().Action != action::Drawing) return {};
  return "Press where the pen's line begins, then at each bend";
}

// It comes with each change of what is waited for.
void frmHyetex::SetTitle(std::string_view title) {
  setWindowTitle(ToQt(title));
  if (started_ && !replaying_) UpdateUndo();
}

void frmHyetex::DrawGraph() {
  UpdateOverlay();
  UpdateDoubts();
  ShowView();
  if (scan_ != nullptr) scan_->SessionChanged();
  if (idle_ && HasMouse() && !corrects_) ShowInstruction({});
  UpdatePanels();
  TellOfJournalTrouble();
}

void frmHyetex::UpdateMenus() {
  if (replaying_) return;
  if (scan_ != nullptr) scan_->SessionChanged();
  shell_.ShowScales(CaptionsOf(session_.Line.Scales().ChartType, machine_.State()));
  UpdateUndo();
  TellOfJournalTrouble();
}

void frmHyetex::UpdatePanels() {
  if (replaying_) return;
  if (const auto* texts = panels_.Update(session_, machine_.State())) {
    shell_.ShowPanel(panel::Depth, texts->Depth);
    shell_.ShowPanel(panel::Time, texts->Time);
    shell_.ShowPanel(panel::Button, texts->Button);
  }
}

void frmHyetex::ShowDragShape(DragShape shape, const Rect& rect) {
  ShapeOf(shape)->setGeometry(ToPixels(rect).adjusted(0, 0, 1, 1));
  ShapeOf(shape)->show();
}

void frmHyetex::PlaceCrosshair(double x, double y, bool pressed) {
  if (replaying_) return;
  const QColor colour = pressed ? QColor(0, 255, 0) : QColor(Qt::black);
  linHor->SetColour(colour);
  linVer->SetColour(colour);
  linHor->move(ToPixels(x) - linHor->width() / 2, ToPixels(y));
  linVer->move(ToPixels(x), ToPixels(y) - linVer->height() / 2);
  linHor->show();
  linVer->show();
  frmToolBox_->HideCursor();
  frmToolBox_->Highlight(tool::None);
  frmToolBox_->ShowReadOut(ToQt(CursorText(machine_.State())));
  UpdatePanels();
}

void frmHyetex::PlaceToolCursor(double left, double top) {
  linHor->hide();
  linVer->hide();
  frmToolBox_->PlaceCursor({ToPixels(left), ToPixels(top)});
  frmToolBox_->ShowReadOut(ToQt(CursorText(machine_.State())));
  UpdatePanels();
}

// ---- The board

void frmHyetex::ShowBoard() {
  machine_.Layout.BoardVisible = true;
  ShowBoard(true);
}

void frmHyetex::ShowBoard(bool visible) {
  shpToolBox->setVisible(visible && !HasMouse());
  frmToolBox_->setVisible(visible);
}

void frmHyetex::MoveBoard(double left, double top) {
  if (HasMouse()) return;  // it stands on the panel
  frmToolBox_->move(ToPixels(left), ToPixels(top));
  shpToolBox->setGeometry(
      frmToolBox_->geometry().adjusted(-OutlineMargin, -OutlineMargin, OutlineMargin, OutlineMargin));
}

void frmHyetex::DragBoard(QPoint by) {
  if (HasMouse()) return;
  Rect& board = machine_.Layout.Board;
  board.Left += by.x() * UnitsPerPixel;
  board.Top += by.y() * UnitsPerPixel;
  KeepBoardInside(machine_.Layout);
  MoveBoard(board.Left, board.Top);
}

void frmHyetex::ShowToolText(int tool) {
  if (machine_.State().Action != action::Drawing) return;
  ShowInstruction(tool == tool::None ? machine_.Instruction() : GetToolText(tool, machine_.Layout.Zoomed));
}

// ---- Keys and wheel

void frmHyetex::keyPressEvent(QKeyEvent* event) {
  if (hasFocus() && review_.Shown() != nullptr && IsReturn(*event)) return ConfirmDoubt();
  if (hasFocus() && review_.Shown() != nullptr && event->key() == Qt::Key_R) return RetraceDoubt();
  if (hasFocus() && hand_->KeyPressed(*event)) return;
  if (HasMouse() && !hasFocus() && event->key() == Qt::Key_Escape) return setFocus();  // from the panel
  if (event->key() == Qt::Key_Escape && EscapeMouse()) return;
  if (event->key() == Qt::Key_Escape)
    machine_.Escape();
  else if (event->matches(QKeySequence::ZoomIn) || event->key() == Qt::Key_Plus)
    ZoomByKey(1);
  else if (event->matches(QKeySequence::ZoomOut) || event->key() == Qt::Key_Minus)
    ZoomByKey(-1);
  else
    FormWindow::keyPressEvent(event);
}

// Around the cross where there is one, else around the middle.
void frmHyetex::ZoomByKey(double steps) {
  const QPoint cross(linVer->x(), linHor->y());
  const bool atCross = linHor->isVisible() && picGraph_->rect().contains(cross);
  Zoom(steps, atCross ? cross : picGraph_->rect().center());
}

void frmHyetex::Zoom(double steps, QPointF at) {
  if (shpSelect->isVisible() || shpZoom->isVisible()) return;  // their first corner stands on the screen
  if (!ZoomAround(machine_.Layout, session_.Line.Scales().Tablet, std::pow(ZoomStep, steps),
                  at.x() * UnitsPerPixel, at.y() * UnitsPerPixel)) {
    if (machine_.Layout.Zoomed) machine_.ZoomOut();
    return;
  }
  ShowZoomOutPicture(true);
  ShowView();
}

}  // namespace hyetex
