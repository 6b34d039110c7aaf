// Rows of one table, walked from the first to the last, and changed as one goes. Rows stream from the
// database in arrays, so a table of any size opens at once and needs no more memory than a small one.
//
// A walk goes over the rows that were there when it began, whatever is added on the way, and goes on through
// commits and rollbacks; only of a transaction that was opened before it and is rolled back it sees the end,
// as an error. Text goes to a server as UTF-8: what is none goes as Windows-1252 is read. A NUL in a text
// (not in a binary) becomes a blank, since databases end texts there.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/odbc/connection.h"

namespace hyetex {

/// EqualIgnoringCase asks for UPPER(column) = UPPER(value), for which a database may have an index. Blanks
/// behind a text do not count there, since columns of fixed width add them.
enum class Compare { Equal, EqualIgnoringCase, AtLeast, AtMost, OneOf };

/// Which rows and columns to ask the database for. Names are looked up in the catalog without regard to case;
/// times are compared to the second, whatever their form.
struct Selection {
  struct Condition {
    std::string Column;
    Compare How = Compare::Equal;
    DbValue Wanted = {};
    std::vector<DbValue> Among = {};  ///< of OneOf: at least one, none of them NULL
  };
  std::vector<std::string> Columns = {};  ///< none: all
  std::vector<Condition> Where = {};      ///< all must hold
  /// Long columns travel with their row, where the driver can, and not when they are asked for: less to ask
  /// for, but a driver may hold those of some hundred rows at once.
  bool LongWithRow = false;
  /// All but binaries come as texts, as the database itself writes them: nothing of a value is lost, be it a
  /// fraction of a second, the last digit of a number, or what is stored in a column of another type.
  bool AsText = false;
};

/// What finds a row again for as long as nobody changes it: columns, ready for a statement, and their values.
struct RowPlace {
  std::vector<std::string> Columns;
  std::vector<DbValue> Values;
  std::vector<std::int16_t> Types;  ///< of the values, by ODBC's numbers
};

class Recordset {
 public:
  Recordset();
  ~Recordset();
  Recordset(Recordset&&) noexcept;
  Recordset& operator=(Recordset&&) noexcept;

  /// Opens on a table, on its first row. The connection must outlive the recordset. Fails on a table or
  /// column that the catalog does not have.
  static DbResult<Recordset> Open(Connection& connection, std::string_view table, Selection selection = {});
  bool IsOpen() const;
  void Close();

  bool Eof() const;            ///< true as well on a closed recordset
  DbResult<void> MoveFirst();  ///< asks the database again
  DbResult<void> MoveNext();
  DbResult<void> Move(std::int64_t rows);  ///< forward, or back by beginning again

  int FieldCount() const;
  const std::string& FieldName(int position) const;
  bool HasField(std::string_view name) const;
  const std::vector<CatalogColumn>& Fields() const;

  /// The value in the current row, or the one that was set for it. Names are found without regard to case;
  /// long columns are read when they are asked for, not before. RecordsetClosed, NoCurrentRow, MissingField.
  DbResult<DbValue> Value(std::string_view name);
  DbResult<DbValue> Value(int position);
  /// A long text or binary in pieces; `take` returns false to stop.
  DbResult<void> ReadPieces(std::string_view name, const std::function<bool(std::string_view)>& take);

  /// A new row without values, current until it is stored by Update() or by a move; then the row before it is
  /// current again.
  DbResult<void> AddNew();
  DbResult<void> SetValue(std::string_view name, DbValue value);
  DbResult<void> SetValue(int position, DbValue value);
  bool IsPending() const;
  /// Stores what was set. A change that fails stays pending, to be mended or cancelled.
  DbResult<void> Update();
  void CancelUpdate();
  /// Where the current row stands.
  DbResult<RowPlace> Place();
  /// Sets a column of some rows of a table in one statement. Fails where not every one of them is there any
  /// more, or one stands for several that are alike.
  static DbResult<void> SetInRows(Connection& connection, std::string_view table, std::string_view column,
                                  const DbValue& value, std::span<const RowPlace> rows);
  /// Deletes some rows of a table, which fails in the same way.
  static DbResult<void> DeleteRows(Connection& connection, std::string_view table,
                                   std::span<const RowPlace> rows);
  /// Deletes the current row; the next move goes on behind it.
  DbResult<void> Delete();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// Calls `visit()` for each row, from the current one to the last, until it returns false or something fails.
template <typename Visit>
DbResult<void> ForEachRow(Recordset& table, Visit&& visit) {
  while (!table.Eof()) {
    const DbResult<bool> goesOn = visit();
    if (!goesOn) return tl::unexpected(goesOn.error());
    if (!*goesOn) break;
    if (auto moved = table.MoveNext(); !moved) return moved;
  }
  return {};
}

/// What becomes of a row whose unique key another row has.
enum class Duplicates {
  Fail,  ///< the rows that travel with it fail too
  Skip,  ///< it alone stays out; only where CanSkipDuplicates()
};

/// Writes many rows of one table, about 100 in one INSERT. Rows that have not travelled when a transaction is
/// rolled back, or a savepoint, are forgotten with it.
class RowWriter {
 public:
  RowWriter();
  ~RowWriter();
  RowWriter(RowWriter&&) noexcept;
  RowWriter& operator=(RowWriter&&) noexcept;

  static DbResult<RowWriter> Open(Connection& connection, std::string_view table,
                                  const std::vector<std::string>& columns,
                                  Duplicates duplicates = Duplicates::Fail);
  static bool CanSkipDuplicates(const Connection& connection);
  /// The columns as the catalog has them, in the order that was asked for; for cutting texts to their width.
  const std::vector<CatalogColumn>& Columns() const;
  /// One value a column. Rows travel when enough have come together, the rest with Finish().
  DbResult<void> Add(std::vector<DbValue> row);
  /// The number of rows written since Open(), without those that were skipped.
  DbResult<std::int64_t> Finish();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// `text` cut to at most `width` characters of UTF-8 (bytes, where it is no valid UTF-8), on whole
/// characters. A width of 0 or less cuts nothing.
std::string CutToWidth(std::string text, std::int64_t width);

}  // namespace hyetex
