#include "chartfiles/chart_file_lines.h"

#include "core/text.h"

namespace hyetex {

ChartFileLines::ChartFileLines(std::string_view bytes)
    : end_(bytes.find("\r\n") == std::string_view::npos && bytes.find('\n') != std::string_view::npos
               ? "\n"
               : "\r\n") {
  std::vector<std::string_view> lines;
  ForEachLine(bytes, [&](std::string_view line) { lines.push_back(line); });
  lines_.reserve(lines.size() + 6);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const char* end = i + 1 < lines.size() ? lines[i + 1].data() : bytes.data() + bytes.size();
    lines_.emplace_back(lines[i].data(), end);
  }
}

std::string_view ChartFileLines::At(std::size_t line) const {
  const std::string_view whole = lines_[line];
  return whole.substr(0, whole.size() - EndOf(whole).size());
}

void ChartFileLines::Replace(std::size_t line, std::string_view text) {
  lines_[line] = std::string(text) + std::string(EndOf(lines_[line]));
}

void ChartFileLines::Insert(std::size_t line, std::string_view text) {
  if (line == lines_.size() && line > 0 && EndOf(lines_.back()).empty()) lines_.back() += end_;
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(line), std::string(text) + std::string(end_));
}

std::string ChartFileLines::Bytes() const {
  std::size_t size = 0;
  for (const std::string& line : lines_) size += line.size();
  std::string bytes;
  bytes.reserve(size);
  for (const std::string& line : lines_) bytes += line;
  return bytes;
}

}  // namespace hyetex
