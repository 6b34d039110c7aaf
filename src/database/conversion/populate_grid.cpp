#include "database/conversion/populate_grid.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "chartfiles/chart_text.h"
#include "core/comments.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
#include "core/text.h"
#include "database/access/schema.h"
#include "database/store/chart_ascii.h"
#include "database/store/light_reader.h"

namespace hyetex {
namespace {

constexpr const char* Manual = "Manual";
constexpr const char* Digitized = "Digitized";
constexpr std::string_view StoredTextName = "temp_rfs.txt";

struct ClosedAtEnd {
  HyetexPlotDB& Database;
  ~ClosedAtEnd() { Database.Close(); }
};

// Without the mark every chart counts as not converted.
DbResult<bool> IsLoaded(Recordset& table) {
  if (!table.HasField(LoadedColumn)) return false;
  const auto loaded = table.Value(LoadedColumn);
  if (!loaded) return tl::unexpected(loaded.error());
  return NumberOf(*loaded) == 1;
}

PopulateRow RowOf(const ChartRecord& chart, Date chartDate, bool depthManual) {
  PopulateRow row;
  row.ChartDate = chartDate;
  row.Start = chart.StartTime == 0 ? chartDate : chart.StartTime;  // a damaged text keeps its place
  row.End = chart.EndTime;
  const float depth = chart.SelectedDepth == 0 ? chart.DigitizedDepth : chart.SelectedDepth;
  const bool defective = HasCode(chart.GeneralComment, CodeDefective);
  const char* const counts = depthManual ? Manual : Digitized;
  row.Cells = {
      DateText(row.Start),
      DateText(row.End),
      RoundedText(static_cast<double>(depth), 1),
      RoundedText(static_cast<double>(chart.ManualDepth), 1),
      chart.SelectedAlpha == NoAlpha ? "None" : RoundedText(static_cast<double>(chart.SelectedAlpha), 5),
      std::string(ReliabilityText(chart.Reliability)),
      defective ? "Manual *" : counts};
  return row;
}

DbResult<ChartRecord> ReadHead(Recordset& table, LightReader& reader) {
  const auto read =
      table.ReadPieces("ascii_file", [&](std::string_view piece) { return reader.Take(piece); });
  ChartRecord chart = reader.Finish();
  if (!read) return tl::unexpected(read.error());
  return chart;
}

}  // namespace

DbResult<std::vector<std::string>> PopulateInstruments(HyetexPlotDB& database) {
  const ClosedAtEnd close{database};
  if (const auto opened = database.OpenInstrument({.Columns = {"instrument_code_id"}}); !opened)
    return tl::unexpected(opened.error());
  std::vector<std::string> codes;
  Recordset& table = database.InstrumentTable;
  while (!table.Eof()) {
    const auto code = table.Value(0);
    if (!code) return tl::unexpected(code.error());
    codes.push_back(TextOf(*code));
    if (const auto moved = table.MoveNext(); !moved) return tl::unexpected(moved.error());
  }
  return codes;
}

DbResult<std::vector<PopulateRow>> LoadGrid(HyetexPlotDB& database, const std::string& instrumentCode,
                                            bool showAll, const ComputationVariables& variables,
                                            const ReferenceLists& lists, Progress& progress) {
  std::vector<PopulateRow> rows;
  if (instrumentCode.empty()) return rows;
  const ClosedAtEnd close{database};
  if (const auto opened = database.OpenChartAscii(ChartAsciiOf(instrumentCode)); !opened)
    return tl::unexpected(opened.error());
  Recordset& table = database.ChartAsciiTable;
  LightReader reader({.Stations = lists.Stations});
  while (!table.Eof()) {
    const auto count = static_cast<std::int64_t>(rows.size());
    if (!progress.Step(count, 0, std::to_string(count))) break;
    const auto loaded = IsLoaded(table);
    if (!loaded) return tl::unexpected(loaded.error());
    if (showAll || !*loaded) {
      const auto date = table.Value("chart_date");
      if (!date) return tl::unexpected(date.error());
      const auto chart = ReadHead(table, reader);
      if (!chart) return tl::unexpected(chart.error());
      PopulateRow row = RowOf(*chart, DateOf(*date), variables.DefaultDepthManual);
      row.Overlaps = !rows.empty() && std::floor(row.Start) == std::floor(rows.back().End) &&
                     rows.back().End > row.Start;
      rows.push_back(std::move(row));
    }
    if (const auto moved = table.MoveNext(); !moved) return tl::unexpected(moved.error());
  }
  std::stable_sort(rows.begin(), rows.end(),
                   [](const PopulateRow& a, const PopulateRow& b) { return a.Start < b.Start; });
  return rows;
}

void ToggleSelectedDepth(PopulateRow& row) { row.Cells[6] = row.IsManual() ? Digitized : Manual; }

Result<std::string> WriteStoredText(HyetexPlotDB& database, const std::string& instrumentCode, Date chartDate,
                                    const std::string& folder) {
  const ClosedAtEnd close{database};
  if (const auto opened = database.OpenChartAscii(ChartAsciiOf(instrumentCode, chartDate)); !opened)
    return Failure(opened.error().Description);
  if (database.ChartAsciiTable.Eof()) return Failure("The chart is no longer in the database");
  const auto text = ChartAsciiText(database.ChartAsciiTable, std::numeric_limits<std::size_t>::max());
  if (!text) return Failure(text.error().Description);
  const std::string path = JoinPath(folder, StoredTextName);
  if (const auto written = WriteWholeFile(path, *text); !written) return Failure(written.error());
  return path;
}

}  // namespace hyetex
