// The window of rain, and the ways from it to those that mend what it shows.
#include <algorithm>

#include "app/app_desk.h"
#include "core/text.h"
#include "database/windows/frmPopulate.h"
#include "staging/lists/login.h"
#include "staging/lists/station_tree.h"
#include "staging/tasks/task_rows.h"

namespace hyetex {

QWidget* AppDesk::MakeRainfall() {
  return new frmRainfall(*this, dialogs_, program_.Settings, program_.Database,
                         {.Stations = program_.Lists.Stations,
                          .First = std::exchange(rainTarget_, std::nullopt),
                          .OpenChart = [this](const std::string& instrument,
                                              Date chartDate) { OpenStoredChart(instrument, chartDate); },
                          .Stage = [this](const std::string& instrument, Date from,
                                          Date to) { StageChart(instrument, from, to); },
                          .Convert = [this](const std::string& instrument) { ConvertCharts(instrument); },
                          .MayWrite = [this] { return HasRight(Right::Database); }});
}

void AppDesk::ShowRain(RainTarget target) {
  if (auto* open = qobject_cast<frmRainfall*>(Window(WindowId::Rainfall))) {
    Open(WindowId::Rainfall);
    return open->ShowDays(target);
  }
  rainTarget_ = std::move(target);
  Open(WindowId::Rainfall);
}

bool AppDesk::HasRight(Right right) {
  const auto refusal = CheckRight(right, program_.User().Level);
  if (refusal)
    dialogs_.MessageBox(std::string(refusal->Title), std::string(refusal->Text), BoxButtons::Ok,
                        BoxIcon::Warning);
  return !refusal;
}

// What has been entered for another chart is asked about first.
void AppDesk::OpenStoredChart(const std::string& instrument, Date chartDate) {
  if (!HasRight(Right::Database)) return;
  if (QWidget* open = Window(WindowId::Editor)) {
    open->close();
    if (Window(WindowId::Editor) != nullptr) return Open(WindowId::Editor);
  }
  program_.EditorSource = ChartSourceKind::Database;
  editorStart_ = EditorStart{instrument, chartDate};
  Open(WindowId::Editor);
}

// The staging area at its station; a new chart begins with the first day that has none.
void AppDesk::StageChart(const std::string& instrument, Date from, Date to) {
  if (Window(WindowId::Tasks) == nullptr) {
    for (const TreeNode& node : StationTree(program_.Lists))
      if (node.Kind == ListKind::Station &&
          EqualIgnoringCase(program_.Lists.Stations[static_cast<std::size_t>(node.Index)].InstrumentCode,
                            instrument))
        (void)program_.Settings.Set(setting::TaskStation, StationSetting(node.Text));
    (void)program_.Settings.Set(setting::TaskBegin, from);
    (void)program_.Settings.Set(setting::TaskEnd, std::min(from + 1, to));
  }
  Open(WindowId::Tasks);
}

void AppDesk::ConvertCharts(const std::string& instrument) {
  if (!HasRight(Right::Database)) return;
  if (auto* open = qobject_cast<frmPopulate*>(Window(WindowId::Populate))) {
    Open(WindowId::Populate);
    return open->ChooseInstrument(instrument);
  }
  populateInstrument_ = instrument;
  Open(WindowId::PrePop);
}

}  // namespace hyetex
