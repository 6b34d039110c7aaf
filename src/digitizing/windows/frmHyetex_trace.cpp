// The scan that the program traces by itself, and the doubts about it that a person works off: Tab leads from
// one to the next, Return confirms it, Escape goes back to tracing. What was traced before this session, in a
// box of scans, is taken up in the same way.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "core/files.h"
#include "core/numbers.h"
#include "core/text.h"
#include "digitizing/drawing.h"
#include "digitizing/windows/frmHyetex.h"
#include "platform/beside.h"
#include "platform/shown_progress.h"
#include "scan/blank_form.h"

namespace hyetex {
namespace {

constexpr const char* Title = "Tracing the scan";
constexpr double PartOfView = 0.4;  // that a doubtful stretch takes when it is looked at

struct Traced {
  ScanTracer Tracer;
  ScanTrace Trace;
  TracedSteps Steps;
  bool IsOneOfTwo = false;
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
  const bool two = IsOneOfTwoLines(trace, image, wish);
  return Traced{*std::move(tracer), std::move(trace), *std::move(steps), two};
}

}  // namespace

// With a bar, and a button and Escape to cancel it; nothing else is heard meanwhile.
template <typename Work>
auto frmHyetex::BesideScan(Work work) -> std::optional<decltype(work())> {
  ++boxes_;
  shell_.ShowPanel(panel::Instruction, "The scan is being traced. Escape cancels it");
  auto outcome = [&] {
    ShownProgress progress(scan_->Panel()->TraceBar(), scan_->Panel()->TraceCancel());
    return RunBesideUntil(progress, std::move(work));
  }();
  --boxes_;
  setFocus();
  ShowInstruction(machine_.Instruction());
  return outcome;
}

// Where the page has been set, there the chart begins; but not where only the program has set it, which may
// be in doubt of the hour.
Result<TraceWish> frmHyetex::KnownOfChart() const {
  TraceWish wish = WishOf(session_.Line.Scales().ChartType, session_.Chart);
  auto form = KeptBlankForm(settings_.Folder(), wish.Paper.Name);
  if (!form) return Failure(form.error());
  wish.Form = *std::move(form);
  const ChartPaper& page = session_.Line.Paper(0);
  if (!IsCalibrated(page)) return wish;
  const auto [x, y] = ImagePosition(scan_->Placement(), page.BottomLeftX, page.BottomLeftY);
  if (tracer_) {
    const TraceWish::Place own = tracer_->InImage(0, 0);
    if (std::hypot(x - own.X, y - own.Y) < 1) return wish;
  }
  wish.Start = TraceWish::Place{x, y};
  return wish;
}

// The operator may think better of it: then nothing has changed.
void frmHyetex::TraceScan() {
  if (!isEnabled() || boxes_ > 0 || replaying_ || machine_.CommentIsOpen()) return;
  if (scan_ == nullptr) return shell_.ShowPanel(panel::Instruction, "There is no scan under the points");
  auto known = KnownOfChart();
  if (!known) return ShowMessage(Title, ShownText(known.error()));
  TraceWish wish = *std::move(known);
  const auto trace = [&] {
    return BesideScan([scan = scan_->SharedImage(), wish] { return TraceBeside(*scan, wish); });
  };
  auto traced = trace();
  if (traced && *traced && (*traced)->IsOneOfTwo) {
    const BoxAnswer which = Ask(
        Title,
        "There are two lines on this sheet, as when it was left on its drum for another turn. Do you want "
        "to trace the one that was written first ?\n\nNo traces the other one.",
        BoxButtons::YesNoCancel, BoxIcon::Question);
    if (which == BoxAnswer::Cancel) return ShowInstruction(machine_.Instruction());
    wish.Line = which == BoxAnswer::Yes ? 1 : 2;
    traced = trace();
  }
  if (!traced) return shell_.ShowPanel(panel::Instruction, "The tracing was cancelled");
  if (!*traced) return ShowMessage(Title, ShownText(traced->error()));
  // Only for a line that there is: what a hand has traced is not given up for none.
  if (HasPoints() && !Redigitize()) return;
  LeaveCorrecting();
  tracer_ = std::move((*traced)->Tracer);
  TakeTrace((*traced)->Trace, (*traced)->Steps);
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
  TellOfDoubts(true);
}

void frmHyetex::TellOfDoubts(bool alsoOfNone) {
  if (review_.Open().empty() && !alsoOfNone) return;
  const std::string rain = RoundedText(session_.TotalDepth(session_.Line.LastPoint()), 2) + " mm traced. ";
  const std::size_t count = review_.Open().size();
  ShowInstruction(count == 0 ? rain + "Nothing is in doubt; look at it all the same before it is saved"
                  : count == 1
                      ? rain + "One place to look at: Tab leads there"
                      : rain + std::to_string(count) + " places to look at: Tab leads from one to the next");
}

// ---- What was traced before

// Where the session has not begun already with what a breakdown left.
void frmHyetex::OpenEarlierTrace() {
  const bool onScan = HasMouse() && (openedScan_ != nullptr || earlier_.IsWanted);
  if (!onScan || !earlier_.Find || HasPoints() || session_.Scan) return;
  const auto text = earlier_.Find();
  if (!text) return;
  if (!earlier_.IsWanted &&
      Ask(Title,
          "The program has traced this chart's scan, and is in doubt about some of it. Do you want to look "
          "that trace over ?\n\nNo begins the chart anew.",
          BoxButtons::YesNo, BoxIcon::Question) != BoxAnswer::Yes)
    return;
  const Journal journal = ReadJournal(*text);
  replaying_ = true;
  const auto done = Replay(journal, machine_);
  replaying_ = false;
  ResumeDoubts(*text);
  DrawGraph();
  if (journal.Error || !done)
    return ShowMessage(Title, "Only a part of what was traced could be brought back: " +
                                  ShownText(journal.Error ? *journal.Error : done.error()));
  constexpr double Same = 0.02;  // of the rain, and as many tenths of a millimetre
  const auto note = NoteOfJournal(*text);
  const double rain = session_.TotalDepth(session_.Line.LastPoint());
  if (note && note->RainMm && std::abs(*note->RainMm - rain) > Same * (*note->RainMm + 5))
    ShowMessage(Title, RoundedText(*note->RainMm, 2) +
                           " mm were traced, but on this chart type the line makes " + RoundedText(rain, 2) +
                           " mm. Look whether it is the chart's type, " +
                           ShownText(session_.Line.Scales().ChartType.Name) + ".");
}

// What stands on the disk of a session that was saved is worth as much as a trace without a doubt.
void frmHyetex::KeepReview() {
  if (!earlier_.Keep || journal_.Trouble()) return;
  const auto text = ReadWholeFile(JoinPath(settings_.Folder(), JournalFileName), MostJournalBytes);
  const auto kept = text ? earlier_.Keep(*text, session_.TotalDepth(session_.Line.LastPoint()))
                         : Result<void>(Failure(text.error()));
  if (!kept)
    ShowMessage(Title,
                "The chart is saved, but not that its trace was looked over: " + ShownText(kept.error()));
}

Result<ScanTracer> frmHyetex::OpenTracer() {
  const auto wish = KnownOfChart();
  if (!wish) return Failure(wish.error());
  auto opened =
      BesideScan([scan = scan_->SharedImage(), wish = *wish] { return ScanTracer::Open(*scan, wish); });
  if (!opened) return Failure("the tracing was cancelled");
  return *std::move(opened);
}

// ---- Doubts

// All of them once more, also those that have been confirmed.
void frmHyetex::ResumeDoubts(const std::string& journal) {
  ScanTrace trace;
  trace.Doubts = DoubtsOfJournal(journal);
  if (trace.Doubts.empty()) return;
  trace.Verdict = TraceVerdict::ToReview;
  if (const auto note = NoteOfJournal(journal)) trace.RainMm = note->RainMm.value_or(0);
  for (const std::string& note : NotesOfTrace(trace)) journal_.Note(note);
  review_ = TraceReview(std::move(trace.Doubts));
}

// From one doubt to the next, and behind the last one on to the panel, as ever.
bool frmHyetex::focusNextPrevChild(bool next) {
  if (!hasFocus() || review_.Open().empty()) return FormWindow::focusNextPrevChild(next);
  const bool looked = review_.Shown() != nullptr;
  if (review_.Step(next)) {
    ShowDoubt();
    return true;
  }
  if (looked) LeaveDoubts();
  return FormWindow::focusNextPrevChild(next);
}

// Back to what the mouse did before.
void frmHyetex::LeaveDoubts() {
  review_.Leave();
  if (correctsDoubt_) return LeaveCorrecting();
  ShowInstruction(machine_.Instruction());
  ShowView();
}

void frmHyetex::UpdateDoubts() {
  if (replaying_) return;
  stretches_.clear();
  for (const TraceDoubt& doubt : review_.Open()) stretches_.push_back(StretchOf(doubt, session_.Line));
}

// In the middle of the view, and as large as that allows.
// A press there must not trace a point at the line's end, so it corrects.
void frmHyetex::ShowDoubt() {
  if (review_.Shown() != nullptr && !corrects_) {
    corrects_ = correctsDoubt_ = true;
    hand_->SetTool(&correcting_);
    ShowModes();
  }
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
  UpdateDoubts();
  if (review_.Open().empty()) {
    LeaveDoubts();
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
  if (scan_ == nullptr || last <= first || session_.Line.CurrentPaper() > 0)
    return shell_.ShowPanel(panel::Instruction, "Tab leads to a stretch that can be traced again");
  if (!tracer_) {  // what was traced before this session
    auto opened = OpenTracer();
    if (!opened)
      return shell_.ShowPanel(panel::Instruction, "This stretch cannot be traced again: " + opened.error());
    tracer_ = *std::move(opened);
  }
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
  if (stretches_.size() != review_.Open().size()) return;  // the chart is being brought back
  const TraceDoubt* shown = review_.Shown();
  for (const bool last : {false, true})  // the one that is looked at over the others
    for (std::size_t i = 0; i < stretches_.size(); ++i)
      if ((&review_.Open()[i] == shown) == last)
        DrawDoubt(session_.Line, stretches_[i].first, stretches_[i].second, last, layout, surface);
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
