// One table open for editing: its connection, its boxes, and its rows, for one row of a master table at a
// time where it has one.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/result.h"
#include "database/tables/edited_tables.h"
#include "database/tables/field.h"
#include "database/tables/table_cursor.h"

namespace hyetex {

class TableEditor {
 public:
  /// On the first row. Fails, with words for the operator, where the database cannot be reached, or lacks the
  /// table or some of its columns.
  static Result<std::unique_ptr<TableEditor>> Open(const EditedTable& table,
                                                   const std::string& connectionText);

  const EditedTable& Table() const { return table_; }
  const std::vector<Field>& Fields() const { return fields_; }
  TableCursor& Rows() { return *rows_; }
  /// Null where the table has none.
  TableCursor* Master() { return master_.get(); }
  /// The rows that First, Last and their like move through, and that are looked for: the master's, where
  /// there is one.
  TableCursor& Moved() { return master_ ? *master_ : *rows_; }
  /// Of the current row, a picture as its bytes.
  DbResult<DbValue> Value(const Field& field);
  /// The rows of the master's current row; to be called when that has changed.
  DbResult<void> FollowMaster();
  /// Reads all again, on a new connection where the old one is gone.
  Result<void> Requery();
  DbResult<bool> Find(const std::string& prefix, Progress& progress);

 private:
  explicit TableEditor(const EditedTable& table) : table_(table) {}
  Result<void> Connect();
  std::vector<Selection::Condition> OfMaster() const;

  const EditedTable table_;
  std::string connectionText_;
  Connection connection_;
  std::vector<Field> fields_;
  std::string masterColumn_;  // as the master's table spells it
  std::unique_ptr<TableCursor> rows_, master_;
};

/// What an operator is told whose change or deletion found that the row is not as it was read.
std::string FateText(RowFate fate, bool deletes);

}  // namespace hyetex
