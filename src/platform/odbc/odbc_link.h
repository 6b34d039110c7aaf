// One connection on the driver's side: its handles, what its maker needs, and the state of its transaction.
// Shared by all that works on the connection; once closed, every call on it fails and none crashes.
#pragma once

#include <sql.h>
#include <sqlext.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/odbc/values.h"

namespace hyetex {

struct TableShape;

enum class DatabaseMaker { SQLite, PostgreSQL, Other };

class OdbcLink {
 public:
  OdbcLink() = default;
  OdbcLink(const OdbcLink&) = delete;
  OdbcLink& operator=(const OdbcLink&) = delete;
  ~OdbcLink() { Close(); }

  DbResult<void> Open(std::string_view connectionText);
  bool IsOpen() const { return open_; }
  void Close();

  SQLHDBC Handle() const { return connection_; }
  DatabaseMaker Maker() const { return maker_; }
  const std::string& MakerName() const { return makerName_; }
  std::string Info(SQLUSMALLINT what) const;
  /// A name that the catalog gave, ready to stand in a statement.
  std::string Quoted(std::string_view name) const;

  /// Fails on a closed connection and in a transaction that has failed.
  DbResult<void> Ready() const;
  /// The error that a handle tells of; rolls back the transaction that it happened in.
  DbError Fail(SQLSMALLINT type, SQLHANDLE handle) { return Fail(ErrorOf(type, handle)); }
  DbError Fail(DbError error);

  bool InTransaction() const { return inTransaction_; }
  DbResult<void> Begin();
  /// `waitsOn` is asked where a reader still holds SQLite's file: the transaction stands, and is tried again
  /// as long as it says so.
  DbResult<void> Commit(const std::function<bool()>& waitsOn = {});
  void RollBack();
  // A part of the transaction, whose errors take back no more than itself.
  DbResult<void> BeginPart();
  DbResult<void> EndPart(bool keeps);

  /// Becomes true when what is being read or written now is lost by a rollback. Whoever holds it has a result
  /// open, or rows that wait.
  std::shared_ptr<const bool> Undone() const { return undone_; }
  /// How long SQLite waits for a lock before a statement fails: shortly, or as long as the connection text
  /// says; other databases have a limit of their own.
  /// Nobody can cancel while it waits.
  void WaitForLocks(bool shortly);
  /// To be called ahead of a statement that changes something. Outside a transaction PostgreSQL's driver
  /// keeps open results in one of its own; the first failed statement would end them, as if they had no more
  /// rows.
  void KeepResults();

  /// How often a transaction has begun or ended. SQLite's driver then ends results that it has not read
  /// whole.
  std::uint64_t Turns() const { return turns_; }

  /// What the catalog has told of tables so far, by the names that were asked for: asking takes longer than
  /// writing a chart's rows. A statement that may change a table empties it.
  std::map<std::string, std::shared_ptr<const TableShape>, std::less<>> Shapes;
  /// Where the database looks for tables whose name stands alone: in one catalog, and in these schemas one
  /// after the other; an empty name stands for all there are.
  struct Places {
    std::string Catalog;
    std::vector<std::string> Schemas{""};
  };
  std::optional<Places> Searched;
  /// Which columns hold which codes with blanks behind them.
  std::map<std::string, bool, std::less<>> HasPadded;
  void ForgetTables() {
    Shapes.clear();
    Searched.reset();
    HasPadded.clear();
  }

 private:
  DbError ErrorOf(SQLSMALLINT type, SQLHANDLE handle) const;
  DbResult<void> SetAutocommit(bool on);
  void UndoAll();
  void EndWork(bool undone);
  void EndTransaction();
  bool Run(const std::string& sql);

  SQLHENV environment_ = SQL_NULL_HENV;
  SQLHDBC connection_ = SQL_NULL_HDBC;
  bool open_ = false;
  DatabaseMaker maker_ = DatabaseMaker::Other;
  std::string makerName_, quote_;
  std::string lockWait_;  ///< SQLite's, in milliseconds
  std::vector<std::string> passwords_;
  bool inTransaction_ = false;
  std::uint64_t turns_ = 0;
  std::shared_ptr<bool> undone_ = std::make_shared<bool>(false);
  std::optional<DbError> lost_;    ///< why the server is gone
  std::optional<DbError> failed_;  ///< why the transaction was rolled back before its end
  bool inPart_ = false;
  std::optional<DbError> partFailed_;  ///< why the part of it was
};

inline tl::unexpected<DbError> OdbcFailure(std::int32_t number, std::string description) {
  return tl::unexpected(DbError{number, std::move(description), {}});
}
inline tl::unexpected<DbError> ConnectionIsClosed() {
  return OdbcFailure(db_error::RecordsetClosed, "The connection is closed");
}
/// A number where the interface takes numbers as pointers.
inline SQLPOINTER SqlNumber(std::uintptr_t value) {
  return reinterpret_cast<SQLPOINTER>(value);  // NOLINT(performance-no-int-to-ptr)
}
inline SQLCHAR* SqlText(const std::string& text) {
  return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str()));
}

}  // namespace hyetex
