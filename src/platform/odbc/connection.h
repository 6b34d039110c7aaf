// A connection to a database through ODBC, its catalog, and transactions.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/progress.h"
#include "platform/odbc/values.h"

namespace hyetex {

class OdbcLink;

struct CatalogTable {
  std::string Name;
  std::string Type;    ///< "TABLE", "VIEW", "SYSTEM TABLE"...
  std::string Schema;  ///< where the database has more than one
};

/// The types that our tables are made of, by their numbers in a desktop database's catalog.
enum class ColumnType : int {
  SmallInt = 2,
  Integer = 3,
  Real = 4,
  Double = 5,
  DateTime = 135,
  VarChar = 202,
  LongBinary = 205,
  Other = 0,  ///< not one that we make
};

struct CatalogColumn {
  std::string Name;
  ColumnType Type = ColumnType::Other;
  std::int64_t Size = 0;  ///< defined size, in characters for text; 0 where the driver names none
  bool IsText = false, IsBinary = false, IsTime = false, IsWhole = false;  ///< none: a number
  /// What an INSERT does not name it fills by itself, or it takes no NULL: naming it with a NULL is not the
  /// same as leaving it out.
  bool FillsItself = false;
  std::string TypeName;  ///< the database's own word
};

struct CatalogKey {
  enum class Kind : int { Primary = 1, Foreign = 2 };
  std::string Table, Name;
  Kind Type = Kind::Primary;
  std::string Column;     ///< a key of several columns has an entry for each
  std::string Reference;  ///< of a foreign key: "table.column"
};

class Connection {
 public:
  Connection();
  ~Connection();
  Connection(Connection&&) noexcept;
  Connection& operator=(Connection&&) noexcept;

  /// Opens by a connection text such as "DSN=rain" or "Driver=SQLite3;Database=/rain/rain.sqlite". Options
  /// that the known drivers need to stream results, to wait a short time for a lock and not to make missing
  /// files are added where the text does not set them. GeneralFailure when the source or its server cannot be
  /// reached.
  static DbResult<Connection> Open(std::string_view connectionText);
  bool IsOpen() const;
  void Close();

  /// The tables, views and system tables that a statement finds by their names alone, in the catalog's order,
  /// the schemas in the order in which the database searches them.
  DbResult<std::vector<CatalogTable>> Tables();
  /// The columns in their order; fails on a table that the catalog does not have.
  DbResult<std::vector<CatalogColumn>> Columns(std::string_view table);
  /// The primary and foreign keys of a table of the catalog; fails where the driver cannot tell them.
  DbResult<std::vector<CatalogKey>> Keys(std::string_view table);
  /// The table's name as the catalog spells it, found without regard to case; nothing when there is none.
  DbResult<std::optional<std::string>> FindTable(std::string_view name);
  /// The type to write in a CREATE TABLE for this database, such as "VARCHAR(25)" or "timestamp". Where a
  /// database lacks a type the next wider one stands in.
  DbResult<std::string> TypeWord(ColumnType type, std::int64_t size);

  /// The name of a table or column as the catalog spells it, ready to stand in a statement.
  std::string Quoted(std::string_view name) const;

  /// Runs one statement; gives the number of rows that it changed. A name in it is one that is to be made, or
  /// Quoted() as the catalog has it; all values travel as parameters, marked "?". Rows are read, changed and
  /// deleted through Recordset and RowWriter, which know names, codes and times by themselves.
  DbResult<std::int64_t> Execute(std::string_view sql, std::span<const DbValue> parameters = {});

  /// After an error, outside a transaction: whether the connection itself is gone, so that only a new one can
  /// go on.
  bool IsLost(const DbError& error);

  /// "SQLite", "PostgreSQL", "MariaDB", ... as the driver tells it (SQL_DBMS_NAME).
  std::string Maker() const;

 private:
  friend class Recordset;
  friend class RowWriter;
  friend class Transaction;
  friend class Savepoint;
  std::shared_ptr<OdbcLink> link_;
};

/// All that happens to a connection between the making and Commit() of one, or nothing of it. The first error
/// in it rolls back, and Commit() then fails with that error.
class Transaction {
 public:
  /// What progress hears while another program is waited for, with the seconds of the wait as its steps.
  static constexpr std::string_view Waiting = "waiting for another program";

  static DbResult<Transaction> Begin(Connection& connection);
  /// Begins as the only one of our programs that writes, so that what is read in it stays true until its end.
  /// Waits up to 60 seconds for another, telling `progress` meanwhile: then Locked, or Cancelled where the
  /// operator waits no longer. Commit() waits like this for readers of SQLite's file, so `progress` lives as
  /// long as the transaction. `table` is one that will be written to. To be called while no result is open.
  static DbResult<Transaction> BeginWriting(Connection& connection, std::string_view table,
                                            Progress& progress);
  ~Transaction();  ///< rolls back what was not committed
  Transaction(Transaction&&) noexcept;
  Transaction& operator=(Transaction&&) = delete;
  DbResult<void> Commit();

 private:
  explicit Transaction(std::shared_ptr<OdbcLink> link, Progress* progress = nullptr);
  std::shared_ptr<OdbcLink> link_;
  Progress* progress_;  // that hears of waits
};

/// A part of a transaction: all that happens between its making and Keep(), or nothing of it. An error in it
/// takes back this part only, so that the transaction can go on without it; but for a connection that is
/// lost. One at a time; it ends before its transaction.
class Savepoint {
 public:
  /// Fails outside a transaction, and within another part.
  static DbResult<Savepoint> Begin(Connection& connection);
  ~Savepoint();  ///< takes back what was not kept
  Savepoint(Savepoint&&) noexcept;
  Savepoint& operator=(Savepoint&&) = delete;
  /// Fails with the first error in the part.
  DbResult<void> Keep();

 private:
  explicit Savepoint(std::shared_ptr<OdbcLink> link);
  std::shared_ptr<OdbcLink> link_;
};

}  // namespace hyetex
