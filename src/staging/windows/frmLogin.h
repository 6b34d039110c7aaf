// The first window: who is at the desk.
#pragma once

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>
#include <cstdint>
#include <string>

#include "core/desk.h"
#include "core/settings.h"
#include "platform/dialogs.h"
#include "staging/lists/lists.h"

namespace hyetex {

class frmLogin : public QWidget {
  Q_OBJECT

 public:
  /// Reads the lists into `lists`; a login sets `currentUser` and tells the desk. All references are kept.
  frmLogin(Desk& desk, Dialogs& dialogs, Settings& settings, ReferenceLists& lists, std::int16_t& currentUser,
           QWidget* parent = nullptr);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void MakeLayout();
  /// Nobody gets in while the file cannot be read at all, since the one user of an empty list may do
  /// everything. What is damaged in it is shown.
  bool ReadUsers();
  void Ok();

  Desk& desk_;
  Dialogs& dialogs_;
  Settings& settings_;
  ReferenceLists& lists_;
  std::int16_t& currentUser_;
  std::string trouble_;  // why the lists cannot be read, or not all of them
  bool nobodyIsKnown_ = false;
  bool loggedIn_ = false;

  QComboBox* txtUserName;
  QLineEdit* txtPassword;
  QLabel* labNotice;
  QPushButton *cmdOK, *cmdCancel;
};

}  // namespace hyetex
