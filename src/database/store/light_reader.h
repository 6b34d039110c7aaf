// Reads what a chart's text says of the chart, and passes over its traced points, which are nearly all of it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "chartfiles/chart_reader.h"
#include "core/records.h"

namespace hyetex {

/// What a file's text says of the chart: the record as the full reader has it, but for the numbers of points
/// and of the series.
ChartRecord ReadHead(std::string_view bytes, std::string_view fileName, const ReadingOptions& options);

/// The same of a stored text, which comes in pieces and is never held whole. One reader serves many texts.
class LightReader {
 public:
  /// `options` name the stations to find the instrument in.
  explicit LightReader(ReadingOptions options) : options_(options) {}

  /// Returns false when no more is wanted: this is no chart, its lines are longer than any chart file.
  bool Take(std::string_view piece);
  /// The chart of the pieces since the last Finish(); its FileName is the text's first line.
  ChartRecord Finish();

 private:
  void TakeName(std::size_t end);

  const ReadingOptions options_;
  std::string name_, head_, rest_;
  bool hasName_ = false;
  std::string_view lineEnd_ = "\n";  // of the file
  ChartReading reading_;             // kept from text to text, since making its tables costs more than a head
};

}  // namespace hyetex
