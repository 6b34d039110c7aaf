#include "platform/odbc/catalog.h"

#include <algorithm>
#include <array>
#include <functional>

#include "core/numbers.h"
#include "core/text.h"
#include "platform/odbc/statement.h"

namespace hyetex {
namespace {

/// One row of a catalog function's answer; columns from 1, NULL as an empty text.
using CatalogRow = std::vector<std::string>;

DbResult<std::vector<CatalogRow>> ReadAnswer(const std::shared_ptr<OdbcLink>& link, std::size_t columns,
                                             const std::function<SQLRETURN(SQLHSTMT)>& ask) {
  auto statement = Statement::Make(link);
  if (!statement) return tl::unexpected(statement.error());
  if (const auto asked = statement->Check(ask(statement->Handle())); !asked)
    return tl::unexpected(asked.error());
  std::vector<CatalogRow> rows;
  while (true) {
    const auto fetched = statement->Fetch();
    if (!fetched) return tl::unexpected(fetched.error());
    if (!*fetched) return rows;
    CatalogRow& row = rows.emplace_back(columns + 1);
    for (std::size_t i = 1; i <= columns; ++i) {
      const auto read = statement->ReadLong(static_cast<SQLUSMALLINT>(i), false, [&](std::string_view piece) {
        row[i] += piece;
        return true;
      });
      if (!read) return tl::unexpected(read.error());
    }
  }
}

std::int64_t NumberIn(const CatalogRow& row, std::size_t column) {
  return static_cast<std::int64_t>(LeadingNumber(row[column]));
}

using Places = OdbcLink::Places;
DbResult<Places> SearchedPlaces(const std::shared_ptr<OdbcLink>& link) {
  if (link->Searched) return *link->Searched;
  if (link->Maker() == DatabaseMaker::SQLite) return Places();
  if (link->Maker() != DatabaseMaker::PostgreSQL) return Places{.Catalog = link->Info(SQL_DATABASE_NAME)};
  static const std::string sql =
      "SELECT name FROM unnest(current_schemas(false)) WITH ORDINALITY AS path (name, place) ORDER BY place";
  const auto rows =
      ReadAnswer(link, 1, [](SQLHSTMT handle) { return SQLExecDirect(handle, SqlText(sql), SQL_NTS); });
  if (!rows) return tl::unexpected(rows.error());
  Places places{.Catalog = {}, .Schemas = {}};
  for (const CatalogRow& row : *rows) places.Schemas.push_back(row[1]);
  link->Searched = places;
  return places;
}

// A pattern that a catalog function takes: nothing for an empty text.
SQLCHAR* PatternOrNull(const std::string& text) { return text.empty() ? nullptr : SqlText(text); }

// A name as a pattern of its own: "_" and "%" would stand for anything.
std::string AsPattern(const OdbcLink& link, std::string_view name) {
  const std::string escape = link.Info(SQL_SEARCH_PATTERN_ESCAPE);
  std::string pattern;
  for (const char c : name) {
    if (!escape.empty() && (c == '_' || c == '%' || c == escape.front())) pattern += escape;
    pattern += c;
  }
  return pattern;
}

struct TypeRow {
  ColumnType Ours;
  SQLSMALLINT Sql;
};
// The first of each is what we ask a database for; where it has none, the next wider follows.
constexpr TypeRow TypeRows[] = {
    {ColumnType::SmallInt, SQL_SMALLINT},
    {ColumnType::SmallInt, SQL_INTEGER},
    {ColumnType::Integer, SQL_INTEGER},
    {ColumnType::Integer, SQL_BIGINT},
    {ColumnType::Real, SQL_REAL},
    {ColumnType::Real, SQL_DOUBLE},
    {ColumnType::Double, SQL_DOUBLE},
    {ColumnType::Double, SQL_FLOAT},
    {ColumnType::DateTime, SQL_TYPE_TIMESTAMP},
    {ColumnType::VarChar, SQL_VARCHAR},
    {ColumnType::VarChar, SQL_WVARCHAR},
    {ColumnType::LongBinary, SQL_LONGVARBINARY},
    {ColumnType::LongBinary, SQL_VARBINARY},
};

ColumnType TypeOf(SQLSMALLINT sql) {
  switch (sql) {
    case SQL_TINYINT:
    case SQL_SMALLINT:
      return ColumnType::SmallInt;
    case SQL_INTEGER:
      return ColumnType::Integer;
    case SQL_REAL:
      return ColumnType::Real;
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return ColumnType::Double;
    case SQL_TYPE_TIMESTAMP:
    case SQL_TIMESTAMP:
      return ColumnType::DateTime;
    case SQL_CHAR:
    case SQL_WCHAR:
    case SQL_VARCHAR:
    case SQL_WVARCHAR:
      return ColumnType::VarChar;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
      return ColumnType::LongBinary;
    default:
      return ColumnType::Other;
  }
}

// SQLite's driver tells of nothing where another program's lock keeps it from reading.
DbResult<void> CheckReadable(const std::shared_ptr<OdbcLink>& link) {
  if (link->Maker() != DatabaseMaker::SQLite) return {};
  auto probe = Statement::Prepared(link, "SELECT COUNT(*) FROM sqlite_master");
  if (!probe) return tl::unexpected(probe.error());
  if (auto asked = probe->Execute(); !asked) return asked;
  if (const auto read = probe->Fetch(); !read) return tl::unexpected(read.error());
  return {};
}

DbResult<std::vector<TableColumn>> ReadColumns(const std::shared_ptr<OdbcLink>& link,
                                               const CatalogTable& table) {
  const std::string catalog =
      link->Maker() == DatabaseMaker::Other ? link->Info(SQL_DATABASE_NAME) : std::string();
  const std::string name = AsPattern(*link, table.Name), schema = AsPattern(*link, table.Schema);
  constexpr std::size_t nullableColumn = 11, defaultColumn = 13;
  const auto rows = ReadAnswer(link, defaultColumn, [&](SQLHSTMT handle) {
    return SQLColumns(handle, PatternOrNull(catalog), SQL_NTS, PatternOrNull(schema), SQL_NTS, SqlText(name),
                      SQL_NTS, nullptr, 0);
  });
  if (!rows) return tl::unexpected(rows.error());
  if (rows->empty())
    if (const auto readable = CheckReadable(link); !readable) return tl::unexpected(readable.error());
  std::vector<TableColumn> columns;
  for (const CatalogRow& row : *rows) {
    if (row[3] != table.Name) continue;
    TableColumn& column = columns.emplace_back();
    column.SqlType = static_cast<SQLSMALLINT>(NumberIn(row, 5));
    column.Shown.Name = row[4];
    column.Shown.Type = TypeOf(column.SqlType);
    column.Shown.TypeName = row[6];
    column.Shown.Size = std::max<std::int64_t>(NumberIn(row, 7), 0);
    const ValueKind kind = KindOfType(column.SqlType);
    column.Shown.IsText = kind == ValueKind::Text;
    column.Shown.IsBinary = kind == ValueKind::Binary;
    column.Shown.IsTime = kind == ValueKind::Time;
    column.Shown.IsWhole = kind == ValueKind::Integer;
    const std::string& standard = row[defaultColumn];
    column.Shown.FillsItself =
        (!standard.empty() && !EqualIgnoringCase(standard, "NULL")) ||
        (!row[nullableColumn].empty() && NumberIn(row, nullableColumn) == SQL_NO_NULLS);
  }
  return columns;
}

// SQLite's driver names a unique column before the row's own number, though it may hold NULL many times; and
// tables may have been made without such numbers.
constexpr const char* RowNumber = "_ROWID_";
bool HasRowNumbers(const std::shared_ptr<OdbcLink>& link, const std::string& quotedTable) {
  auto statement = Statement::Make(link);
  const std::string sql = std::string("SELECT ") + RowNumber + " FROM " + quotedTable;
  return statement && SQL_SUCCEEDED(SQLPrepare(statement->Handle(), SqlText(sql), SQL_NTS));
}

DbResult<std::vector<TableColumn>> ReadIdentity(const std::shared_ptr<OdbcLink>& link,
                                                const CatalogTable& table, TableShape& shape) {
  if (table.Type != "TABLE") return std::vector<TableColumn>();
  const auto own = [](const char* name, SQLSMALLINT type) {
    TableColumn column;
    column.Shown.Name = name;
    column.Shown.Size = 32;
    column.SqlType = type;
    return std::vector<TableColumn>{column};
  };
  if (link->Maker() == DatabaseMaker::PostgreSQL) return own("ctid", SQL_VARCHAR);
  const bool sqlite = link->Maker() == DatabaseMaker::SQLite;
  if (sqlite && HasRowNumbers(link, shape.Name)) {
    shape.HasRowNumbers = true;
    return own(RowNumber, SQL_BIGINT);
  }
  // A table of SQLite that has no row numbers has a primary key.
  constexpr std::size_t keyColumn = 4, rowIdColumn = 2;
  const auto rows = ReadAnswer(link, 5, [&](SQLHSTMT handle) {
    return sqlite ? SQLPrimaryKeys(handle, nullptr, 0, nullptr, 0, SqlText(table.Name), SQL_NTS)
                  : SQLSpecialColumns(handle, SQL_BEST_ROWID, nullptr, 0, nullptr, 0, SqlText(table.Name),
                                      SQL_NTS, SQL_SCOPE_CURROW, SQL_NO_NULLS);
  });
  if (!rows) return tl::unexpected(rows.error());
  std::vector<TableColumn> identity;
  for (const CatalogRow& row : *rows) {
    const std::string& name = row[sqlite ? keyColumn : rowIdColumn];
    TableColumn column;
    if (const auto known = shape.Find(name)) {
      column = shape.Columns[*known];
    } else {
      column.SqlType = static_cast<SQLSMALLINT>(NumberIn(row, 3));
      column.Shown.Size = NumberIn(row, 5);
    }
    column.Shown.Name = link->Quoted(name);
    // A time finds its row again only in the form in which it is stored.
    if (sqlite && KindOfType(column.SqlType) == ValueKind::Time) column.SqlType = SQL_VARCHAR;
    constexpr std::int64_t widestKey = 255;
    if (KindOfType(column.SqlType) == ValueKind::Text &&
        (column.Shown.Size < 32 || column.Shown.Size > widestKey))
      column.Shown.Size = widestKey;
    identity.push_back(std::move(column));
  }
  return identity;
}

// Of several names for one type: not one that counts by itself, has no sign, takes no width where there is
// one, or moves times between zones; then the widest.
bool IsBetter(const CatalogRow& a, const CatalogRow& b) {
  const auto rank = [](const CatalogRow& row) {
    const std::string name = UpperAscii(row[1]);
    const bool noWidth = row[6].empty() && NumberIn(row, 2) == SQL_VARCHAR;
    const int odd = (NumberIn(row, 10) != 0) + (NumberIn(row, 12) != 0) + noWidth + name.ends_with("TZ") +
                    (name == "TIMESTAMP");
    return std::pair(odd, -NumberIn(row, 3));
  };
  return rank(a) < rank(b);
}

}  // namespace

std::optional<std::size_t> TableShape::Find(std::string_view column) const {
  for (std::size_t i = 0; i < Columns.size(); ++i)
    if (EqualIgnoringCase(Columns[i].Shown.Name, column)) return i;
  return std::nullopt;
}

DbResult<std::vector<CatalogTable>> ReadTables(const std::shared_ptr<OdbcLink>& link) {
  const auto places = SearchedPlaces(link);
  if (!places) return tl::unexpected(places.error());
  std::vector<CatalogTable> tables;
  for (const std::string& schema : places->Schemas) {
    const std::string pattern = AsPattern(*link, schema);
    const auto rows = ReadAnswer(link, 4, [&](SQLHSTMT handle) {
      return SQLTables(handle, PatternOrNull(places->Catalog), SQL_NTS, PatternOrNull(pattern), SQL_NTS,
                       nullptr, 0, nullptr, 0);
    });
    if (!rows) return tl::unexpected(rows.error());
    const std::size_t before = tables.size();
    for (const CatalogRow& row : *rows) {
      if (!schema.empty() && row[2] != schema) continue;
      const bool hidden =
          std::any_of(tables.begin(), tables.begin() + static_cast<std::ptrdiff_t>(before),
                      [&](const CatalogTable& table) { return EqualIgnoringCase(table.Name, row[3]); });
      if (!hidden) tables.push_back({row[3], row[4], schema});
    }
  }
  if (tables.empty())
    if (const auto readable = CheckReadable(link); !readable) return tl::unexpected(readable.error());
  return tables;
}

DbResult<std::vector<CatalogKey>> ReadKeys(const std::shared_ptr<OdbcLink>& link, const std::string& table) {
  const auto found = FindCatalogTable(link, table);
  if (!found) return tl::unexpected(found.error());
  const std::string place =
      link->Maker() == DatabaseMaker::Other ? link->Info(SQL_DATABASE_NAME) : std::string();
  const std::string schemaName = *found ? (*found)->Schema : std::string();
  SQLCHAR *const catalog = PatternOrNull(place), *const schema = PatternOrNull(schemaName);
  const auto primary = ReadAnswer(link, 6, [&](SQLHSTMT handle) {
    return SQLPrimaryKeys(handle, catalog, SQL_NTS, schema, SQL_NTS, SqlText(table), SQL_NTS);
  });
  if (!primary) return tl::unexpected(primary.error());
  const auto foreign = ReadAnswer(link, 12, [&](SQLHSTMT handle) {
    return SQLForeignKeys(handle, nullptr, 0, nullptr, 0, nullptr, 0, catalog, SQL_NTS, schema, SQL_NTS,
                          SqlText(table), SQL_NTS);
  });
  if (!foreign) return tl::unexpected(foreign.error());
  std::vector<CatalogKey> keys;
  for (const CatalogRow& row : *primary)
    keys.push_back({table, row[6], CatalogKey::Kind::Primary, row[4], {}});
  for (const CatalogRow& row : *foreign)
    keys.push_back({table, row[12], CatalogKey::Kind::Foreign, row[8], row[3] + "." + row[4]});
  return keys;
}

DbResult<std::optional<CatalogTable>> FindCatalogTable(const std::shared_ptr<OdbcLink>& link,
                                                       std::string_view name) {
  auto tables = ReadTables(link);
  if (!tables) return tl::unexpected(tables.error());
  std::optional<CatalogTable> found;
  for (CatalogTable& table : *tables) {
    if (table.Name == name) return std::move(table);
    if (!found && EqualIgnoringCase(table.Name, name)) found = std::move(table);
  }
  return found;
}

DbResult<TableShape> ReadTableShape(const std::shared_ptr<OdbcLink>& link, std::string_view table) {
  if (const auto known = link->Shapes.find(table); known != link->Shapes.end()) return *known->second;
  const auto found = FindCatalogTable(link, table);
  if (!found) return tl::unexpected(found.error());
  if (!*found)
    return OdbcFailure(db_error::StatementFailed, "The database has no table " + std::string(table));
  TableShape shape;
  shape.Name = link->Quoted((*found)->Name);
  auto columns = ReadColumns(link, **found);
  if (!columns) return tl::unexpected(columns.error());
  shape.Columns = std::move(*columns);
  auto identity = ReadIdentity(link, **found, shape);
  if (!identity) return tl::unexpected(identity.error());
  shape.Identity = std::move(*identity);
  link->Shapes[std::string(table)] = std::make_shared<const TableShape>(shape);
  return shape;
}

DbResult<std::string> TypeWordFor(const std::shared_ptr<OdbcLink>& link, ColumnType type, std::int64_t size) {
  for (const TypeRow& row : TypeRows) {
    if (row.Ours != type) continue;
    auto names = ReadAnswer(link, 12, [&](SQLHSTMT handle) { return SQLGetTypeInfo(handle, row.Sql); });
    // MariaDB's driver fails where it has no such type, and offers ENUM for a text.
    if (!names) continue;
    if (type == ColumnType::VarChar)
      std::erase_if(*names, [](const CatalogRow& name) { return name[6].empty(); });  // takes no length
    if (names->empty()) continue;
    std::string word = (*std::min_element(names->begin(), names->end(), IsBetter))[1];
    // The one zone-moving word that was offered alone: its namesake keeps times as they are.
    if (type == ColumnType::DateTime && UpperAscii(word) == "TIMESTAMPTZ") word = "timestamp";
    if (type == ColumnType::VarChar) word += "(" + std::to_string(size) + ")";
    return word;
  }
  return OdbcFailure(db_error::StatementFailed, "The database has no type to keep such a column");
}

}  // namespace hyetex
