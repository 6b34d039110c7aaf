#include "editor/chart_rewriting.h"

#include <algorithm>
#include <array>
#include <vector>

#include "chartfiles/chart_lines.h"
#include "chartfiles/chart_text.h"
#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "database/store/light_reader.h"

namespace hyetex {
namespace {

struct NewValue {
  ChartLine Kind;
  std::string Text;
  bool Differs;        // from what the file said
  bool Found = false;  // it has a line
};

std::array<NewValue, 6> NewValues(const ChartRecord& before, const ChartRecord& edited) {
  return {{
      {ChartLine::Start, GeneralDateText(edited.StartTime),
       SecondsOf(edited.StartTime) != SecondsOf(before.StartTime)},
      {ChartLine::End, GeneralDateText(edited.EndTime),
       SecondsOf(edited.EndTime) != SecondsOf(before.EndTime)},
      {ChartLine::SelectedDepth, ShortText(edited.SelectedDepth),
       edited.SelectedDepth != before.SelectedDepth},
      {ChartLine::ManualDepth, ShortText(edited.ManualDepth), edited.ManualDepth != before.ManualDepth},
      {ChartLine::Reliability,
       ShortText(edited.Reliability) + "-" + std::string(ReliabilityText(edited.Reliability)),
       edited.Reliability != before.Reliability},
      {ChartLine::GeneralComment, OneLine(edited.GeneralComment),
       edited.GeneralComment != before.GeneralComment},
  }};
}

// The lines of a text as the reader splits them, each with the bytes of its end.
std::vector<std::string> LinesWithEnds(std::string_view bytes) {
  std::vector<std::string_view> lines;
  ForEachLine(bytes, [&](std::string_view line) { lines.push_back(line); });
  std::vector<std::string> whole;
  whole.reserve(lines.size() + 6);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const char* end = i + 1 < lines.size() ? lines[i + 1].data() : bytes.data() + bytes.size();
    whole.emplace_back(lines[i].data(), end);
  }
  return whole;
}

std::string_view EndOf(std::string_view line, std::string_view lineEnd) {
  return line.ends_with(lineEnd) ? lineEnd : std::string_view();
}

// What the reader makes of the new text has to be what was entered.
std::optional<std::string> WhatDiffers(const ChartRecord& read, const ChartRecord& edited) {
  if (SecondsOf(read.StartTime) != SecondsOf(edited.StartTime)) return "start";
  if (SecondsOf(read.EndTime) != SecondsOf(edited.EndTime)) return "end";
  if (read.ManualDepth != edited.ManualDepth) return "manual depth";
  // A selected depth of 0 reads as the digitized one.
  if (edited.SelectedDepth != 0 && read.SelectedDepth != edited.SelectedDepth) return "selected depth";
  if (read.Reliability != edited.Reliability) return "reliability";
  if (read.GeneralComment != OneLine(edited.GeneralComment)) return "general comment";
  return std::nullopt;
}

}  // namespace

Result<std::string> RewriteChart(std::string_view bytes, std::string_view fileName, const ChartRecord& before,
                                 const ChartRecord& edited) {
  if (const auto why = CheckOneLine(OneLine(edited.GeneralComment)))
    return Failure("The general comment: " + *why);
  const std::string_view lineEnd =
      bytes.find("\r\n") == std::string_view::npos && bytes.find('\n') != std::string_view::npos ? "\n"
                                                                                                 : "\r\n";
  std::vector<std::string> lines = LinesWithEnds(bytes);
  std::array<NewValue, 6> values = NewValues(before, edited);
  std::size_t head = lines.size();  // the first line behind the chart's head
  for (std::size_t i = 0; i < lines.size(); ++i) {
    std::string& line = lines[i];
    const std::string_view end = EndOf(line, lineEnd);
    const std::string_view text = std::string_view(line).substr(0, line.size() - end.size());
    const ChartLineKind kind = KindOfChartLine(text);
    if (kind.Kind == ChartLine::PointsHeading || kind.Kind == ChartLine::Point) head = std::min(head, i);
    const auto value = std::ranges::find(values, kind.Kind, &NewValue::Kind);
    if (value == values.end() || !kind.Word.empty()) continue;
    value->Found = true;
    line = std::string(text.substr(0, text.find(':') + 1)) + " " + value->Text + std::string(end);
  }
  for (const NewValue& value : values) {
    if (value.Found || !value.Differs) continue;
    const bool last = value.Kind == ChartLine::GeneralComment || head == lines.size();
    if (last && !lines.empty() && EndOf(lines.back(), lineEnd).empty()) lines.back() += lineEnd;
    lines.insert(last ? lines.end() : lines.begin() + static_cast<std::ptrdiff_t>(head++),
                 std::string(LabelOf(value.Kind)) + value.Text + std::string(lineEnd));
    if (last) head = std::max(head, lines.size());
  }
  if (lines.size() > static_cast<std::size_t>(MostLines))
    return Failure("The chart has more than " + std::to_string(MostLines) + " lines, and cannot be saved.");

  std::string made;
  made.reserve(bytes.size() + 256);
  for (const std::string& line : lines) made += line;
  if (fileName.size() + 2 + made.size() > MostChartBytes)
    return Failure("The chart would be longer than " + std::to_string(MostChartBytes >> 20) +
                   " MB, and nothing could read it: shorten its comments.");
  if (const auto what = WhatDiffers(ReadHead(made, fileName, {}), edited))
    return Failure("A line of the chart's file, which is not one of ours, says another " + *what +
                   " than what was entered. The file stays as it is.");
  return made;
}

}  // namespace hyetex
