// Charts of known rain, drawn as scans with one kind of damage or several, and how far a trace is from them.
#pragma once

#include <string>
#include <vector>

#include "scan/scan_trace.h"
#include "scans/drawn_scan.h"

namespace hyetex {

/// Which kind of recorder's paper.
enum class DrawnPaper { Siphon, Arc, Tipping };

/// Random storms on a recorder's chart, the same for the same seed: a day, on arc paper a week or a day.
inline constexpr double DrawnTipMm = 0.5;  ///< of rain, of the tipping bucket
PenLine RandomChart(std::uint64_t seed, DrawnPaper paper);
/// Where that chart's band begins and ends.
ScanStyle PlainStyle(const PenLine& line);
TraceWish WishOf(const PenLine& line, const ScanStyle& style);

/// How a trace differs from what was drawn.
struct TraceErrors {
  double TrueMm = 0, Mm = 0;
  int Emptyings = 0, Missed = 0, Invented = 0;  ///< or settings back
  double WorstEmptyingHours = 0;                ///< of those that were found
  int Hours = 0;                                ///< of the chart, each a stretch
  int Wrong = 0;                                ///< of them, by more than 2% of the chart's rain
  int Silent = 0;                               ///< of those, without a doubt about the stretch

  double DepthError() const;  ///< a share of the true rain; of 1 mm where there is less
};
TraceErrors Compare(const ScanTrace& trace, const PenLine& line);

}  // namespace hyetex
