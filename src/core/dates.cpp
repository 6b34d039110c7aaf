#include "core/dates.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>

#include "core/text.h"

namespace hyetex {
namespace {

constexpr std::int64_t SecondsPerDay = 86400;

// Days since 01/01/1970 of a date in the Gregorian calendar, and back (eras of 400 years from 1 March).
constexpr std::int64_t DaysFromCivil(std::int64_t year, int month, int day) {
  year -= month <= 2;
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const std::int64_t yearOfEra = year - era * 400;
  const std::int64_t dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

constexpr std::int64_t Epoch = DaysFromCivil(1899, 12, 30);
constexpr double FirstDate = static_cast<double>(DaysFromCivil(100, 1, 1) - Epoch);
constexpr double LastDate = static_cast<double>(DaysFromCivil(10000, 1, 1) - Epoch) - 1.0 / SecondsPerDay;

std::int64_t WholeSeconds(Date date) {
  if (std::isnan(date)) return 0;
  return std::llround(std::clamp(date, FirstDate, LastDate) * SecondsPerDay);
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

}  // namespace

Date MakeDate(int year, int month, int day, int hour, int minute, int second) {
  const auto days = static_cast<double>(DaysFromCivil(year, month, day) - Epoch);
  return days + static_cast<double>(hour * 3600 + minute * 60 + second) / SecondsPerDay;
}

CalendarTime ToCalendar(Date date) {
  const std::int64_t seconds = WholeSeconds(date);
  std::int64_t days = seconds / SecondsPerDay;
  std::int64_t ofDay = seconds % SecondsPerDay;
  if (ofDay < 0) {
    ofDay += SecondsPerDay;
    --days;
  }
  const std::int64_t shifted = days + Epoch + 719468;
  const std::int64_t era = (shifted >= 0 ? shifted : shifted - 146096) / 146097;
  const std::int64_t dayOfEra = shifted - era * 146097;
  const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t marchMonth = (5 * dayOfYear + 2) / 153;

  CalendarTime time;
  time.Day = static_cast<int>(dayOfYear - (153 * marchMonth + 2) / 5 + 1);
  time.Month = static_cast<int>(marchMonth < 10 ? marchMonth + 3 : marchMonth - 9);
  time.Year = static_cast<int>(yearOfEra + era * 400 + (time.Month <= 2 ? 1 : 0));
  time.Hour = static_cast<int>(ofDay / 3600);
  time.Minute = static_cast<int>(ofDay / 60 % 60);
  time.Second = static_cast<int>(ofDay % 60);
  return time;
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

}  // namespace hyetex
