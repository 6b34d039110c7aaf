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
DbResult<std::vector<ChartToConvert>> RecordReader::InTableOrder(std::span<const ChartToConvert> charts,
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
  return found;
}

DbResult<std::vector<RecordToConvert>> RecordReader::Read(std::span<const ChartToConvert> charts) {
  textBytes_ = 0;
  std::vector<RecordToConvert> records;
  Places wanted;
  Selection::Condition dates{.Column = column::ChartDate, .How = Compare::OneOf};
  for (std::size_t i = 0; i < charts.size(); ++i) {
    wanted.emplace(SecondsOf(charts[i].ChartDate), i);
    dates.Among.emplace_back(DbDate{charts[i].ChartDate});
  }
  Selection selection = ChartAsciiOf(code_);
  selection.Where.push_back(std::move(dates));
  selection.LongWithRow = true;
  if (auto read = ReadRecords(std::move(selection), charts, wanted, records); !read)
    return tl::unexpected(read.error());
  // A date that is stored in another form, or with a fraction of a second, is none of those to the database.
  Places left = wanted;
  for (const RecordToConvert& record : records) left.erase(SecondsOf(record.Chart.ChartDate));
  if (!left.empty()) {
    if (auto read = ReadRecords(ChartAsciiOf(code_), charts, left, records); !read)
      return tl::unexpected(read.error());
    for (const RecordToConvert& record : records) left.erase(SecondsOf(record.Chart.ChartDate));
    for (const auto& [second, at] : left) {
      RecordToConvert& record = records.emplace_back();
      record.Chart = charts[at];
      record.Why = "no record with its date is found in the database";
    }
  }
  // A chart that stands twice in the table is converted twice in a row, however charts come to be read
  // together.
  std::ranges::stable_sort(records, {}, [&](const RecordToConvert& record) {
    return wanted.at(SecondsOf(record.Chart.ChartDate));
  });
  return records;
}

DbResult<void> RecordReader::ReadRecords(Selection selection, std::span<const ChartToConvert> charts,
                                         const Places& wanted, std::vector<RecordToConvert>& records) {
  selection.Columns = {column::ChartDate, column::InstrumentCode, column::AsciiFile};
  if (auto opened = database_.OpenChartAscii(std::move(selection)); !opened) return opened;
  Recordset& table = database_.ChartAsciiTable;
  auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    const auto date = table.Value(0);
    if (!date) return tl::unexpected(date.error());
    const auto chart = wanted.find(SecondsOf(DateOf(*date)));
    if (chart == wanted.end()) return true;
    auto place = table.Place();
    if (!place) return tl::unexpected(place.error());
    const auto text = ChartAsciiText(table, MostChartBytes);
    if (!text) return tl::unexpected(text.error());
    textBytes_ += text->size();
    RecordToConvert& record = records.emplace_back();
    record.Chart = charts[chart->second];
    record.Place = *std::move(place);
    Convert(*text, record);
    return true;
  });
  table.Close();
  return walked;
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
