// The plain text window: shows a text in a fixed-pitch font, and prints it.
#pragma once

#include <QPlainTextEdit>
#include <QPrinter>
#include <QRadioButton>
#include <array>

#include "platform/dialogs.h"
#include "platform/form_window.h"

namespace hyetex {

class frmLargeView : public FormWindow {
  Q_OBJECT

 public:
  /// Caption and text are bytes, shown through ShownText; an empty caption leaves "Large View".
  frmLargeView(Desk& desk, Dialogs& dialogs, Settings& settings, const std::string& caption,
               const std::string& text, QWidget* parent = nullptr);

  /// Prints the text in the orientation chosen; tells the operator when the printer fails.
  void PrintOn(QPrinter& printer);

  QSize sizeHint() const override;

 private:
  Dialogs& dialogs_;

  QPlainTextEdit* txtView;
  std::array<QRadioButton*, 2> optPrint;  // landscape, portrait
  QPushButton *cmdPrint, *Command1;
};

}  // namespace hyetex
