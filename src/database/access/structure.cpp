#include "database/access/structure.h"

#include "core/text.h"

namespace hyetex {
namespace {

constexpr std::string_view Preface[] = {
    "This script is meant to be reviewed and used by an experienced DBA. ",
    "The script shows the ODBC equivalent data types for Microsoft ODBC. ",
    "These will likely need to be changed for any given database software. ",
    "The names of fields and tables should not be modified as the program relies on ",
    "this basic naming and table structure.",
};

// A whole number shows as the type of a row counter, as which most of them serve.
std::string ScriptWord(const CatalogColumn& column) {
  switch (column.Type) {
    case ColumnType::Integer:
      return "COUNTER";
    case ColumnType::Real:
      return "REAL";
    case ColumnType::Double:
      return "DOUBLE";
    case ColumnType::DateTime:
      return "DATETIME";
    case ColumnType::VarChar:
      return "VARCHAR(" + std::to_string(column.Size) + ")";
    case ColumnType::LongBinary:
      return "LONGBINARy";
    case ColumnType::SmallInt:
    case ColumnType::Other:
      break;
  }
  return {};
}

// Calls `read(name)` for each table of the catalog until `progress` wants no more.
template <typename Read>
DbResult<void> ForEachTable(Connection& connection, Progress& progress, Read&& read) {
  auto catalog = connection.Tables();
  if (!catalog) return tl::unexpected(catalog.error());
  std::erase_if(*catalog, [](const CatalogTable& table) { return !EqualIgnoringCase(table.Type, "TABLE"); });
  const auto total = static_cast<std::int64_t>(catalog->size());
  std::int64_t at = 0;
  for (const CatalogTable& table : *catalog) {
    if (!progress.Step(at++, total, table.Name)) break;
    if (const auto done = read(table.Name); !done) return done;
  }
  return {};
}

}  // namespace

DbResult<std::vector<TableStructure>> ShowStructure(Connection& connection, Progress& progress) {
  std::vector<TableStructure> tables;
  const auto done = ForEachTable(connection, progress, [&](const std::string& name) -> DbResult<void> {
    auto columns = connection.Columns(name);
    if (!columns) return tl::unexpected(columns.error());
    tables.push_back({name, std::move(*columns)});
    return {};
  });
  if (!done) return tl::unexpected(done.error());
  return tables;
}

DbResult<std::vector<CatalogKey>> ShowKeys(Connection& connection, Progress& progress) {
  std::vector<CatalogKey> keys;
  const auto done = ForEachTable(connection, progress, [&](const std::string& name) -> DbResult<void> {
    const auto found = connection.Keys(name);
    if (!found) return tl::unexpected(DbError{found.error().Number, NoKeysText, found.error().State});
    keys.insert(keys.end(), found->begin(), found->end());
    return {};
  });
  if (!done) return tl::unexpected(done.error());
  return keys;
}

std::string StructureScript(std::span<const TableStructure> tables) {
  constexpr std::string_view LineEnd = "\r\n";
  std::string script;
  const auto add = [&](std::string_view line) { script.append(line).append(LineEnd); };
  for (const std::string_view line : Preface) add(line);
  for (const TableStructure& table : tables) {
    add("create table " + table.Name + "(");
    for (const CatalogColumn& column : table.Columns) add(column.Name + " " + ScriptWord(column) + ",");
    add(");");
    add("");
  }
  return script;
}

}  // namespace hyetex
