// The lines of a chart file, each with the bytes of its end, for who changes some of them and leaves every
// other byte as it is.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace hyetex {

class ChartFileLines {
 public:
  /// Splits as the reader does.
  explicit ChartFileLines(std::string_view bytes);

  std::size_t Count() const { return lines_.size(); }
  /// The line without its end; good until the next change.
  std::string_view At(std::size_t line) const;
  /// Keeps the line's end.
  void Replace(std::size_t line, std::string_view text);
  /// A new line before the one at `line`, or behind the last one. It ends as the file's lines do; so does
  /// then a last line that had no end.
  void Insert(std::size_t line, std::string_view text);
  std::string Bytes() const;

 private:
  std::string_view EndOf(std::string_view line) const { return line.ends_with(end_) ? end_ : ""; }

  std::string_view end_;  // of the file's lines
  std::vector<std::string> lines_;
};

}  // namespace hyetex
