// Rows on their way into a table, in one transaction: many at a time, and of those that fail together only
// the one at fault stays out.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/odbc/recordset.h"

namespace hyetex {

class ImportRows {
 public:
  /// Writes into these columns, as the catalog has them, of the table that the catalog has. A transaction is
  /// open as long as this lives. `goesOn` is asked between statements: Cancelled where it says no.
  ImportRows(Connection& connection, std::string table, std::vector<CatalogColumn> columns,
             std::function<bool()> goesOn);

  /// A row, by its number in the file; one value a column. A column that fills itself is left out of a row
  /// that has no value for it. Rows travel when enough have come together; fails where the database is at
  /// fault and no row.
  DbResult<void> Add(std::int64_t number, std::vector<DbValue> values);
  /// Sends what has not travelled.
  DbResult<void> Finish();
  /// A row that is left out for a reason that was found before.
  void Refuse(std::int64_t number, const std::string& why);

  std::int64_t Added() const { return added_; }
  std::int64_t Refused() const { return refused_; }
  /// Which row was refused first, and why; empty for none.
  const std::string& FirstRefused() const { return firstRefused_; }

 private:
  struct Row {
    std::int64_t Number;
    std::vector<DbValue> Values;
  };
  DbResult<void> Write(std::size_t first, std::size_t count);
  DbResult<std::int64_t> TryWrite(std::size_t first, std::size_t count);
  DbResult<RowWriter*> WriterFor(const std::vector<bool>& left);

  Connection& connection_;
  const std::string table_;
  const std::vector<CatalogColumn> columns_;
  const std::function<bool()> goesOn_;
  std::vector<Row> group_;
  std::size_t groupBytes_ = 0, groupRows_;
  Duplicates duplicates_ = Duplicates::Fail;
  std::map<std::vector<bool>, RowWriter> writers_;  // by which columns are left out
  std::int64_t added_ = 0, refused_ = 0, firstNumber_ = 0;
  std::string firstRefused_;
};

}  // namespace hyetex
