// Dates and times of day between the records and the toolkit's boxes for them, to the second.
#pragma once

#include <QDate>
#include <QTime>

#include "core/dates.h"

namespace hyetex {

/// The form in which all windows show them.
inline constexpr const char* DateBoxForm = "dd/MM/yyyy";
inline constexpr const char* TimeBoxForm = "HH:mm:ss";

inline QDate ToQDate(Date date) {
  const CalendarTime at = ToCalendar(date);
  return {at.Year, at.Month, at.Day};
}
inline QTime ToQTime(Date date) {
  const CalendarTime at = ToCalendar(date);
  return {at.Hour, at.Minute, at.Second};
}
inline Date FromQDate(QDate date) { return MakeDate(date.year(), date.month(), date.day()); }
inline Date FromQTime(QTime time) { return time.msecsSinceStartOfDay() / 86'400'000.0; }

}  // namespace hyetex
