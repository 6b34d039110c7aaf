// The digitizing window where a scan traces itself: its steps go through the action machine as the mouse's
// do, and the operator goes through what is doubtful.
#include <QPointer>
#include <cmath>

#include "core/text.h"
#include "digitizing/view.h"
#include "digitizing/windows/frmHyetex.h"
#include "platform/beside.h"

namespace hyetex {
namespace {

constexpr const char* TraceTitle = "Trace this scan";
constexpr double HoursADay = 24;
constexpr Rgb Doubtful{225, 40, 30}, LookedAt{240, 150, 0};

struct Traced {
  ScanTrace Trace;
  Result<TracedSteps> Steps = Failure("");
};

Traced TraceBeside(const ScanImage& image, const TraceWish& wish) {
  const auto tracer = ScanTracer::Open(image, wish);
  if (!tracer) return {{}, Failure("Not traced: " + tracer.error() + ".")};
  Traced traced{tracer->Trace()};
  traced.Steps = StepsOfTrace(traced.Trace, *tracer, image, wish);
  if (traced.Trace.Verdict == TraceVerdict::NotTraced && !traced.Trace.Doubts.empty())
    traced.Steps = Failure("Not traced: " + traced.Trace.Doubts.front().Why);
  return traced;
}

}  // namespace

void frmHyetex::TraceScan() {
  if (scan_ == nullptr || replaying_ || !isEnabled()) return;
  if (const std::string fixed = scan_->WhyFixed(); !fixed.empty())
    return ShowMessage(TraceTitle, fixed + " Give the points up first, by Redigitize.");
  LeaveCorrecting();
  const ChartRecord& chart = session_.Chart;
  const TraceWish wish{.Paper = session_.Line.Scales().ChartType,
                       .StartHour = (chart.StartTime - std::floor(chart.StartTime)) * HoursADay,
                       .Hours = (chart.EndTime - chart.StartTime) * HoursADay,
                       .EyedDepth = chart.EyedDepth,
                       .GageDepth = chart.ManualDepth,
                       .Start = {}};
  ShowInstruction("Tracing the scan ...");
  const QPointer<frmHyetex> still(this);
  const Traced traced = RunBeside([image = scan_->SharedImage(), wish] { return TraceBeside(*image, wish); });
  if (!still) return;
  if (!traced.Steps) {
    ShowInstruction(machine_.Instruction());
    return ShowMessage(TraceTitle, ShownText(traced.Steps.error()));
  }
  PressTrace(*traced.Steps, traced.Trace.PixelsPerMm);
  doubts_.Begin(PlacesOfDoubts(traced.Trace, wish));
  setFocus();
  ShowView();
  const int open = doubts_.Open();
  ShowInstruction(open == 0   ? "The scan is traced without a doubt"
                  : open == 1 ? "The scan is traced with one doubt; Tab leads to it"
                              : "The scan is traced with " + std::to_string(open) +
                                    " doubts; Tab leads from one to the next");
}

void frmHyetex::PressTrace(const TracedSteps& steps, double pixelsPerMm) {
  scan_->LayByGrid(steps.Placement, pixelsPerMm);
  Journal journal;
  journal.Tablet = ScanTablet;
  for (const JournalEvent& step : steps.Steps)
    if (step.What != JournalEvent::Kind::Scan) journal.Events.push_back(step);
  for (int line = 1; line <= static_cast<int>(journal.Events.size()); ++line) journal.Lines.push_back(line);
  replaying_ = true;
  const auto pressed = Replay(journal, machine_);
  replaying_ = false;
  DrawGraph();
  UpdateMenus();
  if (!pressed)
    ShowMessage(TraceTitle, "Only a part of the line could be pressed: " + ShownText(pressed.error()));
}

// ---- What is doubtful

bool frmHyetex::focusNextPrevChild(bool next) {
  if (!hasFocus() || !HasPoints() || !doubts_.Go(next)) return FormWindow::focusNextPrevChild(next);
  ShowDoubt();
  return true;
}

bool frmHyetex::DoubtKey(const QKeyEvent& event) {
  if (event.key() == Qt::Key_T && event.modifiers() == Qt::NoModifier && scan_ != nullptr) {
    TraceScan();
    return true;
  }
  if ((event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) || !HasPoints() || corrects_)
    return false;
  if (!doubts_.Confirm()) return false;
  ShowDoubt();
  return true;
}

void frmHyetex::ShowDoubt() {
  const DoubtPlace* doubt = doubts_.Current();
  if (doubt == nullptr) {
    ShowView();
    return ShowInstruction("All doubts are confirmed; Ctrl+S saves the chart");
  }
  DeskLayout& layout = machine_.Layout;
  if (doubt->WholeChart)
    ShowWhole(layout, session_.Line.Scales().Tablet);
  else
    ShowAround(layout, (doubt->Left + doubt->Right) / 2, (doubt->Bottom + doubt->Top) / 2,
               std::min(0.9 * layout.ScaleHeight / (doubt->Top - doubt->Bottom),
                        0.6 * layout.ScaleWidth / std::max(1.0, doubt->Right - doubt->Left)));
  ShowView();
  ShowInstruction(doubts_.Prompt());
}

void frmHyetex::PaintDoubts(Surface& surface, const DeskLayout& layout) const {
  if (!HasPoints()) return;
  constexpr double Least = 60;
  for (const DoubtPlace& doubt : doubts_.Places()) {
    if (doubt.Confirmed || doubt.WholeChart) continue;
    const double left = layout.ScreenX(doubt.Left), top = layout.ScreenY(doubt.Top);
    const double width = std::max(Least, layout.ScreenX(doubt.Right) - left);
    const bool current = &doubt == doubts_.Current();
    surface.FillRect({left, top, width, layout.ScreenY(doubt.Bottom) - top}, current ? LookedAt : Doubtful,
                     current ? 0.3 : 0.2);
  }
}

}  // namespace hyetex
