// The lists manager, the program's defaults and its definitions.
#include "app/app_desk.h"
#include "core/definitions.h"
#include "staging/lists/list_recovery.h"
#include "staging/windows/frmLists.h"
#include "staging/windows/frmProgramDefaults.h"
#include "staging/windows/frmSettingsText.h"
#include "staging/windows/frmTasks.h"

namespace hyetex {

QWidget* AppDesk::MakeLists() {
  if (const auto read = RereadLists(program_.Settings.Folder(), program_.Lists, program_.CurrentUser); !read)
    Tell(read.error());
  return new frmLists(*this, dialogs_, program_.Settings, program_.Lists, program_.CurrentUser,
                      {.Popup = *shell_,
                       .ConnectionText = [this] { return program_.Database.ConnectionText; },
                       .Synchronise = [this] { SynchroniseStations(); }});
}

QWidget* AppDesk::MakeProgramDefaults() {
  // While the charts are being staged, their window knows the present one.
  if (Window(WindowId::Tasks) == nullptr)
    program_.CurrentChart = program_.Settings.Get(setting::CurrentChart);
  return new frmProgramDefaults(*this, dialogs_, program_.Settings, program_.Lists, program_.CurrentChart,
                                [this] {
                                  if (auto* tasks = qobject_cast<frmTasks*>(Window(WindowId::Tasks)))
                                    tasks->ShowChartType();
                                });
}

QWidget* AppDesk::MakeDefinitions() {
  auto text = ReadDefinitions(program_.Settings.Folder());
  if (!text) return Tell(text.error()), nullptr;
  return new frmSettingsText(*this, dialogs_, program_.Settings, *std::move(text));
}

}  // namespace hyetex
