// The windows that choose a database and show its structure.
#include "app/app_desk.h"
#include "database/windows/frmCreateTable.h"
#include "database/windows/frmODBCLogon.h"
#include "database/windows/frmODBCLogon1.h"
#include "platform/shell.h"
#include "staging/windows/frmInit.h"

namespace hyetex {

QWidget* AppDesk::MakeConnection() {
  return Announced(new frmODBCLogon(*this, dialogs_, program_.Settings, program_.Database), "");
}

QWidget* AppDesk::MakeLogon() {
  return Announced(new frmODBCLogon1(*this, dialogs_, program_.Settings, program_.Database), "ODBC;");
}

// The Main Menu shows what was chosen in the window.
QWidget* AppDesk::Announced(LogonForm* window, const char* before) {
  QObject::connect(window, &LogonForm::Chosen, [this, before] {
    if (auto* menu = qobject_cast<frmInit*>(Window(WindowId::MainMenu))) menu->ShowConnection(before);
  });
  return window;
}

QWidget* AppDesk::MakeCreateTable() {
  auto* window = new frmCreateTable(*this, dialogs_, program_.Settings, program_.Database,
                                    {.Help = [this] { ShowHelp(); }, .OpenText = OpenTextFile});
  // The window is modal: what it shows must not be changed beneath it.
  for (const auto& [id, frame] : frames_) {
    QWidget* other = frame ? frame->widget() : nullptr;
    if (other == nullptr) continue;
    other->setEnabled(false);
    QObject::connect(window, &QObject::destroyed, other, [other] { other->setEnabled(true); });
  }
  return window;
}

}  // namespace hyetex
