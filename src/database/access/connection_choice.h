// The choice of the database that the system works on, and where it is kept: as a connection text in the
// settings, so that the next session finds the same database without asking. The text is kept as it is, with
// a password if it holds one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"
#include "database/access/plot_db.h"

namespace hyetex {

/// Stands first in the list of data sources.
inline constexpr std::string_view NoDataSource = "(None)";

struct DataSources {
  std::vector<std::string> Names;    ///< "(None)", then those of the machine and its user
  std::vector<std::string> Drivers;  ///< their drivers, sorted, each once
};

/// What the ODBC driver manager knows at this moment.
DataSources GetDSNsAndDrivers();
/// All drivers, sorted, those without a data source among them.
std::vector<std::string> InstalledDrivers();

/// What the operator fills in to log on.
struct LogonValues {
  std::string DataSource = {};  ///< empty to connect by driver and server
  std::string Driver = {}, Server = {};
  std::string User = {}, Password = {};
  std::string Database = {};
};
std::string LogonText(const LogonValues& values);

/// Makes a text the database's, for this session and, in the settings, for the next ones. What was open is
/// closed. Nothing has changed when the settings cannot be written.
Result<void> KeepConnection(HyetexPlotDB& database, Settings& settings, const std::string& connectionText);
/// The same for a data source of the list, which need not exist.
Result<void> TakeDataSource(HyetexPlotDB& database, Settings& settings, const std::string& dataSource);
/// The same once a connection by these values has been opened; else says why it cannot be.
Result<void> Logon(HyetexPlotDB& database, Settings& settings, const LogonValues& values);

}  // namespace hyetex
