// The scan that the program traces by itself, and the doubts about it that a person works off: Tab leads from
// one to the next, Return confirms it, Escape goes back to tracing.
#include <algorithm>
#include <numeric>

#include "core/numbers.h"
#include "core/text.h"
#include "digitizing/drawing.h"
#include "digitizing/windows/frmHyetex.h"
#include "platform/beside.h"

namespace hyetex {
namespace {

constexpr const char* Title = "Tracing the scan";
constexpr double PartOfView = 0.4;  // that a doubtful stretch takes when it is looked at

struct Traced {
  ScanTrace Trace;
  std::optional<TracedSteps> Steps;
  std::string Trouble;
};

Traced TraceBeside(const ScanImage& image, const TraceWish& wish) {
  Traced traced;
  const auto tracer = ScanTracer::Open(image, wish);
  if (!tracer) return traced.Trouble = "The scan cannot be traced: " + tracer.error() + ".", traced;
  traced.Trace = tracer->Trace();
  if (traced.Trace.Verdict == TraceVerdict::NotTraced) {
    traced.Trouble =
        traced.Trace.Doubts.empty() ? "The scan cannot be traced." : traced.Trace.Doubts.front().Why;
    return traced;
  }
  auto steps = StepsOfTrace(traced.Trace, *tracer, image, wish);
  if (steps)
    traced.Steps = *std::move(steps);
  else
    traced.Trouble = "The scan cannot be traced: " + steps.error() + ".";
  return traced;
}

}  // namespace

void frmHyetex::TraceScan() {
  if (!isEnabled() || replaying_ || machine_.CommentIsOpen()) return;
  if (scan_ == nullptr) return shell_.ShowPanel(panel::Instruction, "There is no scan under the points");
  if (HasPoints() && !Redigitize()) return;
  LeaveCorrecting();
  TraceWish wish = WishOf(session_);
  // Where the operator has set the page, there the chart begins.
  const ChartPaper& page = session_.Line.Paper(0);
  if (IsCalibrated(page)) {
    const auto [x, y] = ImagePosition(scan_->Placement(), page.BottomLeftX, page.BottomLeftY);
    wish.Start = TraceWish::Place{x, y};
  }
  ++boxes_;
  const Traced traced = RunBeside([&] { return TraceBeside(scan_->Image(), wish); });
  --boxes_;
  if (!traced.Steps) return ShowMessage(Title, ShownText(traced.Trouble));
  TakeTrace(traced.Trace, *traced.Steps);
}

// The same way as what a hand presses, into the journal as well.
void frmHyetex::TakeTrace(const ScanTrace& trace, const TracedSteps& steps) {
  Journal journal{ScanTablet, steps.Steps, std::vector<int>(steps.Steps.size()), {}};
  std::iota(journal.Lines.begin(), journal.Lines.end(), 1);
  replaying_ = true;
  machine_.Escape();
  if (IsCalibrated(session_.Line.Paper(0))) machine_.SetPageAgain();
  const auto done = Replay(journal, machine_);
  replaying_ = false;
  scan_->LayByGrid(steps.Placement);
  review_ = TraceReview(done ? trace.Doubts : std::vector<TraceDoubt>{});
  setFocus();
  UpdateMenus();
  DrawGraph();
  if (!done) return ShowMessage(Title, "The line was taken up to here only: " + ShownText(done.error()));
  const std::string rain = RoundedText(session_.TotalDepth(session_.Line.LastPoint()), 2) + " mm traced. ";
  const std::size_t count = review_.Open().size();
  ShowInstruction(count == 0 ? rain + "Nothing is in doubt; look at it all the same before it is saved"
                  : count == 1
                      ? rain + "One place to look at: Tab leads there"
                      : rain + std::to_string(count) + " places to look at: Tab leads from one to the next");
}

// ---- Doubts

bool frmHyetex::focusNextPrevChild(bool next) {
  if (!hasFocus() || corrects_ || review_.Open().empty()) return FormWindow::focusNextPrevChild(next);
  review_.Step(next);
  ShowDoubt();
  return true;
}

// In the middle of the view, and as large as that allows.
void frmHyetex::ShowDoubt() {
  ShowInstruction(machine_.Instruction());
  const TraceDoubt* doubt = review_.Shown();
  if (doubt == nullptr) return ShowView();
  const Trace& line = session_.Line;
  const auto [first, last] = StretchOf(*doubt, line);
  DeskLayout& layout = machine_.Layout;
  if (last < first || !layout.Home) {
    machine_.ZoomOut();
    return ShowView();
  }
  const auto points =
      line.Points().subspan(static_cast<std::size_t>(first), static_cast<std::size_t>(last - first + 1));
  const auto [left, right] = std::ranges::minmax(points, {}, &DigitizedPoint::TrueX);
  const auto [low, high] = std::ranges::minmax(points, {}, &DigitizedPoint::Y);
  const double whole = HomeScale(layout), width = right.TrueX() - left.TrueX(), height = high.Y - low.Y;
  const double fitting = PartOfView * std::min(layout.ScaleWidth / std::max(width, 1.0),
                                               layout.ScaleHeight / std::max(height, 1.0));
  constexpr double Largest = 8;  // times the whole
  layout.Zoomed = true;
  ShowAround(layout, (left.TrueX() + right.TrueX()) / 2, (low.Y + high.Y) / 2,
             std::clamp(fitting, whole, Largest * whole));
  ShowZoomOutPicture(true);
  ShowView();
}

void frmHyetex::ConfirmDoubt() {
  review_.Confirm();
  if (review_.Open().empty()) {
    machine_.ZoomOut();
    ShowInstruction("Nothing is in doubt any more");
    return ShowView();
  }
  ShowDoubt();
}

void frmHyetex::PaintDoubts(Surface& surface, const DeskLayout& layout) const {
  for (const TraceDoubt& doubt : review_.Open()) {
    const auto [first, last] = StretchOf(doubt, session_.Line);
    DrawDoubt(session_.Line, first, last, &doubt == review_.Shown(), layout, surface);
  }
}

bool frmHyetex::MaySaveWithDoubts() {
  const std::size_t count = review_.Open().size();
  if (count == 0 || replaying_ || !HasPoints()) return true;
  return Ask(Title,
             (count == 1 ? std::string("One place of the line is")
                         : std::to_string(count) + " places of the line are") +
                 " still in doubt. Save the chart all the same ?",
             BoxButtons::YesNo, BoxIcon::Question) == BoxAnswer::Yes;
}

}  // namespace hyetex
