#include "database/conversion/old_rows.h"

#include <algorithm>
#include <utility>

#include "core/dates.h"
#include "core/text.h"
#include "database/access/names.h"

namespace hyetex {
namespace {

constexpr double Second = 1.0 / SecondsPerDay;

}  // namespace

OldRows::Span OldRows::SpanOf(Date start, Date end) { return {SecondsOf(start), SecondsOf(end)}; }

bool OldRows::Holds(const Span& outer, const Span& inner) {
  return inner.Start >= outer.Start && inner.End <= outer.End;
}

OldRows::OldRows(std::string instrumentCode, const ChartRows& chart)
    : instrumentCode_(std::move(instrumentCode)),
      from_(chart.Start - Second),
      to_(chart.End + Second),
      lookFrom_(std::min(from_, chart.Rows.front().Start)),
      lookTo_(std::max(to_, chart.Rows.back().End)),
      asked_(SpanOf(chart.Start, chart.End)),
      deleted_(SpanOf(from_, to_)),
      looked_(SpanOf(lookFrom_, lookTo_)) {
  written_.reserve(chart.Rows.size());
  for (const ChartRow& row : chart.Rows) written_.push_back(SpanOf(row.Start, row.End));
  std::sort(written_.begin(), written_.end());
  begin_ = written_.front().Start;
}

void OldRows::Look(const ChartRow& row) {
  const Span span = SpanOf(row.Start, row.End);
  if (!Holds(looked_, span)) return;
  const bool within = Holds(deleted_, span);
  const bool own = !within && ((span.Start == begin_ && span.End > begin_) ||
                               std::binary_search(written_.begin(), written_.end(), span));
  if (within || own) rows_.push_back(row);
  if (own) outside_.push_back(row);
  wantQuestion_ = wantQuestion_ || own || Holds(asked_, span);
}

DbResult<std::vector<OldRows>> OldRows::Find(HyetexPlotDB& database, const std::string& instrumentCode,
                                             std::span<const ChartRows* const> charts) {
  const std::string code = ShownText(instrumentCode);
  std::vector<OldRows> found;
  for (const ChartRows* chart : charts) found.push_back(OldRows(code, *chart));
  const Date from = std::ranges::min(found, {}, &OldRows::lookFrom_).lookFrom_;
  const Date to = std::ranges::max(found, {}, &OldRows::lookTo_).lookTo_;

  // No row ends before it starts: the second condition on the start keeps the search from running through all
  // later rows of the instrument.
  Selection selection{.Columns = {column::StartTime, column::EndTime},
                      .Where = {{column::InstrumentCode, Compare::EqualIgnoringCase, code},
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
    for (OldRows& old : found) old.Look(row);
    return true;
  });
  table.Close();
  if (!walked) return tl::unexpected(walked.error());
  return found;
}

bool OldRows::DependsOn(const OldRows& other) const {
  const auto sees = [&](const Span& span) { return Holds(looked_, span); };
  return std::any_of(other.written_.begin(), other.written_.end(), sees) ||
         std::any_of(other.rows_.begin(), other.rows_.end(),
                     [&](const ChartRow& row) { return sees(SpanOf(row.Start, row.End)); });
}

bool OldRows::SameRows(const OldRows& other) const {
  return wantQuestion_ == other.wantQuestion_ &&
         std::ranges::equal(
             rows_, other.rows_, {}, [](const ChartRow& row) { return SpanOf(row.Start, row.End); },
             [](const ChartRow& row) { return SpanOf(row.Start, row.End); });
}

DbResult<std::int64_t> OldRows::Delete(Connection& connection) const {
  if (rows_.empty()) return 0;
  // Some databases tell CHART from chart.
  const auto table = connection.FindTable(table_name::Chart);
  if (!table) return tl::unexpected(table.error());
  const std::string start = column::StartTime, end = column::EndTime;
  const std::string of = "DELETE FROM " + table->value_or(table_name::Chart) + " WHERE upper(" +
                         column::InstrumentCode + ") = upper(?) AND ";
  std::int64_t count = 0;
  const auto run = [&](const std::string& conditions, std::vector<DbValue> parameters) -> DbResult<void> {
    const auto deleted = connection.Execute(of + conditions, parameters);
    if (!deleted) return tl::unexpected(deleted.error());
    count += *deleted;
    return {};
  };
  if (rows_.size() > outside_.size())
    if (const auto done = run(start + " >= ? AND " + start + " <= ? AND " + end + " <= ?",
                              {instrumentCode_, DbDate{from_}, DbDate{to_}, DbDate{to_}});
        !done)
      return tl::unexpected(done.error());
  for (const ChartRow& row : outside_)
    if (const auto done =
            run(start + " = ? AND " + end + " = ?", {instrumentCode_, DbDate{row.Start}, DbDate{row.End}});
        !done)
      return tl::unexpected(done.error());
  return count;
}

}  // namespace hyetex
