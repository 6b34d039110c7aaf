#include "scan/box/traced_chart.h"

#include <array>
#include <cstdio>
#include <utility>
#include <vector>

#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {
namespace {

constexpr std::array Outcomes{TraceOutcome::Clean, TraceOutcome::ToReview, TraceOutcome::NotTraced,
                              TraceOutcome::Failed};
constexpr std::size_t Fields = 11;

std::string InQuotes(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? "\"\"" : std::string(1, c);
  return quoted + "\"";
}

std::string Known(float depth) { return depth > 0 ? ShortText(depth) : std::string(); }

std::vector<std::string> FieldsOf(std::string_view line) {
  std::vector<std::string> fields(1);
  bool quoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (quoted && c == '"' && i + 1 < line.size() && line[i + 1] == '"') {
      fields.back() += line[++i];
    } else if (c == '"') {
      quoted = !quoted;
    } else if (c == ',' && !quoted) {
      fields.emplace_back();
    } else {
      fields.back() += c;
    }
  }
  return fields;
}

}  // namespace

std::string OutcomeText(TraceOutcome outcome) {
  switch (outcome) {
    case TraceOutcome::Clean:
      return VerdictText(TraceVerdict::Clean);
    case TraceOutcome::ToReview:
      return VerdictText(TraceVerdict::ToReview);
    case TraceOutcome::NotTraced:
      return VerdictText(TraceVerdict::NotTraced);
    case TraceOutcome::Failed:
      break;
  }
  return "failed";
}

TraceOutcome OutcomeOf(TraceVerdict verdict) {
  return verdict == TraceVerdict::Clean      ? TraceOutcome::Clean
         : verdict == TraceVerdict::ToReview ? TraceOutcome::ToReview
                                             : TraceOutcome::NotTraced;
}

std::string ReportLineBegin(std::string_view name) { return InQuotes(name) + ","; }

std::string ReportLine(const TracedChart& chart) {
  std::string line =
      ReportLineBegin(chart.Name) + InQuotes(OneLine(chart.Scan)) + "," + OutcomeText(chart.What) + ",";
  if (chart.Seconds)
    line += RoundedText(*chart.Seconds, 2) + "," + RoundedText(chart.RainMm, 2) + "," +
            Known(chart.EyedDepth) + "," + Known(chart.ManualDepth) + "," + ShortText(chart.Emptyings) + "," +
            RoundedText(chart.Confidence, 2) + "," + ShortText(chart.Doubts);
  else
    line += ",,,,,,";
  return line + "," + InQuotes(OneLine(chart.Words)) + "\n";
}

std::optional<TracedChart> ReadReportLine(std::string_view line) {
  const std::vector<std::string> fields = FieldsOf(line);
  if (fields.size() != Fields) return std::nullopt;
  for (const TraceOutcome outcome : Outcomes) {
    if (fields[2] != OutcomeText(outcome)) continue;
    TracedChart chart{.What = outcome, .Name = fields[0], .Scan = fields[1]};
    if (!fields[3].empty()) chart.Seconds = LeadingNumber(fields[3]);
    chart.RainMm = LeadingNumber(fields[4]);
    chart.EyedDepth = LeadingFloat(fields[5]);
    chart.ManualDepth = LeadingFloat(fields[6]);
    chart.Emptyings = RoundToInt16(LeadingNumber(fields[7]));
    chart.Confidence = LeadingNumber(fields[8]);
    chart.Doubts = RoundToInt16(LeadingNumber(fields[9]));
    chart.Words = fields[10];
    return chart;
  }
  return std::nullopt;
}

TracedChart EndedChart(std::string name, std::string scan) {
  return {.Name = std::move(name), .Scan = std::move(scan), .Words = "The tracing ended before its end."};
}

TracedChart ReadOutcome(std::string_view out, std::string_view error, bool exited, std::string name,
                        std::string scan) {
  std::optional<TracedChart> told;
  ForEachLine(out, [&](std::string_view line) {
    if (auto read = ReadReportLine(line); read && read->Name == name) told = std::move(read);
  });
  if (told) return *std::move(told);
  TracedChart ended = EndedChart(std::move(name), std::move(scan));
  if (exited)
    ForEachLine(error, [&](std::string_view line) {
      if (!Trim(line).empty()) ended.Words = line;
    });
  return ended;
}

}  // namespace hyetex
