#include "chartfiles/chart_lines.h"

#include <algorithm>
#include <string>

#include "core/text.h"

namespace hyetex {
namespace {

struct Test {
  ChartLine Kind;
  std::string_view Word;          // the line holds this
  std::string_view With = {};     // and this
  std::string_view Without = {};  // and not this
};

constexpr Test Tests[] = {
    {ChartLine::Start, "START"},
    {ChartLine::End, "END"},
    {ChartLine::Instrument, "INSTRUMENT"},
    {ChartLine::Alpha, "ALPHA", {}, "SELECTED"},
    {ChartLine::NoAlphaSelected, "ALPHA", "NONE"},  // and "SELECTED", or the test above would have held
    {ChartLine::AlphaSelected, "ALPHA"},
    {ChartLine::GeneralComment, "GENERAL COMMENT"},
    {ChartLine::Method, "CHART METHOD"},
    {ChartLine::DigitizedDepth, "DIGITIZED DEPTH"},
    {ChartLine::DigitizedTime, "DIGITIZED TIME"},
    {ChartLine::ManualDepth, "MANUAL DEPTH"},
    {ChartLine::EyedDepth, "EYED DEPTH"},
    {ChartLine::SelectedDepth, "SELECTED DEPTH"},
    {ChartLine::PointCount, "NUMBER OF"},
    {ChartLine::Reliability, "RELIABILITY"},
};

bool IsNumberChar(char c) { return (c >= '0' && c <= '9') || c == '.' || c == '-'; }

}  // namespace

ChartLineKind KindOfChartLine(std::string_view line) {
  // Most lines are points without a comment: nothing but numbers and commas.
  bool point = false;
  if (std::all_of(line.begin(), line.end(),
                  [&](char c) { return IsNumberChar(c) || (c == ',' && (point = true)); }))
    return {point ? ChartLine::Point : ChartLine::Other, {}};
  const std::string upper = UpperAscii(line);
  const auto holds = [&](std::string_view word) { return upper.find(word) != std::string::npos; };
  for (const Test& test : Tests)
    if (holds(test.Word) && (test.With.empty() || holds(test.With)) &&
        (test.Without.empty() || !holds(test.Without)))
      return {test.Kind, test.Word};
  if (line.find(',') != std::string_view::npos && line.find(':') == std::string_view::npos)
    return {ChartLine::Point, {}};
  return {ChartLine::Other, {}};
}

bool BeginsAsPoint(std::string_view line) {
  const std::size_t comma = line.find(',');
  return comma != std::string_view::npos && comma > 0 &&
         std::all_of(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(comma), IsNumberChar);
}

std::string_view WhyNoPointLine(std::string_view line) {
  const ChartLineKind kind = KindOfChartLine(line);
  if (kind.Kind == ChartLine::Point) return {};
  return kind.Word.empty() ? ":" : kind.Word;
}

std::string_view ValueOfChartLine(std::string_view line) {
  const std::size_t colon = line.find(':');
  // Without a colon the count starts before the line, so the value is the line less its first character.
  const std::size_t start = colon == std::string_view::npos ? 1 : colon + 2;
  return start < line.size() ? line.substr(start) : std::string_view();
}

}  // namespace hyetex
