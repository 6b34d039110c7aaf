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
  ScanTracer Tracer;
  ScanTrace Trace;
  TracedSteps Steps;
};

Result<Traced> TraceBeside(const ScanImage& image, const TraceWish& wish) {
  auto tracer = ScanTracer::Open(image, wish);
  if (!tracer) return Failure("The scan cannot be traced: " + tracer.error() + ".");
  ScanTrace trace = tracer->Trace();
  if (trace.Verdict == TraceVerdict::NotTraced)
    return Failure(trace.Doubts.empty() ? std::string("The scan cannot be traced.")
                                        : trace.Doubts.front().Why);
  auto steps = StepsOfTrace(trace, *tracer, image, wish);
  if (!steps) return Failure("The scan cannot be traced: " + steps.error() + ".");
  return Traced{*std::move(tracer), std::move(trace), *std::move(steps)};
}

}  // namespace

void frmHyetex::TraceScan() {
  if (!isEnabled() || replaying_ || machine_.CommentIsOpen()) return;
  if (scan_ == nullptr) return shell_.ShowPanel(panel::Instruction, "There is no scan under the points");
  TraceWish wish = WishOf(session_.Line.Scales().ChartType, session_.Chart);
  // Where the operator has set the page, there the chart begins.
  const ChartPaper& page = session_.Line.Paper(0);
  if (IsCalibrated(page)) {
    const auto [x, y] = ImagePosition(scan_->Placement(), page.BottomLeftX, page.BottomLeftY);
    wish.Start = TraceWish::Place{x, y};
  }
  ++boxes_;
  auto traced = RunBeside([&] { return TraceBeside(scan_->Image(), wish); });
  --boxes_;
  if (!traced) return ShowMessage(Title, ShownText(traced.error()));
  // Only for a line that there is: what a hand has traced is not given up for none.
  if (HasPoints() && !Redigitize()) return;
  LeaveCorrecting();
  tracer_ = std::move(traced->Tracer);
  TakeTrace(traced->Trace, traced->Steps);
}

// The same way as what a hand presses, into the journal as well.
void frmHyetex::TakeTrace(const ScanTrace& trace, const TracedSteps& steps) {
  Journal journal{ScanTablet, steps.Steps, std::vector<int>(steps.Steps.size()), {}};
  std::iota(journal.Lines.begin(), journal.Lines.end(), 1);
  // First of all, so that a breakdown leaves no line without its doubts.
  for (const std::string& note : NotesOfTrace(trace)) journal_.Note(note);
  replaying_ = true;
  machine_.SetPageAgain();  // whatever was waited for, a first corner too
  const auto done = Replay(journal, machine_);
  replaying_ = false;
  scan_->LayByGrid(steps.Placement);
  review_ = TraceReview(trace.Doubts);
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

// All of them once more, also those that have been confirmed.
void frmHyetex::ResumeDoubts(const std::string& journal) {
  ScanTrace trace;
  trace.Doubts = DoubtsOfJournal(journal);
  if (trace.Doubts.empty()) return;
  trace.Verdict = TraceVerdict::ToReview;
  for (const std::string& note : NotesOfTrace(trace)) journal_.Note(note);
  review_ = TraceReview(std::move(trace.Doubts));
}

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
      line.Points().first(static_cast<std::size_t>(last) + 1).subspan(static_cast<std::size_t>(first));
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

// Between the points at its two ends, which the operator has put right before.
void frmHyetex::RetraceDoubt() {
  const TraceDoubt* doubt = review_.Shown();
  const auto [first, last] = doubt != nullptr ? StretchOf(*doubt, session_.Line) : std::pair(0, -1);
  if (!tracer_ || last <= first || session_.Line.CurrentPaper() > 0)
    return shell_.ShowPanel(panel::Instruction, "Tab leads to a stretch that can be traced again");
  const auto places = TraceBetween(*tracer_, session_.Line, first, last);
  const auto put = places ? PutBetween(first, last, *places) : Result<void>(Failure(places.error()));
  if (!put)
    return shell_.ShowPanel(panel::Instruction, "This stretch cannot be traced again: " + put.error());
  ShowView();
}

// All of them, or the line stays as it was.
Result<void> frmHyetex::PutBetween(int first, int last,
                                   const std::vector<std::pair<double, double>>& places) {
  int steps = 0;
  Result<void> done;
  for (int point = last - 1; done && point > first; --point, ++steps) done = machine_.DeletePoint(point);
  for (std::size_t i = places.size(); done && i-- > 0; ++steps)
    done = machine_.InsertPoint(first + 1, places[i].first, places[i].second);
  if (!done)
    while (--steps > 0) machine_.Undo();
  return done;
}

void frmHyetex::PaintDoubts(Surface& surface, const DeskLayout& layout) const {
  const auto draw = [&](const TraceDoubt& doubt, bool shown) {
    const auto [first, last] = StretchOf(doubt, session_.Line);
    DrawDoubt(session_.Line, first, last, shown, layout, surface);
  };
  for (const TraceDoubt& doubt : review_.Open()) draw(doubt, false);
  if (const TraceDoubt* shown = review_.Shown()) draw(*shown, true);
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
