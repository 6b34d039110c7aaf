// The editor of a table's single rows, whatever the table: boxes for its columns, and buttons to move, add,
// change and delete.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QTableView>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "database/tables/table_editor.h"
#include "database/windows/field_boxes.h"
#include "database/windows/rows_model.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"

namespace hyetex {

class frmTableEditor : public FormWindow {
  Q_OBJECT

 public:
  /// `level` is that of the user who is logged in.
  frmTableEditor(Desk& desk, Dialogs& dialogs, Settings& settings, std::unique_ptr<TableEditor> editor,
                 std::function<std::int16_t()> level, QWidget* parent = nullptr);

 protected:
  bool MayLeave() override;
  void Closing() override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  // frmTableEditor_layout.cpp
  void MakeControls();
  void MakeLayout();
  QWidget* MakeRows();
  QWidget* MakeFields();
  QWidget* MakeButtons();

  void Move(DbResult<void> (TableCursor::*go)());
  void FindNow();
  void TakeFromGrid(int row);
  void LoadAtEnd();

  bool MayChange();
  void Add();
  void Edit();
  void Delete();
  void Refresh();
  void Cancel();
  /// Stores what was entered; tells why it cannot.
  bool Update();
  bool HasChanges() const;
  /// Tells what became of the row meanwhile, and offers to load it anew.
  void TellFate(RowFate fate, bool deletes);

  /// The current row into the boxes, the grid and the status line.
  void ShowRow();
  void ShowValues();
  void ShowPictures();
  void ShowGrid();
  void ShowState();
  void Tell(const DbError& error, const std::string& ahead = {});

  Dialogs& dialogs_;
  const std::unique_ptr<TableEditor> editor_;
  const std::function<std::int16_t()> level_;
  std::vector<std::unique_ptr<FieldBox>> boxes_;  // as many as there are fields
  RowsModel model_;
  QTimer pictures_, find_;
  bool fills_ = false;  // the grid, which the operator does not use meanwhile

  QScrollArea* scrFields;
  QTableView* grdRows = nullptr;
  QLabel *lblStatus, *labCount = nullptr, *labDoing, *labFind;
  QLineEdit *txtMaster = nullptr, *txtFind;
  QPushButton *cmdFirst, *cmdPrevious, *cmdNext, *cmdLast;
  QPushButton *cmdAdd, *cmdEdit, *cmdDelete, *cmdRefresh, *cmdClose, *cmdUpdate, *cmdCancel, *cmdStop;
  QProgressBar* prbWaiting;
};

}  // namespace hyetex
