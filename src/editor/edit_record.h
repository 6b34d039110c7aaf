// The details of the chart that is open in the editor: as they are shown, as they are edited, and how they
// compare with each other.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "chartfiles/chart_reader.h"
#include "core/records.h"

namespace hyetex {

/// What an operator changes of a chart, as it stands in the boxes.
struct EditorEntries {
  Date BeginDate = 0, BeginTime = 0;  ///< of a date the whole days count, of a time the fraction
  Date EndDate = 0, EndTime = 0;
  std::string SelectedDepth, ManualDepth;  ///< as typed
  int Reliability = 0;

  Date Begin() const;
  Date End() const;
};
EditorEntries EntriesOf(const ChartRecord& chart);
/// Takes all of them, or says why it takes none.
std::optional<std::string> TakeEntries(const EditorEntries& entries, ChartRecord& chart);
/// Whether they say something else than the chart, times to the second.
bool EntriesDiffer(const EditorEntries& entries, const ChartRecord& chart);

/// How far a depth or a time lies off, percent.
struct EditorFactor {
  std::string Caption;
  bool Alert = false;
};
/// The selected depth against the digitized one, the manual against the selected one, and the chart's time
/// against the digitized one; 0 where there is nothing to hold it against, and "unknown", without alert,
/// where a depth is.
std::array<EditorFactor, 3> FactorsOf(const EditorEntries& entries, const ChartRecord& chart);

/// The lines of depths and times, from "Eyed Depth: " to "Digitized End: ".
std::array<std::string, 7> DetailCaptions(const ChartRecord& chart);

/// What the traced line comes to on a kind of paper, "Trace on this paper: 53.1 mm in 23.97 h"; far from the
/// digitized depth and time it was another paper. Empty for a chart without a trace.
std::string TraceByPaper(const ChartReading& reading, const ChartTypeRecord& paper);

/// What an operator should know before believing the chart: no points, no series, cut off, lines left out.
std::vector<std::string> WhatChartLacks(const ChartReading& reading);

/// Adds an entry that was typed, as UTF-8, to a comment from a file, which may be of another code page.
void AddTypedEntry(std::string& comment, std::string_view typed);
/// Takes an entry out of a comment; the others stay joined. Nothing happens where there is no such entry.
void DeleteEntry(std::string& comment, std::size_t entry);

}  // namespace hyetex
