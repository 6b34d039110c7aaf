#include "rain/rain_leads.h"

#include <algorithm>
#include <array>
#include <vector>

#include "core/dates.h"
#include "core/text.h"
#include "database/access/names.h"
#include "database/conversion/conversion_book.h"
#include "database/store/chart_ascii.h"

namespace hyetex {
namespace {

DbResult<void> Opened(HyetexPlotDB& database) {
  if (database.DatabaseConnection.IsOpen()) return {};
  return database.OpenDatabase();
}

}  // namespace

DbResult<std::optional<LastConversion>> FindLastConversion(HyetexPlotDB& database,
                                                           const std::string& instrument) {
  if (const auto opened = Opened(database); !opened) return tl::unexpected(opened.error());
  const ClosedAfter closed(database);
  const auto hasBook = HasConversionBook(database.DatabaseConnection);
  if (!hasBook) return tl::unexpected(hasBook.error());
  if (!*hasBook) return std::nullopt;
  Selection selection{
      .Columns = {column::ConversionTime, column::ConversionNumber, column::InstrumentCode, column::GmtHours,
                  column::FirstTime, column::LastTime},
      .Page =
          Page{.OrderBy = {column::ConversionTime, column::ConversionNumber}, .Backward = true, .Most = 1}};
  if (!instrument.empty())
    selection.Where = {{column::InstrumentCode, Compare::EqualIgnoringCase, ShownText(instrument)}};
  const auto rows =
      Recordset::ReadPage(database.DatabaseConnection, table_name::Conversion, std::move(selection));
  if (!rows) return tl::unexpected(rows.error());
  if (rows->empty()) return std::nullopt;
  const std::vector<DbValue>& values = rows->front().Values;
  return LastConversion{std::string(Trim(TextOf(values[2]))), NumberOf(values[3]),
                        SecondsOf(DateOf(values[4])), SecondsOf(DateOf(values[5]))};
}

DbResult<std::optional<Date>> FindChartOfRain(HyetexPlotDB& database, const std::string& instrument,
                                              RainTime from, RainTime to, const RainClock& clock) {
  if (const auto opened = Opened(database); !opened) return tl::unexpected(opened.error());
  const ClosedAfter closed(database);
  const auto hasBook = HasConversionBook(database.DatabaseConnection);
  if (!hasBook) return tl::unexpected(hasBook.error());
  if (*hasBook) {
    const auto spans = ConvertedSpans(database, instrument, static_cast<double>(from) / SecondsPerDay,
                                      static_cast<double>(to) / SecondsPerDay);
    if (!spans) return tl::unexpected(spans.error());
    // Of overlapping charts the later one counts, as its rain does.
    const auto rank = [&](const ConvertedSpan& span) {
      const RainTime common = std::min(SecondsOf(span.Last), to) - std::max(SecondsOf(span.First), from);
      return std::pair(common, span.ChartDate);
    };
    const auto best = std::ranges::max_element(*spans, {}, rank);
    if (best != spans->end() && rank(*best).first > 0) return best->ChartDate;
  }
  const Date last = ToLocal(to, clock), first = ToLocal(from, clock) - MostChartDays;
  Selection selection = ChartAsciiOf(instrument);
  selection.Columns = {column::ChartDate};
  selection.Where.push_back({column::ChartDate, Compare::AtLeast, DbDate{first}});
  selection.Where.push_back({column::ChartDate, Compare::AtMost, DbDate{last}});
  if (const auto opened = database.OpenChartAscii(std::move(selection)); !opened)
    return tl::unexpected(opened.error());
  std::optional<Date> found;
  Recordset& table = database.ChartAsciiTable;
  const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    const auto date = table.Value(0);
    if (!date) return tl::unexpected(date.error());
    const Date start = DateOf(*date);
    if (SecondsOf(start) < SecondsOf(last) && (!found || start > *found)) found = start;
    return true;
  });
  if (!walked) return tl::unexpected(walked.error());
  return found;
}

}  // namespace hyetex
