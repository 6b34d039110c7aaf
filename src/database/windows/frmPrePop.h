// Stands before the populate window: gathers the values that govern a conversion.
#pragma once

#include <QCheckBox>
#include <QLineEdit>
#include <QRadioButton>
#include <array>
#include <functional>

#include "database/conversion/computation.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"

namespace hyetex {

class frmPrePop : public FormWindow {
  Q_OBJECT

 public:
  /// The variables are written when the operator goes on.
  frmPrePop(Desk& desk, Dialogs& dialogs, Settings& settings, ComputationVariables& variables,
            std::function<void()> help, QWidget* parent = nullptr);

 protected:
  void Closing() override;

 private:
  void MakeLayout();
  void Continue();

  Dialogs& dialogs_;
  ComputationVariables& variables_;
  std::function<void()> help_;

  QCheckBox* chkAlpha;
  QLineEdit *txtLapse, *txtGMT;
  std::array<QRadioButton*, 2> optDepth;  // digitized, manual
  QPushButton *cmdContinue, *cmdExit, *cmdHelp;
};

}  // namespace hyetex
