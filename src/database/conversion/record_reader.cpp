#include "database/conversion/record_reader.h"

#include <algorithm>
#include <map>
#include <utility>

#include "core/dates.h"
#include "core/numbers.h"
#include "database/access/names.h"
#include "database/store/chart_ascii.h"

namespace hyetex {

// Without their texts, so that a run over any number of charts needs no more memory than one over few.
DbResult<std::vector<ChartToConvert>> RecordReader::InOrder(std::span<const ChartToConvert> charts,
                                                            std::vector<ChartToConvert>& missing) {
  std::vector<ChartToConvert> found;
  Selection selection = ChartAsciiOf(code_);
  selection.Columns = {column::ChartDate};
  if (!database_.DatabaseConnection.IsOpen())
    if (const auto opened = database_.OpenDatabase(); !opened) return tl::unexpected(opened.error());
  const auto hasMark = HasLoadedMark(database_.DatabaseConnection);
  if (!hasMark) return tl::unexpected(hasMark.error());
  if (*hasMark) selection.Columns.emplace_back(column::Loaded);
  if (const auto opened = database_.OpenChartAscii(std::move(selection)); !opened)
    return tl::unexpected(opened.error());
  std::map<std::int64_t, const ChartToConvert*> open;
  for (const ChartToConvert& chart : charts) open.emplace(SecondsOf(chart.ChartDate), &chart);
  Recordset& table = database_.ChartAsciiTable;
  const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    const auto date = table.Value(0);
    if (!date) return tl::unexpected(date.error());
    if (const auto wanted = open.extract(SecondsOf(DateOf(*date)))) {
      found.push_back(*wanted.mapped());
      const auto loaded = IsLoaded(table);
      if (!loaded) return tl::unexpected(loaded.error());
      anyIsLoaded_ = anyIsLoaded_ || *loaded;
    }
    return !open.empty();
  });
  table.Close();
  if (!walked) return tl::unexpected(walked.error());
  for (const auto& [second, chart] : open) missing.push_back(*chart);
  std::ranges::stable_sort(found, {}, [](const ChartToConvert& chart) { return SecondsOf(chart.ChartDate); });
  return found;
}

DbResult<std::vector<RecordToConvert>> RecordReader::Read(std::span<const ChartToConvert> charts) {
  textBytes_ = 0;
  std::vector<Date> dates;
  for (const ChartToConvert& chart : charts) dates.push_back(chart.ChartDate);
  // A chart that stands twice in the table is converted twice in a row, always in the same order, which no
  // database promises for its records.
  std::vector<std::multimap<std::string, RecordToConvert>> found(charts.size());
  Recordset& table = database_.ChartAsciiTable;
  const auto read = ForEachRecordOf(database_, code_, dates, [&](std::size_t chart) -> DbResult<void> {
    auto place = table.Place();
    if (!place) return tl::unexpected(place.error());
    auto text = ChartAsciiText(table, MostChartBytes);
    if (!text) return tl::unexpected(text.error());
    textBytes_ += text->size();
    RecordToConvert record;
    record.Chart = charts[chart];
    record.Place = *std::move(place);
    Convert(*text, record);
    found[chart].emplace(*std::move(text), std::move(record));
    return {};
  });
  if (!read) return tl::unexpected(read.error());
  std::vector<RecordToConvert> records;
  for (std::size_t i = 0; i < charts.size(); ++i) {
    for (auto& [text, record] : found[i]) records.push_back(std::move(record));
    if (!found[i].empty()) continue;
    RecordToConvert& record = records.emplace_back();
    record.Chart = charts[i];
    record.Why = "no record with its date is found in the database";
  }
  return records;
}

void RecordReader::Convert(const std::string& text, RecordToConvert& record) {
  if (text.size() > MostChartBytes) {
    record.Why = "its text is too long to be a chart";
    return;
  }
  if (const auto read = ReadChartToConvert(text, variables_, stations_, reading_); !read) {
    record.Why = read.error();
    return;
  }
  if (!reading_.CutOff.empty()) record.CutOff = reading_.CutOff;
  record.Station = &stations_[static_cast<std::size_t>(reading_.Chart.InstrumentIndex)];
  record.Reliability = reading_.Chart.Reliability;
  record.Rows = MakeChartRows(reading_, record.Chart.Manual, variables_.GmtShift);
  if (const float alpha = reading_.Chart.SelectedAlpha; variables_.UseAlpha && alpha != NoAlpha && alpha != 0)
    record.Rows.Alpha = LeadingNumber(ShortText(alpha));
}

}  // namespace hyetex
