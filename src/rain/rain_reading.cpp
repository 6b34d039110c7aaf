#include "rain/rain_reading.h"

#include <algorithm>
#include <array>

#include "core/dates.h"
#include "core/text.h"
#include "database/access/names.h"

namespace hyetex {
namespace {

constexpr std::int64_t RowsInOneStep = 4096;
constexpr RainTime DaysAtOnce = 64, MostStretches = 2000;

DbDate DateAt(RainTime time) { return {static_cast<double>(time) / SecondsPerDay}; }

std::optional<RainTime> TimeOf(const DbValue& value) {
  if (const auto* date = std::get_if<DbDate>(&value)) return SecondsOf(date->Value);
  return std::nullopt;
}

RainTrust TrustOf(const DbValue& value) {
  const auto* word = std::get_if<std::string>(&value);
  if (word == nullptr) return RainTrust::Unknown;
  constexpr std::array<std::pair<std::string_view, RainTrust>, 3> words = {
      {{"Acceptable", RainTrust::Acceptable},
       {"Marginal", RainTrust::Marginal},
       {"Unreliable", RainTrust::Unreliable}}};
  for (const auto& [name, trust] : words)
    if (EqualIgnoringCase(Trim(*word), name)) return trust;
  return RainTrust::Unknown;
}

// A database that keeps times as texts sorts them by these, in whatever form they are: within a day they may
// come in another order than that of time.
class DayOrder {
 public:
  explicit DayOrder(RainSweep& sweep) : sweep_(sweep) {}
  void Add(const RainRow& row) {
    if (!row.Start) return sweep_.Add(row);
    const RainTime day = *row.Start / DaySeconds;
    if (day != day_) Flush();
    day_ = day;
    isSorted_ = isSorted_ && (rows_.empty() || *rows_.back().Start <= *row.Start);
    rows_.push_back(row);
  }
  void Flush() {
    if (!isSorted_) std::ranges::stable_sort(rows_, {}, [](const RainRow& row) { return *row.Start; });
    for (const RainRow& row : rows_) sweep_.Add(row);
    rows_.clear();
    isSorted_ = true;
  }

 private:
  RainSweep& sweep_;
  std::vector<RainRow> rows_;
  RainTime day_ = 0;
  bool isSorted_ = true;
};

Selection RowsOf(const RainChoice& choice) {
  Selection selection{.Columns = {column::StartTime, column::EndTime, column::Depth},
                      .Where = {{column::InstrumentCode, Compare::EqualIgnoringCase, choice.Instrument}},
                      .Page = Page{.OrderBy = {column::StartTime}}};
  if (choice.WithTrust) selection.Columns.emplace_back(column::DataReliability);
  const auto add = [&](const char* name, Compare how, RainTime time) {
    selection.Where.push_back({name, how, DateAt(time)});
  };
  // Rows that reach into the span begin before it, but none by more than a row may last: an index on the
  // start keeps the search from running through all that lies before.
  if (choice.Span.From) {
    add(column::StartTime, Compare::AtLeast, *choice.Span.From - MostRowSeconds);
    add(column::EndTime, Compare::AtLeast, *choice.Span.From);
  }
  if (choice.Span.To) add(column::StartTime, Compare::AtMost, *choice.Span.To - 1);
  return selection;
}

// Of a row of the recordset, whose columns are those of RowsOf().
DbResult<RainRow> ReadRow(Recordset& table, bool withTrust) {
  const auto start = table.Value(0), end = table.Value(1), depth = table.Value(2);
  for (const auto* value : {&start, &end, &depth})
    if (!*value) return tl::unexpected(value->error());
  RainRow row{.Start = TimeOf(*start), .End = TimeOf(*end)};
  if (!IsNull(*depth)) row.Depth = NumberOf(*depth);
  if (withTrust) {
    const auto trust = table.Value(3);
    if (!trust) return tl::unexpected(trust.error());
    row.Trust = TrustOf(*trust);
  }
  return row;
}

// SQLite's driver holds all that a statement gives. There the rows are asked for some days at a time; the
// first and the last stretch are open, so that times in a form of their own, which sort anywhere, are seen
// and told.
DbResult<std::vector<Selection>> StretchesOf(HyetexPlotDB& database, const RainChoice& choice) {
  std::vector<Selection> stretches;
  const auto add = [&](std::optional<RainTime> from, std::optional<RainTime> behind) {
    Selection& selection = stretches.emplace_back(RowsOf(choice));
    if (from) selection.Where.push_back({column::StartTime, Compare::AtLeast, DateAt(*from)});
    if (behind) selection.Where.push_back({column::StartTime, Compare::AtMost, DateAt(*behind - 1)});
  };
  const auto extent = FindRainExtent(database, choice.Instrument);
  if (!extent) return tl::unexpected(extent.error());
  if (database.DatabaseConnection.Maker() != "SQLite" || !*extent) {
    add({}, {});
    return stretches;
  }
  const RainTime first = std::max((*extent)->First, choice.Span.From.value_or((*extent)->First)) / DaySeconds;
  const RainTime last = std::min((*extent)->Last, choice.Span.To.value_or((*extent)->Last)) / DaySeconds;
  const RainTime days = std::max(DaysAtOnce, (last - first) / MostStretches);
  std::optional<RainTime> from;
  for (RainTime day = first + days; day <= last; day += days) {
    add(from, day * DaySeconds);
    from = day * DaySeconds;
  }
  add(from, {});
  if (from && !choice.Span.From && !choice.Span.To) {  // rows without a start lie in none of these
    add({}, {});
    stretches.back().Where.push_back({column::StartTime, Compare::Equal, DbNull{}});
  }
  return stretches;
}

}  // namespace

DbResult<RainRemarks> ReadRain(HyetexPlotDB& database, const RainChoice& choice,
                               const std::vector<RainSink*>& sinks, Progress& progress) {
  auto stretches = StretchesOf(database, choice);
  if (!stretches) return tl::unexpected(stretches.error());
  Recordset& table = database.ChartTable;
  RainSweep sweep(choice.Span, sinks);
  DayOrder order(sweep);
  std::int64_t read = 0;
  for (Selection& selection : *stretches) {
    if (const auto opened = database.OpenChart(std::move(selection)); !opened)
      return tl::unexpected(opened.error());
    const auto walked = ForEachRow(table, [&]() -> DbResult<bool> {
      auto row = ReadRow(table, choice.WithTrust);
      if (!row) return tl::unexpected(row.error());
      order.Add(*row);
      if (++read % RowsInOneStep == 0 && !progress.Step(read, 0, {}))
        return tl::unexpected(DbError{db_error::Cancelled, "Stopped", {}});
      return true;
    });
    table.Close();
    if (!walked) return tl::unexpected(walked.error());
  }
  order.Flush();
  sweep.End();
  return sweep.Remarks();
}

DbResult<std::optional<RainExtent>> FindRainExtent(HyetexPlotDB& database, const std::string& instrument) {
  if (!database.DatabaseConnection.IsOpen())
    if (const auto opened = database.OpenDatabase(); !opened) return tl::unexpected(opened.error());
  const auto look = [&](bool backward) -> DbResult<std::optional<RainTime>> {
    Selection selection{.Columns = {column::StartTime},
                        .Where = {{column::InstrumentCode, Compare::EqualIgnoringCase, instrument},
                                  {column::StartTime, Compare::AtLeast, DbDate{MakeDate(100, 1, 2)}}},
                        .Page = Page{.OrderBy = {column::StartTime}, .Backward = backward, .Most = 1}};
    const auto rows =
        Recordset::ReadPage(database.DatabaseConnection, table_name::Chart, std::move(selection));
    if (!rows) return tl::unexpected(rows.error());
    if (rows->empty()) return std::nullopt;
    return TimeOf(rows->front().Values.front());
  };
  const auto first = look(false), last = look(true);
  if (!first) return tl::unexpected(first.error());
  if (!last) return tl::unexpected(last.error());
  if (!*first || !*last) return std::nullopt;
  return RainExtent{**first, **last};
}

}  // namespace hyetex
