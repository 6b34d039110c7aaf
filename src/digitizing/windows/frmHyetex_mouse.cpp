// The digitizing window where the mouse is the tablet's cursor: the chart view takes the whole window but for
// a panel beside it, so that the board covers nothing.
#include <QMdiArea>
#include <QMdiSubWindow>

#include "digitizing/windows/frmHyetex.h"
#include "digitizing/windows/units.h"

namespace hyetex {
namespace {

constexpr int PanelMargins = 2 * 6;
constexpr QSize SmallestDesk(700, 420);

}  // namespace

void frmHyetex::BeginMouse() {
  const TabletType& type = TabletTypes()[static_cast<std::size_t>(tablet_)];
  hand_ = new MouseHand(*picGraph_, machine_, type, this);
  connect(hand_, &MouseHand::ViewMoved, this, &frmHyetex::ShowView);

  panel_ = new DeskPanel(this);
  frmToolBox_->Dock(machine_.Layout);
  panel_->Add(frmToolBox_);
  panel_->setFixedWidth(frmToolBox_->width() + PanelMargins);
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

// Another part of the tablet is in view.
void frmHyetex::ShowView() { DrawGraph(); }

void frmHyetex::keyReleaseEvent(QKeyEvent* event) {
  if (!HasMouse() || !hand_->KeyReleased(*event)) FormWindow::keyReleaseEvent(event);
}

void frmHyetex::focusOutEvent(QFocusEvent* event) {
  if (HasMouse()) hand_->Forget();
  FormWindow::focusOutEvent(event);
}

}  // namespace hyetex
