#include "database/conversion/old_rows.h"

#include <algorithm>
#include <utility>

#include "core/dates.h"
#include "core/text.h"
#include "database/access/names.h"

namespace hyetex {
namespace {

constexpr double Second = 1.0 / SecondsPerDay;

struct Span {
  std::int64_t Start, End;
  auto operator<=>(const Span&) const = default;
};
Span SpanOf(Date start, Date end) { return {SecondsOf(start), SecondsOf(end)}; }

std::vector<Span> SpansOf(const std::vector<ChartRow>& rows) {
  std::vector<Span> spans;
  spans.reserve(rows.size());
  for (const ChartRow& row : rows) spans.push_back(SpanOf(row.Start, row.End));
  std::sort(spans.begin(), spans.end());
  return spans;
}

bool Holds(const Span& outer, const Span& inner) {
  return inner.Start >= outer.Start && inner.End <= outer.End;
}

}  // namespace

DbResult<OldRows> OldRows::Find(HyetexPlotDB& database, const std::string& instrumentCode,
                                const ChartRows& chart) {
  OldRows old;
  old.instrumentCode_ = ShownText(instrumentCode);
  old.from_ = chart.Start - Second;
  old.to_ = chart.End + Second;
  const Span asked = SpanOf(chart.Start, chart.End), deleted = SpanOf(old.from_, old.to_);
  const std::vector<Span> written = SpansOf(chart.Rows);
  const std::int64_t begin = written.front().Start;
  const Date from = std::min(old.from_, chart.Rows.front().Start);
  const Date to = std::max(old.to_, chart.Rows.back().End);

  // No row ends before it starts: the second condition on the start keeps the search from running through all
  // later rows of the instrument.
  Selection selection{.Columns = {column::StartTime, column::EndTime},
                      .Where = {{column::InstrumentCode, Compare::EqualIgnoringCase, old.instrumentCode_},
                                {column::StartTime, Compare::AtLeast, DbDate{from}},
                                {column::StartTime, Compare::AtMost, DbDate{to}},
                                {column::EndTime, Compare::AtMost, DbDate{to}}}};
  if (const auto opened = database.OpenChart(std::move(selection)); !opened)
    return tl::unexpected(opened.error());
  Recordset& table = database.ChartTable;
  const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    const auto start = table.Value(0), end = table.Value(1);
    if (!start || !end) return tl::unexpected(start ? end.error() : start.error());
    const ChartRow row{DateOf(*start), DateOf(*end), {}, {}};
    const Span span = SpanOf(row.Start, row.End);
    const bool within = Holds(deleted, span);
    const bool own = !within && ((span.Start == begin && span.End > begin) ||
                                 std::binary_search(written.begin(), written.end(), span));
    if (within || own) old.rows_.push_back(row);
    if (own) old.outside_.push_back(row);
    old.wantQuestion_ = old.wantQuestion_ || own || Holds(asked, span);
    return true;
  });
  table.Close();
  if (!walked) return tl::unexpected(walked.error());
  return old;
}

DbResult<std::int64_t> OldRows::Delete(Connection& connection) const {
  if (rows_.empty()) return 0;
  // Some databases tell CHART from chart.
  const auto table = connection.FindTable(table_name::Chart);
  if (!table) return tl::unexpected(table.error());
  const std::string of = "DELETE FROM " + table->value_or(table_name::Chart) + " WHERE upper(" +
                         column::InstrumentCode + ") = upper(?) AND ";
  std::int64_t count = 0;
  const auto run = [&](const char* conditions, std::vector<DbValue> parameters) -> DbResult<void> {
    const auto deleted = connection.Execute(of + conditions, parameters);
    if (!deleted) return tl::unexpected(deleted.error());
    count += *deleted;
    return {};
  };
  if (rows_.size() > outside_.size())
    if (const auto done = run("start_time >= ? AND start_time <= ? AND end_time <= ?",
                              {instrumentCode_, DbDate{from_}, DbDate{to_}, DbDate{to_}});
        !done)
      return tl::unexpected(done.error());
  for (const ChartRow& row : outside_)
    if (const auto done =
            run("start_time = ? AND end_time = ?", {instrumentCode_, DbDate{row.Start}, DbDate{row.End}});
        !done)
      return tl::unexpected(done.error());
  return count;
}

}  // namespace hyetex
