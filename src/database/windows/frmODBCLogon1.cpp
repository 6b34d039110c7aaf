#include "database/windows/frmODBCLogon1.h"

#include <QApplication>
#include <QFormLayout>
#include <QLabel>

#include "platform/controls.h"
#include "platform/odbc/connection_text.h"
#include "platform/qt_text.h"

namespace hyetex {

frmODBCLogon1::frmODBCLogon1(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database,
                             QWidget* parent)
    : LogonForm("frmODBCLogon1", WindowId::Logon, desk, dialogs, settings, database, parent),
      cmdOK(Named(new QPushButton(tr("&OK")), "cmdOK")),
      cmdCancel(Named(new QPushButton(tr("&Return to Main Menu")), "cmdCancel")) {
  setWindowTitle(tr("ODBC Logon"));
  MakeLayout({cmdOK, cmdCancel});
  auto* note =
      new QLabel(tr("All of this is kept in the program definitions, where the password can be read."));
  note->setObjectName("labNote");
  note->setWordWrap(true);
  static_cast<QFormLayout*>(frmValues->layout())->addRow(note);

  connect(cmdOK, &QPushButton::clicked, this, [this] {
    if (Take()) Leave();
  });
  connect(cmdCancel, &QPushButton::clicked, this, &QWidget::close);
  ShowStored();
  TakeAsChosen();
}

// All but the password, which is not for the next to sit here.
void frmODBCLogon1::ShowStored() {
  const ConnectionText stored(settings_.Get(setting::DatabaseName));
  const auto value = [&](const char* key) { return stored.Find(key).value_or(""); };
  FillLists(value("DSN"));
  AddDrivers(InstalledDrivers());
  const int driver = cboDrivers->findText(ToQt(value("Driver")), Qt::MatchFixedString);
  if (driver >= 0) cboDrivers->setCurrentIndex(driver);
  txtServer->setText(ToQt(value("Server")));
  txtUID->setText(ToQt(value("UID")));
  txtDatabase->setText(ToQt(value("Database")));
}

bool frmODBCLogon1::Take() {
  QApplication::setOverrideCursor(Qt::BusyCursor);
  const auto done = Logon(database_, settings_, Values());
  QApplication::restoreOverrideCursor();
  if (!done) return Tell(done.error()), false;
  TakeAsChosen();
  emit Chosen();
  return true;
}

}  // namespace hyetex
