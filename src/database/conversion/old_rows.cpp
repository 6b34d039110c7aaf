#include "database/conversion/old_rows.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/dates.h"
#include "core/text.h"
#include "database/access/names.h"

namespace hyetex {
namespace {

constexpr double Same = 0.006;  // of depths, mm

DbDate DateAt(std::int64_t second) { return {static_cast<double>(second) / SecondsPerDay}; }

}  // namespace

OldRows::Span OldRows::SpanOf(Date start, Date end) { return {SecondsOf(start), SecondsOf(end)}; }

bool OldRows::Holds(const Span& outer, const Span& inner) {
  return inner.Start >= outer.Start && inner.End <= outer.End;
}

bool OldRows::Range::Has(const Span& row) const {
  return Holds(Outer, row) && row.Start < Inner.End && (row.End > Inner.Start || row.Start >= Inner.Start);
}

OldRows::OldRows(std::string instrumentCode, const ChartRows& chart)
    : instrumentCode_(std::move(instrumentCode)), asked_(SpanOf(chart.Start, chart.End)) {
  looked_ = {asked_.Start - 1, asked_.End + 1};
  ranges_.push_back({looked_, {asked_.Start, std::max(asked_.End, asked_.Start + 1)}});
  written_.reserve(chart.Rows.size());
  for (const ChartRow& row : chart.Rows) written_.push_back(SpanOf(row.Start, row.End));
  for (const ChartRow& row : chart.FormerRows) {
    former_.push_back({SpanOf(row.Start, row.End), row.Depth.value_or(0)});
    LookAt(former_.back().Time);
  }
}

void OldRows::LookAt(const Span& span) {
  looked_ = {std::min(looked_.Start, span.Start), std::max(looked_.End, span.End)};
}

void OldRows::TakeEarlier(const ConvertedSpan& earlier, std::span<const ConvertedSpan> all) {
  const Span time = SpanOf(earlier.First, earlier.Last);
  Earlier taken{{time, {time.Start, std::max(time.End, time.Start + 1)}}, {}};
  for (const ConvertedSpan& other : all)
    if (other.Number > earlier.Number) taken.Later.push_back(SpanOf(other.First, other.Last));
  if (taken.Later.empty())
    ranges_.push_back(taken.Whole);
  else
    earlier_.push_back(std::move(taken));
  former_.clear();
  LookAt(time);
}

bool OldRows::IsEarlier(const Span& row) const {
  return std::ranges::any_of(earlier_, [&](const Earlier& earlier) {
    return earlier.Whole.Has(row) &&
           std::ranges::none_of(earlier.Later, [&](const Span& later) { return Holds(later, row); });
  });
}

// A row that reaches into the chart from its rounded start is an earlier version's first one, however long it
// was.
bool OldRows::IsFormer(const Span& row, double depth) const {
  if (former_.empty()) return false;
  const std::int64_t begin = former_.front().Time.Start;
  if (begin < asked_.Start && row.Start == begin && row.End > asked_.Start) return true;
  return std::ranges::any_of(former_, [&](const FormerRow& former) {
    return former.Time == row && std::abs(former.Depth - depth) < Same;
  });
}

DbResult<void> OldRows::Look(const ChartRow& row, Recordset& table) {
  const Span span = SpanOf(row.Start, row.End);
  if (!Holds(looked_, span)) return {};
  const bool within = std::ranges::any_of(ranges_, [&](const Range& range) { return range.Has(span); });
  const bool alone = !within && (IsEarlier(span) || IsFormer(span, row.Depth.value_or(0)));
  if (!within && !alone) return {};
  auto place = table.Place();
  if (!place) return tl::unexpected(place.error());
  rows_.push_back(row);
  places_.push_back(*std::move(place));
  const bool isSlack = within && ranges_.front().Has(span) && !Holds(asked_, span);
  wantQuestion_ = wantQuestion_ || !isSlack;
  return {};
}

DbResult<std::vector<OldRows>> OldRows::Find(HyetexPlotDB& database, const std::string& instrumentCode,
                                             std::span<const Chart> charts, bool hasBook) {
  const std::string code = ShownText(instrumentCode);
  std::vector<OldRows> found;
  std::vector<Date> dates;
  for (const Chart& chart : charts) {
    found.push_back(OldRows(code, *chart.Rows));
    dates.push_back(chart.ChartDate);
  }
  if (hasBook) {
    const auto known = ConvertedSpans(database, code, dates);
    if (!known) return tl::unexpected(known.error());
    for (const ConvertedSpan& span : *known) {
      // What lies within the chart's time goes anyway; who else wrote elsewhere is seldom to be asked.
      std::vector<ConvertedSpan> all;
      for (std::size_t i = 0; i < charts.size(); ++i) {
        if (SecondsOf(dates[i]) != SecondsOf(span.ChartDate)) continue;
        if (all.empty() && !Holds(found[i].ranges_.front().Outer, SpanOf(span.First, span.Last))) {
          auto others = ConvertedSpans(database, code, span.First, span.Last);
          if (!others) return tl::unexpected(others.error());
          all = *std::move(others);
        }
        found[i].TakeEarlier(span, all);
      }
    }
  }
  const auto from = std::ranges::min_element(found, {}, [](const OldRows& old) { return old.looked_.Start; });
  const auto to = std::ranges::max_element(found, {}, [](const OldRows& old) { return old.looked_.End; });

  // No row ends before it starts: the second condition on the start keeps the search from running through all
  // later rows of the instrument.
  Selection selection{.Columns = {column::StartTime, column::EndTime, column::Depth, column::InstrumentCode},
                      .Where = {{column::InstrumentCode, Compare::EqualIgnoringCase, code},
                                {column::StartTime, Compare::AtLeast, DateAt(from->looked_.Start)},
                                {column::StartTime, Compare::AtMost, DateAt(to->looked_.End)},
                                {column::EndTime, Compare::AtMost, DateAt(to->looked_.End)}}};
  if (const auto opened = database.OpenChart(std::move(selection)); !opened)
    return tl::unexpected(opened.error());
  Recordset& table = database.ChartTable;
  const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
    const auto start = table.Value(0), end = table.Value(1), depth = table.Value(2);
    for (const auto* value : {&start, &end, &depth})
      if (!*value) return tl::unexpected(value->error());
    ChartRow row{DateOf(*start), DateOf(*end), {}, {}};
    if (!IsNull(*depth)) row.Depth = NumberOf(*depth);
    for (OldRows& old : found)
      if (const auto looked = old.Look(row, table); !looked) return tl::unexpected(looked.error());
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

DbResult<void> OldRows::Delete(Connection& connection) const {
  return Recordset::DeleteRows(connection, table_name::Chart, places_);
}

}  // namespace hyetex
