// Statements and the values that travel into them.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/odbc/odbc_link.h"

namespace hyetex {

/// How values of a column's ODBC type travel.
enum class ValueKind { Integer, Real, Text, Time, Binary };
ValueKind KindOfType(SQLSMALLINT sqlType);
/// The C type that a value of this kind has in our buffers.
SQLSMALLINT CTypeOf(ValueKind kind);

/// A value on its way in. It must stay where it is between Bind() and Execute().
class Parameter {
 public:
  Parameter() = default;
  /// For a column of a known ODBC type: what is no binary goes into a binary column as its bytes, and so on.
  void Set(DbValue value, DatabaseMaker maker, SQLSMALLINT columnType = SQL_UNKNOWN_TYPE);
  std::size_t ByteCount() const {
    return kind_ == ValueKind::Text || kind_ == ValueKind::Binary ? text_.size() : 8;
  }

 private:
  friend class Statement;
  void SetText(std::string text, DatabaseMaker maker);
  void* Data();

  ValueKind kind_ = ValueKind::Text;
  SQLSMALLINT sqlType_ = SQL_VARCHAR;
  std::int64_t integer_ = 0;
  double real_ = 0;
  SQL_TIMESTAMP_STRUCT time_{};
  std::string text_;
  SQLLEN indicator_ = SQL_NULL_DATA;
};

class Statement {
 public:
  Statement() = default;
  Statement(Statement&& other) noexcept { *this = std::move(other); }
  Statement& operator=(Statement&& other) noexcept;
  ~Statement() { Free(); }

  static DbResult<Statement> Make(std::shared_ptr<OdbcLink> link);
  static DbResult<Statement> Prepared(std::shared_ptr<OdbcLink> link, const std::string& sql);
  explicit operator bool() const { return handle_ != SQL_NULL_HSTMT; }
  SQLHSTMT Handle() const { return handle_; }

  DbResult<void> Bind(std::span<Parameter> parameters);
  DbResult<void> Execute();
  /// The number of rows that the last Execute() changed.
  std::int64_t RowCount() const;
  /// To the next row or array of rows; false behind the last.
  DbResult<bool> Fetch();
  void CloseCursor();
  /// A whole long value of the row that was fetched, in pieces. NULL calls nothing and gives false.
  DbResult<bool> ReadLong(SQLUSMALLINT column, bool binary,
                          const std::function<bool(std::string_view)>& take);
  DbResult<void> Check(SQLRETURN result);

 private:
  void Free();
  struct Bound {
    ValueKind Kind;
    SQLSMALLINT SqlType;
    const void* Data;
    const SQLLEN* Indicator;
    SQLULEN Size;
  };
  std::shared_ptr<OdbcLink> link_;
  SQLHSTMT handle_ = SQL_NULL_HSTMT;
  std::vector<Bound> bound_;
  std::string piece_;
};

}  // namespace hyetex
