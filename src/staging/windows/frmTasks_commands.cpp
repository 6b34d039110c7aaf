// What the task window's commands do.
#include "core/comments.h"
#include "core/files.h"
#include "core/text.h"
#include "digitizing/scan_placement.h"
#include "platform/qt_text.h"
#include "staging/windows/frmTasks.h"

namespace hyetex {

// ---- Staging

void frmTasks::Add() {
  const TreeNode* station = SelectedStation();
  if (station == nullptr) return;
  if (const auto refusal = CheckTaskRoom(staging_.Tasks())) return Tell(*refusal);
  ChartRecord task;
  task.InstrumentCode = lists_.Stations[static_cast<std::size_t>(station->Index)].InstrumentCode;
  task.InstrumentIndex = FindStation(lists_.Stations, task.InstrumentCode);
  services_.Define(task, true, station->Text, [this](ChartRecord entered) {
    auto refusal = staging_.Add(std::move(entered));
    if (refusal) return refusal;
    SaveTasks();
    UpdateList(static_cast<int>(staging_.Tasks().size()) - 1);
    return refusal;
  });
}

void frmTasks::Change() {
  const auto task = SelectedTask();
  if (!task || !SelectedStation()) return;
  services_.Define(staging_.Tasks()[static_cast<std::size_t>(*task)], false, SelectedStation()->Text,
                   [this, index = *task](ChartRecord entered) -> std::optional<std::string> {
                     staging_.Change(index, std::move(entered));
                     SaveTasks();
                     UpdateList(index);
                     return std::nullopt;
                   });
}

void frmTasks::AskToDelete() {
  if (!SelectedTask()) return;
  if (dialogs_.MessageBox("Deleting a chart",
                          "Are you sure you want to delete this chart from Staging Area ?",
                          BoxButtons::NoUnlessYes, BoxIcon::Question) == BoxAnswer::Yes)
    DeleteCurrentTask();
}

void frmTasks::DeleteCurrentTask() {
  const auto task = SelectedTask();
  if (!task) return;
  staging_.Delete(*task);
  SaveTasks();
  UpdateList();
}

void frmTasks::ShowPopup(const QPoint& at) {
  if (!SelectedStation()) return;
  if (const int row = fgdTasks->rowAt(at.y()); row >= 0) SelectRow(row);
  popup_.ShowPopup(*fgdTasks, fgdTasks->viewport()->mapToGlobal(at),
                   {.Add = {"Add new chart", [this] { Add(); }},
                    .Change = {"Change the details of the chart", [this] { Change(); }},
                    .Delete = {"Delete chart", [this] { AskToDelete(); }}});
}

void frmTasks::BrowseTarget() {
  const auto chosen = dialogs_.ChooseFolder("Target Folder For Ascii Files:", targetFolder_);
  if (!chosen) return;
  targetFolder_ = CheckTargetFolder(*chosen, settings_.Folder());
  targetChosen_ = true;
  dirTarget->setText(ToQt(targetFolder_));
  UpdateList();
}

bool frmTasks::HasTarget() {
  constexpr std::string_view Title = "Target Folder For Ascii Files:";
  // A stored folder that is away would be stood in for by the program folder, without a word.
  const std::string stored = settings_.Get(setting::TargetFolder);
  auto why = CheckTargetTakesFiles(targetChosen_ || stored.empty() ? targetFolder_ : stored);
  while (why) {
    if (dialogs_.MessageBox(
            std::string(Title),
            ShownText(*why) + "\n\nDo you want to choose another folder for the chart files ?",
            BoxButtons::YesNo, BoxIcon::Warning) != BoxAnswer::Yes)
      return false;
    BrowseTarget();
    why = CheckTargetTakesFiles(targetFolder_);
  }
  return true;
}

// ---- Digitizing

Result<ActivatedChart> frmTasks::Prepared(const ChartRecord& task) const {
  auto chart = PrepareChart(lists_, task, currentChart_);
  if (chart) chart->Tablet = finder_.Type();
  return chart;
}

void frmTasks::Activate() {
  const auto index = SelectedTask();
  if (!index) return Tell("Digitizing a strip chart", "Select a chart of the list first.");
  const ChartRecord& task = staging_.Tasks()[static_cast<std::size_t>(*index)];
  HasCode(task.GeneralComment, CodeDefective) ? MakeEmptyFile(task) : Digitize(task);
}

void frmTasks::Digitize(const ChartRecord& task) {
  constexpr std::string_view Title = "Digitizing a strip chart";
  if (source_ == TraceSource::Tablet && finder_.DetectedPort() == NoPort)
    return Tell(Title, "you cannot begin digitizing a chart without having the right Digitizer plugged");
  auto chart = Prepared(task);
  if (!chart) return Tell(Title, chart.error());
  if (!HasTarget() || !SaveTasks()) return;
  if (source_ == TraceSource::Tablet) return OpenDesk(*std::move(chart), finder_.Device());
  chart->Tablet = ScanTablet;
  std::shared_ptr<const ScanImage> scan;
  if (source_ == TraceSource::Scan && !(scan = OpenScan(task))) return;
  OpenDesk(*std::move(chart), "", std::move(scan));
}

void frmTasks::OpenDesk(ActivatedChart chart, const std::string& device,
                        std::shared_ptr<const ScanImage> scan) {
  finder_.Stop();
  leaving_ = services_.Digitize(std::move(chart), device, std::move(scan));
  if (leaving_)
    close();
  else if (source_ == TraceSource::Tablet)
    finder_.Start();
}

void frmTasks::MakeEmptyFile(const ChartRecord& task) {
  constexpr std::string_view Title = "Creating an unAnalysed ASCII file";
  const auto chart = Prepared(task);
  if (!chart) return Tell(Title, chart.error());
  if (!HasTarget()) return;
  const auto written = services_.WriteEmptyForm(*chart, targetFolder_, [this](const std::string& question) {
    return dialogs_.MessageBox("Saving the digitation", ShownText(question), BoxButtons::CancelUnlessOk,
                               BoxIcon::Warning) == BoxAnswer::Ok;
  });
  if (!written) return Tell(Title, written.error());
  if (!*written) return;
  Tell(Title, "An empty file has been created", BoxIcon::Information);
  const int next = SelectedRow() + 1;
  UpdateList();
  SelectRow(next);
}

void frmTasks::Tell(std::string_view title, const std::string& text, BoxIcon icon) {
  dialogs_.MessageBox(std::string(title), ShownText(text), BoxButtons::Ok, icon);
}

void frmTasks::Tell(const std::string& text) { Tell(FromQt(windowTitle()), text); }

}  // namespace hyetex
