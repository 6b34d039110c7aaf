#include "chartfiles/chart_lines.h"

#include <algorithm>
#include <optional>
#include <string>

#include "chartfiles/chart_scan.h"
#include "core/text.h"

namespace hyetex {
namespace {

struct Label {
  ChartLine Kind;
  std::string_view Text;
};

constexpr Label Labels[] = {
    {ChartLine::Core, "Core Party: "},
    {ChartLine::Agency, "Agency: "},
    {ChartLine::Station, "Station Name: "},
    {ChartLine::Instrument, "Instrument Code: "},
    {ChartLine::User, "Digitized By: "},
    {ChartLine::Method, "Chart Method: "},
    {ChartLine::Start, "Start: "},
    {ChartLine::End, "End: "},
    {ChartLine::DigitizedTime, "Digitized Time: "},
    {ChartLine::EyedDepth, "Eyed Depth: "},
    {ChartLine::DigitizedDepth, "Digitized Depth: "},
    {ChartLine::SelectedDepth, "Selected Depth: "},
    {ChartLine::ManualDepth, "Manual Depth: "},
    {ChartLine::PointCount, "Number of Points: "},
    {ChartLine::Reliability, "Chart Reliability: "},
    {ChartLine::PointsHeading, "Digitation Points:"},
    {ChartLine::GeneralComment, "General Comment: "},
    {ChartLine::DigitizerComment, "Digitizer Comment: "},
    {ChartLine::Alpha, "Alpha "},
    {ChartLine::AlphaSelected, "Alpha Value Selected: "},
    {ChartLine::Scan, "Scan: "},
};

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

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
// Some versions have put a blank in front of a number.
bool IsNumberChar(char c) { return IsDigit(c) || c == '.' || c == '-' || c == '+' || c == ' '; }
bool IsAsciiLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// Takes a number and its comma off the front of `line`; false if it begins otherwise.
bool TakeNumberField(std::string_view& line) {
  std::size_t at = 0;
  bool digits = false;
  for (; at < line.size() && IsNumberChar(line[at]); ++at) digits = digits || IsDigit(line[at]);
  if (!digits || at == line.size() || line[at] != ',') return false;
  line.remove_prefix(at + 1);
  return true;
}

// A label counts up to its colon.
bool BeginsWith(std::string_view line, std::string_view label) {
  if (label.back() == ' ') label.remove_suffix(1);
  return EqualIgnoringCase(line.substr(0, label.size()), label);
}

// "1 : 0.25", behind the label of an alpha line.
bool IsNumberedValue(std::string_view text) {
  const std::size_t end = text.find_first_not_of("0123456789");
  if (end == 0 || end == std::string_view::npos) return false;
  const std::size_t colon = text.find_first_not_of(' ', end);
  return colon != std::string_view::npos && text[colon] == ':';
}

std::optional<ChartLine> KindByLabel(std::string_view line) {
  constexpr char CaseBit = 'a' ^ 'A';
  if (line.empty() || !IsAsciiLetter(line.front())) return std::nullopt;
  for (const Label& label : Labels) {
    if ((line.front() | CaseBit) != (label.Text.front() | CaseBit) || !BeginsWith(line, label.Text)) continue;
    if (label.Kind == ChartLine::Alpha &&
        !IsNumberedValue(line.substr(std::min(line.size(), label.Text.size()))))
      continue;
    // A line of others that begins so is told by its words, as ever.
    if (label.Kind == ChartLine::Scan &&
        !ParseScanLine(line.substr(std::min(line.size(), label.Text.size()))))
      continue;
    if (label.Kind == ChartLine::AlphaSelected && UpperAscii(line).find("NONE") != std::string::npos)
      return ChartLine::NoAlphaSelected;
    return label.Kind;
  }
  return std::nullopt;
}

const Test* FirstTestThatHolds(std::string_view line) {
  if (std::none_of(line.begin(), line.end(), IsAsciiLetter)) return nullptr;  // no words
  const std::string upper = UpperAscii(line);
  const auto holds = [&](std::string_view word) { return upper.find(word) != std::string::npos; };
  for (const Test& test : Tests)
    if (holds(test.Word) && (test.With.empty() || holds(test.With)) &&
        (test.Without.empty() || !holds(test.Without)))
      return &test;
  return nullptr;
}

}  // namespace

std::string_view LabelOf(ChartLine kind) {
  for (const Label& label : Labels)
    if (label.Kind == kind) return label.Text;
  return {};
}

ChartLineKind KindOfChartLine(std::string_view line) {
  if (std::string_view fields = line; TakeNumberField(fields) && TakeNumberField(fields))
    return {ChartLine::Point, {}};
  if (const auto kind = KindByLabel(line)) return {*kind, {}};
  if (const Test* test = FirstTestThatHolds(line)) return {test->Kind, test->Word};
  if (line.find(',') != std::string_view::npos && line.find(':') == std::string_view::npos)
    return {ChartLine::Point, {}};
  return {ChartLine::Other, {}};
}

bool BeginsAsPoint(std::string_view line) { return TakeNumberField(line); }

std::string_view ValueOfChartLine(std::string_view line) {
  const std::size_t colon = line.find(':');
  // Without a colon the count starts before the line, so the value is the line less its first character.
  const std::size_t start = colon == std::string_view::npos ? 1 : colon + 2;
  return start < line.size() ? line.substr(start) : std::string_view();
}

}  // namespace hyetex
