#include "database/access/plot_db.h"

#include <utility>

#include "database/access/names.h"

namespace hyetex {

namespace {

DbResult<Connection> NoDatabase() {
  return tl::unexpected(DbError{db_error::GeneralFailure, "No database has been selected", ""});
}

}  // namespace

HyetexPlotDB::HyetexPlotDB(const Settings& settings, Dialogs& dialogs)
    : settings_(settings), dialogs_(dialogs) {}

const std::string& HyetexPlotDB::ChosenConnection() {
  if (ConnectionText.empty()) ConnectionText = settings_.Get(setting::DatabaseName);
  return ConnectionText;
}

DbResult<void> HyetexPlotDB::OpenDatabase() {
  auto opened = ChosenConnection().empty() ? NoDatabase() : Connection::Open(ConnectionText);
  if (!opened) return tl::unexpected(opened.error());
  DatabaseConnection = std::move(*opened);
  return {};
}

bool HyetexPlotDB::Opens() {
  const auto opened = OpenDatabase();
  Close();
  if (!opened && opened.error().Number != db_error::GeneralFailure) Show(opened.error());
  return opened.has_value();
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
  return OpenTable(ChartAsciiTable, table_name::ChartAscii, std::move(selection));
}
DbResult<void> HyetexPlotDB::OpenChart(Selection selection) {
  return OpenTable(ChartTable, table_name::Chart, std::move(selection));
}
DbResult<void> HyetexPlotDB::OpenInstrument(Selection selection) {
  return OpenTable(InstrumentTable, table_name::Instrument, std::move(selection));
}
DbResult<void> HyetexPlotDB::OpenStation(Selection selection) {
  return OpenTable(StationTable, table_name::Station, std::move(selection));
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
