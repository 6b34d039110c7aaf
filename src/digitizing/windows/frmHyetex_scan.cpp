// The scan under the trace: the one that was chosen, or the one that an unfinished chart was begun on.
#include "core/text.h"
#include "digitizing/windows/frmHyetex.h"
#include "platform/beside.h"

namespace hyetex {
namespace {

constexpr const char* LostTitle = "The scan of the unfinished chart";
constexpr const char* ScanFilter = "Scans (*.png *.jpg *.jpeg *.tif *.tiff *.bmp *.pdf);;All files (*)";

}  // namespace

void frmHyetex::UseScan(std::shared_ptr<const ScanImage> scan) {
  openedScan_ = std::move(scan);
  overlay_ = HasMouse() && openedScan_ == nullptr;  // an empty page has no other hours and depths
}

void frmHyetex::BeginScan() {
  if (session_.Scan) return FindScanAgain();
  if (!openedScan_) return;
  LayScan(openedScan_);
  scan_->Begin();
}

void frmHyetex::LayScan(std::shared_ptr<const ScanImage> image) {
  scan_ = new DeskScan(std::move(image), machine_, *hand_, dialogs_, settings_.Folder(), this);
  panel_->Add(scan_->Panel());
  if (!openedScan_) overlay_ = false;  // which was that of an empty page
  connect(scan_, &DeskScan::Changed, this, &frmHyetex::ShowView);
  connect(scan_, &DeskScan::TraceAsked, this, &frmHyetex::TraceScan);
  connect(scan_, &DeskScan::Instruction, this, [this](std::string_view text) { ShowInstruction(text); });
  picGraph_->SetBelow(
      [this](QImage& picture) { scan_->Paint(picture, machine_.Layout, picGraph_->Background()); });
}

// The file may have gone, moved or changed since. Whatever becomes of it, the points stay.
void frmHyetex::FindScanAgain() {
  const ScanPlacement placement = *session_.Scan;
  const auto isTheOne = [&](const ScanImage& image) {
    return image.Sha256() == placement.Sha256 && image.Page() == placement.Page;
  };
  std::string path = placement.Path;
  std::shared_ptr<const ScanImage> found;
  if (openedScan_ && isTheOne(*openedScan_)) found = openedScan_;
  while (!found) {
    auto opened = RunBeside([&] { return ScanImage::Open(path, placement.Page); });
    if (opened && isTheOne(*opened)) {
      found = std::make_shared<const ScanImage>(*std::move(opened));
      break;
    }
    const std::string trouble =
        opened ? path + " is not the scan that the chart was begun on, or has been changed since."
               : opened.error();
    const std::string question =
        ShownText(trouble) + "\n\nDo you want to choose the scan where it is now ?\n\n" +
        (opened ? "No takes this one all the same: look whether the points lie on its line. Cancel goes on "
                  "without a scan under the points."
                : "No goes on without a scan under the points.");
    const BoxAnswer answer =
        Ask(LostTitle, question, opened ? BoxButtons::YesNoCancel : BoxButtons::YesNo, BoxIcon::Question);
    if (answer == BoxAnswer::No && opened) found = std::make_shared<const ScanImage>(*std::move(opened));
    if (answer != BoxAnswer::Yes) break;
    const auto chosen = dialogs_.ChooseFile(LostTitle, path, ScanFilter);
    if (!chosen) break;
    path = *chosen;
  }
  if (!found) return;
  LayScan(std::move(found));
  scan_->Resume(placement);
}

}  // namespace hyetex
