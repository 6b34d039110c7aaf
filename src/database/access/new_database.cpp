#include "database/access/new_database.h"

#include <odbcinst.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <utility>

#include "core/files.h"
#include "core/program_files.h"
#include "core/temporary_file.h"
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

// Where the driver manager keeps the user's own data sources.
std::string UserDataSources() {
  if (const char* set = std::getenv("ODBCINI"); set != nullptr && *set != '\0') return set;
  const passwd* user = ::getpwuid(::getuid());
  return JoinPath(user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "/home", ".odbc.ini");
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

// The driver manager would write the file in place, once a line; all else in it is the user's. Gives the
// bytes from before.
Result<std::string> WriteDataSource(const std::string& name, const std::string& driver,
                                    const std::string& path) {
  const std::string file = UserDataSources();
  const auto before = ReadProgramFile(file);
  if (!before) return before;
  if (!before->empty())
    if (const auto kept = KeepCopy(file); !kept) return Failure(kept.error());
  std::string text = *before;
  if (!text.empty() && !text.ends_with('\n')) text += '\n';
  text += "[" + name + "]\nDriver=" + driver + "\nDescription=Hyetex database\nDatabase=" + path + "\n";
  for (const auto& [key, value] : DriverOptions) text += std::string(key) + "=" + value + "\n";
  if (const auto written = WriteWholeFile(file, text); !written)
    return Failure("The data source " + name + " cannot be made. " + written.error());
  return before;
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
  const auto failure = [&](const std::string& why) {
    return Failure("The database " + path + " cannot be made: " + why);
  };
  const auto full = FullPath(path);
  if (!full) return Failure(full.error());
  const auto isTaken = [&] {
    std::error_code error;
    return fs::exists(fs::symlink_status(*full, error));
  };
  const auto taken = [&] { return Failure("There is a file " + path + " already"); };
  if (isTaken()) return taken();
  // An empty file is an empty database. It has its name when it has its tables.
  const std::string folder = fs::path(*full).parent_path().string();
  ClearTemporaries(folder);
  auto file = TemporaryFile::In(folder);
  if (!file) return failure(file.error());
  const auto text = FileConnectionText(file->Path());
  if (!text) return failure(text.error());
  if (const auto made = MakeTablesIn(*text); !made) return failure(made.error());
  if (const auto placed = file->Become(*full, NewFileMode()); !placed)
    return isTaken() ? taken() : failure(placed.error());
  return {};
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
  const auto before = WriteDataSource(name, *driver, *full);
  if (!before) return before;
  if (const auto serves = CheckServes("DSN=" + name); !serves) {
    const auto back = WriteWholeFile(UserDataSources(), *before);
    return Failure("The file " + path + " does not serve as a database: " + serves.error() +
                   (back ? "" : ". Its data source " + name + " stays: " + back.error()));
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
