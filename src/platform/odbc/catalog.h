// What a database tells of its tables.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/odbc/connection.h"
#include "platform/odbc/odbc_link.h"

namespace hyetex {

/// A column as the catalog has it, with the number of its ODBC type.
struct TableColumn {
  CatalogColumn Shown;
  SQLSMALLINT SqlType = SQL_UNKNOWN_TYPE;
};

struct TableShape {
  std::string Name;  ///< ready to stand in a statement
  std::vector<TableColumn> Columns;
  /// What tells one row from all others, ready to stand in a statement; empty where the database has none.
  std::vector<TableColumn> Identity;
  bool HasRowNumbers = false;  ///< the identity is one number that ascends with the rows

  std::optional<std::size_t> Find(std::string_view column) const;
};

DbResult<std::vector<CatalogKey>> ReadKeys(const std::shared_ptr<OdbcLink>& link, const std::string& table);
DbResult<std::vector<CatalogTable>> ReadTables(const std::shared_ptr<OdbcLink>& link);
/// The table that has this name without regard to case, a name spelled the same before others.
DbResult<std::optional<CatalogTable>> FindCatalogTable(const std::shared_ptr<OdbcLink>& link,
                                                       std::string_view name);
/// Fails on a table that the catalog does not have.
DbResult<TableShape> ReadTableShape(const std::shared_ptr<OdbcLink>& link, std::string_view table);
DbResult<std::string> TypeWordFor(const std::shared_ptr<OdbcLink>& link, ColumnType type, std::int64_t size);

}  // namespace hyetex
