#include "database/windows/logon_form.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/controls.h"
#include "platform/qt_text.h"

namespace hyetex {

LogonForm::LogonForm(const char* name, WindowId id, Desk& desk, Dialogs& dialogs, Settings& settings,
                     HyetexPlotDB& database, QWidget* parent)
    : FormWindow(name, id, desk, settings, parent),
      dialogs_(dialogs),
      database_(database),
      cboDSNList(Named(new QComboBox, "cboDSNList")),
      cboDrivers(Named(new QComboBox, "cboDrivers")),
      txtServer(Named(new QLineEdit, "txtServer")),
      txtUID(Named(new QLineEdit, "txtUID")),
      txtPWD(Named(new QLineEdit, "txtPWD")),
      txtDatabase(Named(new QLineEdit, "txtDatabase")),
      frmValues(Named(new QGroupBox(tr("Connection Values")), "frmValues")) {
  txtServer->setToolTip(
      tr("What else the driver takes may stand behind it, as in: db.example.org;Port=5433"));
  txtPWD->setEchoMode(QLineEdit::Password);
  for (QComboBox* list : {cboDSNList, cboDrivers})
    list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);

  // A data source knows its driver and its server.
  connect(cboDSNList, &QComboBox::currentIndexChanged, this, [this](int index) {
    for (QWidget* control : std::initializer_list<QWidget*>{cboDrivers, txtServer})
      control->setEnabled(index <= 0);
  });
}

void LogonForm::MakeLayout(const std::vector<QPushButton*>& buttons) {
  auto* source = new QFormLayout;
  source->addRow(tr("&DSN:"), cboDSNList);
  auto* values = new QFormLayout(frmValues);
  values->addRow(tr("Dri&ver:"), cboDrivers);
  values->addRow(tr("&Server:"), txtServer);
  values->addRow(tr("&UID:"), txtUID);
  values->addRow(tr("&Password:"), txtPWD);
  values->addRow(tr("Data&base:"), txtDatabase);
  auto* left = new QVBoxLayout;
  left->addLayout(source);
  left->addWidget(frmValues);
  left->addStretch();
  auto* right = new QVBoxLayout;
  for (QPushButton* button : buttons) {
    if (button == nullptr) {
      right->addSpacing(12);
      continue;
    }
    button->setMinimumWidth(button->sizeHint().width() + 2 * fontMetrics().averageCharWidth());
    right->addWidget(button);
  }
  right->addStretch();
  auto* all = new QHBoxLayout(this);
  all->addLayout(left, 1);
  all->addSpacing(8);
  all->addLayout(right);
  cboDSNList->setMinimumWidth(30 * fontMetrics().averageCharWidth());
  SetKeyButtons(buttons[0], buttons[1]);
}

void LogonForm::FillLists(const std::string& dataSource) {
  const DataSources sources = GetDSNsAndDrivers();
  cboDSNList->clear();
  for (const std::string& name : sources.Names) cboDSNList->addItem(ToQt(name));
  cboDrivers->clear();
  AddDrivers(sources.Drivers);
  cboDSNList->setCurrentIndex(std::max(0, cboDSNList->findText(ToQt(dataSource), Qt::MatchFixedString)));
}

void LogonForm::AddDrivers(const std::vector<std::string>& drivers) {
  for (const std::string& driver : drivers)
    if (cboDrivers->findText(ToQt(driver)) < 0) cboDrivers->addItem(ToQt(driver));
  cboDrivers->model()->sort(0);
  cboDrivers->setCurrentIndex(cboDrivers->count() > 0 ? 0 : -1);
}

LogonValues LogonForm::Values() const {
  return {.DataSource = cboDSNList->currentIndex() > 0 ? FromQt(cboDSNList->currentText()) : "",
          .Driver = FromQt(cboDrivers->currentText()),
          .Server = FromQt(txtServer->text()),
          .User = FromQt(txtUID->text()),
          .Password = FromQt(txtPWD->text()),
          .Database = FromQt(txtDatabase->text())};
}

bool LogonForm::MayLeave() {
  return Choice() == chosen_ || MayCloseAfter(dialogs_, FromQt(windowTitle()),
                                              "The connection has not been taken. Do you want to take it ?",
                                              [this] { return Take(); });
}

void LogonForm::Tell(const std::string& text) {
  dialogs_.MessageBox(FromQt(windowTitle()), text, BoxButtons::Ok, BoxIcon::Warning);
}

}  // namespace hyetex
