// Adding, changing and deleting rows of a cursor.
#include <utility>

#include "database/tables/table_cursor.h"

namespace hyetex {

std::string IdOfPlace(const RowPlace& place) {
  std::string id;
  for (const DbValue& value : place.Values) id += TextOf(value) + (IsNull(value) ? '\x1e' : '\x1f');
  return id;
}

void TableCursor::Edit() {
  if (HasRow()) editing_ = Editing::Change;
}

void TableCursor::Remove(std::size_t stretch, std::int64_t row) {
  Stretch& of = stretches_[stretch];
  hidden_.erase(IdOfPlace(of.Rows[static_cast<std::size_t>(row)].Place));
  of.Rows.erase(of.Rows.begin() + row);
  for (std::size_t i = stretch + 1; i < stretches_.size(); ++i) --stretches_[i].Start;
  if (count_) --*count_;
  ++version_;
}

// The current row is gone; the one behind it stands in its place.
DbResult<void> TableCursor::Leave() {
  --row_;
  auto moved = Step(1);
  if (moved && !*moved) {
    ++row_;
    moved = Step(-1);
  }
  if (moved && *moved) return {};
  row_ = -1;
  values_.clear();
  if (!moved) return tl::unexpected(moved.error());
  return {};
}

DbResult<RowFate> TableCursor::OpenUnchanged(Recordset& row) {
  const Entry& entry = Here().Rows[static_cast<std::size_t>(row_)];
  Selection one{.Columns = source_.Columns, .Rows = {entry.Place}, .ForChange = true};
  one.Columns.insert(one.Columns.end(), source_.LongColumns.begin(), source_.LongColumns.end());
  auto opened = Recordset::Open(connection_, source_.Table, std::move(one));
  if (!opened && IsLocked(opened.error()))
    return tl::unexpected(
        DbError{db_error::Locked,
                "Somebody else is changing this record at this moment. Try again a little later.",
                {}});
  if (!opened) return tl::unexpected(opened.error());
  row = *std::move(opened);
  if (row.Eof()) return RowFate::Gone;
  const auto isSame = [&](const std::string& column, const DbValue& seen) -> DbResult<bool> {
    const auto value = row.Value(column);
    if (!value) return tl::unexpected(value.error());
    return *value == seen;
  };
  for (std::size_t i = 0; i < source_.Columns.size(); ++i) {
    const auto same = isSame(source_.Columns[i], values_[i]);
    if (!same) return tl::unexpected(same.error());
    if (!*same) return RowFate::Changed;
  }
  for (const auto& [column, seen] : longValues_) {
    const auto same = isSame(column, seen);
    if (!same) return tl::unexpected(same.error());
    if (!*same) return RowFate::Changed;
  }
  return RowFate::Same;
}

// In PostgreSQL a changed row has left its place.
DbResult<RowFate> TableCursor::WhatBecame(RowFate fate) {
  if (fate != RowFate::Gone) return fate;
  auto moved = Follow(Here().Rows[static_cast<std::size_t>(row_)].Place);
  if (!moved) return fate;
  const auto values = ReadRow(*moved);
  if (!values) return tl::unexpected(values.error());
  return *values ? RowFate::Changed : RowFate::Gone;
}

DbResult<RowFate> TableCursor::Update(const Changes& changes, Progress& progress) {
  if (IsNew()) return StoreNew(changes, progress);
  if (!HasRow() || !EditingRecord())
    return tl::unexpected(DbError{db_error::NotNow, "No row is being changed", {}});
  if (changes.empty()) {
    Cancel();
    return RowFate::Same;
  }
  Entry& entry = Here().Rows[static_cast<std::size_t>(row_)];
  RowPlace place;
  std::vector<DbValue> values;
  const auto fate = [&]() -> DbResult<RowFate> {
    auto transaction = Transaction::BeginWriting(connection_, source_.Table, progress);
    if (!transaction) return tl::unexpected(transaction.error());
    Recordset row;
    const auto found = OpenUnchanged(row);
    if (!found || *found != RowFate::Same) return found;
    for (const auto& [column, value] : changes)
      if (auto set = row.SetValue(column, value); !set) return tl::unexpected(set.error());
    if (auto stored = row.Update(); !stored) return tl::unexpected(stored.error());
    auto now = row.Place();
    if (!now) return tl::unexpected(now.error());
    place = *std::move(now);
    for (const std::string& column : source_.Columns) {
      auto value = row.Value(column);
      if (!value) return tl::unexpected(value.error());
      values.push_back(*std::move(value));
    }
    row.Close();
    // A row that is known by what was changed is known by something else now.
    if (tellsApart_) {
      const auto there = ReadRow(place);
      if (!there) return tl::unexpected(there.error());
      for (std::size_t i = 0; !*there && i < place.Columns.size(); ++i)
        for (const auto& [column, value] : changes)
          if (place.Columns[i] == connection_.Quoted(column) ||
              (place.Columns.size() == 1 && std::holds_alternative<std::int64_t>(place.Values[i]) &&
               std::holds_alternative<std::int64_t>(value)))
            place.Values[i] = value;
    }
    if (auto done = transaction->Commit(); !done) return tl::unexpected(done.error());
    return RowFate::Same;
  }();
  if (!fate) return fate;
  if (*fate != RowFate::Same) return WhatBecame(*fate);
  hidden_.erase(IdOfPlace(entry.Place));
  entry = {std::move(place), std::move(values)};
  Hide(entry.Place);
  ++version_;
  Cancel();
  // As the database has it now. It is stored, so what fails here shows with the next move.
  const auto shown = Show(entry);
  if (!shown || !*shown) values_ = entry.Values;
  return RowFate::Same;
}

DbResult<RowFate> TableCursor::StoreNew(const Changes& changes, Progress& progress) {
  // The new row comes behind all that are there already.
  if (auto loaded = LoadEnd(); !loaded) return tl::unexpected(loaded.error());
  std::vector<std::pair<std::string, DbValue>> values(changes.begin(), changes.end());
  for (const Selection::Condition& condition : source_.Where)
    if (!changes.contains(condition.Column)) values.emplace_back(condition.Column, condition.Wanted);
  if (values.empty()) values.emplace_back(source_.Columns.front(), DbNull());
  auto transaction = Transaction::BeginWriting(connection_, source_.Table, progress);
  if (!transaction) return tl::unexpected(transaction.error());
  auto place = Recordset::Insert(connection_, source_.Table, values);
  if (!place) return tl::unexpected(place.error());
  if (auto done = transaction->Commit(); !done) return tl::unexpected(done.error());
  Entry entry{*std::move(place), {}};
  for (const std::string& column : source_.Columns) {
    const auto given = changes.find(column);
    entry.Values.push_back(given == changes.end() ? DbValue() : given->second);
  }
  Hide(entry.Place);
  at_ = stretches_.size() - 1;
  Here().Rows.push_back(std::move(entry));
  row_ = std::ssize(Here().Rows) - 1;
  if (count_) ++*count_;
  ++version_;
  Cancel();
  Entry& stored = Here().Rows.back();
  const auto shown = Show(stored);
  if (!shown || !*shown) values_ = stored.Values;
  return RowFate::Same;
}

DbResult<RowFate> TableCursor::Delete(Progress& progress) {
  if (!HasRow() || EditingRecord())
    return tl::unexpected(DbError{db_error::NotNow, "There is no row to delete", {}});
  const auto fate = [&]() -> DbResult<RowFate> {
    auto transaction = Transaction::BeginWriting(connection_, source_.Table, progress);
    if (!transaction) return tl::unexpected(transaction.error());
    Recordset row;
    const auto found = OpenUnchanged(row);
    if (!found || *found != RowFate::Same) return found;
    if (auto deleted = row.Delete(); !deleted) return tl::unexpected(deleted.error());
    row.Close();
    if (auto done = transaction->Commit(); !done) return tl::unexpected(done.error());
    return RowFate::Same;
  }();
  if (!fate) return fate;
  if (*fate != RowFate::Same) return WhatBecame(*fate);
  Remove(at_, row_);
  if (auto left = Leave(); !left) return tl::unexpected(left.error());
  return RowFate::Same;
}

DbResult<RowFate> TableCursor::Reload() {
  Cancel();
  if (!HasRow()) return RowFate::Gone;
  const auto shown = Show(Here().Rows[static_cast<std::size_t>(row_)]);
  if (!shown) return tl::unexpected(shown.error());
  if (*shown) return RowFate::Same;
  Remove(at_, row_);
  if (auto left = Leave(); !left) return tl::unexpected(left.error());
  return RowFate::Gone;
}

}  // namespace hyetex
