// Adding, changing and deleting rows of a recordset.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "platform/odbc/recordset.h"
#include "platform/odbc/recordset_state.h"

namespace hyetex {

DbResult<void> Recordset::AddNew() {
  if (!IsOpen()) return RecordsetIsClosed();
  if (const auto stored = state_->Store(); !stored) return stored;
  state_->Pending = State::Edit::New;
  return {};
}

DbResult<void> Recordset::SetValue(std::string_view name, DbValue value) {
  if (!IsOpen()) return RecordsetIsClosed();
  const auto position = state_->Find(name);
  if (!position) return NoSuchField(name);
  return SetValue(static_cast<int>(*position), std::move(value));
}

DbResult<void> Recordset::SetValue(int position, DbValue value) {
  if (!IsOpen()) return RecordsetIsClosed();
  const auto at = static_cast<std::size_t>(position);
  if (at >= state_->Fields.size()) return NoSuchField(std::to_string(position));
  if (state_->Pending == State::Edit::None) {
    if (!state_->HasRow()) return NoCurrentRow();
    state_->Pending = State::Edit::Change;
  }
  state_->Changed[at] = std::move(value);
  return {};
}

bool Recordset::IsPending() const { return state_ != nullptr && state_->Pending != State::Edit::None; }

DbResult<void> Recordset::Update() {
  if (!IsOpen()) return RecordsetIsClosed();
  if (!IsPending() && !state_->HasRow()) return NoCurrentRow();
  return state_->Store();
}

void Recordset::CancelUpdate() {
  if (state_ == nullptr) return;
  state_->Pending = State::Edit::None;
  state_->Changed.clear();
}

DbResult<void> Recordset::Delete() {
  if (!IsOpen()) return RecordsetIsClosed();
  if (IsPending()) return OdbcFailure(db_error::NotNow, "The row has changes that are not stored");
  if (!state_->HasRow()) return NoCurrentRow();
  return state_->Delete();
}

DbResult<RowPlace> Recordset::Place() {
  if (!IsOpen()) return RecordsetIsClosed();
  if (!state_->HasRow() || IsPending()) return NoCurrentRow();
  return state_->Rows->CurrentRow();
}

DbResult<RowKey> Recordset::Key() {
  if (!IsOpen()) return RecordsetIsClosed();
  if (!state_->HasRow() || IsPending()) return NoCurrentRow();
  return state_->Rows->CurrentKey();
}

namespace {

// Older SQLite takes at most 999 parameters, and no expression may be too deep.
constexpr std::size_t MostValues = 900, MostRowsAtOnce = 200;

// Runs a statement for some rows, as many at once as a driver takes, with `given` ahead of what finds them.
DbResult<void> ChangeRows(const std::shared_ptr<OdbcLink>& link, const std::string& sql,
                          const std::vector<Parameter>& given, std::span<const RowPlace> rows) {
  link->KeepResults();
  while (!rows.empty()) {
    const std::size_t columns = std::max<std::size_t>(rows.front().Columns.size(), 1);
    const auto some = rows.first(std::min({rows.size(), MostRowsAtOnce, MostValues / columns}));
    std::vector<Parameter> parameters = given;
    auto statement = Statement::Prepared(link, sql + " WHERE " + RowsText(some, link->Maker(), parameters));
    if (!statement) return tl::unexpected(statement.error());
    if (auto bound = statement->Bind(parameters); !bound) return bound;
    if (auto executed = statement->Execute(); !executed) return executed;
    if (statement->RowCount() != static_cast<std::int64_t>(some.size()))
      return tl::unexpected(
          link->Fail({db_error::StatementFailed,
                      "Rows were changed or deleted by somebody else meanwhile, or are alike",
                      {}}));
    rows = rows.subspan(some.size());
  }
  return {};
}

}  // namespace

DbResult<void> Recordset::SetInRows(Connection& connection, std::string_view table, std::string_view column,
                                    const DbValue& value, std::span<const RowPlace> rows) {
  if (rows.empty()) return {};
  if (!connection.IsOpen()) return ConnectionIsClosed();
  const std::shared_ptr<OdbcLink>& link = connection.link_;
  const auto shape = ReadTableShape(link, table);
  if (!shape) return tl::unexpected(shape.error());
  const auto position = shape->Find(column);
  if (!position) return NoSuchField(column);
  const TableColumn& field = shape->Columns[*position];
  std::vector<Parameter> given(1);
  given[0].Set(value, link->Maker(), field.SqlType);
  return ChangeRows(link, "UPDATE " + shape->Name + " SET " + link->Quoted(field.Shown.Name) + " = ?", given,
                    rows);
}

namespace {

// The first row that a statement tells of, as a place in the table.
DbResult<RowPlace> ReadPlace(Statement& statement, const TableShape& shape) {
  const auto fetched = statement.Fetch();
  if (!fetched) return tl::unexpected(fetched.error());
  if (!*fetched) return NoCurrentRow();
  RowPlace place;
  for (std::size_t i = 0; i < shape.Identity.size(); ++i) {
    const TableColumn& column = shape.Identity[i];
    std::string text;
    const auto read =
        statement.ReadLong(static_cast<SQLUSMALLINT>(i + 1), false, [&](std::string_view piece) {
          text += piece;
          return true;
        });
    if (!read) return tl::unexpected(read.error());
    place.Columns.push_back(column.Shown.Name);
    place.Types.push_back(column.SqlType);
    if (KindOfType(column.SqlType) == ValueKind::Integer)
      place.Values.emplace_back(static_cast<std::int64_t>(std::strtoll(text.c_str(), nullptr, 10)));
    else
      place.Values.emplace_back(std::move(text));
  }
  statement.CloseCursor();
  return place;
}

}  // namespace

DbResult<RowPlace> Recordset::Insert(Connection& connection, std::string_view table,
                                     const std::vector<std::pair<std::string, DbValue>>& values) {
  if (!connection.IsOpen()) return ConnectionIsClosed();
  const std::shared_ptr<OdbcLink>& link = connection.link_;
  const auto shape = ReadTableShape(link, table);
  if (!shape) return tl::unexpected(shape.error());
  std::string names, marks;
  std::vector<Parameter> parameters;
  RowPlace whole;  // of all values, for tables that name a new row in no other way
  for (const auto& [name, value] : values) {
    const auto position = shape->Find(name);
    if (!position) return NoSuchField(name);
    const TableColumn& column = shape->Columns[*position];
    const std::string quoted = link->Quoted(column.Shown.Name);
    names += (names.empty() ? "" : ", ") + quoted;
    marks += marks.empty() ? "?" : ", ?";
    parameters.emplace_back().Set(value, link->Maker(), column.SqlType);
    if (std::holds_alternative<DbBinary>(value)) continue;
    whole.Columns.push_back(quoted);
    whole.Values.push_back(value);
    whole.Types.push_back(column.SqlType);
  }
  if (values.empty()) return NoSuchField("to write to");
  const bool tells = link->Maker() == DatabaseMaker::PostgreSQL && !shape->Identity.empty();
  link->KeepResults();
  auto insert = Statement::Prepared(link, "INSERT INTO " + shape->Name + " (" + names + ") VALUES (" + marks +
                                              ")" + (tells ? " RETURNING ctid" : ""));
  if (!insert) return tl::unexpected(insert.error());
  if (auto bound = insert->Bind(parameters); !bound) return tl::unexpected(bound.error());
  if (auto stored = insert->Execute(); !stored) return tl::unexpected(stored.error());
  if (tells) return ReadPlace(*insert, *shape);
  if (shape->Identity.empty()) return whole;
  std::string sql = "SELECT last_insert_rowid()";
  parameters.clear();
  if (!shape->HasRowNumbers) {
    std::string list;
    for (const TableColumn& column : shape->Identity) list += (list.empty() ? "" : ", ") + column.Shown.Name;
    sql = "SELECT " + list + " FROM " + shape->Name + " WHERE " +
          RowsText({&whole, 1}, link->Maker(), parameters);
  }
  auto find = Statement::Prepared(link, sql);
  if (!find) return tl::unexpected(find.error());
  if (auto bound = find->Bind(parameters); !bound) return tl::unexpected(bound.error());
  if (auto asked = find->Execute(); !asked) return tl::unexpected(asked.error());
  return ReadPlace(*find, *shape);
}

DbResult<void> Recordset::DeleteRows(Connection& connection, std::string_view table,
                                     std::span<const RowPlace> rows) {
  if (rows.empty()) return {};
  if (!connection.IsOpen()) return ConnectionIsClosed();
  const auto shape = ReadTableShape(connection.link_, table);
  if (!shape) return tl::unexpected(shape.error());
  return ChangeRows(connection.link_, "DELETE FROM " + shape->Name, {}, rows);
}

DbResult<void> Recordset::State::Store() {
  if (Pending == Edit::None) return {};
  const auto stored = Pending == Edit::New ? StoreNew() : StoreChange();
  if (!stored) return stored;  // the change stays pending, to be mended or cancelled
  if (std::exchange(Pending, Edit::None) == Edit::Change) {
    Changed.merge(Stored);  // what was set now counts
    Stored = std::move(Changed);
  }
  Changed.clear();
  return {};
}

DbResult<void> Recordset::State::StoreNew() {
  std::string names, marks;
  std::vector<Parameter> parameters;
  const auto add = [&](const TableColumn& column, DbValue value) {
    names += (names.empty() ? "" : ", ") + Link->Quoted(column.Shown.Name);
    marks += marks.empty() ? "?" : ", ?";
    parameters.emplace_back().Set(std::move(value), Link->Maker(), column.SqlType);
  };
  for (const auto& [field, value] : Changed) add(Column(field), value);
  if (Changed.empty()) add(Column(0), {});
  return Run("INSERT INTO " + Shape.Name + " (" + names + ") VALUES (" + marks + ")", parameters);
}

DbResult<void> Recordset::State::StoreChange() {
  std::string list;
  std::vector<Parameter> parameters;
  for (const auto& [field, value] : Changed) {
    list += (list.empty() ? "" : ", ") + Link->Quoted(Column(field).Shown.Name) + " = ?";
    parameters.emplace_back().Set(value, Link->Maker(), Column(field).SqlType);
  }
  std::vector<DbValue> now;
  for (std::size_t i = 0; Shape.Identity.empty() && i < Chosen.size(); ++i) {
    auto value = Rows->Value(i);
    if (!value) return tl::unexpected(value.error());
    const auto stored = Stored.find(i), changed = Changed.find(i);
    now.push_back(changed != Changed.end() ? changed->second
                  : stored != Stored.end() ? stored->second
                                           : std::move(*value));
  }
  const auto done = ChangeRow("UPDATE " + Shape.Name + " SET " + list, std::move(parameters), true);
  if (done && Shape.Identity.empty()) Rows->SetIdentity(std::move(now));
  return done;
}

DbResult<void> Recordset::State::Delete() {
  const auto deleted = ChangeRow("DELETE FROM " + Shape.Name, {}, false);
  if (deleted) Deleted = true;
  return deleted;
}

DbResult<void> Recordset::State::Run(const std::string& sql, std::vector<Parameter>& parameters) {
  Link->KeepResults();
  if (!Prepared || sql != StatementText) {
    auto statement = Statement::Prepared(Link, sql);
    if (!statement) return tl::unexpected(statement.error());
    Prepared = std::move(*statement);
    StatementText = sql;
  }
  if (const auto bound = Prepared.Bind(parameters); !bound) return bound;
  return Prepared.Execute();
}

DbResult<void> Recordset::State::ChangeRow(const std::string& sql, std::vector<Parameter> parameters,
                                           bool keepsRow) {
  auto row = Rows->CurrentRow();
  if (!row) return tl::unexpected(row.error());
  const std::string place = RowsText({&*row, 1}, Link->Maker(), parameters);
  // In PostgreSQL a changed row is another row, with another identity.
  const bool moves = keepsRow && Link->Maker() == DatabaseMaker::PostgreSQL && !Shape.Identity.empty();
  const bool ownTransaction = Shape.Identity.empty() && !Link->InTransaction();
  if (ownTransaction)
    if (const auto begun = Link->Begin(); !begun) return begun;
  auto changed = Run(sql + " WHERE " + place + (moves ? " RETURNING ctid" : ""), parameters);
  const std::int64_t rows = changed ? Prepared.RowCount() : 0;
  if (moves && rows == 1) {  // where there is none, the driver has nothing that could be fetched
    std::string identity;
    const auto fetched = Prepared.Fetch();
    const auto read = !fetched ? fetched : Prepared.ReadLong(1, false, [&](std::string_view piece) {
      identity += piece;
      return true;
    });
    if (!read) changed = tl::unexpected(read.error());
    Rows->SetIdentity({std::move(identity)});
  }
  Prepared.CloseCursor();
  if (changed && rows != 1)
    changed = tl::unexpected(Link->Fail(
        {db_error::StatementFailed,
         rows == 0 ? "The row was changed or deleted by somebody else meanwhile"
                   : "The table holds several rows that are alike, so that this one alone cannot be changed",
         {}}));
  if (!ownTransaction) return changed;
  const auto committed = Link->Commit();
  return changed ? committed : changed;
}

}  // namespace hyetex
