// Reads a chart file, from disk or from the text that a database holds, into a record, the raw trace, and the
// time-depth series.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "chartfiles/chart_text.h"
#include "core/records.h"
#include "core/result.h"

namespace hyetex {

/// What one read gives. Slot 0 of the raw points is always zero and no point of the file; `Chart.RawCount`
/// and `Chart.SeriesCount` are the highest indices in use.
struct ChartReading {
  ChartRecord Chart;
  std::vector<RawPoint> RawPoints;
  std::vector<SeriesPoint> SeriesPoints = {};
  std::optional<ScanReference> Scan = {};  ///< the image it was traced from, where the file names one
  std::string CutOff = {};                 ///< what a text that ends too early lacks; empty for a whole one
  std::vector<std::string> Notes = {};     ///< what was left out and why, one line each
};

struct ReadingOptions {
  bool UseAlpha = false;   ///< take the pen's skew out with the selected alpha
  float MinimalLapse = 0;  ///< minutes; steps of the series that are shorter are joined; 0 joins none
  std::span<const StationRecord> Stations{};  ///< to find the instrument's index in
};

/// Reads a file. A name without a folder is looked for in the folder "Data" of the program folder. Lenient
/// with what is in the file; fails only if it cannot be read at all.
Result<void> ReadChartFile(const std::string& path, const std::string& programFolder,
                           const ReadingOptions& options, ChartReading& reading);

/// Reads a whole chart file as text from the database; its first line is the file's name and no line of the
/// chart, whatever words it holds. An empty text is no chart and leaves the reading as it was.
void ReadStoredChart(std::string_view text, const ReadingOptions& options, ChartReading& reading);

/// Reads a chart file's text; `fileName` gives the century of two-digit years where it has the form of a
/// chart's name.
void ReadChartText(std::string_view text, std::string_view fileName, const ReadingOptions& options,
                   ChartReading& reading);

}  // namespace hyetex
