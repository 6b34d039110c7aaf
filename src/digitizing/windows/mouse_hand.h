// The mouse over the chart view, and the keys that move the cursor: turned into positions and presses of the
// action machine, where the mouse stands in the tablet's place, or of a tool that has taken the machine's.
// With a tablet and without a tool they do nothing.
#pragma once

#include <QKeyEvent>
#include <QObject>
#include <QPointF>

#include "digitizing/action_machine.h"
#include "digitizing/pointer.h"
#include "digitizing/pointer_tool.h"
#include "digitizing/windows/picGraph.h"

namespace hyetex {

class MouseHand : public QObject {
  Q_OBJECT

 public:
  /// All references must outlive it.
  MouseHand(picGraph& graph, ActionMachine& machine, const TabletType& tablet, QObject* parent);

  /// From now on the mouse is the tablet's cursor.
  void TakeCursor();

  /// From now on presses and moves go to `tool`; null: to the machine. The right button stays the board's.
  void SetTool(PointerTool* tool);
  /// Whether a key was one of the cursor's.
  bool KeyPressed(const QKeyEvent& event);
  bool KeyReleased(const QKeyEvent& event);
  /// Keys that are down are no longer known: the window has lost the focus.
  void Forget();

 signals:
  void CursorMoved();  ///< to the machine's position
  void ViewMoved();    ///< another part of the tablet is in view, or a tool has done something

 private:
  void Press(QPointF at, Qt::MouseButton button);
  void Release(QPointF at, Qt::MouseButton button);
  void Move(QPointF at, Qt::MouseButtons held);
  void PressTwice(QPointF at);
  void Hold(QPointF at);
  void Step(Arrow arrow, bool coarse);
  void PressHere();
  void Tell(double x, double y, int button);
  void ShowHand();
  bool Idle() const { return !isCursor_ && tool_ == nullptr; }
  double X(QPointF at) const;
  double Y(QPointF at) const;

  picGraph& graph_;
  ActionMachine& machine_;
  const TabletType& tablet_;
  PointerTool* tool_ = nullptr;
  PointerGuard guard_;
  bool isCursor_ = false;
  bool space_ = false, panning_ = false;
  bool holds_ = false;  // Return has begun a rectangle
  QPointF panFrom_;
};

}  // namespace hyetex
