#include "database/store/stored_text.h"

#include <algorithm>

#include "chartfiles/chart_text.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/text.h"

namespace hyetex {

std::string MakeStoredText(std::string_view fileName, std::string_view bytes) {
  constexpr std::string_view Pair = "\r\n";
  const bool feeds = bytes.find('\n') != std::string_view::npos && bytes.find(Pair) == std::string_view::npos;
  std::string text;
  text.reserve(fileName.size() + Pair.size() + bytes.size());
  return text.append(fileName).append(feeds ? "\n" : Pair).append(bytes);
}

StoredText SplitStoredText(std::string_view text) {
  const std::size_t end = text.find('\n');
  if (end == std::string_view::npos) return {text, {}};
  std::string_view name = text.substr(0, end);
  if (name.ends_with('\r')) name.remove_suffix(1);
  return {name, text.substr(end + 1)};
}

std::optional<std::string> CheckStoredName(std::string_view name) {
  if (Trim(name).empty()) return "there is no file name";
  if (name == "." || name == ".." || HasSeparator(name)) return "the name leads to another folder";
  if (name.size() > 1 && name[1] == ':') return "the name leads to another drive";
  if (std::any_of(name.begin(), name.end(), [](char c) { return (c >= 0 && c < ' ') || c == 127; }))
    return "the name holds control characters";
  const auto parsed = ParseChartFileName(name);
  if (!parsed || Trim(parsed->InstrumentCode).empty())
    return "the name is not of a chart file's form, CODE-YYYYMMDD-HHMM.dat";
  return std::nullopt;
}

bool BeginsAsChart(std::string_view bytes) {
  return UpperAscii(bytes.substr(0, bytes.find('\n'))).find("HYETEX88") != std::string::npos;
}

std::string ComparedCode(std::string_view code) {
  return UpperAscii(ShownText(code.substr(0, code.find_last_not_of(' ') + 1)));
}

ChartKey::ChartKey(std::string_view code, Date start) : Code(ComparedCode(code)), Second(SecondsOf(start)) {}

}  // namespace hyetex
