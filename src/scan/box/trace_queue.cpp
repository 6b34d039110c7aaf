#include "scan/box/trace_queue.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "chartfiles/chart_text.h"
#include "chartfiles/saving.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
#include "digitizing/resume.h"
#include "scan/box/chart_tracing.h"
#include "staging/tasks/activation.h"

namespace hyetex {
namespace {

using State = TraceQueue::State;

TraceQueue::State StateOf(TraceOutcome outcome) {
  switch (outcome) {
    case TraceOutcome::Clean:
      return State::Clean;
    case TraceOutcome::ToReview:
      return State::ToReview;
    case TraceOutcome::NotTraced:
      return State::NotTraced;
    case TraceOutcome::Failed:
      break;
  }
  return State::Failed;
}

std::string Depth(float mm) { return mm > 0 ? ShortText(mm) : std::string(); }

std::string Lasting(double seconds) {
  constexpr double minute = 60, hour = 3600;
  if (seconds < minute) return ShortText(std::max(1.0, std::ceil(seconds))) + " s";
  if (seconds < 2 * hour) return ShortText(std::ceil(seconds / minute)) + " min";
  return ShortText(std::ceil(seconds / hour)) + " h";
}

}  // namespace

TraceQueue::TraceQueue(std::string programFolder, std::string target, const ReferenceLists& lists,
                       const std::vector<ChartRecord>& staged, const ChosenScans& scans)
    : programFolder_(std::move(programFolder)), target_(std::move(target)) {
  std::set<std::string> names;
  rows_.reserve(staged.size());
  for (const ChartRecord& chart : staged) {
    Row row{.Chart = chart};
    const auto leaveOut = [&row](std::string why) {
      row.Is = State::LeftOut;
      row.Why = std::move(why);
    };
    const auto origin = OriginOfChart(lists, chart, "");
    if (origin) row.Name = ChartFileName(origin->InstrumentCode, chart.StartTime);
    if (const auto refusal = CheckTraceable(chart))
      leaveOut(*refusal);
    else if (!origin)
      leaveOut(origin.error());
    else if (!names.insert(row.Name).second)
      leaveOut("Another staged chart has the same chart file.");
    if (const auto scan = scans.Of(chart)) {
      row.Scan = *scan;
      if (row.Is != State::LeftOut) row.Is = State::Waiting;
    } else if (row.Is != State::LeftOut) {
      row.Why = scan.error();
    }
    rows_.push_back(std::move(row));
  }
  LookAgain();
}

void TraceQueue::LookAgain() {
  const std::string unfinished = UnfinishedName();
  for (Row& row : rows_) LookAt(row, unfinished);
}

std::string TraceQueue::UnfinishedName() const {
  const auto unfinished = FindUnfinishedChart(programFolder_);
  return unfinished ? unfinished->Name : std::string();
}

// What was told of a chart that nothing stands of is still true.
void TraceQueue::LookAt(Row& row, const std::string& unfinished) const {
  if (row.Name.empty() || row.Is == State::LeftOut || row.Is == State::BeingTraced) return;
  const Standing stands = FindStanding(target_, row.Name);
  if (stands.RainMm) row.RainMm = stands.RainMm;
  const State before = row.Is;
  switch (stands.What) {
    case Standing::Of::Digitized:
    case Standing::Of::Reviewed:
      if (before != State::Clean) row.Is = State::Digitized;
      break;
    case Standing::Of::ToReview:
      row.Is = State::ToReview;
      row.Doubts = stands.Doubts;
      row.Why = stands.Words;
      break;
    case Standing::Of::Nothing:
    case Standing::Of::Interrupted:
      if (before != State::NotTraced && before != State::Failed)
        row.Is = row.Scan.Path.empty() ? State::NoScan : State::Waiting;
      break;
  }
  if (unfinished == ChartName(row.Chart) && row.Is != State::Digitized) row.Is = State::AtTheDesk;
  if (row.Is == before) return;
  if (row.Is == State::Digitized || row.Is == State::Waiting) row.Why.clear();
  if (row.Is == State::AtTheDesk) row.Why = "It was begun at the desk, and is gone on with there.";
}

std::optional<std::size_t> TraceQueue::Begin(const std::function<void(std::size_t)>& changed) {
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    Row& row = rows_[i];
    if (row.Is != State::Waiting) continue;
    LookAt(row, UnfinishedName());
    if (row.Is == State::Waiting) row.Is = State::BeingTraced;
    changed(i);
    if (row.Is == State::BeingTraced) return i;
  }
  return std::nullopt;
}

void TraceQueue::End(std::size_t at, const TracedChart& traced) {
  Row& row = rows_[at];
  row.Is = State::Waiting;
  // What the other process found standing it has passed over.
  LookAt(row, UnfinishedName());
  if (!traced.Seconds && row.Is != State::Waiting) return;
  row.Is = StateOf(traced.What);
  row.Why = traced.Words;
  row.Doubts = traced.Doubts;
  row.Seconds = traced.Seconds;
  row.RainMm =
      row.Is == State::Clean || row.Is == State::ToReview ? std::optional(traced.RainMm) : std::nullopt;
}

void TraceQueue::GiveUp(std::size_t at) {
  Row& row = rows_[at];
  row.Is = State::Waiting;
  LookAt(row, UnfinishedName());
}

void TraceQueue::TakeToTheDesk(std::size_t at) {
  if (rows_[at].Is == State::Waiting) rows_[at].Is = State::AtTheDesk;
}

bool TraceQueue::WaitAgain(std::size_t at) {
  Row& row = rows_[at];
  if (row.Is != State::NotTraced && row.Is != State::Failed) return false;
  row.Is = State::Waiting;
  row.Why.clear();
  row.Seconds.reset();
  return true;
}

int TraceQueue::Count(State state) const {
  return static_cast<int>(std::ranges::count(rows_, state, &Row::Is));
}

std::optional<std::size_t> TraceQueue::NextToReview(std::optional<std::size_t> behind) const {
  const std::size_t first = behind ? *behind + 1 : 0;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const std::size_t at = (first + i) % rows_.size();
    if (rows_[at].Is == State::ToReview) return at;
  }
  return std::nullopt;
}

bool TraceQueue::CanOpen(const Row& row) {
  switch (row.Is) {
    case State::AtTheDesk:
    case State::ToReview:
    case State::Waiting:
    case State::NotTraced:
    case State::Failed:
      return true;
    default:
      return false;
  }
}

std::string TraceQueue::Summary() const {
  std::string text;
  for (const State state :
       {State::Clean, State::ToReview, State::NotTraced, State::Failed, State::BeingTraced, State::Waiting,
        State::Digitized, State::AtTheDesk, State::LeftOut, State::NoScan})
    if (const int count = Count(state); count > 0)
      text += (text.empty() ? "" : ", ") + ShortText(count) + " " + std::string(StateText(state));
  return text.empty() ? "No charts are staged" : text;
}

std::string_view StateText(State state) {
  switch (state) {
    case State::NoScan:
      return "without a scan";
    case State::LeftOut:
      return "left out";
    case State::AtTheDesk:
      return "begun at the desk";
    case State::Digitized:
      return "digitized already";
    case State::Waiting:
      return "waiting";
    case State::BeingTraced:
      return "being traced";
    case State::Clean:
      return "clean";
    case State::ToReview:
      return "to review";
    case State::NotTraced:
      return "not traced";
    case State::Failed:
      break;
  }
  return "failed";
}

std::array<std::string, QueueHeadings.size()> QueueCells(const TraceQueue::Row& row) {
  const bool toReview = row.Is == State::ToReview;
  return {row.Chart.InstrumentCode,
          GeneralDateText(row.Chart.StartTime),
          std::string(StateText(row.Is)),
          row.RainMm ? RoundedText(*row.RainMm, 1) : "",
          Depth(row.Chart.EyedDepth),
          Depth(row.Chart.ManualDepth),
          toReview ? ShortText(row.Doubts) : "",
          row.Seconds ? RoundedText(*row.Seconds, 1) : "",
          std::string(BaseName(row.Scan.Path))};
}

std::string QueueProgress(int done, int all, double seconds) {
  std::string text = ShortText(done) + " of " + ShortText(all) + (all == 1 ? " chart" : " charts");
  if (done >= all) return text;
  text += ", " + ShortText(all - done) + " left";
  if (done > 0) text += ", about " + Lasting(seconds / done * (all - done));
  return text;
}

}  // namespace hyetex
