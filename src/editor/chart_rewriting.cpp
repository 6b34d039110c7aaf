#include "editor/chart_rewriting.h"

#include <algorithm>
#include <array>

#include "chartfiles/chart_file_lines.h"
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
  ChartFileLines lines(bytes);
  std::array<NewValue, 6> values = NewValues(before, edited);
  std::size_t head = lines.Count();  // the first line behind the chart's head
  for (std::size_t i = 0; i < lines.Count(); ++i) {
    const std::string_view text = lines.At(i);
    const ChartLineKind kind = KindOfChartLine(text);
    if (kind.Kind == ChartLine::PointsHeading || kind.Kind == ChartLine::Point) head = std::min(head, i);
    const auto value = std::ranges::find(values, kind.Kind, &NewValue::Kind);
    if (value == values.end() || !kind.Word.empty()) continue;
    value->Found = true;
    lines.Replace(i, std::string(text.substr(0, text.find(':') + 1)) + " " + value->Text);
  }
  for (const NewValue& value : values) {
    if (value.Found || !value.Differs) continue;
    const bool last = value.Kind == ChartLine::GeneralComment || head == lines.Count();
    lines.Insert(last ? lines.Count() : head++, std::string(LabelOf(value.Kind)) + value.Text);
    if (last) head = std::max(head, lines.Count());
  }
  if (lines.Count() > static_cast<std::size_t>(MostLines))
    return Failure("The chart has more than " + std::to_string(MostLines) + " lines, and cannot be saved.");

  std::string made = lines.Bytes();
  if (fileName.size() + 2 + made.size() > MostChartBytes)
    return Failure("The chart would be longer than " + std::to_string(MostChartBytes >> 20) +
                   " MB, and nothing could read it: shorten its comments.");
  if (const auto what = WhatDiffers(ReadHead(made, fileName, {}), edited))
    return Failure("A line of the chart's file, which is not one of ours, says another " + *what +
                   " than what was entered. The file stays as it is.");
  return made;
}

}  // namespace hyetex
