// The program's definitions file as a text to edit, for a machine that has no editor of its own.
#pragma once

#include <QPlainTextEdit>
#include <string>

#include "platform/dialogs.h"
#include "platform/form_window.h"

namespace hyetex {

class frmSettingsText : public FormWindow {
  Q_OBJECT

 public:
  /// Shows the file as it was read.
  frmSettingsText(Desk& desk, Dialogs& dialogs, Settings& settings, std::string text,
                  QWidget* parent = nullptr);

  QSize sizeHint() const override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  /// Tells why the text cannot be saved.
  bool Save();

  Dialogs& dialogs_;
  const std::string read_;

  QPlainTextEdit* txtDefinitions;
  QPushButton *cmdSave, *cmdClose;
};

}  // namespace hyetex
