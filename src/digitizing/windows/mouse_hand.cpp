#include "digitizing/windows/mouse_hand.h"

#include <cmath>
#include <optional>
#include <utility>

#include "digitizing/view.h"
#include "digitizing/windows/units.h"
#include "platform/controls.h"

namespace hyetex {
namespace {

constexpr int NoButton = -1;

// Less than a thousandth of a millimetre: what a hand does not mean is not written into the chart file.
double Tidy(double position) { return std::round(position * 100) / 100; }

std::optional<Arrow> ArrowOf(int key) {
  switch (key) {
    case Qt::Key_Left:
      return Arrow::Left;
    case Qt::Key_Right:
      return Arrow::Right;
    case Qt::Key_Up:
      return Arrow::Up;
    case Qt::Key_Down:
      return Arrow::Down;
    default:
      return std::nullopt;
  }
}

}  // namespace

MouseHand::MouseHand(picGraph& graph, ActionMachine& machine, const TabletType& tablet, QObject* parent)
    : QObject(parent), graph_(graph), machine_(machine), tablet_(tablet) {
  connect(&graph, &picGraph::Pressed, this, &MouseHand::Press);
  connect(&graph, &picGraph::PressedTwice, this, &MouseHand::PressTwice);
  connect(&graph, &picGraph::Released, this, &MouseHand::Release);
  connect(&graph, &picGraph::Moved, this, &MouseHand::Move);
}

double MouseHand::X(QPointF at) const { return Tidy(machine_.Layout.TabletX(at.x() * UnitsPerPixel)); }
double MouseHand::Y(QPointF at) const { return Tidy(machine_.Layout.TabletY(at.y() * UnitsPerPixel)); }

void MouseHand::TakeCursor() {
  isCursor_ = true;
  ShowHand();
}

void MouseHand::SetTool(PointerTool* tool) {
  tool_ = tool;
  ShowHand();
}

void MouseHand::Tell(double x, double y, int button) {
  if (!isCursor_) return;
  machine_.Point(x, y, button);
  emit CursorMoved();
}

// ---- The mouse

void MouseHand::Press(QPointF at, Qt::MouseButton button) {
  if (Idle()) return;
  if (button == Qt::MiddleButton || (button == Qt::LeftButton && space_)) return Hold(at);
  if (panning_) return;
  // A press is made where the cursor is seen, which keys may have moved a little.
  const bool follows = guard_.Follows(at.x(), at.y()) || !isCursor_;
  const double x = follows ? X(at) : machine_.State().CursorX;
  const double y = follows ? Y(at) : machine_.State().CursorY;
  if (button == Qt::RightButton) return Tell(x, y, tablet_.ToolBoxButton);
  if (button != Qt::LeftButton) return;
  if (tool_ == nullptr) return Tell(x, y, tablet_.DrawingButton);
  Tell(x, y, NoButton);
  tool_->Press(x, y);
  emit ViewMoved();
}

// One bend is one press: the second of a double click would lie on the first.
void MouseHand::PressTwice(QPointF at) {
  if (tool_ == nullptr || space_ || panning_) return;
  tool_->PressTwice(X(at), Y(at));
  emit ViewMoved();
}

void MouseHand::Release(QPointF at, Qt::MouseButton button) {
  if (Idle()) return;
  if (panning_) {
    if (button == Qt::RightButton) return;
    panning_ = false;
    return ShowHand();
  }
  const DeskState& state = machine_.State();
  const double x = isCursor_ ? state.CursorX : X(at), y = isCursor_ ? state.CursorY : Y(at);
  if (tool_ != nullptr && button == Qt::LeftButton) {
    tool_->Release(x, y);
    emit ViewMoved();
  }
  Tell(x, y, NoButton);
  Move(at, Qt::NoButton);
}

void MouseHand::Move(QPointF at, Qt::MouseButtons held) {
  if (Idle()) return;
  if (panning_) {
    if (held == Qt::NoButton) {  // let go of where nobody saw it
      panning_ = false;
      return ShowHand();
    }
    const QPointF by = (at - panFrom_) * UnitsPerPixel;
    panFrom_ = at;
    Pan(machine_.Layout, tablet_.Extents, by.x(), by.y());
    emit ViewMoved();
    return;
  }
  if (!guard_.Follows(at.x(), at.y())) return;
  holds_ = false;
  if (tool_ != nullptr) {
    Tell(X(at), Y(at), NoButton);
    tool_->Move(X(at), Y(at), held.testFlag(Qt::LeftButton));
    if (held.testFlag(Qt::LeftButton)) emit ViewMoved();
    return;
  }
  // By what is held now: a box that came up may have taken the button's release.
  Tell(X(at), Y(at),
       held.testFlag(Qt::LeftButton)    ? tablet_.DrawingButton
       : held.testFlag(Qt::RightButton) ? tablet_.ToolBoxButton
                                        : NoButton);
}

void MouseHand::Hold(QPointF at) {
  panning_ = true;
  panFrom_ = at;
  ShowHand();
}

void MouseHand::ShowHand() {
  if (Idle()) return graph_.unsetCursor();
  graph_.setCursor(panning_ ? Qt::ClosedHandCursor : space_ ? Qt::OpenHandCursor : Qt::CrossCursor);
}

// ---- The keys

bool MouseHand::KeyPressed(const QKeyEvent& event) {
  if (Idle()) return false;
  if (const auto arrow = ArrowOf(event.key())) {
    Step(*arrow, event.modifiers().testFlag(Qt::ShiftModifier));
    return true;
  }
  if (event.key() == Qt::Key_Space) {
    space_ = true;
    ShowHand();
    return true;
  }
  if (!IsReturn(event)) return false;
  if (!event.isAutoRepeat()) PressHere();
  return true;
}

bool MouseHand::KeyReleased(const QKeyEvent& event) {
  if (Idle() || event.key() != Qt::Key_Space) return false;
  if (event.isAutoRepeat()) return true;
  space_ = false;
  ShowHand();
  return true;
}

void MouseHand::Forget() {
  space_ = panning_ = holds_ = false;
  ShowHand();
}

void MouseHand::Step(Arrow arrow, bool coarse) {
  const auto [right, up] = StepOf(arrow, coarse, tablet_.Extents);
  guard_.Stepped();
  if (tool_ != nullptr && tool_->Step(right, up)) {
    emit ViewMoved();
    return;
  }
  if (!isCursor_) return;
  DeskLayout& layout = machine_.Layout;
  const DeskState& state = machine_.State();
  double x = Tidy(state.CursorX + right), y = Tidy(state.CursorY + up);
  if (!Rect{0, 0, layout.ScaleWidth, layout.ScaleHeight}.Holds(layout.ScreenX(state.CursorX),
                                                               layout.ScreenY(state.CursorY))) {
    x = Tidy(layout.TabletX(layout.ScaleWidth / 2));  // it was nowhere yet
    y = Tidy(layout.TabletY(layout.ScaleHeight / 2));
  }
  const float left = layout.ViewX0, bottom = layout.ViewY0;
  BringIntoView(layout, tablet_.Extents, x, y);
  if (layout.ViewX0 != left || layout.ViewY0 != bottom) emit ViewMoved();
  Tell(x, y, holds_ ? tablet_.DrawingButton : NoButton);
}

void MouseHand::PressHere() {
  const DeskState& state = machine_.State();
  const double x = state.CursorX, y = state.CursorY;
  guard_.Stepped();
  if (tool_ != nullptr) {
    tool_->Press(x, y);
    tool_->Release(x, y);
    emit ViewMoved();
    return;
  }
  if (std::exchange(holds_, false)) return Tell(x, y, NoButton);
  Tell(x, y, tablet_.DrawingButton);
  // A rectangle is stretched by the arrow keys until Return is pressed again.
  holds_ = state.Action == action::LassoDrag || state.Action == action::ZoomDrag;
  if (!holds_) Tell(x, y, NoButton);
}

}  // namespace hyetex
