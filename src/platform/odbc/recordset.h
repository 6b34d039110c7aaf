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
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/odbc/connection.h"

namespace hyetex {

/// EqualIgnoringCase asks for UPPER(column) = UPPER(value), for which a database may have an index. Blanks
/// behind a text do not count there, since columns of fixed width add them.
/// BeginsWith is without regard to case as well.
enum class Compare { Equal, EqualIgnoringCase, AtLeast, AtMost, OneOf, BeginsWith };

/// What finds a row again for as long as nobody changes it: columns, ready for a statement, and their values.
struct RowPlace {
  std::vector<std::string> Columns;
  std::vector<DbValue> Values;
  std::vector<std::int16_t> Types;  ///< of the values, by ODBC's numbers
};

/// Where a row stands in an order: its values in the columns of the order, then those of its place.
using RowKey = std::vector<DbValue>;

/// A stretch of a table, in the order of some columns and, among rows that are alike in these, in the table's
/// own; read from either end.
struct Page {
  std::vector<std::string> OrderBy = {};           ///< among the chosen columns
  std::optional<RowKey> Behind = {}, Before = {};  ///< the rows around it, which are no part of it
  bool Backward = false;                           ///< from its last row
  std::int64_t Most = 0;                           ///< rows; 0: all
};

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
  /// Only these rows, where there are any among those that the conditions ask for.
  std::vector<RowPlace> Rows = {};
  /// Rows to change in the open transaction: nobody else changes them before its end. IsLocked() where
  /// somebody is about to already; that is not waited for.
  bool ForChange = false;
  std::optional<hyetex::Page> Page = {};
  /// All but binaries come as texts, as the database itself writes them: nothing of a value is lost, be it a
  /// fraction of a second, the last digit of a number, or what is stored in a column of another type.
  bool AsText = false;
};

/// A row that was read with its page.
struct PagedRow {
  RowPlace Place;
  RowKey Key;
  std::vector<DbValue> Values;  ///< of the chosen columns
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
  /// Where it stands in the order of the selection's page.
  DbResult<RowKey> Key();
  /// Sets a column of some rows of a table in one statement. Fails where not every one of them is there any
  /// more, or one stands for several that are alike.
  static DbResult<void> SetInRows(Connection& connection, std::string_view table, std::string_view column,
                                  const DbValue& value, std::span<const RowPlace> rows);
  /// Stores one row, and tells where it stands.
  static DbResult<RowPlace> Insert(Connection& connection, std::string_view table,
                                   const std::vector<std::pair<std::string, DbValue>>& values);
  /// Whether the database tells a row of the table from all others. Else, as in a view, there is no order to
  /// read pages by, and a place is made of all values.
  static DbResult<bool> TellsRowsApart(Connection& connection, std::string_view table);
  /// The rows of a page, beginning with its end. Costs no more the larger the table is, but where a page is
  /// ordered by a column without an index, or has conditions. `progress`, which may be null, is for a search
  /// through the whole table: Cancelled where it wants no more.
  static DbResult<std::vector<PagedRow>> ReadPage(Connection& connection, std::string_view table,
                                                  Selection selection, Progress* progress = nullptr);
  /// Where a row stands now that somebody has changed it, in a database that moves changed rows; nothing
  /// where that cannot be told.
  static std::optional<RowPlace> Follow(Connection& connection, std::string_view table, const RowPlace& row);
  /// How many rows a selection has. Not for conditions of times, which no statement tells exactly.
  static DbResult<std::int64_t> Count(Connection& connection, std::string_view table, Selection selection);
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
