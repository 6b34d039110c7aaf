#include "database/store/run_report.h"

#include "core/text.h"

namespace hyetex {
namespace {

constexpr std::size_t MostLines = 12;

void AddLines(std::string& text, const char* heading, const std::vector<std::string>& lines) {
  if (lines.empty()) return;
  text += std::string("\n\n") + heading + FirstLines(lines, MostLines);
}

}  // namespace

std::string ClosingMessage(std::string outcome, const RunReport& report) {
  if (report.Stopped) outcome += "\n\nThe database ended the work: " + NumberAndDescription(*report.Stopped);
  if (report.Cancelled) outcome += "\n\nThe work was stopped before its end.";
  if (report.NotReached > 0) outcome += "\nFiles not reached: " + std::to_string(report.NotReached) + ".";
  AddLines(outcome, "Left out:", report.Refused);
  AddLines(outcome, "Please note:", report.Notes);
  return outcome;
}

}  // namespace hyetex
