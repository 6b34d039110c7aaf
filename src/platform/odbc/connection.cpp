#include "platform/odbc/connection.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "core/text.h"
#include "platform/odbc/catalog.h"
#include "platform/odbc/odbc_link.h"
#include "platform/odbc/statement.h"

namespace hyetex {
namespace {

constexpr std::chrono::seconds LongestWait{60};
constexpr std::chrono::milliseconds BetweenTries{100};

DbResult<void> Run(const std::shared_ptr<OdbcLink>& link, const std::string& sql) {
  auto statement = Statement::Make(link);
  if (!statement) return tl::unexpected(statement.error());
  return statement->Check(SQLExecDirect(statement->Handle(), SqlText(sql), SQL_NTS));
}

// Whether the open transaction is now the one that writes. SQLite gives its one write lock to a statement
// that could change a row; as the first of a transaction it finds nothing that is read already and out of
// date. In PostgreSQL only a lock that is tried, not waited for, leaves the transaction usable when it is
// taken.
DbResult<bool> TakeWriteLock(const std::shared_ptr<OdbcLink>& link, const std::string& table) {
  if (link->Maker() == DatabaseMaker::SQLite) {
    if (const auto done = Run(link, "DELETE FROM " + table + " WHERE 0"); !done) {
      if (IsLocked(done.error())) return false;
      return tl::unexpected(done.error());
    }
  } else if (link->Maker() == DatabaseMaker::PostgreSQL) {
    auto statement = Statement::Prepared(link, "SELECT 1 WHERE pg_try_advisory_xact_lock(1215915348)");
    if (!statement) return tl::unexpected(statement.error());
    if (const auto done = statement->Execute(); !done) return tl::unexpected(done.error());
    return statement->Fetch();
  }
  return true;
}

// Waits for others, with a sign of life, as long as the operator does and no longer than it says.
class LockWait {
 public:
  LockWait(std::shared_ptr<OdbcLink> link, Progress& progress) : link_(std::move(link)), progress_(progress) {
    link_->WaitForLocks(true);
  }
  LockWait(const LockWait&) = delete;
  LockWait& operator=(const LockWait&) = delete;
  ~LockWait() { link_->WaitForLocks(false); }

  /// Gives the reason to wait no longer.
  DbResult<void> Next() {
    const auto waited =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start_);
    if (waited >= LongestWait)
      return OdbcFailure(db_error::Locked, "Another program has been using the database for " +
                                               std::to_string(LongestWait.count()) + " seconds");
    if (!progress_.Step(waited.count(), LongestWait.count(), Transaction::Waiting))
      return OdbcFailure(db_error::Cancelled, "Stopped while another program was using the database");
    std::this_thread::sleep_for(BetweenTries);
    return {};
  }

 private:
  std::shared_ptr<OdbcLink> link_;
  Progress& progress_;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

bool LeavesTables(std::string_view sql) {
  constexpr std::string_view verbs[] = {"SELECT", "INSERT", "UPDATE", "DELETE"};
  return std::any_of(std::begin(verbs), std::end(verbs), [&](std::string_view verb) {
    return EqualIgnoringCase(sql.substr(0, verb.size()), verb);
  });
}

}  // namespace

Connection::Connection() = default;
Connection::~Connection() { Close(); }
Connection::Connection(Connection&&) noexcept = default;
Connection& Connection::operator=(Connection&& other) noexcept {
  if (this != &other) {
    Close();
    link_ = std::move(other.link_);
  }
  return *this;
}

DbResult<Connection> Connection::Open(std::string_view connectionText) {
  Connection connection;
  connection.link_ = std::make_shared<OdbcLink>();
  if (const auto opened = connection.link_->Open(connectionText); !opened)
    return tl::unexpected(opened.error());
  return connection;
}

bool Connection::IsOpen() const { return link_ != nullptr && link_->IsOpen(); }

void Connection::Close() {
  if (link_ != nullptr) link_->Close();
  link_.reset();
}

DbResult<std::vector<CatalogTable>> Connection::Tables() {
  if (!IsOpen()) return ConnectionIsClosed();
  return ReadTables(link_);
}

DbResult<std::vector<CatalogColumn>> Connection::Columns(std::string_view table) {
  if (!IsOpen()) return ConnectionIsClosed();
  const auto shape = ReadTableShape(link_, table);
  if (!shape) return tl::unexpected(shape.error());
  std::vector<CatalogColumn> columns;
  for (const TableColumn& column : shape->Columns) columns.push_back(column.Shown);
  return columns;
}

DbResult<std::vector<CatalogKey>> Connection::Keys(std::string_view table) {
  if (!IsOpen()) return ConnectionIsClosed();
  return ReadKeys(link_, std::string(table));
}

DbResult<std::optional<std::string>> Connection::FindTable(std::string_view name) {
  if (!IsOpen()) return ConnectionIsClosed();
  const auto table = FindCatalogTable(link_, name);
  if (!table) return tl::unexpected(table.error());
  return *table ? std::optional((*table)->Name) : std::nullopt;
}

std::string Connection::Quoted(std::string_view name) const {
  return IsOpen() ? link_->Quoted(name) : std::string(name);
}

DbResult<std::string> Connection::TypeWord(ColumnType type, std::int64_t size) {
  if (!IsOpen()) return ConnectionIsClosed();
  return TypeWordFor(link_, type, size);
}

DbResult<std::int64_t> Connection::Execute(std::string_view sql, std::span<const DbValue> parameters) {
  if (!IsOpen()) return ConnectionIsClosed();
  const std::string text(sql);
  std::vector<Parameter> values(parameters.size());
  for (std::size_t i = 0; i < values.size(); ++i) values[i].Set(parameters[i], link_->Maker());
  auto statement = Statement::Make(link_);
  if (!statement) return tl::unexpected(statement.error());
  if (const auto bound = statement->Bind(values); !bound) return tl::unexpected(bound.error());
  link_->KeepResults();
  const auto done = statement->Check(SQLExecDirect(statement->Handle(), SqlText(text), SQL_NTS));
  if (!LeavesTables(text)) link_->ForgetTables();
  if (!done) return tl::unexpected(done.error());
  return statement->RowCount();
}

// Servers and drivers tell of their end in words of their own, so a statement that cannot fail is tried too.
bool Connection::IsLost(const DbError& error) {
  return error.Number == db_error::RecordsetClosed || error.Number == db_error::GeneralFailure ||
         error.State.starts_with("08") || error.State.starts_with("57P") || !Execute("SELECT 1");
}

std::string Connection::Maker() const { return IsOpen() ? link_->MakerName() : std::string(); }

Transaction::Transaction(std::shared_ptr<OdbcLink> link, Progress* progress)
    : link_(std::move(link)), progress_(progress) {}
Transaction::Transaction(Transaction&&) noexcept = default;
Transaction::~Transaction() {
  if (link_ != nullptr) link_->RollBack();
}

DbResult<Transaction> Transaction::Begin(Connection& connection) {
  if (!connection.IsOpen()) return ConnectionIsClosed();
  if (const auto begun = connection.link_->Begin(); !begun) return tl::unexpected(begun.error());
  return Transaction(connection.link_);
}

DbResult<Transaction> Transaction::BeginWriting(Connection& connection, std::string_view table,
                                                Progress& progress) {
  if (!connection.IsOpen()) return ConnectionIsClosed();
  const auto& link = connection.link_;
  LockWait wait(link, progress);
  while (true) {
    auto locked = [&]() -> DbResult<bool> {
      const auto shape = ReadTableShape(link, table);
      if (!shape && IsLocked(shape.error())) return false;
      if (!shape) return tl::unexpected(shape.error());
      const std::string name = shape->Name;
      if (const auto begun = link->Begin(); !begun) return tl::unexpected(begun.error());
      return TakeWriteLock(link, name);
    }();
    if (locked && *locked) return Transaction(link, &progress);
    link->RollBack();
    if (!locked) return tl::unexpected(locked.error());
    if (const auto next = wait.Next(); !next) return tl::unexpected(next.error());
  }
}

Savepoint::Savepoint(std::shared_ptr<OdbcLink> link) : link_(std::move(link)) {}
Savepoint::Savepoint(Savepoint&&) noexcept = default;
Savepoint::~Savepoint() {
  if (link_ != nullptr) (void)link_->EndPart(false);
}

DbResult<Savepoint> Savepoint::Begin(Connection& connection) {
  if (!connection.IsOpen()) return ConnectionIsClosed();
  if (const auto begun = connection.link_->BeginPart(); !begun) return tl::unexpected(begun.error());
  return Savepoint(connection.link_);
}

DbResult<void> Savepoint::Keep() {
  if (link_ == nullptr) return OdbcFailure(db_error::NotNow, "The part of the transaction has ended");
  return std::exchange(link_, nullptr)->EndPart(true);
}

DbResult<void> Transaction::Commit() {
  if (link_ == nullptr) return OdbcFailure(db_error::NotNow, "The transaction has ended");
  const auto link = std::exchange(link_, nullptr);
  if (progress_ == nullptr) return link->Commit();
  LockWait wait(link, *progress_);
  DbResult<void> waited;
  auto done = link->Commit([&] {
    waited = wait.Next();
    return waited.has_value();
  });
  return waited ? done : waited;
}

}  // namespace hyetex
