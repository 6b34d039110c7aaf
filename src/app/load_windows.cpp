// The window that loads chart files into the database and extracts them.
#include "app/app_desk.h"
#include "database/windows/frmLoad.h"

namespace hyetex {

QWidget* AppDesk::MakeLoad() {
  return new frmLoad(*this, dialogs_, program_.Settings, program_.Lists, program_.Database);
}

}  // namespace hyetex
