#include "exchange/value_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>

#include "core/numbers.h"
#include "core/text.h"
#include "platform/odbc/recordset.h"

namespace hyetex {
namespace {

constexpr int MonthsOfYear = 12;

// The parts of a time, each as many digits as it has places.
struct TimeParts {
  int Year = 0, Month = 0, Day = 0, Hour = 0, Minute = 0, Second = 0;
  std::string_view Fraction;  // digits, without zeros at the end
};

int DaysOfMonth(int year, int month) {
  constexpr std::array<int, MonthsOfYear> days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return days[static_cast<std::size_t>(month - 1)] + (month == 2 && leap ? 1 : 0);
}

// Takes a text apart by a pattern: 'Y', 'M', 'D', 'h', 'm', 's' stand for a digit of that part, 'T' for a
// blank or a "T", all else for itself.
bool TakeParts(std::string_view text, std::string_view pattern, TimeParts& parts) {
  if (text.size() != pattern.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    int* part = nullptr;
    switch (pattern[i]) {
      case 'Y':
        part = &parts.Year;
        break;
      case 'M':
        part = &parts.Month;
        break;
      case 'D':
        part = &parts.Day;
        break;
      case 'h':
        part = &parts.Hour;
        break;
      case 'm':
        part = &parts.Minute;
        break;
      case 's':
        part = &parts.Second;
        break;
      case 'T':
        if (text[i] != 'T' && text[i] != ' ') return false;
        continue;
      default:
        if (text[i] != pattern[i]) return false;
        continue;
    }
    if (text[i] < '0' || text[i] > '9') return false;
    *part = *part * 10 + (text[i] - '0');
  }
  return true;
}

std::optional<TimeParts> TimeOf(std::string_view text) {
  constexpr std::string_view forms[] = {"YYYY-MM-DDThh:mm:ss", "YYYY-MM-DD", "YYYY-MM-DDThh:mm",
                                        "DD/MM/YYYYThh:mm:ss", "DD/MM/YYYY", "DD/MM/YYYYThh:mm"};
  std::string_view fraction;
  if (const std::size_t point = text.rfind('.'); point != std::string_view::npos) {
    fraction = text.substr(point + 1);
    if (fraction.empty() || point < forms[0].size() ||
        fraction.find_first_not_of("0123456789") != std::string_view::npos)
      return std::nullopt;
    text = text.substr(0, point);
    fraction = fraction.substr(0, fraction.find_last_not_of('0') + 1);
  }
  for (const std::string_view form : forms) {
    TimeParts parts;
    if (!TakeParts(text, form, parts)) continue;
    if (parts.Year < 1 || parts.Month < 1 || parts.Month > MonthsOfYear || parts.Day < 1 ||
        parts.Day > DaysOfMonth(parts.Year, parts.Month) || parts.Hour > 23 || parts.Minute > 59 ||
        parts.Second > 59)
      return std::nullopt;
    parts.Fraction = fraction;
    return parts;
  }
  return std::nullopt;
}

std::string TimeText(const TimeParts& parts, char between) {
  std::string text = "0000-00-00 00:00:00";
  const auto put = [&](std::size_t end, int value) {
    for (; value > 0; value /= 10) text[--end] = static_cast<char>('0' + value % 10);
  };
  put(4, parts.Year);
  put(7, parts.Month);
  put(10, parts.Day);
  put(13, parts.Hour);
  put(16, parts.Minute);
  put(19, parts.Second);
  text[10] = between;
  if (!parts.Fraction.empty()) text.append(".").append(parts.Fraction);
  return text;
}

// A day's column has no time of day, unless it holds one all the same.
std::string TimeText(const TimeParts& parts, char between, ColumnKind kind) {
  constexpr std::size_t dayOnly = 10;
  const bool isMidnight = parts.Hour + parts.Minute + parts.Second == 0 && parts.Fraction.empty();
  std::string text = TimeText(parts, between);
  if (kind == ColumnKind::Day && isMidnight) text.resize(dayOnly);
  return text;
}

std::optional<std::int64_t> WholeOf(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return number;
}

struct ReadNumber {
  double Value = 0;
  std::string Text;  // with a point
};

std::optional<ReadNumber> NumberIn(std::string_view text) {
  std::string point(text);
  if (const std::size_t comma = point.find(',');
      comma != std::string::npos && point.find('.') == std::string::npos)
    point[comma] = '.';
  const char* begin = point.data() + (point.starts_with('+') ? 1 : 0);
  double number = 0;
  const auto [end, error] = std::from_chars(begin, point.data() + point.size(), number);
  if (error != std::errc{} || end != point.data() + point.size() || !std::isfinite(number))
    return std::nullopt;
  return ReadNumber{number, std::move(point)};
}

// More than a 64-bit float holds: a number of another kind.
bool HasManyDigits(std::string_view number) {
  constexpr int ofFloat = 17;
  const std::string_view digits = number.substr(0, number.find_first_of("eE"));
  return std::ranges::count_if(digits, [](char c) { return c >= '0' && c <= '9'; }) > ofFloat;
}

std::string Shown(std::string_view text) {
  constexpr std::size_t most = 40;
  return "\"" + ShownText(OneLine(text.substr(0, most))) + (text.size() > most ? "..." : "") + "\"";
}

// PostgreSQL's driver tells this width for a column that has none.
bool HasNoWidth(const CatalogColumn& column) {
  return column.Type != ColumnType::VarChar || column.Size <= 0 ||
         (column.Size == 255 && column.TypeName == "varchar");
}

}  // namespace

ColumnKind KindOf(const CatalogColumn& column) {
  if (column.IsBinary) return ColumnKind::Binary;
  if (column.IsText) return ColumnKind::Text;
  if (column.IsTime) return EqualIgnoringCase(column.TypeName, "date") ? ColumnKind::Day : ColumnKind::Time;
  return column.IsWhole ? ColumnKind::Whole : ColumnKind::Number;
}

std::string ExchangeText(std::string text, ColumnKind kind) {
  if (kind == ColumnKind::Number && text.find('.') != std::string::npos) {
    const auto number = NumberIn(text);
    return number ? ExactText(number->Value) : text;
  }
  if (kind != ColumnKind::Time && kind != ColumnKind::Day) return text;
  const auto time = TimeOf(text);
  return time ? TimeText(*time, 'T', kind) : text;
}

Result<DbValue> ValueOf(std::string text, const CatalogColumn& column, ColumnKind kind) {
  const std::string_view trimmed = Trim(text);
  switch (kind) {
    case ColumnKind::Binary:
      return DbBinary{std::move(text)};
    case ColumnKind::Whole:
      if (const auto number = WholeOf(trimmed)) return *number;
      return Failure(Shown(text) + " is no whole number");
    case ColumnKind::Number:
      if (const auto number = NumberIn(trimmed))
        return HasManyDigits(number->Text) ? DbValue(number->Text) : DbValue(number->Value);
      return Failure(Shown(text) + " is no number");
    case ColumnKind::Time:
    case ColumnKind::Day:
      // As text, since that keeps a fraction of a second.
      if (const auto time = TimeOf(trimmed)) return TimeText(*time, ' ', kind);
      return Failure(Shown(text) + " is no date and time, as in 1998-03-05T10:30:00");
    case ColumnKind::Text:
      break;
  }
  if (text.find('\0') != std::string::npos)
    return Failure("a text in it holds a NUL, which no database keeps");
  const auto width = static_cast<std::size_t>(std::max<std::int64_t>(column.Size, 0));
  if (!HasNoWidth(column) && text.size() > width && CutToWidth(text, column.Size).size() < text.size())
    return Failure(Shown(text) + " is longer than the column's " + std::to_string(width) + " characters");
  return text;
}

}  // namespace hyetex
