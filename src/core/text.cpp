#include "core/text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace hyetex {
namespace {

char UpperChar(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// The length of the valid UTF-8 sequence at the start of `text`, or 0.
std::size_t SequenceLength(std::string_view text) {
  const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
  const unsigned lead = byte(0);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xC2 && lead <= 0xDF   ? 2
                             : lead >= 0xE0 && lead <= 0xEF ? 3
                             : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                            : 0;
  if (length == 0 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((byte(i) & 0xC0) != 0x80) return 0;
  // Overlong forms, surrogates and values past the last code point.
  if ((lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) > 0x9F) ||
      (lead == 0xF0 && byte(1) < 0x90) || (lead == 0xF4 && byte(1) > 0x8F))
    return 0;
  return length;
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = SequenceLength(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

void AppendUtf8(std::string& out, unsigned code) {
  const auto put = [&](unsigned byte) { out += static_cast<char>(byte); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | code >> 6);
    put(0x80 | (code & 0x3F));
  } else {
    put(0xE0 | code >> 12);
    put(0x80 | (code >> 6 & 0x3F));
    put(0x80 | (code & 0x3F));
  }
}

// Windows-1252, bytes 80h to 9Fh; the five that it leaves open become the replacement character.
constexpr std::array<std::uint16_t, 32> Windows1252High = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

}  // namespace

std::string UpperAscii(std::string_view text) {
  std::string upper(text);
  std::transform(upper.begin(), upper.end(), upper.begin(), UpperChar);
  return upper;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return UpperChar(x) == UpperChar(y); });
}

std::string_view Trim(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string ShownText(std::string_view text) {
  if (IsUtf8(text)) return std::string(text);
  std::string shown;
  for (char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    AppendUtf8(shown, byte >= 0x80 && byte < 0xA0 ? Windows1252High[byte - 0x80] : byte);
  }
  return shown;
}

std::string OneLine(std::string_view text) {
  if (text.find('\n') == std::string_view::npos && text.find('\r') == std::string_view::npos)
    return std::string(text);
  std::string line;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;  // one end, one blank
    line += text[i] == '\r' || text[i] == '\n' ? ' ' : text[i];
  }
  return line;
}

std::string CsvField(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? "\"\"" : std::string(1, c);
  return quoted + '"';
}

std::string AndMore(std::size_t count) { return "and " + std::to_string(count) + " more"; }

std::string FirstLines(const std::vector<std::string>& lines, std::size_t most, std::string_view lead,
                       std::string_view end) {
  std::string text;
  for (std::size_t i = 0; i < std::min(lines.size(), most); ++i) text.append(lead).append(lines[i]);
  if (lines.size() > most) text.append(lead).append(AndMore(lines.size() - most)).append(end);
  return text;
}

std::optional<std::string> CheckOneLine(std::string_view text) {
  if (text.find_first_of("\r\n") != std::string_view::npos) return "The text must stand on one line.";
  if (text.find('\0') != std::string_view::npos) return "The text holds a character that cannot be stored.";
  return std::nullopt;
}

}  // namespace hyetex
