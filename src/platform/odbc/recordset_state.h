// What an open recordset holds.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/odbc/recordset.h"
#include "platform/odbc/row_source.h"

namespace hyetex {

struct Recordset::State {
  std::shared_ptr<OdbcLink> Link;
  TableShape Shape;
  std::vector<std::size_t> Chosen;  ///< positions of the fields in Shape.Columns
  std::vector<CatalogColumn> Fields;
  std::unique_ptr<RowSource> Rows;
  std::int64_t Position = 0;  ///< of the current row among those that are there, from 0
  bool Deleted = false;       ///< the current row is gone
  enum class Edit { None, Change, New } Pending = Edit::None;
  std::map<std::size_t, DbValue> Changed;  ///< pending, by position of the field
  std::map<std::size_t, DbValue> Stored;   ///< what the current row was changed to since it was read
  std::string StatementText;               ///< of the statement that changed a row last
  Statement Prepared;

  bool HasRow() const { return !Deleted && !Rows->AtEnd(); }
  std::optional<std::size_t> Find(std::string_view name) const;
  const TableColumn& Column(std::size_t field) const { return Shape.Columns[Chosen[field]]; }

  DbResult<void> Store();
  DbResult<void> StoreNew();
  DbResult<void> StoreChange();
  DbResult<void> Delete();
  /// Runs a statement that ends in the current row's condition. The row must be there, and be the only one.
  DbResult<void> ChangeRow(const std::string& sql, std::vector<Parameter> parameters, bool keepsRow);
  DbResult<void> Run(const std::string& sql, std::vector<Parameter>& parameters);
};

inline tl::unexpected<DbError> RecordsetIsClosed() {
  return OdbcFailure(db_error::RecordsetClosed, "The recordset is closed");
}
inline tl::unexpected<DbError> NoCurrentRow() {
  return OdbcFailure(db_error::NoCurrentRow, "There is no current row");
}
inline tl::unexpected<DbError> NoSuchField(std::string_view name) {
  return OdbcFailure(db_error::MissingField, "There is no field " + std::string(name));
}

}  // namespace hyetex
