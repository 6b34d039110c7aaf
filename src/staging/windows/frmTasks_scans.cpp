// The task window's scans: which one belongs to the selected chart, and how the operator chooses it.
#include "core/files.h"
#include "core/numbers.h"
#include "core/text.h"
#include "digitizing/scan_placement.h"
#include "platform/beside.h"
#include "platform/qt_text.h"
#include "scan/scan_image.h"
#include "scan/scan_scale.h"
#include "staging/windows/frmTasks.h"

namespace hyetex {
namespace {

constexpr std::string_view ScanTitle = "Choosing a scan";
constexpr const char* ScanFilter = "Scans (*.png *.jpg *.jpeg *.tif *.tiff *.bmp *.pdf);;All files (*)";

}  // namespace

const ChartRecord* frmTasks::SelectedChart() const {
  const auto task = SelectedTask();
  return task ? &staging_.Tasks()[static_cast<std::size_t>(*task)] : nullptr;
}

void frmTasks::LookForScans() {
  const std::string folder = settings_.Get(setting::ScanFolder);
  if (folder.empty() || source_ != TraceSource::Scan) return;
  // A folder that cannot be read finds no scan, which is told chart by chart.
  (void)services_.Scans->LookIn(folder, staging_.Tasks());
}

frmTasks::ScanText frmTasks::ScanOfSelected() const {
  const ChartRecord* chart = SelectedChart();
  if (chart == nullptr) return {.Facts = "Select a chart"};
  const auto pick = services_.Scans->Of(*chart);
  if (!pick) return {.Facts = pick.error()};
  const auto facts = LookAtScan(pick->Path, pick->Page);
  if (!facts) return {.Facts = facts.error()};
  ScanText scan{.Name = std::string(BaseName(pick->Path)), .Facts = {}, .Ready = true};
  if (facts->Pages > 1)
    scan.Facts = "page " + ShortText(pick->Page + 1) + " of " + ShortText(facts->Pages) + ", ";
  scan.Facts += ShortText(facts->Width) + " x " + ShortText(facts->Height) + " pixels";
  if (facts->PixelsPerMm)
    scan.Facts += ", " + ScaleText({ScanScale::Source::Resolution, *facts->PixelsPerMm, 0});
  else
    scan.Facts += facts->Remark.empty() ? ", without a resolution" : ". " + facts->Remark;
  return scan;
}

// In the room that it has, so that no button moves away from under the pointer; all of it by the tool tip.
bool frmTasks::ShowScan() {
  const ScanText scan = ScanOfSelected();
  const QString name = ToQt(scan.Name), facts = ToQt(scan.Facts);
  labDetect->setText(name.isEmpty() ? facts
                                    : labDetect->fontMetrics().elidedText(name, Qt::ElideMiddle,
                                                                          labDetect->contentsRect().width()) +
                                          '\n' + facts);
  labDetect->setToolTip(name.isEmpty() ? facts : name + '\n' + facts);
  return scan.Ready;
}

// Where scans are looked for first: beside the charts, until another folder was chosen.
std::string frmTasks::ScanStart() const {
  const std::string folder = settings_.Get(setting::ScanFolder);
  return folder.empty() ? targetFolder_ : folder;
}

void frmTasks::ChooseScan() {
  const ChartRecord* chart = SelectedChart();
  if (chart == nullptr) return Tell(ScanTitle, "Select a chart of the list first.");
  const auto before = services_.Scans->Of(*chart);
  const auto path =
      dialogs_.ChooseFile(std::string(ScanTitle), before ? before->Path : ScanStart(), ScanFilter);
  if (!path) return;
  const auto facts = LookAtScan(*path);
  if (!facts) return Tell(ScanTitle, facts.error());
  ScanPick pick{*path, 0};
  if (facts->Pages > 1) {
    const auto page = ChoosePage(facts->Pages);
    if (!page) return;
    pick.Page = *page;
  }
  services_.Scans->Choose(*chart, std::move(pick));
  ShowDetection();
}

std::optional<int> frmTasks::ChoosePage(int pages) {
  std::string typed = "1";
  while (true) {
    const auto entered = dialogs_.InputBox(
        std::string(ScanTitle),
        "The file has " + ShortText(pages) + " pages. Which of them shows the chart ?", typed);
    if (!entered) return std::nullopt;
    typed = *entered;
    const int page = LeadingInt16(typed);
    if (page >= 1 && page <= pages) return page - 1;
    Tell(ScanTitle, "Type a number from 1 to " + ShortText(pages) + ".");
  }
}

void frmTasks::ChooseScanFolder() {
  const auto folder = dialogs_.ChooseFolder("Folder of the scans", ScanStart());
  if (!folder) return;
  if (const auto looked = services_.Scans->LookIn(*folder, staging_.Tasks()); !looked)
    return Tell(ScanTitle, looked.error());
  if (const auto kept = settings_.Set(setting::ScanFolder, *folder); !kept) Tell(ScanTitle, kept.error());
  ShowDetection();
}

// What traces them reads the task list, so all goes there first.
void frmTasks::TraceScans() {
  if (!HasTarget() || !SaveTasks()) return;
  LookForScans();
  leaving_ = services_.TraceScans(targetFolder_);
  if (leaving_) close();
}

std::shared_ptr<const ScanImage> frmTasks::OpenScan(const ChartRecord& task) {
  const auto pick = services_.Scans->Of(task);
  if (!pick) return Tell("Digitizing a strip chart", pick.error()), nullptr;
  auto opened = RunBeside([&] { return ScanImage::Open(pick->Path, pick->Page); });
  if (!opened) return Tell("Digitizing a strip chart", opened.error()), nullptr;
  return std::make_shared<const ScanImage>(*std::move(opened));
}

}  // namespace hyetex
