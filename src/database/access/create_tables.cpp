#include "database/access/create_tables.h"

#include <algorithm>

#include "core/text.h"
#include "database/access/names.h"
#include "database/access/schema.h"

namespace hyetex {
namespace {

constexpr const char* NotOpen = "Must have a selected data source to create tables in.";

template <typename Catalog>
bool HasName(const Catalog& entries, std::string_view name) {
  return std::any_of(entries.begin(), entries.end(),
                     [&](const auto& entry) { return EqualIgnoringCase(entry.Name, name); });
}

DbResult<std::string> CreateStatement(Connection& connection, const SchemaTable& table) {
  std::string columns;
  for (const SchemaColumn& column : table.Columns) {
    const auto type = connection.TypeWord(column.Type, column.Size);
    if (!type) return tl::unexpected(type.error());
    columns += (columns.empty() ? "" : ", ") + std::string(column.Name) + " " + *type;
  }
  return "CREATE TABLE " + std::string(table.Name) + " (" + columns + ")";
}

// A table as the database has it, in names that are ready for a statement; in our own, which no quotes keep
// from being folded, where it has none.
struct TableAsItIs {
  std::string Name;
  std::vector<CatalogColumn> Columns;

  bool Has(std::string_view column) const { return HasName(Columns, column); }
  std::string Column(const Connection& connection, std::string_view column) const {
    for (const CatalogColumn& each : Columns)
      if (EqualIgnoringCase(each.Name, column)) return connection.Quoted(each.Name);
    return std::string(column);
  }
};

DbResult<TableAsItIs> FindAsItIs(Connection& connection, std::string_view name) {
  const auto found = connection.FindTable(name);
  if (!found) return tl::unexpected(found.error());
  if (!*found) return TableAsItIs{std::string(name), {}};
  auto columns = connection.Columns(**found);
  if (!columns) return tl::unexpected(columns.error());
  return TableAsItIs{connection.Quoted(**found), *std::move(columns)};
}

// A search for an instrument compares codes in capitals. Where such an expression can be indexed it leads;
// elsewhere the time does, which narrows a search to the charts of those days.
struct IndexDescription {
  const char *Name, *Table;
  const char* Time;  // that is looked for beside the code, if any
};
constexpr IndexDescription Indexes[] = {
    {"chart_ascii_by_date", table_name::ChartAscii, column::ChartDate},
    {"chart_by_time", table_name::Chart, column::StartTime},
    {"chart_conversion_by_date", table_name::Conversion, column::ChartDate},
    {"instrument_by_code", table_name::Instrument, nullptr},
};

// Nothing where no index helps.
std::string IndexedColumns(const Connection& connection, const TableAsItIs& table, const char* time) {
  const std::string maker = connection.Maker();
  const std::string code = table.Column(connection, column::InstrumentCode);
  const bool indexesExpressions = maker == "SQLite" || maker == "PostgreSQL";
  if (time == nullptr) return indexesExpressions ? "upper(" + code + ")" : "";
  const std::string at = table.Column(connection, time);
  return indexesExpressions ? "upper(" + code + "), " + at : at + ", " + code;
}

}  // namespace

DbResult<std::vector<SchemaChange>> MissingTables(Connection& connection) {
  if (!connection.IsOpen()) return tl::unexpected(DbError{db_error::NotNow, NotOpen, {}});
  const auto present = connection.Tables();
  if (!present) return tl::unexpected(present.error());
  std::vector<SchemaChange> missing;
  for (const SchemaTable& table : SchemaTables()) {
    if (HasName(*present, table.Name)) continue;
    auto statement = CreateStatement(connection, table);
    if (!statement) return tl::unexpected(statement.error());
    missing.push_back({std::string(table.Name), std::move(*statement)});
  }
  return missing;
}

DbResult<std::vector<SchemaChange>> MissingCompletion(Connection& connection) {
  if (!connection.IsOpen()) return tl::unexpected(DbError{db_error::NotNow, NotOpen, {}});
  std::vector<SchemaChange> missing;
  const auto charts = FindAsItIs(connection, table_name::ChartAscii);
  if (!charts) return tl::unexpected(charts.error());
  if (!charts->Has(column::Loaded)) {
    const auto type = connection.TypeWord(ColumnType::Integer, 0);
    if (!type) return tl::unexpected(type.error());
    const std::string column = column::Loaded;
    missing.push_back({table_name::ChartAscii + ("." + column),
                       "ALTER TABLE " + charts->Name + " ADD COLUMN " + column + " " + *type});
  }
  const SchemaTable& conversions = ConversionTable();
  const auto book = connection.FindTable(conversions.Name);
  if (!book) return tl::unexpected(book.error());
  if (!*book) {
    auto statement = CreateStatement(connection, conversions);
    if (!statement) return tl::unexpected(statement.error());
    missing.push_back({std::string(conversions.Name), *std::move(statement)});
  }
  for (const IndexDescription& index : Indexes) {
    const auto table = FindAsItIs(connection, index.Table);
    if (!table) return tl::unexpected(table.error());
    const std::string columns = IndexedColumns(connection, *table, index.Time), name = index.Name;
    if (!columns.empty())
      missing.push_back({"index " + name,
                         "CREATE INDEX IF NOT EXISTS " + name + " ON " + table->Name + " (" + columns + ")",
                         true});
  }
  return missing;
}

SchemaOutcome Make(Connection& connection, std::span<const SchemaChange> changes) {
  SchemaOutcome outcome;
  for (const SchemaChange& change : changes) {
    if (const auto done = connection.Execute(change.Statement); !done)
      outcome.Failed.emplace_back(change.What, done.error());
    else if (!change.MayBeThere)
      outcome.Made.push_back(change.What);
  }
  return outcome;
}

DbResult<SchemaOutcome> CreateTables(Connection& connection) {
  const auto missing = MissingTables(connection);
  if (!missing) return tl::unexpected(missing.error());
  return Make(connection, *missing);
}

}  // namespace hyetex
