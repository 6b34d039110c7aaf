#include "database/conversion/conversion_book.h"

#include <algorithm>
#include <utility>

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "database/access/names.h"
#include "database/access/schema.h"

namespace hyetex {
namespace {

DbResult<std::vector<ConvertedSpan>> ReadSpans(HyetexPlotDB& database, Selection selection) {
  selection.Columns = {column::ChartDate, column::FirstTime, column::LastTime, column::ConversionNumber};
  if (const auto opened = database.OpenAnyTable(table_name::Conversion, std::move(selection)); !opened)
    return tl::unexpected(opened.error());
  std::vector<ConvertedSpan> spans;
  Recordset& table = database.AnyTable;
  const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    DbValue values[4];
    for (int i = 0; i < 4; ++i) {
      auto value = table.Value(i);
      if (!value) return tl::unexpected(value.error());
      values[i] = *std::move(value);
    }
    spans.push_back({DateOf(values[0]), DateOf(values[1]), DateOf(values[2]),
                     static_cast<std::int64_t>(NumberOf(values[3]))});
    return true;
  });
  table.Close();
  if (!walked) return tl::unexpected(walked.error());
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

DbResult<ConversionWriter> ConversionWriter::Open(HyetexPlotDB& database, std::string user) {
  const auto table = database.DatabaseConnection.FindTable(table_name::Conversion);
  if (!table) return tl::unexpected(table.error());
  return ConversionWriter(database, std::move(user), table->value_or(table_name::Conversion));
}

DbResult<void> ConversionWriter::Finish() {
  const std::vector<ChartConversion> charts = std::exchange(waiting_, {});
  if (charts.empty()) return {};
  const std::string code = ShownText(charts.front().InstrumentCode);
  std::string marks;
  std::vector<DbValue> parameters{code};
  for (const ChartConversion& chart : charts) {
    marks += marks.empty() ? "?" : ", ?";
    parameters.emplace_back(DbDate{chart.ChartDate});
  }
  // Within the transaction, since another program may have converted charts meanwhile.
  const auto spans = ReadSpans(*database_, OfInstrument(code));
  if (!spans) return tl::unexpected(spans.error());
  std::int64_t number = 0;
  for (const ConvertedSpan& span : *spans) number = std::max(number, span.Number);
  Connection& connection = database_->DatabaseConnection;
  const auto deleted = connection.Execute("DELETE FROM " + table_ + " WHERE UPPER(" + column::InstrumentCode +
                                              ") = UPPER(?) AND " + column::ChartDate + " IN (" + marks + ")",
                                          parameters);
  if (!deleted) return tl::unexpected(deleted.error());

  std::vector<std::string> columns;
  for (const SchemaColumn& column : ConversionTable().Columns) columns.emplace_back(column.Name);
  auto rows = RowWriter::Open(connection, table_, columns);
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
