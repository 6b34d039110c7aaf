#include "database/tables/table_cursor.h"

#include <algorithm>
#include <utility>

#include "core/text.h"

namespace hyetex {
namespace {

constexpr std::size_t PlacesAtOnce = 200;  // in one statement

bool BeginsWith(const std::string& text, const std::string& prefix) {
  return EqualIgnoringCase(std::string_view(text).substr(0, prefix.size()), prefix);
}

}  // namespace

TableCursor::TableCursor(Connection& connection, CursorSource source)
    : connection_(connection), source_(std::move(source)) {}

// ---- Reading

Selection TableCursor::Wanted() const { return {.Columns = source_.Columns, .Where = source_.Where}; }

DbResult<std::vector<PagedRow>> TableCursor::Read(Page page) {
  if (!source_.OrderBy.empty()) page.OrderBy = {source_.OrderBy};
  Selection selection = Wanted();
  selection.Page = std::move(page);
  return Recordset::ReadPage(connection_, source_.Table, std::move(selection));
}

DbResult<void> TableCursor::Open() {
  const auto tells = Recordset::TellsRowsApart(connection_, source_.Table);
  if (!tells) return tl::unexpected(tells.error());
  auto rows = Read({.Most = *tells ? PageRows : MostUntold + 1});
  if (!rows) return tl::unexpected(rows.error());
  tellsApart_ = *tells;
  isCut_ = !tellsApart_ && std::ssize(*rows) > MostUntold;
  if (isCut_) rows->pop_back();
  stretches_.assign(1, {});
  Stretch& first = stretches_.front();
  first.AtEnd = !tellsApart_ || std::ssize(*rows) < PageRows;
  if (!rows->empty()) {
    first.Low = rows->front().Key;
    first.High = rows->back().Key;
  }
  for (PagedRow& row : *rows) first.Rows.push_back({std::move(row.Place), std::move(row.Values)});
  hidden_.clear();
  count_.reset();
  at_ = 0;
  row_ = -1;
  values_.clear();
  longValues_.clear();
  editing_ = Editing::No;
  ++version_;
  return {};
}

DbResult<void> TableCursor::Requery() {
  std::optional<RowPlace> place;
  if (HasRow()) place = Here().Rows[static_cast<std::size_t>(row_)].Place;
  if (auto opened = Open(); !opened) return opened;
  if (place && tellsApart_) {
    Selection same = Wanted();
    same.Rows = {*std::move(place)};
    same.Page = Page{};
    if (!source_.OrderBy.empty()) same.Page->OrderBy = {source_.OrderBy};
    const auto found = Recordset::ReadPage(connection_, source_.Table, std::move(same));
    if (!found) return tl::unexpected(found.error());
    if (!found->empty()) {
      const auto there = GoTo(found->front());
      if (!there) return tl::unexpected(there.error());
      if (*there) return {};
    }
  }
  return MoveFirst();
}

DbResult<void> TableCursor::Requery(std::vector<Selection::Condition> where) {
  source_.Where = std::move(where);
  if (auto opened = Open(); !opened) return opened;
  return MoveFirst();
}

DbResult<bool> TableCursor::LoadBehind(std::size_t stretch) {
  const bool isLast = stretch + 1 == stretches_.size();
  auto rows = Read({.Behind = stretches_[stretch].High,
                    .Before = isLast ? std::nullopt : stretches_[stretch + 1].Low,
                    .Most = PageRows});
  if (!rows) return tl::unexpected(rows.error());
  Stretch& loaded = stretches_[stretch];
  const std::size_t before = loaded.Rows.size();
  if (!rows->empty()) loaded.High = rows->back().Key;
  for (PagedRow& row : *rows)
    if (!hidden_.contains(IdOfPlace(row.Place)))
      loaded.Rows.push_back({std::move(row.Place), std::move(row.Values)});
  ++version_;
  if (std::ssize(*rows) == PageRows) return loaded.Rows.size() > before;
  if (isLast) {
    loaded.AtEnd = true;
    return loaded.Rows.size() > before;
  }
  Join(stretch);
  return true;
}

DbResult<bool> TableCursor::LoadBefore(std::size_t stretch) {
  if (stretch == 0) return false;
  auto rows = Read({.Behind = stretches_[stretch - 1].High,
                    .Before = stretches_[stretch].Low,
                    .Backward = true,
                    .Most = PageRows});
  if (!rows) return tl::unexpected(rows.error());
  Stretch& loaded = stretches_[stretch];
  std::int64_t added = 0;
  if (!rows->empty()) loaded.Low = rows->back().Key;
  for (PagedRow& row : *rows) {
    if (hidden_.contains(IdOfPlace(row.Place))) continue;
    loaded.Rows.push_front({std::move(row.Place), std::move(row.Values)});
    ++added;
  }
  loaded.Start -= added;
  if (stretch == at_) row_ += added;
  ++version_;
  if (std::ssize(*rows) == PageRows) return added > 0;
  Join(stretch - 1);
  return true;
}

void TableCursor::Join(std::size_t first) {
  Stretch& low = stretches_[first];
  Stretch& high = stretches_[first + 1];
  const auto before = std::ssize(low.Rows);
  std::ranges::move(high.Rows, std::back_inserter(low.Rows));
  low.High = std::move(high.High);
  low.AtEnd = high.AtEnd;
  stretches_.erase(stretches_.begin() + static_cast<std::ptrdiff_t>(first) + 1);
  if (at_ == first + 1) row_ += before;
  if (at_ > first) --at_;
  ++version_;
}

DbResult<void> TableCursor::LoadEnd() {
  if (stretches_.empty())
    if (auto opened = Open(); !opened) return opened;
  if (stretches_.back().AtEnd) return {};
  auto rows = Read({.Behind = stretches_.back().High, .Backward = true, .Most = PageRows});
  if (!rows) return tl::unexpected(rows.error());
  const bool reaches = std::ssize(*rows) < PageRows;
  if (!reaches) {
    const Stretch& last = stretches_.back();
    const auto between = CountBetween(last.High, rows->back().Key);
    if (!between) return tl::unexpected(between.error());
    stretches_.push_back({.Start = last.Start + std::ssize(last.Rows) + *between, .Low = rows->back().Key});
  }
  Stretch& end = stretches_.back();
  if (!rows->empty()) end.High = rows->front().Key;
  for (auto row = rows->rbegin(); row != rows->rend(); ++row)
    if (!hidden_.contains(IdOfPlace(row->Place)))
      end.Rows.push_back({std::move(row->Place), std::move(row->Values)});
  end.AtEnd = true;
  ++version_;
  return {};
}

// What is shown elsewhere does not count, though the table has it there.
DbResult<std::int64_t> TableCursor::CountBetween(const std::optional<RowKey>& low,
                                                 const std::optional<RowKey>& high) {
  Selection between = Wanted();
  between.Page = Page{.Behind = low, .Before = high};
  if (!source_.OrderBy.empty()) between.Page->OrderBy = {source_.OrderBy};
  auto count = Recordset::Count(connection_, source_.Table, between);
  for (auto hidden = hidden_.begin(); count && hidden != hidden_.end();) {
    between.Rows.clear();
    for (; hidden != hidden_.end() && between.Rows.size() < PlacesAtOnce; ++hidden)
      between.Rows.push_back(hidden->second);
    const auto elsewhere = Recordset::Count(connection_, source_.Table, between);
    if (!elsewhere) return elsewhere;
    *count -= *elsewhere;
  }
  return count;
}

DbResult<std::int64_t> TableCursor::Count() {
  if (count_) return *count_;
  if (!stretches_.empty() && stretches_.back().AtEnd)
    return stretches_.back().Start + std::ssize(stretches_.back().Rows);
  auto count = Recordset::Count(connection_, source_.Table, Wanted());
  if (count) count_ = *count;
  return count;
}

DbResult<std::optional<std::vector<DbValue>>> TableCursor::ReadRow(RowPlace& place) {
  Selection one{.Columns = source_.Columns, .Rows = {place}};
  auto row = Recordset::Open(connection_, source_.Table, std::move(one));
  if (!row) return tl::unexpected(row.error());
  if (row->Eof()) return std::optional<std::vector<DbValue>>();
  std::vector<DbValue> values;
  for (int i = 0; i < row->FieldCount(); ++i) {
    auto value = row->Value(i);
    if (!value) return tl::unexpected(value.error());
    values.push_back(*std::move(value));
  }
  return std::optional(std::move(values));
}

std::optional<RowPlace> TableCursor::Follow(const RowPlace& place) {
  return Recordset::Follow(connection_, source_.Table, place);
}

DbResult<bool> TableCursor::Show(Entry& entry) {
  if (tellsApart_) {
    auto values = ReadRow(entry.Place);
    if (!values) return tl::unexpected(values.error());
    if (auto moved = *values ? std::nullopt : Follow(entry.Place); moved) {
      values = ReadRow(*moved);
      if (!values) return tl::unexpected(values.error());
      if (*values) {
        hidden_.erase(IdOfPlace(entry.Place));
        entry.Place = *std::move(moved);
        Hide(entry.Place);
      }
    }
    if (!*values) return false;
    if (entry.Values != **values) ++version_;
    entry.Values = **std::move(values);
  }
  values_ = entry.Values;
  longValues_.clear();
  return true;
}

void TableCursor::Hide(const RowPlace& place) { hidden_[IdOfPlace(place)] = place; }

DbResult<DbValue> TableCursor::LongValue(const std::string& column) {
  if (!HasRow() || IsNew()) return DbValue();
  if (const auto known = longValues_.find(column); known != longValues_.end()) return known->second;
  auto row =
      Recordset::Open(connection_, source_.Table,
                      {.Columns = {column}, .Rows = {Here().Rows[static_cast<std::size_t>(row_)].Place}});
  if (!row) return tl::unexpected(row.error());
  if (row->Eof())
    return tl::unexpected(
        DbError{db_error::NoCurrentRow, "The row was changed or deleted by somebody else meanwhile", {}});
  auto value = row->Value(0);
  if (value) longValues_[column] = *value;
  return value;
}

// ---- Moving

std::int64_t TableCursor::AbsolutePosition() const { return HasRow() ? Here().Start + row_ + 1 : 0; }

DbResult<bool> TableCursor::Step(int way) {
  while (true) {
    Stretch& here = Here();
    const std::int64_t next = row_ + way;
    if (next >= 0 && next < std::ssize(here.Rows)) {
      const auto shown = Show(here.Rows[static_cast<std::size_t>(next)]);
      if (!shown) return shown;
      if (*shown) {
        row_ = next;
        return true;
      }
      Remove(at_, next);
      if (way < 0) --row_;
      continue;
    }
    if (way > 0 ? here.AtEnd : at_ == 0) return false;
    const auto loaded = way > 0 ? LoadBehind(at_) : LoadBefore(at_);
    if (!loaded) return loaded;
  }
}

DbResult<void> TableCursor::MoveToEnd(int way) {
  const Spot before{at_, row_};
  at_ = way > 0 ? 0 : stretches_.size() - 1;
  row_ = way > 0 ? -1 : std::ssize(Here().Rows);
  const auto moved = Step(way);
  if (moved && *moved) return {};
  at_ = moved || before.Stretch >= stretches_.size() ? 0 : before.Stretch;
  row_ = moved || before.Row >= std::ssize(Here().Rows) ? -1 : before.Row;
  if (!moved) return tl::unexpected(moved.error());
  values_.clear();
  return {};
}

DbResult<void> TableCursor::MoveFirst() {
  if (stretches_.empty())
    if (auto opened = Open(); !opened) return opened;
  return MoveToEnd(1);
}

DbResult<void> TableCursor::MoveLast() {
  if (auto loaded = LoadEnd(); !loaded) return loaded;
  return MoveToEnd(-1);
}

DbResult<void> TableCursor::MoveNext() {
  if (!HasRow()) return MoveFirst();
  const auto moved = Step(1);
  if (!moved) return tl::unexpected(moved.error());
  return {};
}

DbResult<void> TableCursor::MovePrevious() {
  if (!HasRow()) return MoveFirst();
  const auto moved = Step(-1);
  if (!moved) return tl::unexpected(moved.error());
  return {};
}

std::optional<TableCursor::Spot> TableCursor::FindLoaded(const RowPlace& place) const {
  const std::string id = IdOfPlace(place);
  for (std::size_t i = 0; i < stretches_.size(); ++i)
    for (std::size_t row = 0; row < stretches_[i].Rows.size(); ++row)
      if (IdOfPlace(stretches_[i].Rows[row].Place) == id) return Spot{i, static_cast<std::int64_t>(row)};
  return std::nullopt;
}

DbResult<bool> TableCursor::GoTo(const PagedRow& row) {
  auto spot = FindLoaded(row.Place);
  Selection same{.Where = source_.Where, .Rows = {row.Place}};
  for (std::size_t i = 0; !spot && i < stretches_.size(); ++i) {
    const bool isLast = i + 1 == stretches_.size();
    if (stretches_[i].AtEnd) break;
    same.Page = Page{.Behind = stretches_[i].High, .Before = isLast ? std::nullopt : stretches_[i + 1].Low};
    if (!source_.OrderBy.empty()) same.Page->OrderBy = {source_.OrderBy};
    const auto isHere = Recordset::Count(connection_, source_.Table, same);
    if (!isHere) return tl::unexpected(isHere.error());
    if (*isHere == 0) continue;
    const auto between = CountBetween(stretches_[i].High, row.Key);
    if (!between) return tl::unexpected(between.error());
    Stretch found{.Start = stretches_[i].Start + std::ssize(stretches_[i].Rows) + *between,
                  .Low = row.Key,
                  .High = row.Key};
    found.Rows.push_back({row.Place, row.Values});
    stretches_.insert(stretches_.begin() + static_cast<std::ptrdiff_t>(i) + 1, std::move(found));
    if (at_ > i) ++at_;
    spot = Spot{i + 1, 0};
    ++version_;
  }
  if (!spot) return false;
  const auto shown = Show(stretches_[spot->Stretch].Rows[static_cast<std::size_t>(spot->Row)]);
  if (!shown || !*shown) return shown;
  if (at_ != spot->Stretch) ++version_;
  at_ = spot->Stretch;
  row_ = spot->Row;
  return true;
}

DbResult<bool> TableCursor::Find(const std::string& column, const std::string& prefix, Progress& progress) {
  if (stretches_.empty())
    if (auto opened = Open(); !opened) return tl::unexpected(opened.error());
  if (!tellsApart_) {
    const auto at = std::ranges::find_if(
        source_.Columns, [&](const std::string& name) { return EqualIgnoringCase(name, column); });
    const auto position = static_cast<std::size_t>(at - source_.Columns.begin());
    for (std::size_t i = 0; i < Here().Rows.size() && position < source_.Columns.size(); ++i) {
      if (!BeginsWith(TextOf(Here().Rows[i].Values[position]), prefix)) continue;
      row_ = static_cast<std::int64_t>(i);
      return Show(Here().Rows[i]);
    }
    return false;
  }
  Selection wanted = Wanted();
  wanted.Where.push_back({.Column = column, .How = Compare::BeginsWith, .Wanted = prefix});
  wanted.Page = Page{.Most = 1};
  if (!source_.OrderBy.empty()) wanted.Page->OrderBy = {source_.OrderBy};
  const auto found = Recordset::ReadPage(connection_, source_.Table, std::move(wanted), &progress);
  if (!found) return tl::unexpected(found.error());
  if (found->empty()) return false;
  const auto there = GoTo(found->front());
  if (!there || *there) return there;
  // It has come up among rows that were read before.
  if (auto opened = Open(); !opened) return tl::unexpected(opened.error());
  return GoTo(found->front());
}

std::int64_t TableCursor::LoadedRows() const { return stretches_.empty() ? 0 : std::ssize(Here().Rows); }
std::int64_t TableCursor::FirstLoaded() const { return stretches_.empty() ? 0 : Here().Start + 1; }
const std::vector<DbValue>& TableCursor::LoadedValues(std::int64_t index) const {
  return Here().Rows[static_cast<std::size_t>(index)].Values;
}

DbResult<void> TableCursor::MoveTo(std::int64_t index) {
  if (index < 0 || index >= LoadedRows()) return {};
  const auto shown = Show(Here().Rows[static_cast<std::size_t>(index)]);
  if (!shown) return tl::unexpected(shown.error());
  if (*shown) {
    row_ = index;
    return {};
  }
  Remove(at_, index);
  row_ = index;
  return Leave();
}

DbResult<bool> TableCursor::LoadMore(bool behind) {
  if (stretches_.empty() || (behind ? Here().AtEnd : at_ == 0)) return false;
  return behind ? LoadBehind(at_) : LoadBefore(at_);
}

}  // namespace hyetex
