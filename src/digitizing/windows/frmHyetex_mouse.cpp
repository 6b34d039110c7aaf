// The digitizing window where the mouse is the tablet's cursor: the chart view takes the whole window but for
// a panel beside it, so that the board covers nothing.
#include <QMdiArea>
#include <QMdiSubWindow>

#include "digitizing/drawing.h"
#include "digitizing/windows/frmHyetex.h"
#include "digitizing/windows/units.h"

namespace hyetex {
namespace {

constexpr QSize SmallestDesk(700, 420);

}  // namespace

void frmHyetex::BeginMouse() {
  const TabletType& type = TabletTypes()[static_cast<std::size_t>(tablet_)];
  mouse_ = true;
  hand_->TakeCursor();
  panel_ = new DeskPanel(this);
  frmToolBox_->Dock(machine_.Layout);
  panel_->Add(frmToolBox_);
  magnifier_ = new Magnifier([this](QImage& picture, const DeskLayout& layout) {
    std::function<void(QImage&)> below;
    if (scan_ != nullptr) below = [&](QImage& into) { scan_->Paint(into, layout, picGraph_->Background()); };
    PaintGraph(picture, picGraph_->Background(), below, [&](Surface& surface) { Paint(surface, layout); });
  });
  panel_->Add(magnifier_);
  shpToolBox->hide();
  setMinimumSize(SmallestDesk);
  machine_.Layout.Home = TabletArea{0, 0, type.Extents.TabletWidthUnits, type.Extents.TabletHeightUnits};
}

// No tablet's proportions bind the window, so it takes all the room that there is.
void frmHyetex::FillFrame() {
  QMdiSubWindow* frame = Frame();
  if (frame == nullptr || frame->mdiArea() == nullptr) return resize(SmallestDesk);
  frame->setGeometry(frame->mdiArea()->viewport()->rect());
}

// Another part of the tablet is in view, or it looks different.
void frmHyetex::ShowView() {
  picGraph_->DrawGraph();
  ShowMagnified();
}

void frmHyetex::Paint(Surface& surface, const DeskLayout& layout) const {
  const GraphStyle style{.ShowPoints = shell_.PointsAreShown() || corrects_, .OnScan = scan_ != nullptr};
  // Below the trace where that leaves what is under it, else over it.
  if (overlay_ && scan_ != nullptr) DrawOverlay(overlayLines_, layout, surface);
  PaintDoubts(surface, layout);
  hyetex::DrawGraph(session_.Line, layout, style, surface);
  if (overlay_ && scan_ == nullptr) DrawOverlay(overlayLines_, layout, surface);
  if (corrects_) PaintCorrecting(surface, layout);
  if (scan_ != nullptr)
    for (const auto& [x, y] : scan_->Marks()) DrawMark(x, y, layout, surface);
}

// ---- The magnifier

void frmHyetex::ShowMagnified() {
  if (magnifier_ == nullptr || magnifier_->isHidden()) return;
  // Of an empty page there is nothing finer to see than the view itself.
  const double perPixel =
      scan_ != nullptr ? scan_->Placement().UnitsPerPx : UnitsPerPixel / machine_.Layout.ScaleX;
  magnifier_->ShowAt(machine_.State().CursorX, machine_.State().CursorY, perPixel);
}

void frmHyetex::ToggleMagnifier() {
  if (magnifier_ == nullptr) return;
  magnifier_->setVisible(magnifier_->isHidden());
  ShowMagnified();
  ShowModes();
}

void frmHyetex::MagnifyMore() {
  if (magnifier_ == nullptr) return;
  if (magnifier_->isHidden()) return ToggleMagnifier();
  magnifier_->Step();
}

// ---- What is switched on

void frmHyetex::ToggleOverlay() {
  overlay_ = !overlay_;
  UpdateOverlay();
  ShowModes();
  ShowView();
}

// It follows the page and the first point on it.
void frmHyetex::UpdateOverlay() {
  if (overlay_) overlayLines_ = MakePageOverlay(session_);
}

void frmHyetex::ShowModes() {
  shell_.ShowModes({magnifier_ != nullptr && !magnifier_->isHidden(), overlay_, corrects_});
}

// What the mouse is at ends before anything that the machine waits for.
bool frmHyetex::EscapeMouse() {
  if (scan_ != nullptr && scan_->Escape()) return true;
  if (review_.Shown() != nullptr) {
    if (correcting_.LetGo())
      ShowView();
    else
      LeaveDoubts();
    return true;
  }
  if (!corrects_) return false;
  if (correcting_.LetGo())
    ShowView();
  else
    LeaveCorrecting();
  return true;
}

void frmHyetex::keyReleaseEvent(QKeyEvent* event) {
  if (!hand_->KeyReleased(*event)) FormWindow::keyReleaseEvent(event);
}

void frmHyetex::focusOutEvent(QFocusEvent* event) {
  hand_->Forget();
  FormWindow::focusOutEvent(event);
}

}  // namespace hyetex
