// Which rows a statement is to take: the conditions of a selection, and rows that are known by their places.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/odbc/catalog.h"
#include "platform/odbc/recordset.h"
#include "platform/odbc/statement.h"

namespace hyetex {

/// The conditions of a selection. Times may be stored with a fraction of a second, or as text in one of
/// several forms, so that no statement can compare them to the second: it asks for a little more, in a way
/// that an index serves, and of what comes only the rows that Allows() counts are meant.
class Conditions {
 public:
  Conditions(std::shared_ptr<OdbcLink> link, const TableShape& shape,
             std::vector<Selection::Condition> conditions);

  /// What stands behind WHERE, empty where there is nothing to ask for. May have to ask the database how it
  /// writes codes.
  DbResult<std::string> Text();
  /// The values of the text's marks, in their order.
  std::vector<Parameter> Parameters() const;

  /// The columns of times, by their positions in the table, whose values in a row tell whether it is meant.
  const std::vector<std::size_t>& Checked() const { return checked_; }
  /// Whether a row is meant that has this time in the column `Checked()[at]`.
  bool Allows(std::size_t at, Date time) const;

 private:
  struct Time {
    Compare How;
    std::vector<std::int64_t> Seconds;  // sorted
  };
  std::string TimesText(const std::string& column, const TableColumn& shape,
                        const Selection::Condition& condition);
  DbResult<void> AddCode(std::string& text, const std::string& column, const TableColumn& shape,
                         const std::string& code);
  DbResult<bool> AnyPadded(const std::string& upper, const TableColumn& shape, const std::string& code,
                           const std::vector<std::string>& padded) const;
  void AddValue(DbValue value, const TableColumn& column);

  std::shared_ptr<OdbcLink> link_;
  const TableShape* shape_;
  std::vector<Selection::Condition> conditions_;
  std::vector<std::size_t> checked_;
  std::vector<Time> times_;  // as many as are checked
  std::vector<std::pair<DbValue, SQLSMALLINT>> values_;
};

/// A column that rows are ordered by, ready to stand in a statement.
struct OrderColumn {
  std::string Name;
  SQLSMALLINT Type = SQL_UNKNOWN_TYPE;
  bool MayBeNull = true;
};

/// What stands behind WHERE to find the rows behind this one in an order, or those before it; adds what
/// travels into it.
std::string BeyondText(std::span<const OrderColumn> order, std::span<const DbValue> key, bool behind,
                       DatabaseMaker maker, std::vector<Parameter>& parameters);

/// What stands behind WHERE to find these rows of one table; adds what travels into it.
std::string RowsText(std::span<const RowPlace> rows, DatabaseMaker maker, std::vector<Parameter>& parameters);

}  // namespace hyetex
