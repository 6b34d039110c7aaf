#include "platform/odbc/statement.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {
namespace {

SQLSMALLINT TypeOfKind(ValueKind kind) {
  switch (kind) {
    case ValueKind::Integer:
      return SQL_BIGINT;
    case ValueKind::Real:
      return SQL_DOUBLE;
    case ValueKind::Time:
      return SQL_TYPE_TIMESTAMP;
    case ValueKind::Binary:
      return SQL_LONGVARBINARY;
    case ValueKind::Text:
      break;
  }
  return SQL_VARCHAR;
}

SQL_TIMESTAMP_STRUCT TimestampOf(Date date) {
  const CalendarTime time = ToCalendar(date);
  return {static_cast<SQLSMALLINT>(time.Year),
          static_cast<SQLUSMALLINT>(time.Month),
          static_cast<SQLUSMALLINT>(time.Day),
          static_cast<SQLUSMALLINT>(time.Hour),
          static_cast<SQLUSMALLINT>(time.Minute),
          static_cast<SQLUSMALLINT>(time.Second),
          0};
}

// The form of a time that databases share, "YYYY-MM-DD HH:MM:SS".
std::string SqlTimeText(Date date) {
  std::string text = "0000-00-00 00:00:00";
  const auto put = [&](std::size_t end, int value) {
    for (; value > 0; value /= 10) text[--end] = static_cast<char>('0' + value % 10);
  };
  const CalendarTime time = ToCalendar(date);
  put(4, time.Year);
  put(7, time.Month);
  put(10, time.Day);
  put(13, time.Hour);
  put(16, time.Minute);
  put(19, time.Second);
  return text;
}

}  // namespace

SQLSMALLINT CTypeOf(ValueKind kind) {
  switch (kind) {
    case ValueKind::Integer:
      return SQL_C_SBIGINT;
    case ValueKind::Real:
      return SQL_C_DOUBLE;
    case ValueKind::Time:
      return SQL_C_TYPE_TIMESTAMP;
    case ValueKind::Binary:
      return SQL_C_BINARY;
    case ValueKind::Text:
      break;
  }
  return SQL_C_CHAR;
}

ValueKind KindOfType(SQLSMALLINT sqlType) {
  switch (sqlType) {
    case SQL_BIT:
    case SQL_TINYINT:
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_BIGINT:
      return ValueKind::Integer;
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
    case SQL_NUMERIC:
    case SQL_DECIMAL:
      return ValueKind::Real;
    case SQL_DATE:
    case SQL_TIMESTAMP:
    case SQL_TYPE_DATE:
    case SQL_TYPE_TIMESTAMP:
      return ValueKind::Time;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
      return ValueKind::Binary;
    default:
      return ValueKind::Text;
  }
}

void Parameter::SetText(std::string text, DatabaseMaker maker) {
  // Servers refuse text that is no UTF-8; it goes as what it is shown as. No database keeps a NUL in text.
  if (maker != DatabaseMaker::SQLite) text = ShownText(text);
  // In the place where the last one stood, if it fits there: a value that has moved has to be bound anew.
  if (text.size() <= text_.capacity())
    text_.assign(text);
  else
    text_ = std::move(text);
  std::replace(text_.begin(), text_.end(), '\0', ' ');
  kind_ = ValueKind::Text;
}

void Parameter::Set(DbValue value, DatabaseMaker maker, SQLSMALLINT columnType) {
  const bool known = columnType != SQL_UNKNOWN_TYPE;
  const ValueKind wanted = KindOfType(columnType);
  if (IsNull(value)) {
    kind_ = known ? wanted : ValueKind::Text;
    indicator_ = SQL_NULL_DATA;
  } else if (known && wanted == ValueKind::Binary) {
    kind_ = ValueKind::Binary;
    text_ =
        std::holds_alternative<DbBinary>(value) ? std::move(std::get<DbBinary>(value).Bytes) : TextOf(value);
  } else if (auto* binary = std::get_if<DbBinary>(&value)) {
    if (known) {
      SetText(std::move(binary->Bytes), maker);
    } else {
      kind_ = ValueKind::Binary;
      text_ = std::move(binary->Bytes);
    }
  } else if (auto* text = std::get_if<std::string>(&value)) {
    SetText(std::move(*text), maker);
  } else if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    kind_ = ValueKind::Integer;
    integer_ = *integer;
  } else if (const auto* date = std::get_if<DbDate>(&value)) {
    // SQLite keeps times as text: this is its own form, without the fractions that its driver would add.
    if (maker == DatabaseMaker::SQLite || (known && wanted == ValueKind::Text)) {
      SetText(SqlTimeText(date->Value), maker);
    } else {
      kind_ = ValueKind::Time;
      time_ = TimestampOf(date->Value);
    }
  } else if (const double real = std::get<double>(value); maker == DatabaseMaker::SQLite) {
    kind_ = ValueKind::Real;
    real_ = real;
  } else {
    // Other drivers write 15 digits; 17 are needed to get the same number back.
    kind_ = ValueKind::Text;
    text_ = ExactText(real);
    if (!known) columnType = SQL_DOUBLE;
  }
  if (!IsNull(value))
    indicator_ =
        kind_ == ValueKind::Text || kind_ == ValueKind::Binary ? static_cast<SQLLEN>(text_.size()) : 0;
  sqlType_ = columnType != SQL_UNKNOWN_TYPE ? columnType : TypeOfKind(kind_);
}

void* Parameter::Data() {
  switch (kind_) {
    case ValueKind::Integer:
      return &integer_;
    case ValueKind::Real:
      return &real_;
    case ValueKind::Time:
      return &time_;
    default:
      return text_.data();
  }
}

Statement& Statement::operator=(Statement&& other) noexcept {
  if (this == &other) return *this;
  Free();
  link_ = std::move(other.link_);
  handle_ = std::exchange(other.handle_, nullptr);
  bound_ = std::move(other.bound_);
  return *this;
}

void Statement::Free() {
  // Closing a connection has freed its statements.
  if (handle_ != SQL_NULL_HSTMT && link_->IsOpen()) SQLFreeHandle(SQL_HANDLE_STMT, handle_);
  handle_ = SQL_NULL_HSTMT;
}

DbResult<Statement> Statement::Make(std::shared_ptr<OdbcLink> link) {
  if (const auto ready = link->Ready(); !ready) return tl::unexpected(ready.error());
  Statement statement;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, link->Handle(), &statement.handle_))) {
    statement.handle_ = SQL_NULL_HSTMT;
    return tl::unexpected(link->Fail(SQL_HANDLE_DBC, link->Handle()));
  }
  statement.link_ = std::move(link);
  return statement;
}

DbResult<Statement> Statement::Prepared(std::shared_ptr<OdbcLink> link, const std::string& sql) {
  auto statement = Make(std::move(link));
  if (!statement) return statement;
  const auto prepared = statement->Check(SQLPrepare(statement->handle_, SqlText(sql), SQL_NTS));
  if (!prepared) return tl::unexpected(prepared.error());
  return statement;
}

DbResult<void> Statement::Check(SQLRETURN result) {
  if (SQL_SUCCEEDED(result) || result == SQL_NO_DATA) return {};
  return tl::unexpected(link_->Fail(SQL_HANDLE_STMT, handle_));
}

DbResult<void> Statement::Bind(std::span<Parameter> parameters) {
  if (const auto ready = link_->Ready(); !ready) return ready;
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    Parameter& parameter = parameters[i];
    const SQLULEN size =
        std::max<SQLULEN>({parameter.text_.size(), 32, i < bound_.size() ? bound_[i].Size : 0});
    const Bound wanted{parameter.kind_, parameter.sqlType_, parameter.Data(), &parameter.indicator_, size};
    if (i < bound_.size()) {
      const Bound& now = bound_[i];
      const bool fits = now.Kind == wanted.Kind && now.SqlType == wanted.SqlType && now.Data == wanted.Data &&
                        now.Indicator == wanted.Indicator && now.Size == wanted.Size;
      if (fits) continue;
    }
    const bool isTime = wanted.Kind == ValueKind::Time;
    const auto bound = Check(SQLBindParameter(handle_, static_cast<SQLUSMALLINT>(i + 1), SQL_PARAM_INPUT,
                                              CTypeOf(wanted.Kind), wanted.SqlType, isTime ? 19 : wanted.Size,
                                              0, const_cast<void*>(wanted.Data), 0, &parameter.indicator_));
    if (!bound) return bound;
    if (i < bound_.size())
      bound_[i] = wanted;
    else
      bound_.push_back(wanted);
  }
  return {};
}

DbResult<void> Statement::Execute() {
  if (const auto ready = link_->Ready(); !ready) return ready;
  return Check(SQLExecute(handle_));
}

std::int64_t Statement::RowCount() const {
  SQLLEN count = 0;
  return SQL_SUCCEEDED(SQLRowCount(handle_, &count)) && count > 0 ? count : 0;
}

DbResult<bool> Statement::Fetch() {
  if (const auto ready = link_->Ready(); !ready) return tl::unexpected(ready.error());
  const SQLRETURN result = SQLFetch(handle_);
  if (const auto checked = Check(result); !checked) return tl::unexpected(checked.error());
  return result != SQL_NO_DATA;
}

void Statement::CloseCursor() {
  if (handle_ != SQL_NULL_HSTMT && link_->IsOpen()) SQLFreeStmt(handle_, SQL_CLOSE);
}

DbResult<bool> Statement::ReadLong(SQLUSMALLINT column, bool binary,
                                   const std::function<bool(std::string_view)>& take) {
  if (const auto ready = link_->Ready(); !ready) return tl::unexpected(ready.error());
  piece_.resize(1U << 16);
  const std::size_t room = piece_.size() - (binary ? 0 : 1);  // text ends in a NUL
  while (true) {
    SQLLEN length = 0;
    const SQLRETURN result = SQLGetData(handle_, column, binary ? SQL_C_BINARY : SQL_C_CHAR, piece_.data(),
                                        static_cast<SQLLEN>(piece_.size()), &length);
    if (result == SQL_NO_DATA) return true;
    if (const auto checked = Check(result); !checked) return tl::unexpected(checked.error());
    if (length == SQL_NULL_DATA) return false;
    const bool more = length == SQL_NO_TOTAL || static_cast<std::size_t>(length) > room;
    const std::size_t got = more ? room : static_cast<std::size_t>(length);
    if (!take(std::string_view(piece_.data(), got)) || !more) return true;
  }
}

}  // namespace hyetex
