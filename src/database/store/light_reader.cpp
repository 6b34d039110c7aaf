#include "database/store/light_reader.h"

#include <algorithm>
#include <cstddef>

#include "chartfiles/chart_lines.h"
#include "core/text.h"

namespace hyetex {
namespace {

constexpr std::string_view Pair = "\r\n", Feed = "\n";

// The next character that no number has. Whole blocks are looked at, since most of a chart is numbers.
std::size_t NextLetter(std::string_view text, std::size_t from) {
  constexpr std::size_t Block = 64;
  constexpr unsigned char LastOfNumbers = '9';  // digits, and before them all that stands between them
  for (; from + Block <= text.size(); from += Block) {
    unsigned char most = 0;
    for (std::size_t i = 0; i < Block; ++i) most = std::max(most, static_cast<unsigned char>(text[from + i]));
    if (most > LastOfNumbers) break;
  }
  while (from < text.size() && static_cast<unsigned char>(text[from]) <= LastOfNumbers) ++from;
  return from < text.size() ? from : std::string_view::npos;
}

// Adds the lines that may say something: they have letters, and are no points with a comment.
void AppendHead(std::string_view text, std::string_view lineEnd, std::string& head) {
  std::size_t from = 0;
  for (std::size_t at; (at = NextLetter(text, from)) != std::string_view::npos;) {
    const std::size_t before = text.rfind(lineEnd, at);
    const std::size_t start = before == std::string_view::npos ? 0 : before + lineEnd.size();
    const std::size_t end = std::min(text.find(lineEnd, at), text.size());
    const std::string_view line = text.substr(start, end - start);
    if (!BeginsAsPoint(line)) head.append(line).append(lineEnd);
    from = std::min(end + lineEnd.size(), text.size());
  }
}

}  // namespace

ChartRecord ReadHead(std::string_view bytes, std::string_view fileName, const ReadingOptions& options) {
  std::string head;
  AppendHead(bytes, bytes.find(Pair) == std::string_view::npos ? Feed : Pair, head);
  ChartReading reading;
  ReadChartText(head, fileName, options, reading);
  return reading.Chart;
}

bool LightReader::Take(std::string_view piece) {
  rest_.append(piece);
  if (!hasName_) {
    const std::size_t end = rest_.find('\n');
    if (end != std::string::npos) TakeName(end);
  }
  if (hasName_) {
    const std::size_t end = rest_.rfind(lineEnd_);
    if (end != std::string::npos) {
      AppendHead(std::string_view(rest_).substr(0, end + lineEnd_.size()), lineEnd_, head_);
      rest_.erase(0, end + lineEnd_.size());
    }
  }
  return head_.size() + rest_.size() <= MostChartBytes;
}

// Its end tells how the lines of the file end.
void LightReader::TakeName(std::size_t end) {
  hasName_ = true;
  lineEnd_ = end > 0 && rest_[end - 1] == '\r' ? Pair : Feed;
  name_ = rest_.substr(0, end + 1 - lineEnd_.size());
  rest_.erase(0, end + 1);
}

ChartRecord LightReader::Finish() {
  if (!hasName_) name_.swap(rest_);
  AppendHead(rest_, lineEnd_, head_);
  ReadChartText(head_, name_, options_, reading_);
  name_.clear();
  head_.clear();
  rest_.clear();
  hasName_ = false;
  lineEnd_ = Feed;
  return reading_.Chart;
}

}  // namespace hyetex
