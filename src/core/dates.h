// Dates and times as days since 30/12/1899, and their texts in files, reports and file names. All texts
// are made from the time rounded to the nearest second, so that 12:30 stays 12:30 whatever the last bits
// of the fraction say. Dates outside the years 100 to 9999 are held at those ends.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/records.h"

namespace hyetex {

inline constexpr int MinutesPerDay = 24 * 60, SecondsPerDay = MinutesPerDay * 60;

struct CalendarTime {
  int Year = 1899, Month = 12, Day = 30;
  int Hour = 0, Minute = 0, Second = 0;
};

Date MakeDate(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
CalendarTime ToCalendar(Date date);
/// To the nearest second, counted from 30/12/1899.
std::int64_t SecondsOf(Date date);
/// The present local date and time.
Date Now();

/// "DD/MM/YY", followed by " HH:MM" if the date has a time of day; a value below 1 (a bare time) gives
/// "HH:MM:SS". The form of chart files and reports.
std::string DateText(Date date);
/// "YYYYMMDD-HHMM", the form of chart file names.
std::string DateCode(Date date);
/// "DD/MM/YYYY HH:MM:SS", the time left out at midnight: the one form of staged tasks, settings and lists.
std::string GeneralDateText(Date date);
/// "HH:MM:SS" of the time of day.
std::string TimeText(Date date);
/// "YYYY-MM-DDTHH:MM:SS" (ISO 8601, no zone).
std::string IsoText(Date date);

struct ParsedDate {
  Date Value = 0;
  bool TwoDigitYear =
      false;  ///< the century was supplied: 30 to 99 are 1930 to 1999, 00 to 29 are 2000 to 2029
};
/// Reads a date by fixed places: two digits of day, any character, two of month, "/", a year of two or four
/// digits, and optionally a blank and a time of hours, minutes and seconds. A day past the month's end runs
/// on into the next month. Without "/", a bare time, or year-month-day with "-". Nothing for any other text.
std::optional<ParsedDate> ParseDateText(std::string_view text);

/// The years of the dates that an operator can type.
inline constexpr int FirstTypedYear = 1850, LastTypedYear = 2100;
/// A day as an operator types it: day, month and year of four digits behind each other ("12041999") or apart
/// by any of "/.- " ("12/4/1999", "12.04.1999"); year first only as "1999-04-12". Nothing for a day that is
/// not in the calendar, a year outside those above, and any other text.
std::optional<Date> TypedDate(std::string_view text);
/// What an operator is told whose text is no date.
std::string NoDateText(std::string_view typed);

}  // namespace hyetex
