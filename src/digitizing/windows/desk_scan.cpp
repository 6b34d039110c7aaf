#include "digitizing/windows/desk_scan.h"

#include <QPointer>
#include <cmath>
#include <span>

#include "core/files.h"
#include "core/numbers.h"
#include "core/text.h"
#include "digitizing/view.h"
#include "digitizing/windows/units.h"
#include "platform/beside.h"
#include "platform/qt_text.h"
#include "scan/scan_view.h"

namespace hyetex {
namespace {

constexpr const char* ScaleTitle = "The scale of the scan";
constexpr int SettledMs = 400;

std::uint32_t Pixel(Rgb colour) {
  return 0xff000000U | static_cast<std::uint32_t>(colour.Red) << 16 |
         static_cast<std::uint32_t>(colour.Green) << 8 | static_cast<std::uint32_t>(colour.Blue);
}

}  // namespace

DeskScan::DeskScan(std::shared_ptr<const ScanImage> image, ActionMachine& machine, MouseHand& hand,
                   Dialogs& dialogs, std::string programFolder, QObject* parent)
    : QObject(parent),
      image_(std::move(image)),
      machine_(machine),
      hand_(hand),
      dialogs_(dialogs),
      programFolder_(std::move(programFolder)),
      look_(new ScanControls) {
  look_->ShowName(std::string(BaseName(image_->Path())));
  look_->OfferResolution(image_->PixelsPerMm().has_value());
  connect(look_, &ScanControls::LookChanged, this, [this](const ScanLook& look) {
    shown_ = look;
    emit Changed();
  });
  connect(look_, &ScanControls::AngleChosen, this, &DeskScan::Turn);
  connect(look_, &ScanControls::ScaleChosen, this, &DeskScan::ChooseScale);
  connect(look_, &ScanControls::TraceWanted, this, &DeskScan::TraceWanted);

  settled_.setSingleShot(true);
  settled_.setInterval(SettledMs);
  connect(&settled_, &QTimer::timeout, this, &DeskScan::LookAtFile);
  connect(&watcher_, &QFileSystemWatcher::fileChanged, &settled_, qOverload<>(&QTimer::start));
  watcher_.addPath(ToQt(image_->Path()));
}

ScanFacts DeskScan::Facts() const {
  ScanFacts facts;
  facts.Width = image_->Width();
  facts.Height = image_->Height();
  facts.PixelsPerMm = image_->PixelsPerMm();
  return facts;
}

// ---- Where it lies

void DeskScan::Begin() {
  const auto remembered = RememberedScale(programFolder_, ChartType());
  if (remembered) typedMm_ = remembered->Mm;
  if (const auto scale = InitialScale(remembered, Facts()); scale && Lay(*scale)) return;
  // Somewhere on the sheet, so that it can be measured.
  const TabletExtents& tablet = machine_.CurrentSession().Line.Scales().Tablet;
  const double fitting = std::max({image_->Width() / static_cast<double>(tablet.TabletWidthMm),
                                   image_->Height() / static_cast<double>(tablet.TabletHeightMm), 1e-3});
  if (const auto laid = LaidOnSheet(tablet, image_->Width(), image_->Height(), fitting)) Place(*laid);
  look_->ShowScale("Its scale is not known");
  GiveHandBack();
  QTimer::singleShot(0, this, &DeskScan::AskForScale);
}

void DeskScan::Resume(const ScanPlacement& placement) {
  const double unitsPerMm = machine_.CurrentSession().Line.Scales().Tablet.UnitsPerMmVertical();
  scale_ = ScanScale{};
  scale_->PixelsPerMm = unitsPerMm / placement.UnitsPerPx;
  const auto remembered = RememberedScale(programFolder_, ChartType());
  const bool same = remembered && std::abs(remembered->PixelsPerMm / scale_->PixelsPerMm - 1) < 1e-6;
  if (same) scale_ = remembered;
  look_->ShowScale(same ? ScaleText(*scale_)
                        : RoundedText(scale_->PixelsPerMm * MmPerInch, 1) + " dpi, as when it was begun");
  Place(placement);
  Keep();
}

void DeskScan::LayByGrid(const ScanPlacement& placement, double pixelsPerMm) {
  scale_ = ScanScale{};
  scale_->PixelsPerMm = pixelsPerMm;
  look_->ShowScale(RoundedText(pixelsPerMm * MmPerInch, 1) + " dpi by the printed grid");
  Place(placement);
  Keep();
  GiveHandBack();
}

bool DeskScan::Lay(const ScanScale& scale) {
  const TabletExtents& tablet = machine_.CurrentSession().Line.Scales().Tablet;
  const auto laid = LaidOnSheet(tablet, image_->Width(), image_->Height(), scale.PixelsPerMm);
  if (!laid) return Tell(laid.error()), false;
  scale_ = scale;
  look_->ShowScale(ScaleText(scale));
  Place(TurnAboutCentre(*laid, image_->Width(), image_->Height(), placement_.AngleDegrees));
  Keep();
  return true;
}

void DeskScan::Place(const ScanPlacement& placement) {
  const bool sameSize = placement.UnitsPerPx == placement_.UnitsPerPx;
  placement_ = placement;
  placement_.Path = image_->Path();
  placement_.Page = image_->Page();
  placement_.Sha256 = image_->Sha256();
  look_->ShowAngle(placement_.AngleDegrees);
  DeskLayout& layout = machine_.Layout;
  const double middleX = layout.TabletX(layout.ScaleWidth / 2),
               middleY = layout.TabletY(layout.ScaleHeight / 2);
  layout.Home = AreaOf(placement_, image_->Width(), image_->Height());
  if (layout.Zoomed && sameSize)
    ShowAround(layout, middleX, middleY, layout.ScaleX);
  else
    ShowWhole(layout, machine_.CurrentSession().Line.Scales().Tablet);
  emit Changed();
}

void DeskScan::Turn(double degrees) {
  if (!WhyFixed().empty()) return look_->ShowAngle(placement_.AngleDegrees);
  Place(TurnAboutCentre(placement_, image_->Width(), image_->Height(), degrees - placement_.AngleDegrees));
  if (scale_) Keep();
}

// Into the session and its journal.
void DeskScan::Keep() {
  if (machine_.CurrentSession().Scan == placement_) return;
  if (const auto placed = machine_.PlaceScan(placement_); !placed) Tell(placed.error());
}

// What has been pressed on the scan as it lies would no longer lie on it.
std::string DeskScan::WhyFixed() const {
  const Trace& line = machine_.CurrentSession().Line;
  if (line.LastPoint() >= 0) return "Points have been traced on the scan as it lies.";
  if (machine_.State().Action != action::PageLeftCorner)
    return "The page has been set on the scan as it lies. Definitions, Set the Page Again frees it.";
  return "";
}

void DeskScan::SessionChanged() { look_->ShowFixed(WhyFixed()); }

// ---- Its scale

void DeskScan::ChooseScale(ScanScale::Source by) {
  switch (by) {
    case ScanScale::Source::Marks:
      return Measure();
    case ScanScale::Source::PaperWidth:
      return AskForWidth();
    case ScanScale::Source::Resolution:
      if (const auto perMm = image_->PixelsPerMm())
        Take(ScanScale{ScanScale::Source::Resolution, *perMm, 0, *perMm});
  }
}

void DeskScan::AskForScale() {
  if (scale_ || measuring_) return;
  const auto facts = LookAtScan(image_->Path(), image_->Page());
  const std::string why = facts && !facts->Remark.empty()
                              ? facts->Remark
                              : "The image does not say how many of its pixels a millimetre has.";
  const BoxAnswer answer = dialogs_.MessageBox(ScaleTitle,
                                               ShownText(why) +
                                                   "\n\nDo you know how far two marks on the paper are "
                                                   "apart, such as two hour lines ?\n\nYes lets you "
                                                   "click them. No asks for the width of the whole paper.",
                                               BoxButtons::YesNoCancel, BoxIcon::Question);
  if (answer == BoxAnswer::Yes) Measure();
  if (answer == BoxAnswer::No) AskForWidth();
}

void DeskScan::Measure() {
  if (!WhyFixed().empty()) return;
  measuring_ = true;
  marks_.At.clear();
  hand_.SetTool(&marks_);
  emit Instruction("Click the first of two marks whose distance you know; the farther apart, the better");
  emit Changed();
}

void DeskScan::MarkTool::Press(double x, double y) {
  At.emplace_back(x, y);
  emit Owner.Instruction("Click the second mark");
  emit Owner.Changed();
}

// The box comes up once the button is let go.
void DeskScan::MarkTool::Release(double, double) {
  if (At.size() == 2) QTimer::singleShot(0, &Owner, &DeskScan::Measured);
}

void DeskScan::NoScaleTool::Release(double, double) { QTimer::singleShot(0, &Owner, &DeskScan::AskForScale); }

void DeskScan::Measured() {
  if (!measuring_ || marks_.At.size() != 2) return;
  const auto [x1, y1] = ImagePosition(placement_, marks_.At[0].first, marks_.At[0].second);
  const auto [x2, y2] = ImagePosition(placement_, marks_.At[1].first, marks_.At[1].second);
  const auto mm = AskForMm("The distance between the two marks, in mm:");
  Escape();
  if (mm) Take(ScaleByMarks(x1, y1, x2, y2, *mm));
}

bool DeskScan::Escape() {
  if (!std::exchange(measuring_, false)) return false;
  marks_.At.clear();
  GiveHandBack();
  emit Instruction(machine_.Instruction());
  emit Changed();
  return true;
}

void DeskScan::AskForWidth() {
  if (!WhyFixed().empty()) return;
  const auto mm = AskForMm("The width of the paper, which fills the image from side to side, in mm:");
  if (!mm) return;
  const bool onItsSide = std::abs(std::sin(placement_.AngleDegrees * M_PI / 180)) > 0.7;
  Take(ScaleByPaperWidth(onItsSide ? image_->Height() : image_->Width(), *mm));
}

std::optional<double> DeskScan::AskForMm(const std::string& prompt) {
  std::string typed = typedMm_ > 0 ? ShortText(typedMm_) : "";
  while (true) {
    const auto entered = dialogs_.InputBox(ScaleTitle, prompt, typed);
    if (!entered) return std::nullopt;
    typed = *entered;
    if (const auto mm = TypedNumber(typed); mm && *mm > 0) {
      typedMm_ = *mm;
      return mm;
    }
    Tell("Type a length in mm, as 200.");
  }
}

void DeskScan::Take(const Result<ScanScale>& scale) {
  if (!scale) return Tell(scale.error());
  ScanScale taken = *scale;
  taken.FilePixelsPerMm = image_->PixelsPerMm().value_or(0);
  if (!Lay(taken)) return;
  GiveHandBack();
  emit Instruction(machine_.Instruction());
  if (const auto kept = RememberScale(programFolder_, ChartType(), taken); !kept)
    Tell("The scale is not remembered for the next scan: " + kept.error());
}

void DeskScan::GiveHandBack() { hand_.SetTool(scale_ ? nullptr : &noScale_); }

// ---- How it is shown

void DeskScan::SetLook(const ScanLook& look) {
  shown_ = look;
  emit Changed();
}

void DeskScan::Paint(QImage& picture, const DeskLayout& layout, Rgb around) const {
  const double unitsPerPixel = UnitsPerPixel / picture.devicePixelRatio();
  const auto count = static_cast<std::size_t>(picture.width()) * static_cast<std::size_t>(picture.height());
  image_->Render(ScanWindowOf(layout, placement_, unitsPerPixel), shown_, Pixel(around),
                 std::span(reinterpret_cast<std::uint32_t*>(picture.bits()), count), picture.width(),
                 picture.height());
}

// ---- The file

void DeskScan::LookAtFile() {
  const std::string& path = image_->Path();
  constexpr const char* goesOn = " The session goes on with what was opened.";
  if (!FileExists(path)) return look_->ShowTrouble(std::string("The file is gone.") + goesOn);
  if (!watcher_.files().contains(ToQt(path))) watcher_.addPath(ToQt(path));
  const QPointer<DeskScan> still(this);
  const auto now = RunBeside([path] { return Sha256OfFile(path); });
  if (!still) return;  // the session has ended meanwhile
  if (!now)
    look_->ShowTrouble(now.error() + "." + goesOn);
  else
    look_->ShowTrouble(*now == image_->Sha256() ? "" : std::string("The file has been changed.") + goesOn);
}

void DeskScan::Tell(const std::string& text) {
  dialogs_.MessageBox(ScaleTitle, ShownText(text), BoxButtons::Ok, BoxIcon::Warning);
}

}  // namespace hyetex
