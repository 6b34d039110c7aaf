#include "database/store/chart_ascii.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "core/dates.h"
#include "core/text.h"
#include "database/access/names.h"

namespace hyetex {

Selection ChartAsciiOf(std::string_view instrumentCode) {
  return {.Where = {{column::InstrumentCode, Compare::EqualIgnoringCase, ShownText(instrumentCode)}}};
}

Selection ChartAsciiOf(std::string_view instrumentCode, Date chartDate) {
  Selection selection = ChartAsciiOf(instrumentCode);
  selection.Where.push_back({column::ChartDate, Compare::Equal, DbDate{chartDate}});
  return selection;
}

void ChartGroup::Took(std::size_t textBytes) {
  constexpr std::size_t mostCharts = 32, mostTextBytes = 128U << 10;
  size_ = std::clamp<std::size_t>(textBytes > mostTextBytes ? size_ / 2 : size_ * 2, 1, mostCharts);
}

DbResult<void> ForEachRecordOf(HyetexPlotDB& database, std::string_view instrumentCode,
                               std::span<const Date> dates,
                               const std::function<DbResult<void>(std::size_t)>& take) {
  std::map<std::int64_t, std::size_t> wanted;
  Selection::Condition atDates{.Column = column::ChartDate, .How = Compare::OneOf};
  for (std::size_t i = 0; i < dates.size(); ++i) {
    wanted.emplace(SecondsOf(dates[i]), i);
    atDates.Among.emplace_back(DbDate{dates[i]});
  }
  std::set<std::int64_t> found;
  const auto read = [&](Selection selection) -> DbResult<void> {
    selection.Columns = {column::ChartDate, column::InstrumentCode, column::AsciiFile};
    selection.LongWithRow = true;  // another program may replace the record meanwhile
    const auto before = found;
    if (auto opened = database.OpenChartAscii(std::move(selection)); !opened) return opened;
    const auto walked = ForEachRow(database.ChartAsciiTable, [&]() -> DbResult<bool> {
      const auto date = database.ChartAsciiTable.Value(0);
      if (!date) return tl::unexpected(date.error());
      const auto chart = wanted.find(SecondsOf(DateOf(*date)));
      if (chart == wanted.end() || before.contains(chart->first)) return true;
      const auto code = database.ChartAsciiTable.Value(1);
      if (!code) return tl::unexpected(code.error());
      if (instrumentCode.empty() && !TextOf(*code).empty()) return true;
      found.insert(chart->first);
      if (const auto taken = take(chart->second); !taken) return tl::unexpected(taken.error());
      return true;
    });
    database.ChartAsciiTable.Close();
    return walked;
  };
  const Selection all = instrumentCode.empty() ? Selection() : ChartAsciiOf(instrumentCode);
  Selection some = all;
  some.Where.push_back(std::move(atDates));
  if (auto done = read(std::move(some)); !done || found.size() == wanted.size()) return done;
  return read(all);
}

DbResult<bool> HasLoadedMark(Connection& connection) {
  const auto columns = connection.Columns(table_name::ChartAscii);
  if (!columns) return tl::unexpected(columns.error());
  return std::ranges::any_of(
      *columns, [](const CatalogColumn& c) { return EqualIgnoringCase(c.Name, column::Loaded); });
}

DbResult<bool> IsLoaded(Recordset& table) {
  if (!table.HasField(column::Loaded)) return false;
  const auto loaded = table.Value(column::Loaded);
  if (!loaded) return tl::unexpected(loaded.error());
  return NumberOf(*loaded) == 1;
}

DbResult<std::string> ChartAsciiText(Recordset& table, std::size_t mostBytes) {
  std::string text;
  const auto read = table.ReadPieces(column::AsciiFile, [&](std::string_view piece) {
    text += piece;
    return text.size() <= mostBytes;
  });
  if (!read) return tl::unexpected(read.error());
  return text;
}

DbValue AsciiFileValue(std::span<const CatalogColumn> columns, std::string text) {
  const auto column = std::ranges::find_if(
      columns, [](const CatalogColumn& each) { return EqualIgnoringCase(each.Name, column::AsciiFile); });
  if (column != columns.end() && column->IsText) return text;
  return DbBinary{std::move(text)};
}

}  // namespace hyetex
