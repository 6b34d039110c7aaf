#include "platform/odbc/odbc_link.h"

#include <algorithm>
#include <array>

#include "core/numbers.h"
#include "platform/odbc/connection_text.h"

namespace hyetex {
namespace {

constexpr int ConnectSeconds = 10;
constexpr SQLINTEGER SqliteConstraint = 19;
constexpr const char *MarkPart = "SAVEPOINT hyetex_part", *UndoPart = "ROLLBACK TO SAVEPOINT hyetex_part",
                     *ForgetPart = "RELEASE SAVEPOINT hyetex_part";

// Text travels as UTF-8, whatever the machine's language says, and a table begins with its first row even if
// somebody else is in the middle of reading it.
const std::string PostgresSettings =
    "SET client_encoding TO 'UTF8'; SET synchronize_seqscans TO off; SET TIME ZONE 'UTC'; "
    "SET lock_timeout TO '60s'";

void ReplaceAll(std::string& text, std::string_view what, std::string_view with) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
    text.replace(at, what.size(), with);
}

std::int32_t NumberOfState(std::string_view state, SQLINTEGER native, DatabaseMaker maker) {
  // SQLite tells all its errors by its own numbers alone.
  if (state.starts_with("23") || (maker == DatabaseMaker::SQLite && (native & 0xFF) == SqliteConstraint))
    return db_error::ConstraintViolation;
  return state.starts_with("08") ? db_error::GeneralFailure : db_error::StatementFailed;
}

}  // namespace

DbResult<void> OdbcLink::Open(std::string_view connectionText) {
  Close();
  ConnectionText text(connectionText);
  const double wait = LeadingNumber(text.Find("Timeout").value_or("5000"));
  lockWait_ = std::to_string(static_cast<int>(std::clamp(wait, 0.0, 1e9)));
  text.AddDriverOptions();
  passwords_ = text.Passwords();

  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_)) ||
      !SQL_SUCCEEDED(SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, SqlNumber(SQL_OV_ODBC3), 0)) ||
      !SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_))) {
    Close();
    return OdbcFailure(db_error::GeneralFailure, "The ODBC driver manager does not start");
  }
  // A driver that cannot wait for a set time waits for its own.
  (void)SQLSetConnectAttr(connection_, SQL_ATTR_LOGIN_TIMEOUT, SqlNumber(ConnectSeconds), SQL_IS_UINTEGER);
  const auto connect = [&] {
    const std::string full = text.Text();
    return SQL_SUCCEEDED(SQLDriverConnect(connection_, nullptr, SqlText(full), SQL_NTS, nullptr, 0, nullptr,
                                          SQL_DRIVER_NOPROMPT));
  };
  constexpr std::string_view noSuchSource = "IM002";
  bool connected = connect();
  if (!connected && ErrorOf(SQL_HANDLE_DBC, connection_).State == noSuchSource && text.ReplaceSource())
    connected = connect();
  if (!connected) {
    DbError error = ErrorOf(SQL_HANDLE_DBC, connection_);
    error.Number = db_error::GeneralFailure;
    Close();
    return tl::unexpected(std::move(error));
  }
  open_ = true;
  makerName_ = Info(SQL_DBMS_NAME);
  maker_ = makerName_ == "SQLite"       ? DatabaseMaker::SQLite
           : makerName_ == "PostgreSQL" ? DatabaseMaker::PostgreSQL
                                        : DatabaseMaker::Other;
  quote_ = Info(SQL_IDENTIFIER_QUOTE_CHAR);
  if (quote_ == " ") quote_.clear();
  if (maker_ == DatabaseMaker::PostgreSQL) Run(PostgresSettings);
  WaitForLocks(false);
  return {};
}

void OdbcLink::Close() {
  if (open_) {
    RollBack();
    SQLDisconnect(connection_);
  }
  open_ = false;
  lost_.reset();
  ForgetTables();
  if (connection_ != SQL_NULL_HDBC) SQLFreeHandle(SQL_HANDLE_DBC, connection_);
  if (environment_ != SQL_NULL_HENV) SQLFreeHandle(SQL_HANDLE_ENV, environment_);
  connection_ = SQL_NULL_HDBC;
  environment_ = SQL_NULL_HENV;
}

std::string OdbcLink::Info(SQLUSMALLINT what) const {
  std::array<SQLCHAR, 256> value{};
  SQLSMALLINT length = 0;
  if (!open_ || !SQL_SUCCEEDED(SQLGetInfo(connection_, what, value.data(), value.size(), &length))) return {};
  return reinterpret_cast<const char*>(value.data());
}

std::string OdbcLink::Quoted(std::string_view name) const {
  std::string text(name);
  if (!quote_.empty()) ReplaceAll(text, quote_, quote_ + quote_);
  return quote_ + text + quote_;
}

DbResult<void> OdbcLink::Ready() const {
  if (!open_) return ConnectionIsClosed();
  if (lost_) return tl::unexpected(*lost_);
  if (failed_) return tl::unexpected(*failed_);
  if (partFailed_) return tl::unexpected(*partFailed_);
  return {};
}

DbError OdbcLink::ErrorOf(SQLSMALLINT type, SQLHANDLE handle) const {
  std::array<SQLCHAR, 6> state{};
  std::array<SQLCHAR, 2048> message{};
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  if (!SQL_SUCCEEDED(
          SQLGetDiagRec(type, handle, 1, state.data(), &native, message.data(), message.size(), &length)))
    return {db_error::StatementFailed, "The database driver reports an error without a description", {}};
  DbError error;
  error.State = reinterpret_cast<const char*>(state.data());
  error.Number = NumberOfState(error.State, native, maker_);
  error.Description = reinterpret_cast<const char*>(message.data());
  for (char& c : error.Description)
    if (static_cast<unsigned char>(c) < ' ') c = ' ';
  // Some drivers repeat the whole connection text.
  for (const std::string& password : passwords_)
    if (!password.empty()) ReplaceAll(error.Description, password, "***");
  return error;
}

DbError OdbcLink::Fail(DbError error) {
  SQLUINTEGER dead = SQL_CD_FALSE;
  const SQLRETURN asked = SQLGetConnectAttr(connection_, SQL_ATTR_CONNECTION_DEAD, &dead, 0, nullptr);
  if (!lost_ && (error.State.starts_with("08") || (SQL_SUCCEEDED(asked) && dead == SQL_CD_TRUE))) {
    error.Number = db_error::GeneralFailure;
    lost_ = error;
  }
  if (inTransaction_ && !failed_ && inPart_ && !lost_ && (partFailed_ || Run(UndoPart))) {
    if (!partFailed_) EndWork(true);
    partFailed_ = error;
  } else if (inTransaction_ && !failed_) {
    failed_ = error;
    UndoAll();
  } else if (!inTransaction_) {
    EndWork(maker_ == DatabaseMaker::PostgreSQL);
    // The driver's own transaction around a result would refuse all that follows. After a ROLLBACK the driver
    // would take other results for closed that the server keeps.
    if (!lost_ && maker_ == DatabaseMaker::PostgreSQL) Run("COMMIT");
  }
  return error;
}

bool OdbcLink::Run(const std::string& sql) {
  SQLHSTMT statement = SQL_NULL_HSTMT;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection_, &statement))) return false;
  const SQLRETURN done = SQLExecDirect(statement, SqlText(sql), SQL_NTS);
  SQLFreeHandle(SQL_HANDLE_STMT, statement);
  return SQL_SUCCEEDED(done);
}

void OdbcLink::EndWork(bool undone) {
  *undone_ = undone;
  undone_ = std::make_shared<bool>(false);
}

// In PostgreSQL a result that was opened before the transaction outlives it; only the driver manager would
// close it.
void OdbcLink::UndoAll() {
  EndWork(true);
  ForgetTables();
  if (maker_ != DatabaseMaker::PostgreSQL || !Run("ROLLBACK"))
    SQLEndTran(SQL_HANDLE_DBC, connection_, SQL_ROLLBACK);
}

// The driver's own wait, which no statement changes, is kept short by its option Timeout.
void OdbcLink::WaitForLocks(bool shortly) {
  if (maker_ == DatabaseMaker::SQLite)
    Run("PRAGMA busy_timeout=" + (shortly ? std::string("50") : lockWait_));
}

void OdbcLink::KeepResults() {
  if (maker_ != DatabaseMaker::PostgreSQL || inTransaction_ || undone_.use_count() == 1) return;
  Run("COMMIT");
  EndWork(false);
}

DbResult<void> OdbcLink::SetAutocommit(bool on) {
  ++turns_;
  const SQLRETURN result =
      SQLSetConnectAttr(connection_, SQL_ATTR_AUTOCOMMIT,
                        SqlNumber(on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF), SQL_IS_UINTEGER);
  if (!SQL_SUCCEEDED(result)) return tl::unexpected(Fail(SQL_HANDLE_DBC, connection_));
  return {};
}

DbResult<void> OdbcLink::Begin() {
  if (const auto ready = Ready(); !ready) return ready;
  if (inTransaction_)
    return OdbcFailure(db_error::NotNow, "A transaction is already open on this connection");
  KeepResults();
  if (const auto off = SetAutocommit(false); !off) return off;
  inTransaction_ = true;
  return {};
}

DbResult<void> OdbcLink::Commit(const std::function<bool()>& waitsOn) {
  if (!inTransaction_) return OdbcFailure(db_error::NotNow, "No transaction is open on this connection");
  DbResult<void> result = Ready();
  while (result && !SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, connection_, SQL_COMMIT))) {
    DbError error = ErrorOf(SQL_HANDLE_DBC, connection_);
    if (maker_ == DatabaseMaker::SQLite && IsLocked(error) && waitsOn && waitsOn()) continue;
    result = tl::unexpected(Fail(std::move(error)));
  }
  if (result) EndWork(false);
  EndTransaction();
  return result;
}

DbResult<void> OdbcLink::BeginPart() {
  if (const auto ready = Ready(); !ready) return ready;
  if (!inTransaction_ || inPart_)
    return OdbcFailure(db_error::NotNow, "Here no part of a transaction can begin");
  if (!Run(MarkPart))
    return tl::unexpected(Fail({db_error::StatementFailed, "The database sets no savepoint", {}}));
  inPart_ = true;
  return {};
}

DbResult<void> OdbcLink::EndPart(bool keeps) {
  if (!inPart_) return OdbcFailure(db_error::NotNow, "The part's transaction has ended");
  DbResult<void> result = Ready();
  inPart_ = false;
  const bool undoes = !keeps && !partFailed_;
  partFailed_.reset();
  if (!open_ || lost_ || failed_) return result;
  if (undoes) EndWork(true);
  if ((undoes && !Run(UndoPart)) || !Run(ForgetPart))
    return tl::unexpected(Fail({db_error::StatementFailed, "The database loses its savepoint", {}}));
  return result;
}

void OdbcLink::RollBack() {
  if (!open_ || !inTransaction_) return;
  if (!failed_) UndoAll();
  EndTransaction();
}

void OdbcLink::EndTransaction() {
  inTransaction_ = inPart_ = false;
  failed_.reset();
  partFailed_.reset();
  (void)SetAutocommit(true);
}

}  // namespace hyetex
