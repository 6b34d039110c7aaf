// The doubts about a chart that the program has traced, as a person works them off one after the other: what
// is asked about each, which points of the line it is about, and which are left.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/result.h"
#include "core/session.h"
#include "scan/scan_trace.h"

namespace hyetex {

class TraceReview {
 public:
  TraceReview() = default;
  explicit TraceReview(std::vector<TraceDoubt> doubts) : doubts_(std::move(doubts)) {}

  /// Those that nobody has confirmed, in order of time; those about the whole chart first.
  const std::vector<TraceDoubt>& Open() const { return doubts_; }
  /// The one that is looked at; null: none.
  const TraceDoubt* Shown() const;
  /// Goes to the next one, or the one before; where none was looked at, forward to the one that was left.
  /// False behind the last one and before the first, where none is looked at any more.
  bool Step(bool forward);
  /// None is looked at any more; false if none was.
  bool Leave();
  /// A person has seen that the line is right there: it is a doubt no more, and the next one is looked at.
  void Confirm();

  /// "Doubt 2 of 5: No ink from 12:10 to 12:40. ..."; empty where none is looked at.
  std::string Words() const;

 private:
  std::vector<TraceDoubt> doubts_;
  int shown_ = -1, left_ = 0;
};

/// The points of a line, as it is now, that a doubt is about, with the one before them and the one behind:
/// first and last. None, as {0, -1}, where it is about the whole chart or the line has no such points.
std::pair<int, int> StretchOf(const TraceDoubt& doubt, const Trace& line);

/// Where the scan's line bends between two points of the page, traced anew between where they are now: in
/// report units, in order of time. Fails, in words, where there is no one line from the one to the other.
Result<std::vector<std::pair<double, double>>> TraceBetween(const ScanTracer& tracer, const Trace& line,
                                                            int first, int last);

}  // namespace hyetex
