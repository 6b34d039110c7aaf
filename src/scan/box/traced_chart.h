// What came of a chart of a box of scans, as the box's report has it: a line of CSV for each. Whoever has the
// charts traced by other processes reads their lines back here.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "scan/scan_trace.h"

namespace hyetex {

enum class TraceOutcome : int { Clean, ToReview, NotTraced, Failed };
/// "clean", "to review", "not traced", "failed".
std::string OutcomeText(TraceOutcome outcome);
TraceOutcome OutcomeOf(TraceVerdict verdict);

struct TracedChart {
  TraceOutcome What = TraceOutcome::Failed;
  std::string Name;                      ///< of its chart file
  std::string Scan;                      ///< a path
  std::optional<double> Seconds = {};    ///< without it the tracing never came to its end
  double RainMm = 0;                     ///< found on the scan
  float EyedDepth = 0, ManualDepth = 0;  ///< mm; 0 or less where it is not known
  int Emptyings = 0;
  double Confidence = 0;  ///< 0 to 1
  int Doubts = 0;
  std::string Words = {};  ///< of the doubts, or what failed
};

inline constexpr std::string_view ReportHeading =
    "chart,scan,verdict,seconds,rain_mm,eyed_mm,gage_mm,emptyings,confidence,doubts,words\n";
/// With its line end. What the report says of a chart, and how its lines are told from those of others.
std::string ReportLine(const TracedChart& chart);
std::string ReportLineBegin(std::string_view name);
/// Nothing for the heading, and for what is no such line.
std::optional<TracedChart> ReadReportLine(std::string_view line);

/// A chart whose tracing was ended from outside, or broke down.
TracedChart EndedChart(std::string name, std::string scan);

/// What a process that traced one chart has told: its line on standard output, or else, where there is none,
/// the last line on standard error. `exited`: by itself.
TracedChart ReadOutcome(std::string_view out, std::string_view error, bool exited, std::string name,
                        std::string scan);

}  // namespace hyetex
