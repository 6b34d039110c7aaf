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

// The table as the catalog spells it, which some databases insist on; as we do where it is still missing.
DbResult<std::string> Spelled(Connection& connection, std::string_view table) {
  const auto found = connection.FindTable(table);
  if (!found) return tl::unexpected(found.error());
  return found->value_or(std::string(table));
}

DbResult<bool> HasLoaded(Connection& connection, const std::string& table) {
  const auto found = connection.FindTable(table);
  if (!found) return tl::unexpected(found.error());
  if (!*found) return false;
  const auto columns = connection.Columns(table);
  if (!columns) return tl::unexpected(columns.error());
  return HasName(*columns, column::Loaded);
}

// A search for an instrument compares codes in capitals. Where such an expression can be indexed it leads;
// elsewhere the time does, which narrows a search to the charts of those days.
struct IndexDescription {
  std::string_view Name, Table;
  std::string_view ByCode, ByTime;  // nothing where no index helps
};
constexpr IndexDescription Indexes[] = {
    {"chart_ascii_by_date", table_name::ChartAscii, "upper(instrument_code_id), chart_date",
     "chart_date, instrument_code_id"},
    {"chart_by_time", table_name::Chart, "upper(instrument_code_id), start_time",
     "start_time, instrument_code_id"},
    {"chart_conversion_by_date", table_name::Conversion, "upper(instrument_code_id), chart_date",
     "chart_date, instrument_code_id"},
    {"instrument_by_code", table_name::Instrument, "upper(instrument_code_id)", ""},
};

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
  const auto charts = Spelled(connection, table_name::ChartAscii);
  if (!charts) return tl::unexpected(charts.error());
  const auto hasLoaded = HasLoaded(connection, *charts);
  if (!hasLoaded) return tl::unexpected(hasLoaded.error());
  if (!*hasLoaded) {
    const auto type = connection.TypeWord(ColumnType::Integer, 0);
    if (!type) return tl::unexpected(type.error());
    const std::string column = column::Loaded;
    missing.push_back(
        {*charts + "." + column, "ALTER TABLE " + *charts + " ADD COLUMN " + column + " " + *type});
  }
  const SchemaTable& conversions = ConversionTable();
  const auto book = connection.FindTable(conversions.Name);
  if (!book) return tl::unexpected(book.error());
  if (!*book) {
    auto statement = CreateStatement(connection, conversions);
    if (!statement) return tl::unexpected(statement.error());
    missing.push_back({std::string(conversions.Name), *std::move(statement)});
  }
  const std::string maker = connection.Maker();
  const bool indexesExpressions = maker == "SQLite" || maker == "PostgreSQL";
  for (const IndexDescription& index : Indexes) {
    const std::string columns(indexesExpressions ? index.ByCode : index.ByTime);
    if (columns.empty()) continue;
    const auto table = Spelled(connection, index.Table);
    if (!table) return tl::unexpected(table.error());
    const std::string name(index.Name);
    missing.push_back({"index " + name,
                       "CREATE INDEX IF NOT EXISTS " + name + " ON " + *table + " (" + columns + ")", true});
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
