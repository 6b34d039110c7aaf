#include "database/conversion/conversion_book.h"

#include <algorithm>
#include <set>
#include <utility>

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "database/access/names.h"
#include "database/access/schema.h"

namespace hyetex {
namespace {

// `visit(span)` hears of each one while its row is the current one of the table.
template <typename Visit>
DbResult<void> ForEachSpan(HyetexPlotDB& database, Selection selection, Visit&& visit) {
  selection.Columns = {column::ChartDate, column::FirstTime, column::LastTime, column::ConversionNumber,
                       column::InstrumentCode};
  if (const auto opened = database.OpenAnyTable(table_name::Conversion, std::move(selection)); !opened)
    return opened;
  Recordset& table = database.AnyTable;
  auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    DbValue values[4];
    for (int i = 0; i < 4; ++i) {
      auto value = table.Value(i);
      if (!value) return tl::unexpected(value.error());
      values[i] = *std::move(value);
    }
    const auto visited = visit(ConvertedSpan{DateOf(values[0]), DateOf(values[1]), DateOf(values[2]),
                                             static_cast<std::int64_t>(NumberOf(values[3]))});
    if (!visited) return tl::unexpected(visited.error());
    return true;
  });
  table.Close();
  return walked;
}

DbResult<std::vector<ConvertedSpan>> ReadSpans(HyetexPlotDB& database, Selection selection) {
  std::vector<ConvertedSpan> spans;
  const auto read =
      ForEachSpan(database, std::move(selection), [&](const ConvertedSpan& span) -> DbResult<void> {
        spans.push_back(span);
        return {};
      });
  if (!read) return tl::unexpected(read.error());
  return spans;
}

Selection OfInstrument(const std::string& code) {
  return {.Where = {{column::InstrumentCode, Compare::EqualIgnoringCase, ShownText(code)}}};
}

DbValue OrNull(const std::optional<double>& value) { return value ? DbValue(*value) : DbValue(); }

}  // namespace

DbResult<bool> HasConversionBook(Connection& connection) {
  const auto found = connection.FindTable(table_name::Conversion);
  if (!found) return tl::unexpected(found.error());
  return found->has_value();
}

std::string HowConverted(const ChartConversion& conversion) {
  std::string text = conversion.Manual ? "Manual" : "Digitized";
  if (conversion.ChosenDepth)
    text += " " + RoundedText(*conversion.ChosenDepth, 2) + " mm";
  else
    text += ", no depth known";
  if (conversion.Alpha) text += ", alpha " + RoundedText(*conversion.Alpha, 5);
  if (conversion.Variables.MinimalLapse > 0)
    text += ", lapse " + ShortText(conversion.Variables.MinimalLapse) + " min";
  return text + ", " + std::to_string(conversion.Rows) + (conversion.Rows == 1 ? " row" : " rows");
}

DbResult<std::map<std::int64_t, WrittenConversion>> ReadConversionBook(HyetexPlotDB& database,
                                                                       const std::string& code) {
  std::map<std::int64_t, WrittenConversion> book;
  const auto has = HasConversionBook(database.DatabaseConnection);
  if (!has) return tl::unexpected(has.error());
  if (!*has) return book;
  if (const auto opened = database.OpenAnyTable(table_name::Conversion, OfInstrument(code)); !opened)
    return tl::unexpected(opened.error());
  Recordset& table = database.AnyTable;
  const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    std::optional<DbError> error;
    const auto value = [&](const char* name) {
      DbResult<DbValue> read = table.HasField(name) ? table.Value(name) : DbValue();
      if (!read) error = read.error();
      return read.value_or(DbValue());
    };
    const auto known = [](const DbValue& read) {
      return IsNull(read) ? std::nullopt : std::optional(NumberOf(read));
    };
    WrittenConversion one;
    one.InstrumentCode = code;
    one.ChartDate = DateOf(value(column::ChartDate));
    one.First = DateOf(value(column::FirstTime));
    one.Last = DateOf(value(column::LastTime));
    one.Variables.GmtShift = static_cast<float>(NumberOf(value(column::GmtHours)) / 24);
    one.Variables.MinimalLapse = static_cast<float>(NumberOf(value(column::MinimalLapse)));
    one.Alpha = known(value(column::Alpha));
    one.Variables.UseAlpha = one.Alpha.has_value();
    one.Manual = EqualIgnoringCase(Trim(TextOf(value(column::SelectedDepth))), "Manual");
    one.ChosenDepth = known(value(column::ChosenDepth));
    one.Rows = static_cast<std::int64_t>(NumberOf(value(column::RowCount)));
    one.User = std::string(Trim(TextOf(value(column::UserName))));
    one.When = DateOf(value(column::ConversionTime));
    one.Number = static_cast<std::int64_t>(NumberOf(value(column::ConversionNumber)));
    if (error) return tl::unexpected(*error);
    WrittenConversion& kept = book[SecondsOf(one.ChartDate)];
    if (kept.InstrumentCode.empty() || kept.Number <= one.Number) kept = std::move(one);
    return true;
  });
  table.Close();
  if (!walked) return tl::unexpected(walked.error());
  return book;
}

DbResult<std::vector<ConvertedSpan>> ConvertedSpans(HyetexPlotDB& database, const std::string& code,
                                                    std::span<const Date> chartDates) {
  Selection selection = OfInstrument(code);
  Selection::Condition& dates = selection.Where.emplace_back();
  dates.Column = column::ChartDate;
  dates.How = Compare::OneOf;
  for (const Date date : chartDates) dates.Among.emplace_back(DbDate{date});
  return ReadSpans(database, std::move(selection));
}

DbResult<std::vector<ConvertedSpan>> ConvertedSpans(HyetexPlotDB& database, const std::string& code,
                                                    Date from, Date to) {
  Selection selection = OfInstrument(code);
  selection.Where.push_back({column::FirstTime, Compare::AtMost, DbDate{to}});
  selection.Where.push_back({column::LastTime, Compare::AtLeast, DbDate{from}});
  return ReadSpans(database, std::move(selection));
}

DbResult<void> ConversionWriter::Finish() {
  const std::vector<ChartConversion> charts = std::exchange(waiting_, {});
  if (charts.empty()) return {};
  const std::string code = ShownText(charts.front().InstrumentCode);
  std::set<std::int64_t> dates;
  for (const ChartConversion& chart : charts) dates.insert(SecondsOf(chart.ChartDate));
  // Within the transaction, since another program may have converted charts meanwhile.
  std::int64_t number = 0;
  std::vector<RowPlace> old;
  auto read = ForEachSpan(*database_, OfInstrument(code), [&](const ConvertedSpan& span) -> DbResult<void> {
    number = std::max(number, span.Number);
    if (!dates.contains(SecondsOf(span.ChartDate))) return {};
    auto place = database_->AnyTable.Place();
    if (!place) return tl::unexpected(place.error());
    old.push_back(*std::move(place));
    return {};
  });
  if (!read) return read;
  Connection& connection = database_->DatabaseConnection;
  if (auto deleted = Recordset::DeleteRows(connection, table_name::Conversion, old); !deleted) return deleted;

  std::vector<std::string> columns;
  for (const SchemaColumn& column : ConversionTable().Columns) columns.emplace_back(column.Name);
  auto rows = RowWriter::Open(connection, table_name::Conversion, columns);
  if (!rows) return tl::unexpected(rows.error());
  const DbDate now{Now()};
  for (const ChartConversion& chart : charts) {
    const ComputationVariables& variables = chart.Variables;
    if (auto added =
            rows->Add({code, DbDate{chart.ChartDate}, DbDate{chart.First}, DbDate{chart.Last},
                       Round(static_cast<double>(variables.GmtShift) * 24, 4),
                       static_cast<double>(variables.MinimalLapse), OrNull(chart.Alpha),
                       chart.Manual ? "Manual" : "Digitized", OrNull(chart.ChosenDepth), chart.Rows,
                       user_.empty() ? DbValue() : DbValue(CutToWidth(ShownText(user_), 50)), now, ++number});
        !added)
      return added;
  }
  const auto written = rows->Finish();
  if (!written) return tl::unexpected(written.error());
  return {};
}

}  // namespace hyetex
