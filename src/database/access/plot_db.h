// The one place that knows how the system's database and its tables are opened. What is open stands in one
// handle for each role; the routine that opens one closes it.
#pragma once

#include <string>
#include <string_view>

#include "core/settings.h"
#include "platform/dialogs.h"
#include "platform/odbc/connection.h"
#include "platform/odbc/recordset.h"

namespace hyetex {

class HyetexPlotDB {
 public:
  /// Neither is read from nor written to before something is opened.
  HyetexPlotDB(const Settings& settings, Dialogs& dialogs);

  /// What every open uses, such as "DSN=rain"; empty until it is chosen or read from the settings.
  std::string ConnectionText;

  Connection DatabaseConnection;
  Recordset ChartAsciiTable, ChartTable, InstrumentTable, StationTable, AnyTable;

  /// The connection text, read from the settings where it is empty.
  const std::string& ChosenConnection();
  /// Opens DatabaseConnection by ChosenConnection(). Shows nothing: it is for whoever wants the database to
  /// tell why there is none. GeneralFailure when nothing is chosen or the source cannot be reached.
  DbResult<void> OpenDatabase();
  /// Whether the database can be opened now; closes it again. An error is shown, but for a source that cannot
  /// be reached.
  bool Opens();

  // Each opens the database where it is not open, and its table.
  DbResult<void> OpenChartAscii(Selection selection = {});
  DbResult<void> OpenChart(Selection selection = {});
  DbResult<void> OpenInstrument(Selection selection = {});
  DbResult<void> OpenStation(Selection selection = {});
  DbResult<void> OpenAnyTable(std::string_view name, Selection selection = {});
  /// Closes all tables and the connection.
  void Close();

  /// The error's number, a blank and its description, in a plain message box.
  void Show(const DbError& error);

 private:
  DbResult<void> OpenTable(Recordset& handle, std::string_view name, Selection selection);

  const Settings& settings_;
  Dialogs& dialogs_;
};

/// Closes all when it goes, by whatever way a routine ends.
class ClosedAfter {
 public:
  explicit ClosedAfter(HyetexPlotDB& database) : database_(database) {}
  ClosedAfter(const ClosedAfter&) = delete;
  ClosedAfter& operator=(const ClosedAfter&) = delete;
  ~ClosedAfter() { database_.Close(); }

 private:
  HyetexPlotDB& database_;
};

}  // namespace hyetex
