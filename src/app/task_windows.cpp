// The staging area's windows, and the way from a staged chart into the digitizing session.
#include "app/app_desk.h"
#include "app/task_comments.h"
#include "chartfiles/chart_text.h"
#include "chartfiles/empty_form.h"
#include "core/files.h"
#include "platform/serial_devices.h"
#include "staging/lists/list_recovery.h"
#include "staging/windows/frmTaskDef.h"
#include "staging/windows/frmTasks.h"

namespace hyetex {

QWidget* AppDesk::MakeTasks() {
  if (const auto read = RereadLists(program_.Settings.Folder(), program_.Lists, program_.CurrentUser); !read)
    Tell(read.error());

  const auto details = [this](const ChartRecord& task, bool isNew, const std::string& station, auto store) {
    auto* staging = qobject_cast<frmTasks*>(Window(WindowId::Tasks));
    staging->EnableStaging(false);
    taskJob_ = {isNew ? TaskJob::Mode::Add : TaskJob::Mode::Change, task, station, std::move(store),
                [this, staging = QPointer(staging)] {
                  if (!staging) return;
                  staging->EnableStaging(true);
                  if (!ending_) Open(WindowId::Tasks);
                }};
    Open(WindowId::TaskDef);
  };
  const auto digitize = [this](const ActivatedChart& chart, const std::string& device,
                               std::shared_ptr<const ScanImage> scan) {
    if (!BeginChart(chart, device)) return false;
    program_.Active->Scan = std::move(scan);
    backToTasks_ = true;
    Open(WindowId::Digitizing);
    return true;
  };
  const auto writeEmptyForm = [this](const ActivatedChart& chart, const std::string& folder,
                                     const Confirm& mayOverwrite) -> Result<std::optional<std::string>> {
    auto origin = OriginOfChart(program_.Lists, chart.Task, program_.User().Name);
    if (!origin) return Failure(origin.error());
    return WriteEmptyForm(chart.Task, chart.Task.ChartMethod, *origin, folder, mayOverwrite);
  };
  const auto chartFile = [](const ChartRecord& task, const std::string& folder) {
    std::string name = ChartFileName(task.InstrumentCode, task.StartTime);
    return FileExists(JoinPath(folder, name)) ? name : std::string();
  };
  const auto traceScans = [this](const std::string& target) {
    traceTarget_ = target;
    Open(WindowId::TraceScans);
    backToTasks_ = Window(WindowId::TraceScans) != nullptr;
    return backToTasks_;
  };
  // The first port may have been named on the command line.
  const auto device = [this](int port) {
    return port == FirstSerialPort && !words_.Port.empty() ? words_.Port
                                                           : SerialDevice(program_.Settings, port);
  };
  return new frmTasks(*this, dialogs_, program_.Settings, program_.Lists, program_.Staging,
                      program_.CurrentChart, *shell_,
                      {.Device = device,
                       .Define = details,
                       .Digitize = digitize,
                       .WriteEmptyForm = writeEmptyForm,
                       .Scans = &program_.Scans,
                       .ChartFile = chartFile,
                       .TraceScans = traceScans},
                      words_.Tablet);
}

QWidget* AppDesk::MakeTaskDef() {
  if (!taskJob_.Store) return nullptr;
  auto* window = new frmTaskDef(*this, dialogs_, program_.Settings, std::exchange(taskJob_, {}), [this] {
    if (auto* details = qobject_cast<frmTaskDef*>(Window(WindowId::TaskDef)))
      OpenComment(std::make_unique<TaskComments>(*this, *details));
  });
  return window;
}

}  // namespace hyetex
