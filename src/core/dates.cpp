#include "core/dates.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

#include "core/text.h"

namespace hyetex {
namespace {

using namespace std::chrono;

// A month or a day past the end runs on into the next year or month.
constexpr sys_days DayOf(int y, int m, int d) {
  return sys_days{year{y} / January / 1 + months{m - 1}} + days{d - 1};
}

constexpr sys_days Epoch = DayOf(1899, 12, 30);
constexpr double FirstDate = (DayOf(100, 1, 1) - Epoch).count();
constexpr double LastDate = (DayOf(10000, 1, 1) - Epoch).count() - 1.0 / SecondsPerDay;

seconds WholeSeconds(Date date) {
  if (std::isnan(date)) return {};
  return seconds(std::llround(std::clamp(date, FirstDate, LastDate) * SecondsPerDay));
}

template <typename... Args>
std::string Format(const char* form, Args... args) {
  std::array<char, 64> buffer;
  const int length = std::snprintf(buffer.data(), buffer.size(), form, args...);
  return std::string(buffer.data(), static_cast<std::size_t>(length));
}

// Takes up to `most` digits off the front of `text`; -1 when there are fewer than `least`.
int TakeDigits(std::string_view& text, std::size_t least, std::size_t most) {
  std::size_t count = 0;
  int value = 0;
  while (count < most && count < text.size() && text[count] >= '0' && text[count] <= '9')
    value = value * 10 + (text[count++] - '0');
  if (count < least) return -1;
  text.remove_prefix(count);
  return value;
}

bool TakeChar(std::string_view& text, char c) {
  if (text.empty() || text.front() != c) return false;
  text.remove_prefix(1);
  return true;
}

// "H:MM" or "H:MM:SS" to the end of the text, as a fraction of a day.
std::optional<double> ParseTime(std::string_view text) {
  const int hour = TakeDigits(text, 1, 2);
  if (hour < 0 || !TakeChar(text, ':')) return std::nullopt;
  const int minute = TakeDigits(text, 2, 2);
  int second = 0;
  if (TakeChar(text, ':')) second = TakeDigits(text, 2, 2);
  if (!text.empty() || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59)
    return std::nullopt;
  return static_cast<double>(hour * 3600 + minute * 60 + second) / SecondsPerDay;
}

// The time behind a date: nothing, or a blank (or the T of ISO 8601) and a time.
std::optional<double> ParseTimeBehindDate(std::string_view rest) {
  if (rest.empty()) return 0;
  if (rest.front() != ' ' && rest.front() != 'T') return std::nullopt;
  return ParseTime(rest.substr(1));
}

std::optional<ParsedDate> ParseByPlaces(std::string_view text) {
  if (text.size() < 6) return std::nullopt;
  std::string_view dayText = text.substr(0, 2), monthText = text.substr(3, 2), rest = text.substr(5);
  const int day = TakeDigits(dayText, 2, 2);
  const int month = TakeDigits(monthText, 2, 2);
  if (day < 1 || day > 31 || month < 1 || month > 12 || !TakeChar(rest, '/')) return std::nullopt;
  const std::size_t before = rest.size();
  int year = TakeDigits(rest, 2, 4);
  const std::size_t digits = before - rest.size();
  if (digits != 2 && (digits != 4 || year < 100)) return std::nullopt;
  if (digits == 2) year += year >= 30 ? 1900 : 2000;
  const auto time = ParseTimeBehindDate(rest);
  if (!time) return std::nullopt;
  return ParsedDate{MakeDate(year, month, day) + *time, digits == 2};
}

std::optional<ParsedDate> ParseYearFirst(std::string_view text) {
  const int year = TakeDigits(text, 4, 4);
  if (year < 100 || !TakeChar(text, '-')) return std::nullopt;
  const int month = TakeDigits(text, 2, 2);
  if (month < 1 || month > 12 || !TakeChar(text, '-')) return std::nullopt;
  const int day = TakeDigits(text, 2, 2);
  const auto time = ParseTimeBehindDate(text);
  if (day < 1 || day > 31 || !time) return std::nullopt;
  return ParsedDate{MakeDate(year, month, day) + *time, false};
}

// A number of a typed date, and the separator behind it.
int TakePart(std::string_view& text, std::size_t least, std::size_t most) {
  const int value = TakeDigits(text, least, most);
  if (value >= 0 && !text.empty() && std::string_view("/.- ").find(text.front()) != std::string_view::npos)
    text.remove_prefix(1);
  return value;
}

}  // namespace

Date MakeDate(int year, int month, int day, int hour, int minute, int second) {
  const auto wholeDays = static_cast<double>((DayOf(year, month, day) - Epoch).count());
  return wholeDays + static_cast<double>(hour * 3600 + minute * 60 + second) / SecondsPerDay;
}

std::int64_t SecondsOf(Date date) { return std::llround(date * SecondsPerDay); }

CalendarTime ToCalendar(Date date) {
  const sys_seconds at = Epoch + WholeSeconds(date);
  const sys_days midnight = floor<days>(at);
  const year_month_day day = midnight;
  const hh_mm_ss time(at - midnight);
  return {.Year = static_cast<int>(day.year()),
          .Month = static_cast<int>(static_cast<unsigned>(day.month())),
          .Day = static_cast<int>(static_cast<unsigned>(day.day())),
          .Hour = static_cast<int>(time.hours().count()),
          .Minute = static_cast<int>(time.minutes().count()),
          .Second = static_cast<int>(time.seconds().count())};
}

Date Now() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
#ifdef _WIN32
  localtime_s(&local, &now);
#else
  localtime_r(&now, &local);
#endif
  return MakeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                  std::min(local.tm_sec, 59));
}

std::string DateText(Date date) {
  if (date < 1) return TimeText(date);
  const CalendarTime t = ToCalendar(date);
  std::string text = Format("%02d/%02d/%02d", t.Day, t.Month, t.Year % 100);
  if (t.Hour != 0 || t.Minute != 0 || t.Second != 0) text += Format(" %02d:%02d", t.Hour, t.Minute);
  return text;
}

std::string DateCode(Date date) {
  const CalendarTime t = ToCalendar(date);
  return Format("%04d%02d%02d-%02d%02d", t.Year, t.Month, t.Day, t.Hour, t.Minute);
}

std::string GeneralDateText(Date date) {
  const CalendarTime t = ToCalendar(date);
  std::string text = Format("%02d/%02d/%04d", t.Day, t.Month, t.Year);
  if (t.Hour != 0 || t.Minute != 0 || t.Second != 0) text += " " + TimeText(date);
  return text;
}

std::string TimeText(Date date) {
  const CalendarTime t = ToCalendar(date);
  return Format("%02d:%02d:%02d", t.Hour, t.Minute, t.Second);
}

std::string IsoText(Date date) {
  const CalendarTime t = ToCalendar(date);
  return Format("%04d-%02d-%02dT%02d:%02d:%02d", t.Year, t.Month, t.Day, t.Hour, t.Minute, t.Second);
}

std::optional<ParsedDate> ParseDateText(std::string_view text) {
  text = Trim(text);
  if (text.find('/') != std::string_view::npos) return ParseByPlaces(text);
  if (text.find('-') != std::string_view::npos) return ParseYearFirst(text);
  if (const auto time = ParseTime(text)) return ParsedDate{*time, false};
  return std::nullopt;
}

std::optional<Date> TypedDate(std::string_view text) {
  text = Trim(text);
  const std::size_t digits = text.find_first_not_of("0123456789");
  const bool isApart = digits != std::string_view::npos;
  const bool yearFirst = digits == 4 && text[4] == '-';
  if (!isApart && text.size() != 8) return std::nullopt;
  const std::size_t least = isApart ? 1 : 2;
  int day = 0, month = 0, year = 0;
  if (yearFirst) {
    year = TakePart(text, 4, 4);
    month = TakePart(text, 2, 2);
    day = TakeDigits(text, 2, 2);
  } else {
    day = TakePart(text, least, 2);
    month = TakePart(text, least, 2);
    year = TakeDigits(text, 4, 4);
  }
  if (!text.empty() || day < 1 || day > 31 || month < 1 || month > 12 || year < FirstTypedYear ||
      year > LastTypedYear)
    return std::nullopt;
  const Date date = MakeDate(year, month, day);
  if (ToCalendar(date).Day != day) return std::nullopt;  // it has run on into the next month
  return date;
}

std::string NoDateText(std::string_view typed) {
  return "\"" + std::string(typed) + "\" is no date. Type day, month and year, as in 31/12/1999, from " +
         std::to_string(FirstTypedYear) + " to " + std::to_string(LastTypedYear) + ".";
}

}  // namespace hyetex
