#include "platform/odbc/recordset.h"

#include <utility>

#include "core/text.h"
#include "platform/odbc/recordset_state.h"

namespace hyetex {

Recordset::Recordset() = default;
Recordset::~Recordset() = default;
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;

DbResult<Recordset> Recordset::Open(Connection& connection, std::string_view table, Selection selection) {
  if (!connection.IsOpen()) return ConnectionIsClosed();
  auto state = std::make_unique<State>();
  state->Link = connection.link_;
  auto shape = ReadTableShape(state->Link, table);
  if (!shape) return tl::unexpected(shape.error());
  state->Shape = std::move(*shape);
  if (selection.Columns.empty())
    for (std::size_t i = 0; i < state->Shape.Columns.size(); ++i) state->Chosen.push_back(i);
  for (const std::string& name : selection.Columns) {
    const auto position = state->Shape.Find(name);
    if (!position) return NoSuchField(name);
    state->Chosen.push_back(*position);
  }
  for (Selection::Condition& condition : selection.Where) {
    const auto position = state->Shape.Find(condition.Column);
    if (!position) return NoSuchField(condition.Column);
    condition.Column = state->Shape.Columns[*position].Shown.Name;
  }
  for (const std::size_t position : state->Chosen)
    state->Fields.push_back(state->Shape.Columns[position].Shown);
  state->Rows =
      std::make_unique<RowSource>(state->Link, state->Shape, state->Chosen, std::move(selection.Where),
                                  selection.LongWithRow, selection.AsText);
  if (const auto opened = state->Rows->Open(); !opened) return tl::unexpected(opened.error());
  Recordset recordset;
  recordset.state_ = std::move(state);
  return recordset;
}

bool Recordset::IsOpen() const { return state_ != nullptr; }
void Recordset::Close() { state_.reset(); }
bool Recordset::Eof() const { return state_ == nullptr || state_->Rows->AtEnd(); }

DbResult<void> Recordset::MoveFirst() {
  if (!IsOpen()) return RecordsetIsClosed();
  if (const auto stored = state_->Store(); !stored) return stored;
  state_->Position = 0;
  state_->Deleted = false;
  state_->Stored.clear();
  return state_->Rows->Open();
}

DbResult<void> Recordset::MoveNext() { return Move(1); }

DbResult<void> Recordset::Move(std::int64_t rows) {
  if (!IsOpen()) return RecordsetIsClosed();
  if (const auto stored = state_->Store(); !stored) return stored;
  if (rows < 0) {
    const std::int64_t target = state_->Position + rows;
    if (const auto first = MoveFirst(); !first) return first;
    return target < 0 ? DbResult<void>(NoCurrentRow()) : Move(target);
  }
  if (rows > 0 && Eof()) return NoCurrentRow();
  for (; rows > 0 && !Eof(); --rows) {
    if (!std::exchange(state_->Deleted, false)) ++state_->Position;
    state_->Stored.clear();
    if (const auto moved = state_->Rows->Next(); !moved) return moved;
  }
  return {};
}

const std::vector<CatalogColumn>& Recordset::Fields() const {
  static const std::vector<CatalogColumn> none;
  return state_ == nullptr ? none : state_->Fields;
}

int Recordset::FieldCount() const { return static_cast<int>(Fields().size()); }

const std::string& Recordset::FieldName(int position) const {
  static const std::string none;
  const auto at = static_cast<std::size_t>(position);
  return at < Fields().size() ? Fields()[at].Name : none;
}

std::optional<std::size_t> Recordset::State::Find(std::string_view name) const {
  for (std::size_t i = 0; i < Fields.size(); ++i)
    if (EqualIgnoringCase(Fields[i].Name, name)) return i;
  return std::nullopt;
}

bool Recordset::HasField(std::string_view name) const { return state_ != nullptr && state_->Find(name); }

DbResult<DbValue> Recordset::Value(std::string_view name) {
  if (!IsOpen()) return RecordsetIsClosed();
  const auto position = state_->Find(name);
  if (!position) return NoSuchField(name);
  return Value(static_cast<int>(*position));
}

DbResult<DbValue> Recordset::Value(int position) {
  if (!IsOpen()) return RecordsetIsClosed();
  const auto at = static_cast<std::size_t>(position);
  if (at >= state_->Fields.size()) return NoSuchField(std::to_string(position));
  if (const auto changed = state_->Changed.find(at); changed != state_->Changed.end()) return changed->second;
  if (state_->Pending == State::Edit::New) return DbValue();
  if (!state_->HasRow()) return NoCurrentRow();
  if (const auto stored = state_->Stored.find(at); stored != state_->Stored.end()) return stored->second;
  return state_->Rows->Value(at);
}

DbResult<void> Recordset::ReadPieces(std::string_view name,
                                     const std::function<bool(std::string_view)>& take) {
  if (!IsOpen()) return RecordsetIsClosed();
  const auto position = state_->Find(name);
  if (!position) return NoSuchField(name);
  if (state_->Pending == State::Edit::New || state_->Changed.contains(*position) ||
      state_->Stored.contains(*position)) {
    const auto value = Value(static_cast<int>(*position));
    if (value && !IsNull(*value)) take(TextOf(*value));
    return {};
  }
  if (!state_->HasRow()) return NoCurrentRow();
  return state_->Rows->ReadPieces(*position, take);
}

}  // namespace hyetex
