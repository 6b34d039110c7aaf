// The window that chooses a table, and the one that edits its rows.
#include "app/app_desk.h"
#include "database/windows/frmSelectTable.h"
#include "database/windows/frmTableEditor.h"

namespace hyetex {

QWidget* AppDesk::MakeSelectTable() {
  return new frmSelectTable(*this, dialogs_, program_.Settings, editedTable_,
                            [this](std::size_t entry) { return EditTable(entry); });
}

// One table at a time: what has been entered for another one is asked about first.
bool AppDesk::EditTable(std::size_t entry) {
  if (QWidget* open = Window(WindowId::TableEditor)) {
    open->close();
    if (Window(WindowId::TableEditor) != nullptr) {
      Open(WindowId::TableEditor);
      return true;
    }
  }
  editedTable_ = entry;
  Open(WindowId::TableEditor);
  return Window(WindowId::TableEditor) != nullptr;
}

QWidget* AppDesk::MakeTableEditor() {
  auto editor = TableEditor::Open(EditedTables()[editedTable_], program_.Database.ChosenConnection());
  if (!editor) return Tell(editor.error()), nullptr;
  return new frmTableEditor(*this, dialogs_, program_.Settings, *std::move(editor),
                            [this] { return program_.User().Level; });
}

}  // namespace hyetex
