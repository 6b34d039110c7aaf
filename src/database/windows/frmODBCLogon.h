// Chooses the database by the name of its data source, or makes a new one in a file.
#pragma once

#include "database/windows/logon_form.h"

namespace hyetex {

class frmODBCLogon final : public LogonForm {
  Q_OBJECT

 public:
  frmODBCLogon(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database,
               QWidget* parent = nullptr);

 private:
  /// A data source has its values itself.
  std::string Choice() const override;
  bool Take() override;
  void NewDatabaseFile();

  QPushButton *cmdOK, *cmdCancel, *cmdCreateDB, *cmdNewFile, *cmdOther;
};

}  // namespace hyetex
