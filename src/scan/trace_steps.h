// A scan that the program has traced as the steps of a session, as an operator would have pressed them with a
// mouse, so that it goes the way of every chart: action machine, journal, chart file.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "digitizing/journal.h"
#include "digitizing/scan_placement.h"
#include "scan/scan_trace.h"

namespace hyetex {

/// What is known of a staged chart before it is traced.
TraceWish WishOf(const ChartTypeRecord& paper, const ChartRecord& chart);

struct TracedSteps {
  /// Lays the page's bottom line level on the tablet that a scan stands in for; path and checksum are the
  /// image's.
  ScanPlacement Placement;
  /// The page's corners and the points. A point is pressed where its hour and height lie on a page that is
  /// neither warped nor shrunk, so that the sheet's damage does not go into the rain: on the scan it can lie
  /// beside the line by as much.
  std::vector<JournalEvent> Steps;
};

/// Fails, in words, on a trace without points, with more than a chart holds, or a page that the tablet has no
/// room for.
Result<TracedSteps> StepsOfTrace(const ScanTrace& trace, const ScanTracer& tracer, const ScanImage& image,
                                 const TraceWish& wish);

/// What a journal says of a trace beside its steps, a comment line each: the verdict with the rain, "traced
/// from a scan: to review, 53.12 mm", and the doubts as "doubt 12 15 7.200 7.450 WHY", first and last point,
/// hours since the page's start.
std::vector<std::string> NotesOfTrace(const ScanTrace& trace);
/// The same line of a line that a person has looked over, and saved.
std::string NoteOfReview(double rainMm);

/// What the last such line of a journal says.
struct TraceNote {
  std::string Verdict;  ///< VerdictText, or ReviewedVerdict
  std::optional<double> RainMm = {};
};
inline constexpr std::string_view ReviewedVerdict = "reviewed";
std::optional<TraceNote> NoteOfJournal(std::string_view journal);
/// The doubts of the last trace that a journal tells of.
std::vector<TraceDoubt> DoubtsOfJournal(std::string_view journal);

/// The session's journal, with the verdict and the doubts as comments: "# doubt 12 15 7.200 7.450 WHY", first
/// and last point, hours since the page's start.
std::string JournalOfTrace(const TracedSteps& steps, const ScanTrace& trace);

}  // namespace hyetex
