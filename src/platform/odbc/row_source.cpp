#include "platform/odbc/row_source.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "core/dates.h"

namespace hyetex {
namespace {

constexpr std::size_t MostShortText = 1000;   // characters; longer columns are read when asked for
constexpr std::size_t ArrayBytes = 1U << 20;  // of one array of rows
constexpr std::size_t MostArrayRows = 1000;
constexpr std::size_t WidestTimeText = 64;
constexpr std::size_t FirstChunkRows = 32;  // many who open a table want its first rows only, or none

bool IsLong(const TableColumn& column) {
  switch (KindOfType(column.SqlType)) {
    case ValueKind::Binary:
      return true;
    case ValueKind::Text:
      return column.Shown.Size <= 0 || column.Shown.Size > static_cast<std::int64_t>(MostShortText);
    default:
      return false;
  }
}

std::size_t CellWidth(const TableColumn& column, ValueKind kind) {
  switch (kind) {
    case ValueKind::Time:
      return sizeof(SQL_TIMESTAMP_STRUCT);
    case ValueKind::Text:
      return static_cast<std::size_t>(column.Shown.Size) * 4 + 1;  // UTF-8 and a NUL
    default:
      return 8;
  }
}

template <typename T>
T Read(const char* cell) {
  T value;
  std::memcpy(&value, cell, sizeof value);
  return value;
}

Date DateIn(const SQL_TIMESTAMP_STRUCT& time) {
  constexpr double nanosecond = 1e-9;
  return MakeDate(time.year, time.month, time.day, time.hour, time.minute,
                  time.second + SecondsOfFraction(time.fraction * nanosecond));
}

DbValue TimeOfText(std::string text) {
  const Date time = DateOf(DbValue(std::move(text)));
  if (time == 0) return {};
  return DbDate{time};
}

std::vector<OrderColumn> OrderOf(const OdbcLink& link, const TableShape& shape,
                                 const std::optional<Page>& page) {
  std::vector<OrderColumn> order;
  for (const std::string& name : page ? page->OrderBy : std::vector<std::string>())
    if (const auto at = shape.Find(name))
      order.push_back({link.Quoted(shape.Columns[*at].Shown.Name), shape.Columns[*at].SqlType});
  for (const TableColumn& column : shape.Identity)
    order.push_back({column.Shown.Name, column.SqlType, false});
  return order;
}

std::string OrderText(const std::vector<OrderColumn>& order, bool backward) {
  std::string text;
  for (const OrderColumn& column : order)
    text += (text.empty() ? " ORDER BY " : ", ") + column.Name + (backward ? " DESC" : "");
  return text;
}

}  // namespace

std::string PartText(const OdbcLink& link, const TableShape& shape, std::span<const RowPlace> rows,
                     const std::optional<Page>& page, std::vector<Parameter>& parameters) {
  std::string text;
  const auto add = [&](const std::string& condition) {
    text += (text.empty() ? "(" : " AND (") + condition + ")";
  };
  if (!rows.empty()) add(RowsText(rows, link.Maker(), parameters));
  if (!page) return text;
  const std::vector<OrderColumn> order = OrderOf(link, shape, page);
  if (page->Behind) add(BeyondText(order, *page->Behind, true, link.Maker(), parameters));
  if (page->Before) add(BeyondText(order, *page->Before, false, link.Maker(), parameters));
  return text;
}

RowSource::RowSource(std::shared_ptr<OdbcLink> link, const TableShape& shape, std::vector<std::size_t> chosen,
                     Selection selection)
    : link_(std::move(link)),
      shape_(&shape),
      chosen_(std::move(chosen)),
      conditions_(link_, shape, std::move(selection.Where)),
      rows_(std::move(selection.Rows)),
      page_(std::move(selection.Page)),
      forChange_(selection.ForChange && link_->Maker() == DatabaseMaker::PostgreSQL) {
  longWithRow_ = shape.Identity.empty() || (selection.LongWithRow && !InChunks());
  for (const TableColumn& column : shape.Identity) AddColumn(column);
  for (const std::size_t position : chosen_) {
    const bool isLong = IsLong(shape.Columns[position]);
    columnOfChosen_.push_back(isLong ? -1 : static_cast<int>(columns_.size()));
    if (!isLong) AddColumn(shape.Columns[position], selection.AsText);
  }
  for (const std::size_t position : conditions_.Checked()) checked_.push_back(AddChecked(position));
  std::size_t rowBytes = 0;
  for (const Column& column : columns_) rowBytes += column.Width + sizeof(SQLLEN);
  const bool oneByOne = longWithRow_ && std::ranges::count(columnOfChosen_, -1) > 0;
  if (!oneByOne)
    arraySize_ = std::clamp<std::size_t>(ArrayBytes / std::max<std::size_t>(rowBytes, 1), 1, MostArrayRows);
  longReads_.resize(chosen_.size());
  longValues_.resize(chosen_.size());
  longAt_.resize(chosen_.size());
}

void RowSource::AddColumn(const TableColumn& column, bool asText) {
  const ValueKind kind = KindOfType(column.SqlType);
  if (asText && kind != ValueKind::Text) {
    columns_.push_back({.Table = &column,
                        .Kind = ValueKind::Text,
                        .CType = SQL_C_CHAR,
                        .Width = WidestTimeText,
                        .InAllDigits = kind == ValueKind::Real && link_->Maker() == DatabaseMaker::SQLite});
    return;
  }
  const bool isTimeAsText = kind == ValueKind::Time && link_->Maker() == DatabaseMaker::SQLite;
  columns_.push_back({.Table = &column,
                      .Kind = kind,
                      .CType = isTimeAsText ? static_cast<SQLSMALLINT>(SQL_C_CHAR) : CTypeOf(kind),
                      .Width = isTimeAsText ? WidestTimeText : CellWidth(column, kind)});
}

std::size_t RowSource::AddChecked(std::size_t position) {
  const TableColumn& wanted = shape_->Columns[position];
  for (std::size_t i = shape_->Identity.size(); i < columns_.size(); ++i)
    if (columns_[i].Table == &wanted) return i;
  AddColumn(wanted);
  if (IsLong(wanted)) columns_.back().Width = WidestTimeText;
  return columns_.size() - 1;
}

DbResult<std::string> RowSource::SelectText() {
  std::string list, order;
  const auto add = [](std::string& names, const std::string& name) {
    names += (names.empty() ? "" : ", ") + name;
  };
  for (const TableColumn& column : shape_->Identity) add(order, column.Shown.Name);
  list = order;
  for (std::size_t i = shape_->Identity.size(); i < columns_.size(); ++i) add(list, ListedName(columns_[i]));
  // Long columns that are read from the row itself stand at the end.
  for (std::size_t i = 0; longWithRow_ && i < chosen_.size(); ++i)
    if (columnOfChosen_[i] < 0) add(list, link_->Quoted(shape_->Columns[chosen_[i]].Shown.Name));
  if (list.empty()) list = "1";
  std::string sql = "SELECT " + list + " FROM " + shape_->Name;
  const auto conditions = conditions_.Text();
  if (!conditions) return tl::unexpected(conditions.error());
  if (!conditions->empty()) sql += " WHERE " + *conditions;
  parameters_ = conditions_.Parameters();
  if (IsPart()) {
    const std::string part = PartText(*link_, *shape_, rows_, page_, parameters_);
    if (!part.empty()) sql += (conditions->empty() ? " WHERE " : " AND ") + part;
    sql += OrderText(OrderOf(*link_, *shape_, page_), page_ && page_->Backward);
    if (page_ && page_->Most > 0 && link_->Maker() != DatabaseMaker::Other) {
      sql += " LIMIT ?";
      parameters_.emplace_back().Set(page_->Most, link_->Maker(), SQL_BIGINT);
    }
  } else if (InChunks()) {
    sql += (conditions->empty() ? " WHERE " : " AND ") + order + " > ? AND " + order + " <= ? ORDER BY " +
           order + " LIMIT ?";
  } else if (!conditions->empty() && !order.empty()) {
    // An index would give them in its own order, not in the table's.
    sql += " ORDER BY " + order;
  }
  if (forChange_) sql += " FOR UPDATE NOWAIT";
  return sql;
}

std::string RowSource::ListedName(const Column& column) const {
  const std::string name = link_->Quoted(column.Table->Shown.Name);
  if (!column.InAllDigits) return name;
  return "CASE typeof(" + name + ") WHEN 'real' THEN printf('%!.20g', " + name + ") ELSE " + name + " END";
}

bool RowSource::InChunks() const {
  return link_->Maker() == DatabaseMaker::SQLite && shape_->HasRowNumbers && !IsPart();
}

DbResult<void> RowSource::BindColumns() {
  const auto set = [&](SQLINTEGER attribute, SQLPOINTER value) {
    return select_.Check(SQLSetStmtAttr(select_.Handle(), attribute, value, 0));
  };
  if (page_ && page_->Most > 0 && link_->Maker() == DatabaseMaker::Other)
    if (const auto done = set(SQL_ATTR_MAX_ROWS, SqlNumber(static_cast<std::uintptr_t>(page_->Most))); !done)
      return done;
  if (const auto done = set(SQL_ATTR_ROW_ARRAY_SIZE, SqlNumber(arraySize_)); !done) return done;
  if (const auto done = set(SQL_ATTR_ROWS_FETCHED_PTR, &fetched_); !done) return done;
  SQLUSMALLINT at = 0;
  for (Column& column : columns_) {
    // Not filled: who reads a few rows should not pay for a thousand.
    column.Cells = std::make_unique_for_overwrite<char[]>(column.Width * arraySize_);
    column.Lengths.resize(arraySize_);
    const auto bound = select_.Check(SQLBindCol(select_.Handle(), ++at, column.CType, column.Cells.get(),
                                                static_cast<SQLLEN>(column.Width), column.Lengths.data()));
    if (!bound) return bound;
  }
  for (std::size_t i = 0; i < chosen_.size(); ++i)
    if (columnOfChosen_[i] < 0) longAt_[i] = ++at;
  return {};
}

DbResult<void> RowSource::Prepare() {
  const auto sql = SelectText();
  if (!sql) return tl::unexpected(sql.error());
  auto prepared = Statement::Prepared(link_, *sql);
  if (!prepared) return tl::unexpected(prepared.error());
  select_ = std::move(*prepared);
  if (InChunks()) parameters_.resize(parameters_.size() + 3);
  return BindColumns();
}

DbResult<void> RowSource::Open() {
  rowsHere_ = row_ = 0;
  hasAll_ = false;
  undone_.reset();
  if (select_)
    select_.CloseCursor();
  else if (auto prepared = Prepare(); !prepared)
    return prepared;
  if (!InChunks()) {
    if (auto bound = select_.Bind(parameters_); !bound) return bound;
    if (auto executed = select_.Execute(); !executed) return executed;
    undone_ = link_->Undone();
    turns_ = link_->Turns();
    if (auto fetched = FetchRows(); !fetched) return fetched;
    return SkipOthers();
  }
  const auto last = LastRowNumber();
  if (!last) return tl::unexpected(last.error());
  parameters_[parameters_.size() - 2].Set(*last, link_->Maker(), SQL_BIGINT);
  chunkSize_ = std::min(FirstChunkRows, arraySize_);
  if (auto fetched = FetchChunk(std::numeric_limits<std::int64_t>::min()); !fetched) return fetched;
  return SkipOthers();
}

// Rows that are added from now on are not walked, as in the other databases.
DbResult<DbValue> RowSource::LastRowNumber() {
  auto statement = Statement::Prepared(
      link_, "SELECT MAX(" + shape_->Identity.front().Shown.Name + ") FROM " + shape_->Name);
  if (!statement) return tl::unexpected(statement.error());
  if (const auto executed = statement->Execute(); !executed) return tl::unexpected(executed.error());
  if (const auto fetched = statement->Fetch(); !fetched) return tl::unexpected(fetched.error());
  std::int64_t number = 0;
  SQLLEN length = 0;
  const auto got = statement->Check(SQLGetData(statement->Handle(), 1, SQL_C_SBIGINT, &number, 0, &length));
  if (!got) return tl::unexpected(got.error());
  if (length == SQL_NULL_DATA) return {};
  return DbValue(number);
}

DbResult<void> RowSource::FetchChunk(std::int64_t behind) {
  parameters_[parameters_.size() - 3].Set(behind, link_->Maker(), SQL_BIGINT);
  parameters_.back().Set(static_cast<std::int64_t>(chunkSize_), link_->Maker(), SQL_BIGINT);
  if (const auto bound = select_.Bind(parameters_); !bound) return bound;
  if (const auto executed = select_.Execute(); !executed) return executed;
  const auto fetched = FetchRows();
  select_.CloseCursor();
  return fetched;
}

DbResult<void> RowSource::FetchRows() {
  rowsHere_ = row_ = 0;
  newIdentity_.clear();
  for (auto& value : longValues_) value.reset();
  if (hasAll_) return {};
  if (undone_ != nullptr && *undone_)
    return OdbcFailure(db_error::StatementFailed,
                       "The rows were opened in a transaction that was rolled back");
  if (link_->Maker() == DatabaseMaker::SQLite && !InChunks() && turns_ != link_->Turns())
    return OdbcFailure(db_error::StatementFailed,
                       "The rows of " + shape_->Name + " have no numbers to go on by in another transaction");
  const auto fetched = select_.Fetch();
  if (!fetched) return tl::unexpected(fetched.error());
  if (*fetched) rowsHere_ = fetched_;
  // Who looks at a few rows for a while should not keep locks meanwhile.
  hasAll_ = *fetched && IsPart() && fetched_ < arraySize_;
  if (*fetched && !hasAll_) return {};
  select_.CloseCursor();  // it keeps locks
  undone_.reset();
  return {};
}

DbResult<void> RowSource::Next() {
  if (auto stepped = Step(); !stepped) return stepped;
  return SkipOthers();
}

DbResult<void> RowSource::Step() {
  if (AtEnd()) return {};
  newIdentity_.clear();
  for (auto& value : longValues_) value.reset();
  if (++row_ < rowsHere_) return {};
  if (!InChunks()) return FetchRows();
  if (rowsHere_ < chunkSize_) return {};
  --row_;
  chunkSize_ = std::min(chunkSize_ * 8, arraySize_);
  const std::int64_t behind = std::get<std::int64_t>(CellValue(columns_.front()));
  return FetchChunk(behind);
}

bool RowSource::IsMeant() const {
  for (std::size_t i = 0; i < checked_.size(); ++i) {
    const Column& column = columns_[checked_[i]];
    if (IsCut(column)) return false;
    const DbValue value = CellValue(column);
    if (IsNull(value) || !conditions_.Allows(i, DateOf(value))) return false;
  }
  return true;
}

DbResult<void> RowSource::SkipOthers() {
  while (!AtEnd() && !IsMeant())
    if (auto stepped = Step(); !stepped) return stepped;
  return {};
}

bool RowSource::IsCut(const Column& column) const {
  const SQLLEN length = column.Lengths[row_];
  return column.CType == SQL_C_CHAR &&
         (length == SQL_NO_TOTAL || length >= static_cast<SQLLEN>(column.Width));
}

std::string RowSource::TextCell(const Column& column) const {
  const char* cell = column.Cells.get() + row_ * column.Width;
  return {cell, IsCut(column) ? column.Width - 1 : static_cast<std::size_t>(column.Lengths[row_])};
}

DbValue RowSource::CellValue(const Column& column) const {
  if (column.Lengths[row_] == SQL_NULL_DATA) return {};
  const char* cell = column.Cells.get() + row_ * column.Width;
  switch (column.Kind) {
    case ValueKind::Integer:
      return Read<std::int64_t>(cell);
    case ValueKind::Real:
      return Read<double>(cell);
    case ValueKind::Time:
      if (column.CType == SQL_C_CHAR) return TimeOfText(TextCell(column));
      return DbDate{DateIn(Read<SQL_TIMESTAMP_STRUCT>(cell))};
    default:  // a cut one is read whole where it is asked for; the place of a row does with its beginning
      return TextCell(column);
  }
}

DbResult<DbValue> RowSource::Value(std::size_t position) {
  const int index = columnOfChosen_[position];
  if (index >= 0 && !IsCut(columns_[static_cast<std::size_t>(index)]))
    return CellValue(columns_[static_cast<std::size_t>(index)]);
  if (longValues_[position]) return *longValues_[position];
  std::string bytes;
  const auto read = ReadLongValue(position, [&](std::string_view piece) {
    bytes += piece;
    return true;
  });
  if (!read) return tl::unexpected(read.error());
  DbValue value;
  if (*read && KindOfType(shape_->Columns[chosen_[position]].SqlType) == ValueKind::Binary)
    value = DbBinary{std::move(bytes)};
  else if (*read)
    value = std::move(bytes);
  if (longWithRow_) longValues_[position] = value;
  return value;
}

DbResult<void> RowSource::ReadPieces(std::size_t position,
                                     const std::function<bool(std::string_view)>& take) {
  if (columnOfChosen_[position] >= 0 || longWithRow_) {
    const auto value = Value(position);
    if (!value) return tl::unexpected(value.error());
    if (!IsNull(*value)) take(TextOf(*value));
    return {};
  }
  const auto read = ReadLongValue(position, take);
  if (!read) return tl::unexpected(read.error());
  return {};
}

DbResult<bool> RowSource::ReadLongValue(std::size_t position,
                                        const std::function<bool(std::string_view)>& take) {
  const TableColumn& column = shape_->Columns[chosen_[position]];
  const bool binary = KindOfType(column.SqlType) == ValueKind::Binary;
  if (longWithRow_ && longAt_[position] != 0) return select_.ReadLong(longAt_[position], binary, take);
  if (shape_->Identity.empty())
    return OdbcFailure(db_error::StatementFailed,
                       "The text in " + column.Shown.Name + " is longer than its column");
  auto row = CurrentRow();
  if (!row) return tl::unexpected(row.error());
  Statement& statement = longReads_[position];
  std::vector<Parameter> identity;
  const std::string place = RowsText({&*row, 1}, link_->Maker(), identity);
  if (!statement) {
    auto prepared = Statement::Prepared(
        link_, "SELECT " + link_->Quoted(column.Shown.Name) + " FROM " + shape_->Name + " WHERE " + place);
    if (!prepared) return tl::unexpected(prepared.error());
    statement = std::move(*prepared);
  }
  if (const auto bound = statement.Bind(identity); !bound) return tl::unexpected(bound.error());
  if (const auto executed = statement.Execute(); !executed) return tl::unexpected(executed.error());
  const auto fetched = statement.Fetch();
  auto read = !fetched ? fetched
              : !*fetched
                  ? DbResult<bool>(OdbcFailure(db_error::StatementFailed,
                                               "The row was changed or deleted by somebody else meanwhile"))
                  : statement.ReadLong(1, binary, take);
  statement.CloseCursor();
  return read;
}

DbResult<RowKey> RowSource::CurrentKey() {
  RowKey key;
  for (const std::string& name : page_ ? page_->OrderBy : std::vector<std::string>()) {
    const auto column = shape_->Find(name);
    const auto chosen = column ? std::ranges::find(chosen_, *column) : chosen_.end();
    if (chosen == chosen_.end())
      return OdbcFailure(db_error::MissingField, "The order's column " + name + " has not been asked for");
    auto value = Value(static_cast<std::size_t>(chosen - chosen_.begin()));
    if (!value) return tl::unexpected(value.error());
    key.push_back(std::move(*value));
  }
  auto place = CurrentRow();
  if (!place) return tl::unexpected(place.error());
  key.insert(key.end(), place->Values.begin(), place->Values.end());
  return key;
}

DbResult<RowPlace> RowSource::CurrentRow() {
  RowPlace row;
  const auto add = [&](const std::string& name, DbValue value, SQLSMALLINT type) {
    row.Columns.push_back(name);
    row.Values.push_back(std::move(value));
    row.Types.push_back(type);
  };
  for (std::size_t i = 0; i < shape_->Identity.size(); ++i)
    add(shape_->Identity[i].Shown.Name, newIdentity_.empty() ? CellValue(columns_[i]) : newIdentity_[i],
        shape_->Identity[i].SqlType);
  if (!shape_->Identity.empty()) return row;
  for (std::size_t i = 0; i < chosen_.size(); ++i) {
    auto value = newIdentity_.empty() ? Value(i) : newIdentity_[i];
    if (!value) return tl::unexpected(value.error());
    const TableColumn& column = shape_->Columns[chosen_[i]];
    add(link_->Quoted(column.Shown.Name), std::move(*value), column.SqlType);
  }
  return row;
}

}  // namespace hyetex
