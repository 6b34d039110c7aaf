// The values of a table's columns as the texts of the exchange, and back. Numbers have "." and no more digits
// than they need to be read back as the same number; times are "YYYY-MM-DDTHH:MM:SS", with a fraction of a
// second where there is one, days "YYYY-MM-DD".
#pragma once

#include <string>
#include <string_view>

#include "core/result.h"
#include "platform/odbc/connection.h"

namespace hyetex {

/// What a column takes.
enum class ColumnKind { Text, Binary, Whole, Number, Time, Day };
ColumnKind KindOf(const CatalogColumn& column);

/// A value as the database itself writes it, in the form of the exchange; what is none of the column's type
/// (which a database may hold all the same) stays as it is. Of a number with a fraction the digits go that a
/// 64-bit float does not need.
std::string ExchangeText(std::string text, ColumnKind kind);

/// A text of a file as a value for the column. Times are also read as "DD/MM/YYYY HH:MM:SS", with two digits
/// for day and month, and without a time of day; numbers also with a decimal comma. Fails, with what is
/// wrong, on any other form, on a day that is not in the calendar, on a text that is longer than the column,
/// and on a NUL in a text.
Result<DbValue> ValueOf(std::string text, const CatalogColumn& column, ColumnKind kind);

}  // namespace hyetex
