// What tables a database has, and of which columns; as rows to look at and as a script for whoever makes
// another database like it.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/progress.h"
#include "platform/odbc/connection.h"

namespace hyetex {

struct TableStructure {
  std::string Name;
  std::vector<CatalogColumn> Columns;
};

inline constexpr std::string_view ScriptFileName = "script.txt";

/// The tables of the catalog in its order, without views and system tables. As many as were read when
/// `progress` wanted no more.
DbResult<std::vector<TableStructure>> ShowStructure(Connection& connection, Progress& progress);

/// The keys of those tables. Fails with NoKeysText where the driver cannot tell them.
DbResult<std::vector<CatalogKey>> ShowKeys(Connection& connection, Progress& progress);
inline constexpr const char* NoKeysText =
    "The current database driver cannot resolve keys, the program will be unable to display the keys within "
    "the "
    "database.";

/// Types are the words of the desktop databases' ODBC driver, by the types' numbers; a type that has no word
/// there leaves its place empty for the administrator. Lines end with carriage return and line feed.
std::string StructureScript(std::span<const TableStructure> tables);

}  // namespace hyetex
