// The tables of a Hyetex database: their names and the names, types, sizes and order of their columns. The
// names are a contract with other programs on the same database, odd capitals included; so are widths, which
// differ between tables for the same idea. Databases fold names to a case of their own, so names are compared
// without regard to case.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "platform/odbc/connection.h"

namespace hyetex {

struct SchemaColumn {
  std::string_view Name;
  ColumnType Type;
  std::int64_t Size = 0;  ///< characters of a text; 0 where the type alone says it
};

struct SchemaTable {
  std::string_view Name;
  std::span<const SchemaColumn> Columns;
};

/// All tables, in the order in which they are made.
std::span<const SchemaTable> SchemaTables();
/// What was converted, how and by whom: one row for each chart whose rows are in CHART. Ours alone, and used
/// where a database's keeper has made it.
const SchemaTable& ConversionTable();
/// The table of this name; null when it is none of ours.
const SchemaTable* FindSchemaTable(std::string_view name);
const SchemaColumn* FindSchemaColumn(const SchemaTable& table, std::string_view name);

}  // namespace hyetex
