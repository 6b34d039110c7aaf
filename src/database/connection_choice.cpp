#include "database/connection_choice.h"

#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <array>

#include "core/text.h"
#include "platform/odbc/connection_text.h"
#include "staging/definitions.h"

namespace hyetex {
namespace {

// An environment of the driver manager, without a connection.
class Environment {
 public:
  Environment() {
    if (!SQL_SUCCEEDED(::SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &handle_))) handle_ = SQL_NULL_HENV;
    if (handle_ == SQL_NULL_HENV) return;
    // The interface wants a number in the place of a pointer.
    ::SQLSetEnvAttr(handle_, SQL_ATTR_ODBC_VERSION,
                    reinterpret_cast<SQLPOINTER>(std::uintptr_t{SQL_OV_ODBC3}), 0);
  }
  ~Environment() {
    if (handle_ != SQL_NULL_HENV) ::SQLFreeHandle(SQL_HANDLE_ENV, handle_);
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

  // Calls `take(name, description)` for all that a listing function gives.
  template <typename List, typename Take>
  void ForEach(List list, Take&& take) {
    if (handle_ == SQL_NULL_HENV) return;
    std::array<SQLCHAR, 1024> name{}, description{};
    SQLSMALLINT nameLength = 0, descriptionLength = 0;
    for (SQLUSMALLINT direction = SQL_FETCH_FIRST;; direction = SQL_FETCH_NEXT) {
      name[0] = description[0] = 0;
      if (!SQL_SUCCEEDED(list(handle_, direction, name.data(), SQLSMALLINT{1024}, &nameLength,
                              description.data(), SQLSMALLINT{1024}, &descriptionLength)))
        return;
      const auto text = [](const auto& bytes) {
        return std::string(reinterpret_cast<const char*>(bytes.data()));
      };
      if (!Trim(text(name)).empty()) take(text(name), text(description));
    }
  }

 private:
  SQLHENV handle_ = SQL_NULL_HENV;
};

std::vector<std::string> SortedOnce(std::vector<std::string> texts) {
  std::sort(texts.begin(), texts.end());
  texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
  return texts;
}

}  // namespace

DataSources GetDSNsAndDrivers() {
  DataSources sources;
  sources.Names.emplace_back(NoDataSource);
  Environment environment;
  environment.ForEach(::SQLDataSources, [&](std::string name, std::string driver) {
    sources.Names.push_back(std::move(name));
    sources.Drivers.push_back(std::move(driver));
  });
  sources.Drivers = SortedOnce(std::move(sources.Drivers));
  return sources;
}

std::vector<std::string> InstalledDrivers() {
  std::vector<std::string> drivers;
  Environment environment;
  environment.ForEach(::SQLDrivers,
                      [&](std::string name, const std::string&) { drivers.push_back(std::move(name)); });
  return SortedOnce(std::move(drivers));
}

std::string LogonText(const LogonValues& values) {
  std::string text = values.DataSource.empty() ? "Driver=" + values.Driver + ";Server=" + values.Server + ";"
                                               : ConnectionPair("DSN", values.DataSource);
  text += ConnectionPair("UID", values.User) + ConnectionPair("PWD", values.Password);
  if (!values.Database.empty()) text += ConnectionPair("Database", values.Database);
  return text;
}

Result<void> KeepConnection(HyetexPlotDB& database, const std::string& programFolder,
                            const std::string& connectionText) {
  if (auto kept = SetDefinition(programFolder, DatabaseNameKey, connectionText); !kept) return kept;
  database.Close();
  database.ConnectionText = connectionText;
  return {};
}

Result<void> TakeDataSource(HyetexPlotDB& database, const std::string& programFolder,
                            const std::string& dataSource) {
  return KeepConnection(database, programFolder, "DSN=" + dataSource);
}

Result<void> Logon(HyetexPlotDB& database, const std::string& programFolder, const LogonValues& values) {
  const std::string text = LogonText(values);
  if (const auto opened = Connection::Open(text); !opened) return Failure(opened.error().Description);
  return KeepConnection(database, programFolder, text);
}

}  // namespace hyetex
