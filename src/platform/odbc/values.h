// What goes into and comes out of a database, and what can go wrong there.
#pragma once

#include <cstdint>
#include <string>
#include <tl/expected.hpp>
#include <variant>

#include "core/records.h"

namespace hyetex {

/// The numbers by which callers tell errors apart; those of the desktop databases' own interface, so that
/// what an operator reads in a message can be looked up.
namespace db_error {
inline constexpr std::int32_t GeneralFailure =
    -2147467259;  ///< 0x80004005: the driver cannot reach its source
inline constexpr std::int32_t ConstraintViolation = -2147217873;  ///< 0x80040E2F
inline constexpr std::int32_t StatementFailed = -2147217900;      ///< 0x80040E14: any other failed statement
inline constexpr std::int32_t Locked = -2147217871;     ///< 0x80040E31: another program writes, for too long
inline constexpr std::int32_t Cancelled = -2147217842;  ///< 0x80040E4E: by the operator, while waiting
inline constexpr std::int32_t NotUpdatable = 3210;      ///< the row does not take changes
inline constexpr std::int32_t NotNow = 3219;  ///< not allowed in this state (such as Update without a row)
inline constexpr std::int32_t NoCurrentRow = 3021;  ///< before the first or behind the last row
inline constexpr std::int32_t MissingField = 3265;  ///< no field of this name or position
inline constexpr std::int32_t RecordsetClosed = 3704;
}  // namespace db_error

struct DbError {
  std::int32_t Number = db_error::GeneralFailure;
  std::string Description;  ///< one line, the driver's own words
  std::string State;        ///< the five characters of SQLSTATE, empty for our own
};

/// Whether another program's lock was in the way.
bool IsLocked(const DbError& error);
/// As messages name it: the number, a blank and the description.
std::string NumberAndDescription(const DbError& error);

template <typename T>
using DbResult = tl::expected<T, DbError>;

struct DbBinary {
  std::string Bytes;
  bool operator==(const DbBinary&) const = default;
};
/// A date and time without a zone, to the second in the database. Of a stored fraction of a second only what
/// a computation with days leaves just before the next second counts.
struct DbDate {
  Date Value = 0;
  bool operator==(const DbDate&) const = default;
};
/// Without a value (NULL), which is not the same as an empty text.
using DbNull = std::monostate;
using DbValue = std::variant<DbNull, std::int64_t, double, std::string, DbDate, DbBinary>;

inline bool IsNull(const DbValue& value) { return std::holds_alternative<DbNull>(value); }
/// A value as text, number or date, read leniently whatever type the driver gave; NULL and what is none give
/// an empty text or 0. Binary gives its bytes as text.
std::string TextOf(const DbValue& value);
double NumberOf(const DbValue& value);
/// A text is read in the forms of ParseDateText, and with a fraction of a second or a zone behind it.
Date DateOf(const DbValue& value);
/// The whole seconds, none or one, that a fraction of one counts as.
int SecondsOfFraction(double fraction);

}  // namespace hyetex
