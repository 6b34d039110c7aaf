#include "editor/edit_record.h"

#include <algorithm>
#include <cmath>

#include "chartfiles/chart_report.h"
#include "chartfiles/series.h"
#include "core/chart_length.h"
#include "core/comments.h"
#include "core/dates.h"
#include "core/number_entry.h"
#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {
namespace {

Date Joined(Date date, Date time) { return std::floor(date) + (time - std::floor(time)); }

// The number that a text in a file stood for, without what 32 bits made of it.
double Written(float value) { return LeadingNumber(ShortText(value)); }

std::string Unknown(float depth) { return depth == NoDepth ? "unknown" : ShortText(depth); }

// `value` against `standard`, a share.
EditorFactor FactorOf(std::string_view name, double value, double standard, bool known, double alertValue,
                      Factor kind) {
  EditorFactor factor{std::string(name) + " Factor: "};
  if (!known) {
    factor.Caption += "unknown";
    return factor;
  }
  const double share = standard == 0 ? 0 : value / standard - 1;
  factor.Caption += RoundedText(share * 100, 1);
  factor.Alert = FactorAlert(static_cast<float>(share), static_cast<float>(alertValue), kind);
  return factor;
}

}  // namespace

Date EditorEntries::Begin() const { return Joined(BeginDate, BeginTime); }
Date EditorEntries::End() const { return Joined(EndDate, EndTime); }

EditorEntries EntriesOf(const ChartRecord& chart) {
  return {.BeginDate = std::floor(chart.StartTime),
          .BeginTime = chart.StartTime - std::floor(chart.StartTime),
          .EndDate = std::floor(chart.EndTime),
          .EndTime = chart.EndTime - std::floor(chart.EndTime),
          .SelectedDepth = ShortText(chart.SelectedDepth),
          .ManualDepth = ShortText(chart.ManualDepth),
          .Reliability = std::clamp<int>(chart.Reliability, 0, 3)};
}

std::optional<std::string> TakeEntries(const EditorEntries& entries, ChartRecord& chart) {
  for (const auto& [name, text] : {std::pair("The selected depth", &entries.SelectedDepth),
                                   {"The manual depth", &entries.ManualDepth}}) {
    if (Trim(*text).empty()) return std::string(name) + " is missing; -1 stands for one that is not known.";
    if (auto why = CheckNumber(*text, DepthEntry)) return why;
  }
  ChartRecord taken = chart;
  taken.StartTime = entries.Begin();
  taken.EndTime = entries.End();
  if (!HasLength(taken)) return std::string(NoLengthRefusal);
  taken.SelectedDepth = static_cast<float>(TypedOrLeading(entries.SelectedDepth));
  taken.ManualDepth = static_cast<float>(TypedOrLeading(entries.ManualDepth));
  taken.Reliability = static_cast<std::int16_t>(entries.Reliability);
  chart = std::move(taken);
  return std::nullopt;
}

bool EntriesDiffer(const EditorEntries& entries, const ChartRecord& chart) {
  const EditorEntries shown = EntriesOf(chart);
  const auto depthDiffers = [](std::string_view typed, float was) {
    const auto number = TypedNumber(typed);
    return !number || static_cast<float>(*number) != was;
  };
  return SecondsOf(entries.Begin()) != SecondsOf(chart.StartTime) ||
         SecondsOf(entries.End()) != SecondsOf(chart.EndTime) ||
         depthDiffers(entries.SelectedDepth, chart.SelectedDepth) ||
         depthDiffers(entries.ManualDepth, chart.ManualDepth) || entries.Reliability != shown.Reliability;
}

std::array<EditorFactor, 3> FactorsOf(const EditorEntries& entries, const ChartRecord& chart) {
  const double selected = TypedOrLeading(entries.SelectedDepth), manual = TypedOrLeading(entries.ManualDepth);
  const double digitized = Written(chart.DigitizedDepth), span = entries.End() - entries.Begin();
  const bool selectedKnown = selected != NoDepth;
  return {FactorOf("Digitized Depth", selected, digitized, selectedKnown && digitized != NoDepth, digitized,
                   Factor::Digitized),
          FactorOf("Manual Depth", manual, selected, selectedKnown && manual != NoDepth, selected,
                   Factor::Manual),
          FactorOf("Time", span, Written(chart.DigitizedTime) / 24, true, span, Factor::Time)};
}

std::array<std::string, 7> DetailCaptions(const ChartRecord& chart) {
  return {
      "Eyed Depth: " + Unknown(chart.EyedDepth),
      "Manual Depth: " + Unknown(chart.ManualDepth),
      "Digitized Depth: " + Unknown(chart.DigitizedDepth),
      "Selected Depth: " + Unknown(chart.SelectedDepth),
      "Start: " + GeneralDateText(chart.StartTime),
      "End: " + GeneralDateText(chart.EndTime),
      "Digitized End: " + GeneralDateText(chart.StartTime + static_cast<double>(chart.DigitizedTime) / 24)};
}

std::string TraceByPaper(const ChartReading& reading, const ChartTypeRecord& paper) {
  const TraceLength trace = LengthOfTrace(reading);
  if (trace.AlongMm == 0) return {};
  return "Trace on this paper: " + RoundedText(static_cast<double>(trace.RiseMm) * paper.DepthScale, 1) +
         " mm in " + RoundedText(static_cast<double>(trace.AlongMm) * paper.TimeScale, 2) + " h";
}

std::vector<std::string> WhatChartLacks(const ChartReading& reading) {
  std::vector<std::string> lacks;
  const ChartRecord& chart = reading.Chart;
  if (!reading.CutOff.empty()) lacks.push_back("The file was cut off: " + reading.CutOff + ".");
  if (chart.RawCount == 0)
    lacks.emplace_back("The chart has no points.");
  else if (chart.SeriesCount == 0)
    lacks.emplace_back("The chart has no series: its points span no time.");
  if (!HasLength(chart)) lacks.emplace_back("The chart does not end behind its start.");
  for (const std::string& note : reading.Notes) lacks.push_back("Of the file, " + note + ".");
  return lacks;
}

void AddTypedEntry(std::string& comment, std::string_view typed) {
  // Letters of two code pages on one line could not be told apart again.
  if (std::ranges::any_of(typed, [](char c) { return (c & 0x80) != 0; })) comment = ShownText(comment);
  AddCode(comment, OneLine(typed));
}

void DeleteEntry(std::string& comment, std::size_t entry) {
  std::vector<std::string> entries = CommentEntries(comment);
  if (entry >= entries.size()) return;
  entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(entry));
  comment.clear();
  for (const std::string& each : entries) comment += (&each == entries.data() ? "" : "::") + each;
}

}  // namespace hyetex
