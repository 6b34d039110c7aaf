#include "tracing/table.h"

#include <charconv>
#include <cmath>

#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {
namespace {

std::vector<std::string_view> Fields(std::string_view line) {
  std::vector<std::string_view> fields;
  for (;;) {
    const std::size_t comma = line.find(',');
    fields.push_back(Trim(line.substr(0, comma)));
    if (comma == std::string_view::npos) return fields;
    line.remove_prefix(comma + 1);
  }
}

}  // namespace

std::optional<double> WholeNumber(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc{} || end != text.data() + text.size() || !std::isfinite(value))
    return std::nullopt;
  return value;
}

Result<std::vector<TableRow>> ReadTable(std::string_view text, std::string_view heading, std::size_t numbers,
                                        std::size_t words) {
  std::vector<TableRow> rows;
  std::string trouble;
  bool headed = false;
  int number = 0;
  ForEachLine(text, [&](std::string_view line) {
    ++number;
    if (!trouble.empty() || Trim(line).empty() || line.front() == '#') return;
    const auto refuse = [&](const std::string& why) { trouble = "line " + ShortText(number) + ": " + why; };
    if (!headed) {
      headed = Trim(line) == heading;
      if (!headed) refuse("the heading is not \"" + std::string(heading) + "\"");
      return;
    }
    const std::vector<std::string_view> fields = Fields(line);
    if (fields.size() != numbers + words)
      return refuse("not " + ShortText(static_cast<int>(numbers + words)) + " fields");
    TableRow row{number, {}, {fields.begin() + static_cast<std::ptrdiff_t>(numbers), fields.end()}};
    for (std::size_t i = 0; i < numbers; ++i) {
      const std::optional<double> value = WholeNumber(fields[i]);
      if (!value) return refuse("\"" + std::string(fields[i]) + "\" is no number");
      row.Numbers.push_back(*value);
    }
    rows.push_back(std::move(row));
  });
  if (!trouble.empty()) return Failure(trouble);
  if (rows.size() < 2) return Failure("fewer than two rows");
  return rows;
}

}  // namespace hyetex
