// Reading a table by pages.
#include <algorithm>
#include <cstdlib>
#include <limits>

#include "platform/odbc/catalog.h"
#include "platform/odbc/recordset.h"
#include "platform/odbc/recordset_state.h"
#include "platform/odbc/statement.h"

namespace hyetex {
namespace {

DbResult<void> Append(Connection& connection, std::string_view table, const Selection& selection,
                      std::vector<PagedRow>& rows) {
  auto part = Recordset::Open(connection, table, selection);
  if (!part) return tl::unexpected(part.error());
  return ForEachRow(*part, [&]() -> DbResult<bool> {
    auto place = part->Place();
    if (!place) return tl::unexpected(place.error());
    auto key = part->Key();
    if (!key) return tl::unexpected(key.error());
    PagedRow row{*std::move(place), *std::move(key), {}};
    for (int i = 0; i < part->FieldCount(); ++i) {
      auto value = part->Value(i);
      if (!value) return tl::unexpected(value.error());
      row.Values.push_back(*std::move(value));
    }
    rows.push_back(std::move(row));
    return selection.Page->Most <= 0 || std::ssize(rows) < selection.Page->Most;
  });
}

// PostgreSQL has no index on the places of its rows, and would sort all that are left of a table for a few of
// them. Asked for a range of blocks it reads these blocks alone.
constexpr std::int64_t FirstBlocks = 4, MostBlocks = 4096;

RowKey BeforeBlock(std::int64_t block) { return {"(" + std::to_string(block) + ",0)"}; }
std::int64_t BlockOf(const RowKey& key) {
  const std::string place = TextOf(key.back());
  return std::strtoll(place.c_str() + 1, nullptr, 10);
}

DbResult<std::int64_t> BlockCount(const std::shared_ptr<OdbcLink>& link, const std::string& table) {
  // A table that is made of others has no blocks of its own.
  auto statement = Statement::Prepared(
      link,
      "SELECT pg_relation_size(c.oid) / current_setting('block_size')::bigint FROM pg_class c "
      "WHERE c.oid = to_regclass(?) AND c.relkind = 'r' AND NOT c.relhassubclass");
  if (!statement) return tl::unexpected(statement.error());
  std::vector<Parameter> parameters(1);
  parameters[0].Set(table, link->Maker(), SQL_VARCHAR);
  if (auto bound = statement->Bind(parameters); !bound) return tl::unexpected(bound.error());
  if (auto asked = statement->Execute(); !asked) return tl::unexpected(asked.error());
  const auto fetched = statement->Fetch();
  if (!fetched) return tl::unexpected(fetched.error());
  std::int64_t blocks = 0;
  SQLLEN length = 0;
  if (*fetched)
    if (const auto got =
            statement->Check(SQLGetData(statement->Handle(), 1, SQL_C_SBIGINT, &blocks, 0, &length));
        !got)
      return tl::unexpected(got.error());
  return blocks;
}

// How many rows of SQLite are searched before progress is told.
constexpr std::int64_t RowsInOneSearch = 50'000;

// The number of the row that stands so many rows behind another one; nothing where there are fewer.
DbResult<std::optional<std::int64_t>> RowNumberBehind(const std::shared_ptr<OdbcLink>& link,
                                                      const TableShape& shape, std::int64_t behind) {
  const std::string& number = shape.Identity.front().Shown.Name;
  auto statement = Statement::Prepared(link, "SELECT " + number + " FROM " + shape.Name + " WHERE " + number +
                                                 " > ? ORDER BY " + number + " LIMIT 1 OFFSET ?");
  if (!statement) return tl::unexpected(statement.error());
  std::vector<Parameter> parameters(2);
  parameters[0].Set(behind, link->Maker(), SQL_BIGINT);
  parameters[1].Set(RowsInOneSearch, link->Maker(), SQL_BIGINT);
  if (auto bound = statement->Bind(parameters); !bound) return tl::unexpected(bound.error());
  if (auto asked = statement->Execute(); !asked) return tl::unexpected(asked.error());
  const auto fetched = statement->Fetch();
  if (!fetched) return tl::unexpected(fetched.error());
  if (!*fetched) return std::optional<std::int64_t>();
  std::int64_t row = 0;
  SQLLEN length = 0;
  if (const auto got = statement->Check(SQLGetData(statement->Handle(), 1, SQL_C_SBIGINT, &row, 0, &length));
      !got)
    return tl::unexpected(got.error());
  return std::optional(row);
}

}  // namespace

DbResult<bool> Recordset::TellsRowsApart(Connection& connection, std::string_view table) {
  if (!connection.IsOpen()) return ConnectionIsClosed();
  const auto shape = ReadTableShape(connection.link_, table);
  if (!shape) return tl::unexpected(shape.error());
  return !shape->Identity.empty();
}

std::optional<RowPlace> Recordset::Follow(Connection& connection, std::string_view table,
                                          const RowPlace& row) {
  if (!connection.IsOpen() || connection.link_->Maker() != DatabaseMaker::PostgreSQL) return std::nullopt;
  const std::shared_ptr<OdbcLink>& link = connection.link_;
  const auto shape = ReadTableShape(link, table);
  if (!shape || shape->Identity.size() != 1 || row.Values.size() != 1) return std::nullopt;
  auto statement = Statement::Prepared(link, "SELECT currtid2(?::text, ?::text::tid)::text");
  if (!statement) return std::nullopt;
  std::vector<Parameter> parameters(2);
  parameters[0].Set(shape->Name, link->Maker(), SQL_VARCHAR);
  parameters[1].Set(TextOf(row.Values[0]), link->Maker(), SQL_VARCHAR);
  if (!statement->Bind(parameters) || !statement->Execute()) return std::nullopt;
  const auto fetched = statement->Fetch();
  if (!fetched || !*fetched) return std::nullopt;
  std::string place;
  const auto read = statement->ReadLong(1, false, [&](std::string_view piece) {
    place += piece;
    return true;
  });
  if (!read || place.empty() || place == TextOf(row.Values[0])) return std::nullopt;
  RowPlace now = row;
  now.Values[0] = std::move(place);
  return now;
}

DbResult<std::vector<PagedRow>> Recordset::ReadPage(Connection& connection, std::string_view table,
                                                    Selection selection, Progress* progress) {
  if (!connection.IsOpen()) return ConnectionIsClosed();
  const std::shared_ptr<OdbcLink>& link = connection.link_;
  const auto shape = ReadTableShape(link, table);
  if (!shape) return tl::unexpected(shape.error());
  if (!selection.Page) selection.Page.emplace();
  std::vector<PagedRow> rows;
  const Page whole = *selection.Page;
  std::int64_t blocks = 0;
  if (link->Maker() == DatabaseMaker::PostgreSQL && !shape->Identity.empty() && whole.OrderBy.empty() &&
      whole.Most > 0 && selection.Rows.empty() && (selection.Where.empty() || progress != nullptr)) {
    const auto count = BlockCount(link, shape->Name);
    if (!count) return tl::unexpected(count.error());
    blocks = *count;
  }
  if (link->Maker() == DatabaseMaker::SQLite && shape->HasRowNumbers && progress != nullptr &&
      whole.OrderBy.empty() && !whole.Behind && !whole.Before && !whole.Backward && whole.Most > 0) {
    std::int64_t behind = std::numeric_limits<std::int64_t>::min();
    for (std::int64_t searched = 0;; searched += RowsInOneSearch) {
      const auto next = RowNumberBehind(link, *shape, behind);
      if (!next) return tl::unexpected(next.error());
      selection.Page->Behind = RowKey{behind};
      selection.Page->Before = *next ? std::optional(RowKey{**next}) : std::nullopt;
      if (auto read = Append(connection, table, selection, rows); !read) return tl::unexpected(read.error());
      if (std::ssize(rows) >= whole.Most || !*next) return rows;
      behind = **next - 1;
      if (!progress->Step(searched, 0, {})) return OdbcFailure(db_error::Cancelled, "Stopped");
    }
  }
  if (blocks == 0) {
    if (auto read = Append(connection, table, selection, rows); !read) return tl::unexpected(read.error());
    return rows;
  }
  // The blocks [from, to) may hold rows of the page.
  std::int64_t from = whole.Behind ? BlockOf(*whole.Behind) : 0;
  std::int64_t to = whole.Before ? std::min(BlockOf(*whole.Before) + 1, blocks) : blocks;
  const std::int64_t all = to - from;
  for (std::int64_t some = selection.Where.empty() ? FirstBlocks : MostBlocks / 4; from < to;
       some = std::min(some * 4, MostBlocks)) {
    const std::int64_t cut = whole.Backward ? std::max(to - some, from) : std::min(from + some, to);
    Page& part = *selection.Page;
    part.Behind = whole.Behind;
    part.Before = whole.Before;
    if (whole.Backward ? cut > from : !part.Behind || BlockOf(*part.Behind) < from)
      part.Behind = BeforeBlock(whole.Backward ? cut : from);
    if (whole.Backward ? !part.Before || BlockOf(*part.Before) > to - 1 : cut < to)
      part.Before = BeforeBlock(whole.Backward ? to : cut);
    if (auto read = Append(connection, table, selection, rows); !read) return tl::unexpected(read.error());
    if (std::ssize(rows) >= whole.Most) break;
    (whole.Backward ? to : from) = cut;
    if (progress != nullptr && !progress->Step(all - (to - from), all, {}))
      return OdbcFailure(db_error::Cancelled, "Stopped");
  }
  return rows;
}

}  // namespace hyetex
