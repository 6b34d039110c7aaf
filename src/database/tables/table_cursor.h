// The rows of one table, one of them current: moved to, added, changed and deleted. No table is read whole.
// What has been read of it stands in stretches, in the table's order, between which lies what nobody has
// looked at; the first move to either end costs one page, whatever the table's size.
//
// The rows keep their places until the next Requery(): a row that was changed here stands where it stood,
// though its database may keep it elsewhere now, and one that was added here stands at the end. What others
// add in between comes into sight where no stretch has been read yet.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/progress.h"
#include "platform/odbc/connection.h"
#include "platform/odbc/recordset.h"

namespace hyetex {

struct CursorSource {
  std::string Table;
  std::vector<std::string> Columns = {};      ///< short ones travel with their row
  std::vector<std::string> LongColumns = {};  ///< are read when they are asked for
  std::string OrderBy = {};                   ///< a column of these; empty: the table's own order
  std::vector<Selection::Condition> Where = {};
};

/// Tells a place from all others of its table.
std::string IdOfPlace(const RowPlace& place);

/// What became of a row since it was read.
enum class RowFate { Same, Changed, Gone };

class TableCursor {
 public:
  /// Rows that a page brings.
  static constexpr std::int64_t PageRows = 100;
  /// Of a table whose rows its database does not tell apart so many are read, at once.
  static constexpr std::int64_t MostUntold = 100'000;

  /// The connection must outlive it. Nothing is read before Requery().
  TableCursor(Connection& connection, CursorSource source);

  /// Reads the source again. The current row stays current if it is still there; else the first one is.
  DbResult<void> Requery();
  /// The same with other conditions, on the first row.
  DbResult<void> Requery(std::vector<Selection::Condition> where);

  bool HasRow() const { return row_ >= 0; }
  /// Of the current row, from 1; 0 without one.
  std::int64_t AbsolutePosition() const;
  /// All rows, those that were added and deleted here included. Counted once, by the database.
  DbResult<std::int64_t> Count();
  /// Whether there is more than could be read; only where rows are not told apart.
  bool IsCut() const { return isCut_; }

  // Each leaves the current row where it is when it fails. A move beyond an end stays on the last or first
  // row. Rows that somebody else has deleted meanwhile are passed over.
  DbResult<void> MoveFirst();
  DbResult<void> MoveLast();
  DbResult<void> MoveNext();
  DbResult<void> MovePrevious();
  /// To the first row whose column begins with the text, without regard to case; false where there is none.
  /// Looked for by the database.
  DbResult<bool> Find(const std::string& column, const std::string& prefix, Progress& progress);

  /// Of the current row, as the database had it when it became current, in the order of the columns; all NULL
  /// for a new one.
  const std::vector<DbValue>& Values() const { return values_; }
  /// A long column of the current row, read now.
  DbResult<DbValue> LongValue(const std::string& column);

  /// Whether a row is being changed or added: from Edit() or AddNew() to Update() or Cancel().
  bool EditingRecord() const { return editing_ != Editing::No; }
  bool IsNew() const { return editing_ == Editing::New; }
  void Edit();
  void AddNew() { editing_ = Editing::New; }
  void Cancel() { editing_ = Editing::No; }

  /// By the column's name.
  using Changes = std::map<std::string, DbValue>;
  /// Stores the changes in one transaction and ends the editing. Of a row that is not any more as it was
  /// read, columns without a change included, nothing is stored, and the editing goes on; so it does after an
  /// error. A new row becomes the current one.
  DbResult<RowFate> Update(const Changes& changes, Progress& progress);
  /// Deletes the current row, if it is as it was read; the one behind it becomes current.
  DbResult<RowFate> Delete(Progress& progress);
  /// The current row as it is now; Gone if it is not there any more, and the next one has become current.
  DbResult<RowFate> Reload();

  // The stretch around the current row, for a grid.
  std::int64_t LoadedRows() const;
  std::int64_t FirstLoaded() const;  ///< the position of its first row, from 1
  std::int64_t LoadedIndex() const { return row_; }
  const std::vector<DbValue>& LoadedValues(std::int64_t index) const;
  /// Makes a row of the stretch the current one, or the next where it is gone.
  DbResult<void> MoveTo(std::int64_t index);
  /// Reads a page more at either end; false where there is none.
  DbResult<bool> LoadMore(bool behind);
  /// Changes whenever the stretch holds other rows or values.
  std::int64_t Version() const { return version_; }

 private:
  struct Entry {
    RowPlace Place;
    std::vector<DbValue> Values;
  };
  struct Stretch {
    std::int64_t Start = 0;  // the position of its first row, from 0
    std::deque<Entry> Rows = {};
    std::optional<RowKey> Low = {}, High = {};  // what has been read lies between, these included
    bool AtEnd = false;
  };
  enum class Editing { No, Change, New };
  struct Spot {
    std::size_t Stretch = 0;
    std::int64_t Row = -1;
  };

  Stretch& Here() { return stretches_[at_]; }
  const Stretch& Here() const { return stretches_[at_]; }
  Selection Wanted() const;
  DbResult<std::vector<PagedRow>> Read(Page page);
  DbResult<void> Open();
  DbResult<bool> LoadBehind(std::size_t stretch);
  DbResult<bool> LoadBefore(std::size_t stretch);
  void Join(std::size_t first);
  DbResult<void> LoadEnd();
  DbResult<std::int64_t> CountBetween(const std::optional<RowKey>& low, const std::optional<RowKey>& high);
  /// Moves by one row, over those that are gone; false, and nothing has changed, where there is none.
  DbResult<bool> Step(int way);
  DbResult<void> MoveToEnd(int way);
  /// Of an entry, into values_; false if it is gone.
  DbResult<bool> Show(Entry& entry);
  DbResult<std::optional<std::vector<DbValue>>> ReadRow(RowPlace& place);
  /// Where the database has moved a changed row to.
  std::optional<RowPlace> Follow(const RowPlace& place);
  DbResult<bool> GoTo(const PagedRow& row);
  std::optional<Spot> FindLoaded(const RowPlace& place) const;
  void Remove(std::size_t stretch, std::int64_t row);
  DbResult<void> Leave();
  /// Opens the row in the open transaction, where it is still as it was read.
  DbResult<RowFate> OpenUnchanged(Recordset& row);
  DbResult<RowFate> WhatBecame(RowFate fate);
  DbResult<RowFate> StoreNew(const Changes& changes, Progress& progress);
  void Hide(const RowPlace& place);

  Connection& connection_;
  CursorSource source_;
  bool tellsApart_ = true, isCut_ = false;
  std::vector<Stretch> stretches_;  // the first one begins with the table
  std::size_t at_ = 0;
  std::int64_t row_ = -1;
  std::vector<DbValue> values_;
  std::map<std::string, DbValue> longValues_;  // of the current row, as far as they were read
  /// Rows that are shown elsewhere than where the table's order has them, by their places.
  std::map<std::string, RowPlace> hidden_;
  std::optional<std::int64_t> count_;
  Editing editing_ = Editing::No;
  std::int64_t version_ = 0;
};

}  // namespace hyetex
