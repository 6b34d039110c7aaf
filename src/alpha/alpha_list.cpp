#include "alpha/alpha_list.h"

#include <algorithm>
#include <set>
#include <utility>

#include "core/dates.h"
#include "database/access/names.h"
#include "database/store/chart_ascii.h"
#include "database/store/instruments.h"
#include "database/store/light_reader.h"
#include "database/store/stored_text.h"

namespace hyetex {

// FNV-1a, 64 bits.
void TextMark::Take(std::string_view piece) {
  for (const char c : piece) value_ = (value_ ^ static_cast<unsigned char>(c)) * 0x100000001B3;
}

DbResult<std::vector<std::string>> AlphaInstruments(HyetexPlotDB& database) {
  const auto listed = ListInstruments(database);
  if (!listed) return tl::unexpected(listed.error());
  std::vector<std::string> codes;
  std::set<std::string> known{""};
  for (const std::string& code : *listed)
    if (known.insert(ComparedCode(code)).second) codes.emplace_back(code, 0, code.find_last_not_of(' ') + 1);
  return codes;
}

DbResult<AlphaList> ReadAlphaList(HyetexPlotDB& database, const std::string& instrumentCode,
                                  Progress& progress) {
  AlphaList list;
  list.InstrumentCode = instrumentCode;
  if (instrumentCode.empty()) return list;
  const ClosedAfter closed(database);
  if (!database.DatabaseConnection.IsOpen())
    if (const auto opened = database.OpenDatabase(); !opened) return tl::unexpected(opened.error());
  const auto marks = HasLoadedMark(database.DatabaseConnection);
  if (!marks) return tl::unexpected(marks.error());
  Selection selection = ChartAsciiOf(instrumentCode);
  selection.Columns = {column::ChartDate, column::AsciiFile};
  if (*marks) selection.Columns.emplace_back(column::Loaded);
  selection.LongWithRow = true;  // another program may replace the record meanwhile
  if (const auto opened = database.OpenChartAscii(std::move(selection)); !opened)
    return tl::unexpected(opened.error());
  Recordset& table = database.ChartAsciiTable;
  LightReader reader({});
  bool stopped = false;
  const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    stopped = !progress.Step(static_cast<std::int64_t>(list.Charts.size()), 0,
                             list.Charts.empty() ? "" : GeneralDateText(list.Charts.back().Start()));
    if (stopped) return false;
    const auto date = table.Value(column::ChartDate);
    if (!date) return tl::unexpected(date.error());
    const auto converted = IsLoaded(table);
    if (!converted) return tl::unexpected(converted.error());
    TextMark mark;
    const auto read = table.ReadPieces(column::AsciiFile, [&](std::string_view piece) {
      mark.Take(piece);
      return reader.Take(piece);
    });
    AlphaChart chart{reader.Finish(), DateOf(*date), mark.Value(), *converted};
    if (!read) return tl::unexpected(read.error());
    list.Charts.push_back(std::move(chart));
    return true;
  });
  if (!walked) return tl::unexpected(walked.error());
  std::ranges::stable_sort(list.Charts, {}, &AlphaChart::Start);
  if (list.Charts.size() > MostAlphaCharts) {
    list.Notes.push_back("The list holds the first " + std::to_string(MostAlphaCharts) + " of " +
                         std::to_string(list.Charts.size()) + " charts.");
    list.Charts.resize(MostAlphaCharts);
  }
  if (stopped) list.Notes.emplace_back("The list was stopped before its end.");
  return list;
}

}  // namespace hyetex
