#include "scan/trace_steps.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/comments.h"
#include "core/numbers.h"
#include "core/text.h"
#include "digitizing/tablets.h"
#include "digitizing/tools.h"
#include "scan/lattice.h"

namespace hyetex {
namespace {

constexpr double LeftMm = 40, BottomMm = 120;  // where the page's bottom-left corner lies on the tablet
// A fall of the pen of more than 60% of the page's height marks itself.
constexpr double SureDrop = 0.65;
constexpr std::string_view TracedNote = "traced from a scan: ", DoubtNote = "doubt ";
constexpr const char* GapReason = "Pen did not record";

std::string VerdictNote(std::string_view verdict, double rainMm) {
  return std::string(TracedNote) + std::string(verdict) + ", " + RoundedText(rainMm, 2) + " mm";
}

bool TakeStart(std::string_view& line, std::string_view start) {
  if (!line.starts_with(start)) return false;
  line.remove_prefix(start.size());
  return true;
}

}  // namespace

TraceWish WishOf(const ChartTypeRecord& paper, const ChartRecord& chart) {
  constexpr double hoursADay = 24;
  TraceWish wish;
  wish.Paper = paper;
  wish.StartHour = (chart.StartTime - std::floor(chart.StartTime)) * hoursADay;
  wish.Hours = (chart.EndTime - chart.StartTime) * hoursADay;
  wish.EyedDepth = chart.EyedDepth;
  wish.GageDepth = chart.ManualDepth;
  return wish;
}

Result<TracedSteps> StepsOfTrace(const ScanTrace& trace, const ScanTracer& tracer, const ScanImage& image,
                                 const TraceWish& wish) {
  if (trace.Points.empty()) return Failure("the chart is not traced");
  if (trace.Points.size() > MaxPoint) return Failure("the line has more points than a chart holds");
  const TabletExtents& tablet = TabletTypes()[ScanTablet].Extents;
  const double units = tablet.TabletWidthUnits / tablet.TabletWidthMm;
  const double pageMm = wish.Hours / wish.Paper.TimeScale;
  if (LeftMm + pageMm > tablet.TabletWidthMm)
    return Failure("the page is longer than the tablet that a scan stands in for");

  const auto left = tracer.InImage(0, 0), right = tracer.InImage(wish.Hours, 0);
  const double across = right.X - left.X, down = right.Y - left.Y, pixels = std::hypot(across, down);
  TracedSteps traced;
  ScanPlacement& lies = traced.Placement;
  lies = {image.Sha256(),
          image.Page(),
          0,
          0,
          units * pageMm / pixels,
          std::atan2(down, across) * 180 / std::numbers::pi,
          image.Path()};
  const auto [x, y] = TabletPosition(lies, left.X, left.Y);
  lies.X0 = LeftMm * units - x;
  lies.Y0 = BottomMm * units - y;

  using Kind = JournalEvent::Kind;
  auto& steps = traced.Steps;
  const auto press = [&](double alongMm, double heightMm) {
    steps.push_back({.What = Kind::Press,
                     .X = std::round((LeftMm + alongMm - ArcLeadMm(wish.Paper, heightMm)) * units),
                     .Y = std::round((BottomMm + heightMm) * units)});
  };
  const auto run = [&](int which) { steps.push_back({.What = Kind::Tool, .Tool = which}); };
  if (const auto refusal = CheckPlacement(lies)) return Failure(*refusal);
  steps.push_back({.What = Kind::Scan, .Scan = lies});
  press(0, 0);
  press(pageMm, 0);
  const double page =
      wish.Paper.ChartHeightMm > 0 ? wish.Paper.ChartHeightMm : ChartTypeRecord{}.ChartHeightMm;
  for (std::size_t i = 0; i < trace.Points.size(); ++i) {
    const ScanPoint& point = trace.Points[i];
    const bool afterSegment = i > 0 && trace.Points[i - 1].How == ScanPoint::Step::Segment;
    if (point.How == ScanPoint::Step::Drop &&
        (afterSegment || trace.Points[i - 1].HeightMm - point.HeightMm < SureDrop * page))
      run(tool::Alpha);
    if (point.How == ScanPoint::Step::Segment) run(tool::NewSegment);
    if (point.How == ScanPoint::Step::GapEnd) run(tool::Gap);
    press(point.AlongMm, point.HeightMm);
    if (point.How == ScanPoint::Step::GapEnd)
      steps.push_back({.What = Kind::Comment, .Code = ShortText(CodeGapEnd), .Text = GapReason});
  }
  return traced;
}

std::vector<std::string> NotesOfTrace(const ScanTrace& trace) {
  std::vector<std::string> notes{VerdictNote(VerdictText(trace.Verdict), trace.RainMm)};
  for (const TraceDoubt& doubt : trace.Doubts)
    notes.push_back(std::string(DoubtNote) + ShortText(doubt.FirstPoint) + " " + ShortText(doubt.LastPoint) +
                    " " + RoundedText(doubt.FromHour, 3) + " " + RoundedText(doubt.ToHour, 3) + " " +
                    doubt.Why);
  return notes;
}

std::string NoteOfReview(double rainMm) { return VerdictNote(ReviewedVerdict, rainMm); }

std::optional<TraceNote> NoteOfJournal(std::string_view journal) {
  std::optional<TraceNote> note;
  ForEachLine(journal, [&](std::string_view line) {
    if (!TakeStart(line, "# ") || !TakeStart(line, TracedNote)) return;
    const std::size_t comma = line.find(", ");
    note = TraceNote{std::string(line.substr(0, comma))};
    if (comma != std::string_view::npos) note->RainMm = LeadingNumber(line.substr(comma + 1));
  });
  return note;
}

std::vector<TraceDoubt> DoubtsOfJournal(std::string_view journal) {
  std::vector<TraceDoubt> doubts;
  ForEachLine(journal, [&](std::string_view line) {
    if (!TakeStart(line, "# ")) return;
    if (line.starts_with(TracedNote)) doubts.clear();
    if (!TakeStart(line, DoubtNote)) return;
    double numbers[4];
    for (double& number : numbers) {
      const std::size_t blank = line.find(' ');
      if (blank == std::string_view::npos) return;
      number = LeadingNumber(line.substr(0, blank));
      line.remove_prefix(blank + 1);
    }
    TraceDoubt doubt{.FromHour = numbers[2],
                     .ToHour = numbers[3],
                     .FirstPoint = RoundToInt16(numbers[0]),
                     .LastPoint = RoundToInt16(numbers[1]),
                     .Why = std::string(line)};
    if (doubt.LastPoint >= doubt.FirstPoint) doubt.What = TraceDoubt::Kind::OtherWay;
    doubts.push_back(std::move(doubt));
  });
  return doubts;
}

std::string JournalOfTrace(const TracedSteps& steps, const ScanTrace& trace) {
  std::string text = JournalHead(ScanTablet);
  for (const std::string& note : NotesOfTrace(trace)) text += "# " + note + "\n";
  for (const JournalEvent& step : steps.Steps) text += JournalLine(step) + "\n";
  return text;
}

}  // namespace hyetex
