// Text is bytes, kept as they are from file to file. Comparisons without regard to case are ASCII.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace hyetex {

std::string UpperAscii(std::string_view text);
bool EqualIgnoringCase(std::string_view a, std::string_view b);
std::string_view Trim(std::string_view text);

/// `text` as UTF-8 for showing: as it stands where it is valid UTF-8, else read as Windows-1252.
std::string ShownText(std::string_view text);

/// A typed text as files keep it: each line end becomes a blank.
std::string OneLine(std::string_view text);

/// A field of a CSV line: in quotes where it holds what a line is made of.
std::string CsvField(std::string_view text);

/// "and 3 more", for what a list leaves out.
std::string AndMore(std::size_t count);
/// The first lines, `lead` before each, and for the rest how many more there are, with `end` behind it.
std::string FirstLines(const std::vector<std::string>& lines, std::size_t most, std::string_view lead = "\n",
                       std::string_view end = ".");

/// Why `text` cannot stand on one line of a file (it holds a line break or a NUL byte); nothing if it can.
std::optional<std::string> CheckOneLine(std::string_view text);
/// Calls `take(line)` for each line of a chart file or stored text: split on carriage return and line feed if
/// the text holds that pair anywhere, else on line feed alone. A last line without its end counts; an empty
/// rest does not.
template <typename Take>
void ForEachLine(std::string_view text, Take&& take) {
  const bool pairs = text.find("\r\n") != std::string_view::npos;
  while (!text.empty()) {
    std::size_t end = text.find('\n');
    if (pairs)
      while (end != std::string_view::npos && (end == 0 || text[end - 1] != '\r'))
        end = text.find('\n', end + 1);
    if (end == std::string_view::npos) {
      take(text);
      return;
    }
    take(text.substr(0, pairs ? end - 1 : end));
    text.remove_prefix(end + 1);
  }
}

}  // namespace hyetex
