// The rows that a SELECT gives, read in arrays; short columns travel with the rows, long ones when they are
// asked for.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/odbc/catalog.h"
#include "platform/odbc/conditions.h"
#include "platform/odbc/recordset.h"
#include "platform/odbc/statement.h"

namespace hyetex {

/// All that stands behind WHERE for a selection, but for the conditions themselves; adds what travels into
/// it. Its columns are those of the catalog.
std::string PartText(const OdbcLink& link, const TableShape& shape, std::span<const RowPlace> rows,
                     const std::optional<Page>& page, std::vector<Parameter>& parameters);

class RowSource {
 public:
  /// `shape` must outlive it; `chosen` are positions in its columns.
  RowSource(std::shared_ptr<OdbcLink> link, const TableShape& shape, std::vector<std::size_t> chosen,
            Selection selection);

  /// Asks the database, anew if it was asked before, and goes to the first row.
  DbResult<void> Open();
  DbResult<void> Next();
  bool AtEnd() const { return row_ >= rowsHere_; }

  /// The value in the current row of the chosen column at this position.
  DbResult<DbValue> Value(std::size_t position);
  DbResult<void> ReadPieces(std::size_t position, const std::function<bool(std::string_view)>& take);
  DbResult<RowPlace> CurrentRow();
  DbResult<RowKey> CurrentKey();
  /// After a change gave the current row another identity; where it has none, all its chosen values.
  void SetIdentity(std::vector<DbValue> identity) { newIdentity_ = std::move(identity); }

 private:
  struct Column {  // one that travels with the rows
    const TableColumn* Table;
    ValueKind Kind;
    SQLSMALLINT CType;  // SQLite's driver leaves parts of a time undefined that its text does not have
    std::size_t Width;
    std::unique_ptr<char[]> Cells = nullptr;
    std::vector<SQLLEN> Lengths = {};
    bool InAllDigits = false;  // SQLite's driver writes 15 of them
  };
  DbResult<std::string> SelectText();
  /// Whether some rows are asked for, which are few and read at once.
  bool IsPart() const { return page_ || !rows_.empty(); }
  void AddColumn(const TableColumn& column, bool asText = false);
  std::string ListedName(const Column& column) const;
  /// The position in columns_ of a column that conditions want to see.
  std::size_t AddChecked(std::size_t position);
  DbResult<void> Prepare();
  DbResult<void> Step();
  bool IsMeant() const;
  DbResult<void> SkipOthers();
  DbResult<void> BindColumns();
  DbResult<void> FetchRows();
  // SQLite's driver ends a result without a word when a transaction begins or ends. There the rows are asked
  // for in chunks, each behind the last row's number.
  bool InChunks() const;
  DbResult<void> FetchChunk(std::int64_t behind);
  DbResult<DbValue> LastRowNumber();
  std::string TextCell(const Column& column) const;
  DbValue CellValue(const Column& column) const;
  bool IsCut(const Column& column) const;
  DbResult<bool> ReadLongValue(std::size_t position, const std::function<bool(std::string_view)>& take);

  std::shared_ptr<OdbcLink> link_;
  const TableShape* shape_;
  std::vector<std::size_t> chosen_;
  Conditions conditions_;
  std::vector<RowPlace> rows_;
  std::optional<Page> page_;
  bool longWithRow_, forChange_;
  std::vector<Column> columns_;  // the identity's, the chosen short ones, others that conditions want to see
  std::vector<std::size_t> checked_;  // those that they want to see, by their index in columns_
  std::vector<int> columnOfChosen_;   // index in columns_, or -1 for a long column
  std::vector<SQLUSMALLINT> longAt_;  // where a long column stands in the SELECT, if it stands there
  Statement select_;
  std::vector<Parameter> parameters_;
  std::vector<Statement> longReads_;  // by chosen position
  std::size_t arraySize_ = 1, chunkSize_ = 1;
  SQLULEN fetched_ = 0;
  bool hasAll_ = false;  ///< nothing stands behind the rows that are here
  std::size_t rowsHere_ = 0, row_ = 0;
  std::shared_ptr<const bool> undone_;  ///< of an open result
  std::uint64_t turns_ = 0;             ///< when it was opened
  std::vector<DbValue> newIdentity_;
  std::vector<std::optional<DbValue>> longValues_;  // of the current row, where they can be read but once
};

}  // namespace hyetex
