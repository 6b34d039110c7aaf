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
#include "database/access/names.h"
#include "database/store/chart_ascii.h"
#include "database/store/light_reader.h"

namespace hyetex {
namespace {

const char* DepthWord(bool manual) { return manual ? "Manual" : "Digitized"; }
constexpr std::string_view StoredTextName = "temp_rfs.txt";

PopulateRow RowOf(const ChartRecord& chart, Date chartDate, bool depthManual) {
  PopulateRow row;
  row.ChartDate = chartDate;
  row.Start = chart.StartTime == 0 ? chartDate : chart.StartTime;  // a damaged text keeps its place
  row.End = chart.EndTime;
  const float depth = chart.SelectedDepth == 0 ? chart.DigitizedDepth : chart.SelectedDepth;
  const bool defective = HasCode(chart.GeneralComment, CodeDefective);
  row.Manual = depthManual || defective;
  row.Cells = {
      DateText(row.Start),
      DateText(row.End),
      RoundedText(static_cast<double>(depth), 1),
      RoundedText(static_cast<double>(chart.ManualDepth), 1),
      chart.SelectedAlpha == NoAlpha ? "None" : RoundedText(static_cast<double>(chart.SelectedAlpha), 5),
      std::string(ReliabilityText(chart.Reliability)),
      defective ? "Manual *" : DepthWord(row.Manual)};
  return row;
}

DbResult<ChartRecord> ReadHead(Recordset& table, LightReader& reader) {
  const auto read =
      table.ReadPieces(column::AsciiFile, [&](std::string_view piece) { return reader.Take(piece); });
  ChartRecord chart = reader.Finish();
  if (!read) return tl::unexpected(read.error());
  return chart;
}

}  // namespace

DbResult<std::vector<PopulateRow>> LoadGrid(HyetexPlotDB& database, const std::string& instrumentCode,
                                            bool showAll, const ComputationVariables& variables,
                                            const ReferenceLists& lists, Progress& progress) {
  std::vector<PopulateRow> rows;
  if (instrumentCode.empty()) return rows;
  const ClosedAfter closed(database);
  if (const auto opened = database.OpenDatabase(); !opened) return tl::unexpected(opened.error());
  const auto book = ReadConversionBook(database, instrumentCode);
  if (!book) return tl::unexpected(book.error());
  Selection selection = ChartAsciiOf(instrumentCode);
  selection.LongWithRow = true;  // another program may replace the record meanwhile
  if (const auto opened = database.OpenChartAscii(std::move(selection)); !opened)
    return tl::unexpected(opened.error());
  Recordset& table = database.ChartAsciiTable;
  LightReader reader({.Stations = lists.Stations});
  const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    const auto count = static_cast<std::int64_t>(rows.size());
    if (!progress.Step(count, 0, std::to_string(count))) return false;
    const auto loaded = IsLoaded(table);
    if (!loaded) return tl::unexpected(loaded.error());
    if (*loaded && !showAll) return true;
    const auto date = table.Value(column::ChartDate);
    if (!date) return tl::unexpected(date.error());
    const auto chart = ReadHead(table, reader);
    if (!chart) return tl::unexpected(chart.error());
    PopulateRow row = RowOf(*chart, DateOf(*date), variables.DefaultDepthManual);
    if (const auto written = book->find(SecondsOf(row.ChartDate)); written != book->end())
      row.Written = written->second;
    row.Overlaps =
        !rows.empty() && std::floor(row.Start) == std::floor(rows.back().End) && rows.back().End > row.Start;
    rows.push_back(std::move(row));
    return true;
  });
  if (!walked) return tl::unexpected(walked.error());
  std::stable_sort(rows.begin(), rows.end(),
                   [](const PopulateRow& a, const PopulateRow& b) { return a.Start < b.Start; });
  return rows;
}

std::string CellText(const PopulateRow& row, int column) {
  if (column < PopulateColumns) return row.Cells[static_cast<std::size_t>(column)];
  if (!row.Written) return {};
  switch (column - PopulateColumns) {
    case 0:
      return row.Written->When == 0 ? std::string() : GeneralDateText(row.Written->When);
    case 1:
      return row.Written->User;
    case 2:
      return RoundedText(static_cast<double>(row.Written->Variables.GmtShift) * 24, 2);
    default:
      return HowConverted(*row.Written);
  }
}

void ToggleSelectedDepth(PopulateRow& row) {
  row.Manual = !row.Manual;
  row.Cells.back() = DepthWord(row.Manual);
}

Result<std::string> WriteStoredText(HyetexPlotDB& database, const std::string& instrumentCode, Date chartDate,
                                    const std::string& folder) {
  const ClosedAfter closed(database);
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
