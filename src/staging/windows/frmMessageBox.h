// The question where the editor finds its charts.
#pragma once

#include <QDialog>
#include <QPushButton>
#include <array>
#include <cstdint>
#include <optional>

#include "platform/dialogs.h"
#include "staging/main_menu.h"

namespace hyetex {

class frmMessageBox : public QDialog {
  Q_OBJECT

 public:
  /// `level` is the operator's.
  frmMessageBox(Dialogs& dialogs, std::int16_t level, QWidget* parent = nullptr);

  /// Waits for the answer; nothing if the question was closed.
  std::optional<ChartSourceKind> Ask();

 private:
  void Answer(ChartSourceKind source);

  Dialogs& dialogs_;
  const std::int16_t level_;
  std::optional<ChartSourceKind> answer_;
  std::array<QPushButton*, 2> cmdAnswer;
};

}  // namespace hyetex
