// The windows that move tables to XML files and back.
#include "app/app_desk.h"
#include "exchange/windows/frmCompress.h"
#include "exchange/windows/frmXMLExport.h"
#include "platform/shell.h"
#include "staging/lists/login.h"

namespace hyetex {

// An import changes the database as loading does.
bool AppDesk::MayImport() {
  const auto refusal = CheckRight(Right::Database, program_.User().Level);
  if (refusal)
    dialogs_.MessageBox(std::string(refusal->Title), std::string(refusal->Text), BoxButtons::Ok,
                        BoxIcon::Warning);
  return !refusal;
}

QWidget* AppDesk::MakeExchange() {
  return new frmCompress(*this, dialogs_, program_.Settings, program_.Database,
                         {.MayImport = [this] { return MayImport(); }, .Help = [this] { ShowHelp(); }});
}

QWidget* AppDesk::MakeTableExchange() {
  return new frmXMLExport(*this, dialogs_, program_.Settings, program_.Database,
                          {.MayImport = [this] { return MayImport(); }, .OpenXml = OpenXmlFile});
}

}  // namespace hyetex
