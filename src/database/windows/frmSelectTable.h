// Chooses the table whose single rows are to be edited.
#pragma once

#include <QComboBox>
#include <QPushButton>
#include <cstddef>
#include <functional>

#include "platform/dialogs.h"
#include "platform/form_window.h"

namespace hyetex {

class frmSelectTable : public FormWindow {
  Q_OBJECT

 public:
  /// `edit` opens the editor of an entry of the list, and tells whether it stands there.
  frmSelectTable(Desk& desk, Dialogs& dialogs, Settings& settings, std::size_t chosen,
                 std::function<bool(std::size_t entry)> edit, QWidget* parent = nullptr);

 private:
  std::function<bool(std::size_t entry)> edit_;

  QComboBox* cboTables;
  QPushButton *cmdEdit, *cmdDone;
};

}  // namespace hyetex
