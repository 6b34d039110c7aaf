// Logs on to a database by all that a connection may need: a data source or a driver and a server, a user's
// name, a password and the database's name.
#pragma once

#include "database/windows/logon_form.h"

namespace hyetex {

class frmODBCLogon1 final : public LogonForm {
  Q_OBJECT

 public:
  frmODBCLogon1(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database,
                QWidget* parent = nullptr);

 private:
  void ShowStored();
  bool Take() override;

  QPushButton *cmdOK, *cmdCancel;
};

}  // namespace hyetex
