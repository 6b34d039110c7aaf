#include "database/access/new_database.h"

#include <fcntl.h>
#include <odbcinst.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "core/files.h"
#include "core/text.h"
#include "database/access/connection_choice.h"
#include "database/access/create_tables.h"
#include "platform/odbc/connection_text.h"

namespace hyetex {
namespace {

namespace fs = std::filesystem;

// What the file's driver needs to be told: keep relations, never make a missing file, wait 5 s for another
// program's lock, and hand rows over as they are found.
constexpr std::array<std::pair<const char*, const char*>, 4> DriverOptions{
    {{"FKSupport", "1"}, {"NoCreat", "1"}, {"Timeout", "5000"}, {"StepAPI", "1"}}};
constexpr const char* DataSourcesFile = "odbc.ini";
constexpr std::size_t LongestName = 32;  // of a data source, by ODBC

Result<std::string> SqliteDriver() {
  const std::vector<std::string> drivers = InstalledDrivers();
  const auto found = std::find_if(drivers.begin(), drivers.end(), [](const std::string& driver) {
    return UpperAscii(driver).find("SQLITE3") != std::string::npos;
  });
  if (found == drivers.end())
    return Failure("SQLite's ODBC driver (libsqliteodbc) is not installed: there is no driver SQLite3");
  return *found;
}

Result<std::string> FullPath(const std::string& path) {
  if (path.empty()) return Failure("A name for the database file is missing");
  std::error_code error;
  const std::string full = fs::absolute(path, error).lexically_normal().string();
  if (error) return Failure("The path " + path + " cannot be used: " + error.message());
  if (CheckOneLine(full) || full.find_first_of(";{}") != std::string::npos || Trim(full) != full)
    return Failure("A database file's path must not hold line breaks, braces or semicolons: " + path);
  return full;
}

// The installer works on the user's own data sources for as long as one of these lives.
class UserDataSources {
 public:
  UserDataSources() {
    ::SQLGetConfigMode(&before_);
    ::SQLSetConfigMode(ODBC_USER_DSN);
  }
  ~UserDataSources() { ::SQLSetConfigMode(before_); }
  UserDataSources(const UserDataSources&) = delete;
  UserDataSources& operator=(const UserDataSources&) = delete;

 private:
  UWORD before_ = ODBC_BOTH_DSN;
};

std::string InstallerError() {
  std::array<char, SQL_MAX_MESSAGE_LENGTH> text{};
  DWORD number = 0;
  WORD length = 0;
  const auto got = ::SQLInstallerError(1, &number, text.data(), static_cast<WORD>(text.size()), &length);
  return SQL_SUCCEEDED(got) ? std::string(text.data()) : std::string("the ODBC installer gives no reason");
}

std::string DatabaseOf(const std::string& dataSource) {
  std::array<char, 4096> path{};
  ::SQLGetPrivateProfileString(dataSource.c_str(), "Database", "", path.data(), static_cast<int>(path.size()),
                               DataSourcesFile);
  return path.data();
}

// The file's name without its ending, with what ODBC does not take in a name replaced.
std::string NameFor(const std::string& path) {
  std::string name = fs::path(path).stem().string().substr(0, LongestName - 4);
  std::replace_if(
      name.begin(), name.end(),
      [](char c) {
        return std::strchr("[]{}(),;?*=!@\\", c) != nullptr || static_cast<unsigned char>(c) < 32;
      },
      '_');
  return Trim(name).empty() ? "hyetex" : std::string(Trim(name));
}

Result<void> WriteDataSource(const std::string& name, const std::string& driver, const std::string& path) {
  const UserDataSources own;
  bool done = ::SQLWriteDSNToIni(name.c_str(), driver.c_str()) != 0;
  const auto write = [&](const char* key, const char* value) {
    done = done && ::SQLWritePrivateProfileString(name.c_str(), key, value, DataSourcesFile) != 0;
  };
  write("Description", "Hyetex database");
  write("Database", path.c_str());
  for (const auto& [key, value] : DriverOptions) write(key, value);
  if (done) return {};
  const std::string why = InstallerError();
  ::SQLRemoveDSNFromIni(name.c_str());
  return Failure("The data source " + name + " cannot be made: " + why);
}

Result<void> MakeTables(Connection& connection) {
  auto transaction = Transaction::Begin(connection);
  if (!transaction) return Failure(transaction.error().Description);
  for (auto* find : {&MissingTables, &MissingCompletion}) {
    const auto missing = find(connection);
    if (!missing) return Failure(missing.error().Description);
    const SchemaOutcome outcome = Make(connection, *missing);
    if (!outcome.Failed.empty())
      return Failure(outcome.Failed[0].first + ": " + outcome.Failed[0].second.Description);
  }
  const auto done = transaction->Commit();
  return done ? Result<void>{} : Failure(done.error().Description);
}

// Not before something is asked of it does the driver look into the file.
Result<void> CheckServes(const std::string& connectionText) {
  auto connection = Connection::Open(connectionText);
  if (!connection) return Failure(connection.error().Description);
  const auto read = connection->Execute("SELECT COUNT(*) FROM sqlite_master");
  return read ? Result<void>{} : Failure(read.error().Description);
}

Result<void> MakeTablesIn(const std::string& connectionText) {
  auto connection = Connection::Open(connectionText);
  return connection ? MakeTables(*connection) : Failure(connection.error().Description);
}

}  // namespace

std::string WithDatabaseEnding(const std::string& path) {
  return fs::path(path).has_extension() ? path : path + ".sqlite";
}

Result<std::string> FileConnectionText(const std::string& path) {
  const auto driver = SqliteDriver();
  if (!driver) return driver;
  const auto full = FullPath(path);
  if (!full) return full;
  return ConnectionPair("Driver", *driver) + ConnectionPair("Database", *full);
}

Result<void> CreateDatabaseFile(const std::string& path) {
  const auto text = FileConnectionText(path);
  if (!text) return Failure(text.error());
  // An empty file is an empty database.
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (file < 0)
    return Failure(errno == EEXIST ? "There is a file " + path + " already"
                                   : "The file " + path + " cannot be made: " + std::strerror(errno));
  ::close(file);
  const auto made = MakeTablesIn(*text);
  if (made) return {};
  ::unlink(path.c_str());
  return Failure("The database " + path + " cannot be made: " + made.error());
}

Result<std::string> RegisterDatabaseFile(const std::string& path) {
  const auto driver = SqliteDriver();
  if (!driver) return driver;
  const auto full = FullPath(path);
  if (!full) return full;
  const std::vector<std::string> taken = GetDSNsAndDrivers().Names;
  const std::string stem = NameFor(*full);
  std::string name = stem;
  for (int number = 2;; ++number) {
    const auto isName = [&](const std::string& other) { return EqualIgnoringCase(other, name); };
    const auto same = std::find_if(taken.begin(), taken.end(), isName);
    if (same == taken.end()) break;
    if (DatabaseOf(*same) == *full) return *same;
    name = stem + "-" + std::to_string(number);
  }
  if (const auto written = WriteDataSource(name, *driver, *full); !written) return Failure(written.error());
  if (const auto serves = CheckServes("DSN=" + name); !serves) {
    const UserDataSources own;
    ::SQLRemoveDSNFromIni(name.c_str());
    return Failure("The file " + path + " does not serve as a database: " + serves.error());
  }
  return name;
}

Result<std::string> NewDatabase(const std::string& path) {
  if (const auto made = CreateDatabaseFile(path); !made) return Failure(made.error());
  auto name = RegisterDatabaseFile(path);
  if (!name) ::unlink(path.c_str());
  return name;
}

}  // namespace hyetex
