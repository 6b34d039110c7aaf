// The digitizing window's share in Undo and Redo: when the menu offers them.
#include "digitizing/windows/frmHyetex.h"

namespace hyetex {

// While the comment or the save window is open this one is disabled, and the chart stays as it is.
void frmHyetex::Undo() {
  if (isEnabled()) machine_.Undo();
}

void frmHyetex::Redo() {
  if (isEnabled()) machine_.Redo();
}

void frmHyetex::UpdateUndo() {
  const bool listens = isEnabled() && !closing_;
  shell_.ShowUndo({machine_.UndoText(), machine_.RedoText(), listens && machine_.CanUndo(),
                   listens && machine_.CanRedo()});
}

}  // namespace hyetex
