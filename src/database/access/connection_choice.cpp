#include "database/access/connection_choice.h"

#include <algorithm>

#include "core/text.h"
#include "platform/odbc/connection_text.h"
#include "platform/odbc/environment.h"

namespace hyetex {
namespace {

std::vector<std::string> SortedOnce(std::vector<std::string> texts) {
  std::sort(texts.begin(), texts.end());
  texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
  return texts;
}

}  // namespace

DataSources GetDSNsAndDrivers() {
  DataSources sources;
  sources.Names.emplace_back(NoDataSource);
  for (NameAndDriver& source : RegisteredDataSources()) {
    sources.Names.push_back(std::move(source.Name));
    sources.Drivers.push_back(std::move(source.Driver));
  }
  sources.Drivers = SortedOnce(std::move(sources.Drivers));
  return sources;
}

std::vector<std::string> InstalledDrivers() { return SortedOnce(RegisteredDrivers()); }

std::string LogonText(const LogonValues& values) {
  std::string text = values.DataSource.empty() ? "Driver=" + values.Driver + ";Server=" + values.Server + ";"
                                               : ConnectionPair("DSN", values.DataSource);
  text += ConnectionPair("UID", values.User) + ConnectionPair("PWD", values.Password);
  if (!values.Database.empty()) text += ConnectionPair("Database", values.Database);
  return text;
}

Result<void> KeepConnection(HyetexPlotDB& database, Settings& settings, const std::string& connectionText) {
  if (auto kept = settings.Set(setting::DatabaseName, connectionText); !kept) return kept;
  database.Close();
  database.ConnectionText = connectionText;
  return {};
}

Result<void> TakeDataSource(HyetexPlotDB& database, Settings& settings, const std::string& dataSource) {
  return KeepConnection(database, settings, "DSN=" + dataSource);
}

Result<void> Logon(HyetexPlotDB& database, Settings& settings, const LogonValues& values) {
  const std::string text = LogonText(values);
  if (const auto opened = Connection::Open(text); !opened) return Failure(opened.error().Description);
  return KeepConnection(database, settings, text);
}

}  // namespace hyetex
