// What the two windows have in common in which a database is chosen: the list of data sources, and the values
// to connect by where there is none.
#pragma once

#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <string>
#include <vector>

#include "database/access/connection_choice.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"

namespace hyetex {

class LogonForm : public FormWindow {
  Q_OBJECT

 signals:
  /// The system works on another database from now on.
  void Chosen();

 protected:
  LogonForm(const char* name, WindowId id, Desk& desk, Dialogs& dialogs, Settings& settings,
            HyetexPlotDB& database, QWidget* parent);

  /// Puts the controls to the left of the buttons; the first accepts, the second cancels. A null leaves room.
  void MakeLayout(const std::vector<QPushButton*>& buttons);
  /// Fills both lists anew and shows one data source of them, or "(None)".
  void FillLists(const std::string& dataSource);
  /// Adds drivers that have no data source to their list.
  void AddDrivers(const std::vector<std::string>& drivers);
  LogonValues Values() const;
  /// What the operator chooses in this window, as one text.
  virtual std::string Choice() const { return LogonText(Values()); }
  /// From now on the choice is the one that the window shows at this moment: only another one is asked about.
  void TakeAsChosen() { chosen_ = Choice(); }
  /// Makes the choice the database's; tells why that cannot be.
  virtual bool Take() = 0;
  bool MayLeave() override;
  void Tell(const std::string& text);

  Dialogs& dialogs_;
  HyetexPlotDB& database_;

  QComboBox *cboDSNList, *cboDrivers;
  QLineEdit *txtServer, *txtUID, *txtPWD, *txtDatabase;
  QGroupBox* frmValues;

 private:
  std::string chosen_;
};

}  // namespace hyetex
