#include "database/access/plot_db.h"

#include <utility>

namespace hyetex {

namespace {

DbResult<Connection> NoDatabase() {
  return tl::unexpected(DbError{db_error::GeneralFailure, "No database has been selected", ""});
}

}  // namespace

HyetexPlotDB::HyetexPlotDB(const Settings& settings, Dialogs& dialogs)
    : settings_(settings), dialogs_(dialogs) {}

DbResult<void> HyetexPlotDB::OpenDatabase() {
  Reachable = true;
  if (ConnectionText.empty()) ConnectionText = settings_.Get(setting::DatabaseName);
  auto opened = ConnectionText.empty() ? NoDatabase() : Connection::Open(ConnectionText);
  if (opened) {
    DatabaseConnection = std::move(*opened);
    return {};
  }
  if (opened.error().Number == db_error::GeneralFailure)
    Reachable = false;
  else
    Show(opened.error());
  return tl::unexpected(opened.error());
}

bool HyetexPlotDB::Opens() {
  const bool opens = OpenDatabase().has_value();
  Close();
  return opens;
}

DbResult<void> HyetexPlotDB::OpenTable(Recordset& handle, std::string_view name, Selection selection) {
  if (!DatabaseConnection.IsOpen())
    if (const auto opened = OpenDatabase(); !opened) return opened;
  auto table = Recordset::Open(DatabaseConnection, name, std::move(selection));
  if (!table) return tl::unexpected(table.error());
  handle = std::move(*table);
  return {};
}

DbResult<void> HyetexPlotDB::OpenChartAscii(Selection selection) {
  return OpenTable(ChartAsciiTable, "chart_ascii", std::move(selection));
}
DbResult<void> HyetexPlotDB::OpenChart(Selection selection) {
  return OpenTable(ChartTable, "chart", std::move(selection));
}
DbResult<void> HyetexPlotDB::OpenInstrument(Selection selection) {
  return OpenTable(InstrumentTable, "instrument", std::move(selection));
}
DbResult<void> HyetexPlotDB::OpenStation(Selection selection) {
  return OpenTable(StationTable, "station", std::move(selection));
}
DbResult<void> HyetexPlotDB::OpenAnyTable(std::string_view name, Selection selection) {
  return OpenTable(AnyTable, name, std::move(selection));
}

void HyetexPlotDB::Close() {
  for (Recordset* table : {&ChartAsciiTable, &ChartTable, &InstrumentTable, &StationTable, &AnyTable})
    table->Close();
  DatabaseConnection.Close();
}

void HyetexPlotDB::Show(const DbError& error) { dialogs_.MessageBox("Hyetex", NumberAndDescription(error)); }

}  // namespace hyetex
