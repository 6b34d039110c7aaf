#include <algorithm>
#include <map>
#include <utility>

#include "core/text.h"
#include "platform/odbc/recordset.h"
#include "platform/odbc/recordset_state.h"

namespace hyetex {
namespace {

// Older SQLite takes at most 999 parameters; past some 8,000 PostgreSQL's driver loses its connection.
constexpr std::size_t MostSqliteParameters = 999, MostParameters = 4000;
constexpr std::size_t MostRows = 100;
constexpr std::size_t MostBytes = 1U << 20;  // that wait to be sent; long binary comes in large rows

// The length of the UTF-8 sequence that `lead` begins.
std::size_t SequenceLength(unsigned char lead) {
  return lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

}  // namespace

struct RowWriter::State {
  std::shared_ptr<OdbcLink> Link;
  std::string Insert;  ///< up to the marks of the first row
  std::string Marks;   ///< of one row
  std::string Rest;    ///< behind the marks of the last row
  std::vector<CatalogColumn> Columns;
  std::vector<SQLSMALLINT> Types;
  std::size_t BatchRows = 1;
  std::vector<Parameter> Waiting;  ///< of a full batch, row by row
  std::size_t Rows = 0, Bytes = 0;
  std::int64_t Written = 0;
  std::shared_ptr<const bool> Undone;           ///< of the rows that wait
  std::map<std::size_t, Statement> Statements;  ///< by the number of their rows

  DbResult<void> Flush();
  void ForgetUndoneRows() {
    if (Undone != nullptr && *Undone) Rows = Bytes = 0;
    Undone.reset();
  }
};

RowWriter::RowWriter() = default;
RowWriter::~RowWriter() = default;
RowWriter::RowWriter(RowWriter&&) noexcept = default;
RowWriter& RowWriter::operator=(RowWriter&&) noexcept = default;

DbResult<RowWriter> RowWriter::Open(Connection& connection, std::string_view table,
                                    const std::vector<std::string>& columns, Duplicates duplicates) {
  if (!connection.IsOpen()) return ConnectionIsClosed();
  if (duplicates == Duplicates::Skip && !CanSkipDuplicates(connection))
    return OdbcFailure(db_error::NotNow, "This database does not skip rows whose key is there");
  auto state = std::make_unique<State>();
  state->Link = connection.link_;
  auto shape = ReadTableShape(state->Link, table);
  if (!shape) return tl::unexpected(shape.error());
  std::string names;
  for (const std::string& name : columns) {
    const auto position = shape->Find(name);
    if (!position) return NoSuchField(name);
    const TableColumn& column = shape->Columns[*position];
    names += (names.empty() ? "" : ", ") + state->Link->Quoted(column.Shown.Name);
    state->Marks += state->Marks.empty() ? "(?" : ", ?";
    state->Columns.push_back(column.Shown);
    state->Types.push_back(column.SqlType);
  }
  if (columns.empty()) return NoSuchField("to write to");
  state->Marks += ")";
  state->Insert = "INSERT INTO " + shape->Name + " (" + names + ") VALUES ";
  if (duplicates == Duplicates::Skip) state->Rest = " ON CONFLICT DO NOTHING";
  const std::size_t most =
      state->Link->Maker() == DatabaseMaker::SQLite ? MostSqliteParameters : MostParameters;
  state->BatchRows = std::clamp<std::size_t>(most / columns.size(), 1, MostRows);
  state->Waiting.resize(state->BatchRows * columns.size());
  RowWriter writer;
  writer.state_ = std::move(state);
  return writer;
}

bool RowWriter::CanSkipDuplicates(const Connection& connection) {
  return connection.IsOpen() && connection.link_->Maker() != DatabaseMaker::Other;
}

const std::vector<CatalogColumn>& RowWriter::Columns() const {
  static const std::vector<CatalogColumn> none;
  return state_ == nullptr ? none : state_->Columns;
}

DbResult<void> RowWriter::Add(std::vector<DbValue> row) {
  if (state_ == nullptr) return RecordsetIsClosed();
  const std::size_t columns = state_->Columns.size();
  if (row.size() != columns)
    return OdbcFailure(db_error::MissingField, "A row has " + std::to_string(row.size()) + " values for " +
                                                   std::to_string(columns) + " fields");
  state_->ForgetUndoneRows();
  state_->Undone = state_->Link->Undone();
  for (std::size_t i = 0; i < columns; ++i) {
    Parameter& parameter = state_->Waiting[state_->Rows * columns + i];
    parameter.Set(std::move(row[i]), state_->Link->Maker(), state_->Types[i]);
    state_->Bytes += parameter.ByteCount();
  }
  ++state_->Rows;
  return state_->Rows == state_->BatchRows || state_->Bytes >= MostBytes ? state_->Flush() : DbResult<void>();
}

DbResult<void> RowWriter::State::Flush() {
  Undone.reset();
  Link->KeepResults();
  const std::size_t rows = std::exchange(Rows, 0);
  Bytes = 0;
  if (rows == 0) return {};
  Statement& statement = Statements[rows];
  if (!statement) {
    std::string sql = Insert + Marks;
    for (std::size_t i = 1; i < rows; ++i) sql += ", " + Marks;
    auto prepared = Statement::Prepared(Link, sql + Rest);
    if (!prepared) return tl::unexpected(prepared.error());
    statement = std::move(*prepared);
  }
  if (const auto bound = statement.Bind(std::span(Waiting).first(rows * Columns.size())); !bound)
    return bound;
  if (const auto executed = statement.Execute(); !executed) return executed;
  Written += Rest.empty() ? static_cast<std::int64_t>(rows) : statement.RowCount();
  return {};
}

DbResult<std::int64_t> RowWriter::Finish() {
  if (state_ == nullptr) return RecordsetIsClosed();
  state_->ForgetUndoneRows();
  if (const auto flushed = state_->Flush(); !flushed) return tl::unexpected(flushed.error());
  return state_->Written;
}

std::string CutToWidth(std::string text, std::int64_t width) {
  if (width <= 0 || text.size() <= static_cast<std::size_t>(width)) return text;
  const bool utf8 = ShownText(text) == text;
  std::size_t end = 0;
  for (std::int64_t count = 0; count < width && end < text.size(); ++count)
    end += utf8 ? SequenceLength(static_cast<unsigned char>(text[end])) : 1;
  text.resize(std::min(end, text.size()));
  return text;
}

}  // namespace hyetex
