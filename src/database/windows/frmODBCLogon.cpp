#include "database/windows/frmODBCLogon.h"

#include "core/files.h"
#include "database/access/new_database.h"
#include "platform/controls.h"
#include "platform/odbc/connection_text.h"
#include "platform/qt_text.h"

namespace hyetex {

frmODBCLogon::frmODBCLogon(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database,
                           QWidget* parent)
    : LogonForm("frmODBCLogon", WindowId::Connection, desk, dialogs, settings, database, parent),
      cmdOK(Named(new QPushButton(tr("&OK")), "cmdOK")),
      cmdCancel(Named(new QPushButton(tr("&Cancel")), "cmdCancel")),
      cmdCreateDB(Named(new QPushButton(tr("Vie&w Database Structure")), "cmdCreateDB")),
      cmdNewFile(Named(new QPushButton(tr("&New Database File...")), "cmdNewFile")),
      cmdOther(Named(new QPushButton(tr("O&ther Connection...")), "cmdOther")) {
  setWindowTitle(tr("Select Database"));
  cmdNewFile->setToolTip(
      tr("Makes a file with all tables, for which no server is needed, and its data source."));
  cmdOther->setToolTip(tr("Logs on by a driver and a server, or by a user's name and password."));
  frmValues->setToolTip(tr("A data source has these values itself. \"Other Connection...\" takes others."));
  cmdOther->setEnabled(desk.Has(WindowId::Logon));
  cmdCreateDB->setEnabled(desk.Has(WindowId::CreateTable));
  MakeLayout({cmdOK, cmdCancel, nullptr, cmdCreateDB, cmdNewFile, cmdOther});

  connect(cmdOK, &QPushButton::clicked, this, [this] {
    if (Take()) Leave();
  });
  connect(cmdCancel, &QPushButton::clicked, this, &frmODBCLogon::Leave);
  connect(cmdCreateDB, &QPushButton::clicked, this, [this] {
    if (Take()) desk_.Open(WindowId::CreateTable);
  });
  connect(cmdNewFile, &QPushButton::clicked, this, &frmODBCLogon::NewDatabaseFile);
  connect(cmdOther, &QPushButton::clicked, this, [this] {
    desk_.Open(WindowId::Logon);
    Leave();
  });

  FillLists(ConnectionText(settings_.Get(setting::DatabaseName)).Find("DSN").value_or(""));
  TakeAsChosen();
}

std::string frmODBCLogon::Choice() const { return FromQt(cboDSNList->currentText()); }

bool frmODBCLogon::Take() {
  // A connection that names no data source shows as none, and stays what it is until one is chosen.
  const std::string stored = settings_.Get(setting::DatabaseName);
  const bool keeps =
      cboDSNList->currentIndex() == 0 && !stored.empty() && !ConnectionText(stored).Find("DSN");
  const auto taken = keeps ? KeepConnection(database_, settings_, stored)
                           : TakeDataSource(database_, settings_, FromQt(cboDSNList->currentText()));
  if (!taken) return Tell(taken.error()), false;
  TakeAsChosen();
  emit Chosen();
  return true;
}

void frmODBCLogon::NewDatabaseFile() {
  const std::string title = "New Database File";
  const auto chosen = dialogs_.ChooseFileToSave(title, JoinPath(settings_.Folder(), "hyetex.sqlite"));
  if (!chosen) return;
  const std::string path = WithDatabaseEnding(*chosen);
  const bool exists = FileExists(path);
  if (exists && dialogs_.MessageBox(title,
                                    "There is a file " + path +
                                        " already, and no database takes the place of another. "
                                        "Use the database in it as it stands?",
                                    BoxButtons::YesNo, BoxIcon::Question) != BoxAnswer::Yes)
    return;
  const auto name = exists ? RegisterDatabaseFile(path) : NewDatabase(path);
  if (!name) return Tell(name.error());
  FillLists(*name);
  cmdOK->setFocus();
}

}  // namespace hyetex
