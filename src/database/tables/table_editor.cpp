#include "database/tables/table_editor.h"

#include <algorithm>
#include <utility>

#include "core/text.h"

namespace hyetex {
namespace {

// The columns of a table that the catalog has.
Result<std::vector<CatalogColumn>> ColumnsIn(Connection& connection, std::string_view table) {
  const auto found = connection.FindTable(table);
  if (!found) return Failure(found.error().Description);
  if (!*found)
    return Failure("The database has no table " + std::string(table) +
                   ". Select another database, or have its keeper make the tables that it lacks.");
  auto columns = connection.Columns(**found);
  if (!columns) return Failure(columns.error().Description);
  return *std::move(columns);
}

}  // namespace

Result<std::unique_ptr<TableEditor>> TableEditor::Open(const EditedTable& table,
                                                       const std::string& connectionText) {
  auto editor = std::unique_ptr<TableEditor>(new TableEditor(table));
  if (connectionText.empty()) return Failure("No database has been selected.");
  editor->connectionText_ = connectionText;
  if (const auto connected = editor->Connect(); !connected) return Failure(connected.error());
  const auto columns = ColumnsIn(editor->connection_, table.Table);
  if (!columns) return Failure(columns.error());
  auto fields = FieldsOf(table, *columns);
  if (!fields) return Failure(fields.error());
  editor->fields_ = *std::move(fields);
  CursorSource source{.Table = std::string(table.Table), .OrderBy = std::string(table.OrderBy)};
  for (const Field& field : editor->fields_)
    (field.Kind == FieldKind::Picture ? source.LongColumns : source.Columns).push_back(field.Column);
  if (table.HasMaster()) {
    const auto masters = ColumnsIn(editor->connection_, table.Master);
    if (!masters) return Failure(masters.error());
    const auto spelling = [&](const std::vector<CatalogColumn>& of,
                              std::string_view owner) -> Result<std::string> {
      for (const CatalogColumn& column : of)
        if (EqualIgnoringCase(column.Name, table.MasterColumn)) return column.Name;
      return Failure("The table " + std::string(owner) + " of this database has no column " +
                     std::string(table.MasterColumn) + ".");
    };
    const auto own = spelling(*columns, table.Table), masterColumn = spelling(*masters, table.Master);
    if (!own) return Failure(own.error());
    if (!masterColumn) return Failure(masterColumn.error());
    editor->masterColumn_ = *own;
    editor->master_ = std::make_unique<TableCursor>(
        editor->connection_, CursorSource{.Table = std::string(table.Master), .Columns = {*masterColumn}});
  }
  editor->rows_ = std::make_unique<TableCursor>(editor->connection_, std::move(source));
  if (const auto read = editor->Requery(); !read) return Failure(read.error());
  return editor;
}

Result<void> TableEditor::Connect() {
  auto connection = Connection::Open(connectionText_);
  if (!connection) return Failure("The database cannot be reached: " + connection.error().Description);
  connection_ = *std::move(connection);
  return {};
}

Result<void> TableEditor::Requery() {
  if (!connection_.Execute("SELECT 1"))
    if (auto connected = Connect(); !connected) return connected;
  if (const auto read = Moved().Requery(); !read) return Failure(read.error().Description);
  if (const auto followed = FollowMaster(); !followed) return Failure(followed.error().Description);
  return {};
}

std::vector<Selection::Condition> TableEditor::OfMaster() const {
  const DbValue code = master_->HasRow() ? master_->Values().front() : DbValue();
  return {{.Column = masterColumn_, .How = Compare::EqualIgnoringCase, .Wanted = code}};
}

DbResult<void> TableEditor::FollowMaster() {
  if (!master_) return {};
  return rows_->Requery(OfMaster());
}

DbResult<bool> TableEditor::Find(const std::string& prefix, Progress& progress) {
  auto found = Moved().Find(std::string(table_.FindBy), prefix, progress);
  if (!found || !*found) return found;
  if (const auto followed = FollowMaster(); !followed) return tl::unexpected(followed.error());
  return true;
}

DbResult<DbValue> TableEditor::Value(const Field& field) {
  if (field.Kind == FieldKind::Picture) return rows_->LongValue(field.Column);
  std::size_t position = 0;
  for (const Field& each : fields_) {
    if (&each == &field) break;
    if (each.Kind != FieldKind::Picture) ++position;
  }
  const std::vector<DbValue>& values = rows_->Values();
  return rows_->IsNew() || position >= values.size() ? DbValue() : values[position];
}

std::string FateText(RowFate fate, bool deletes) {
  const std::string kept = deletes ? "It was not deleted." : "Nothing was stored.";
  if (fate == RowFate::Changed)
    return "Somebody else has changed this record since it was read here. " + kept;
  if (fate == RowFate::Gone)
    return deletes ? "Somebody else has deleted this record already."
                   : "Somebody else has deleted this record since it was read here. " + kept;
  return {};
}

}  // namespace hyetex
