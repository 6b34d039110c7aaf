// The window of quality control, and the comment window at work for the chart that is open in it.
#include "app/app_desk.h"
#include "editor/database_charts.h"
#include "editor/windows/frmEditor.h"

namespace hyetex {
namespace {

class EditorComments : public CommentTarget {
 public:
  /// The window must outlive the comment window, behind which it waits.
  EditorComments(Desk& desk, frmEditor& editor) : desk_(desk), editor_(editor) {
    editor_.EnableEditing(false);
  }

  std::optional<std::string> Add(std::string_view code, std::string_view text) override {
    return editor_.AddComment(code, text);
  }
  void Closed() override {
    editor_.EnableEditing(true);
    desk_.Open(WindowId::Editor);
  }

 private:
  Desk& desk_;
  frmEditor& editor_;
};

}  // namespace

QWidget* AppDesk::MakeEditor() {
  std::unique_ptr<ChartSource> stored;
  if (program_.EditorSource == ChartSourceKind::Database)
    stored = std::make_unique<DatabaseCharts>(program_.Database, program_.Lists.Stations);
  return new frmEditor(*this, dialogs_, program_.Settings,
                       {.Stations = program_.Lists.Stations,
                        .ChartTypes = program_.Lists.ChartTypes,
                        .Stored = std::move(stored),
                        .First = std::exchange(editorStart_, std::nullopt),
                        .MinimalLapse = program_.Computation.MinimalLapse,
                        .OpenComment = [this] {
                          if (auto* editor = qobject_cast<frmEditor*>(Window(WindowId::Editor)))
                            OpenComment(std::make_unique<EditorComments>(*this, *editor));
                        }});
}

}  // namespace hyetex
