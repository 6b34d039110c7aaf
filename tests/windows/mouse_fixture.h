// A session by the mouse in the real program, from the staging area on.
#pragma once

#include <QMouseEvent>
#include <QTableWidget>
#include <QTreeWidget>
#include <cmath>

#include "digitizing/scan_placement.h"
#include "digitizing/windows/units.h"
#include "windows/desk_fixture.h"

namespace hyetex::test {

class MouseDesk : public DeskTest {
 protected:
  MouseDesk() {
    type_ = &TabletTypes()[ScanTablet];
    for (const char* port : {"SerialPort1", "SerialPort2"}) Remember(port, "none");
  }

  void OpenTasks() {
    desk_ = std::make_unique<AppDesk>(StartWords{folder_.Path()}, dialogs_);
    desk_->ShellSize = {1280, 900};
    desk_->Start();
    desk_->LoggedIn();
    desk_->Open(WindowId::Tasks);
    ASSERT_TRUE(QTest::qWaitForWindowActive(desk_->ShellWindow()));
    auto& tree = Find<QTreeWidget>(Tasks(), "tvwStations");
    for (QTreeWidgetItemIterator item(&tree); *item != nullptr; ++item)
      if ((*item)->text(0) == "Hill Farm - NM-Hill Farm-01") tree.setCurrentItem(*item);
    Find<QTableWidget>(Tasks(), "fgdTasks").selectRow(0);
  }
  void OpenEmptyPage() {
    OpenTasks();
    Click(Tasks(), "optDig6");
    Click(Tasks(), "cmdActivate");
    ASSERT_TRUE(IsOpen());
    QCoreApplication::processEvents();
  }
  QWidget& Tasks() { return *desk_->Window(WindowId::Tasks); }

  // ---- Hands

  picGraph& Graph() { return Part<picGraph>("picGraph"); }
  /// Where a tablet position is seen.
  QPointF Seen(double x, double y) {
    const DeskLayout& layout = Machine().Layout;
    return {layout.ScreenX(x) / UnitsPerPixel, layout.ScreenY(y) / UnitsPerPixel};
  }
  void Mouse(QEvent::Type type, QPointF at, Qt::MouseButton button, Qt::MouseButtons held) {
    QMouseEvent event(type, at, Graph().mapToGlobal(at), button, held, Qt::NoModifier);
    QCoreApplication::sendEvent(&Graph(), &event);
    QCoreApplication::processEvents();
  }
  void MouseTo(double x, double y, Qt::MouseButtons held = Qt::NoButton) {
    Mouse(QEvent::MouseMove, Seen(x, y), Qt::NoButton, held);
  }
  void MouseDown(double x, double y, Qt::MouseButton button = Qt::LeftButton) {
    MouseTo(x, y);
    Mouse(QEvent::MouseButtonPress, Seen(x, y), button, button);
  }
  void MouseUp(double x, double y, Qt::MouseButton button = Qt::LeftButton) {
    MouseTo(x, y, button);
    Mouse(QEvent::MouseButtonRelease, Seen(x, y), button, Qt::NoButton);
  }
  void MousePress(double x, double y, Qt::MouseButton button = Qt::LeftButton) {
    MouseDown(x, y, button);
    Mouse(QEvent::MouseButtonRelease, Seen(x, y), button, Qt::NoButton);
  }
  void MouseDrag(double x, double y, double toX, double toY) {
    MouseDown(x, y);
    MouseUp(toX, toY);
  }
  void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    Window().setFocus();
    QTest::keyClick(&Window(), key, modifiers);
    QCoreApplication::processEvents();
  }
  double X() { return State().CursorX; }
  double Y() { return State().CursorY; }
};

}  // namespace hyetex::test
