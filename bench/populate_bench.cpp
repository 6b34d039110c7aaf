// Converting stored charts into rows of CHART against a bare insert of the same rows, many in one statement,
// through the same driver, and one chart beside none and a million rows of other instruments. At least 70% of
// the bare insert's rows a second are wanted.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "bench_database.h"
#include "chartfiles/chart_text.h"
#include "core/dates.h"
#include "database/conversion/population.h"
#include "platform/odbc/recordset.h"
#include "ratio.h"

namespace hyetex::bench {
namespace {

constexpr const char* Code = "RG12";
const Date First = MakeDate(1990, 1, 1, 8);

// A chart of a day; a day is a round number of steps of 10 seconds for each of its points.
std::string Chart(Date start, int points) {
  std::string text = ChartFileName(Code, start) + "\r\nHYETEX88 ASCII FILE\r\nInstrument Code: " + Code +
                     "\r\nChart Method: 0 - Linear\r\nStart: " + DateText(start) +
                     "\r\nEnd: " + DateText(start + 1) +
                     "\r\nDigitized Depth: 47.3\r\nSelected Depth: 47.3\r\nManual Depth: 46\r\n"
                     "Chart Reliability: 1-Acceptable\r\nDigitation Points:\r\n";
  for (int i = 1; i <= points; ++i)
    text +=
        RoundedText(i * 0.37, 2) + "," + RoundedText(i * 0.11, 2) + (i % 50 == 0 ? ",CODE205\r\n" : ",\r\n");
  return text + "General Comment: \r\nAlpha Value Selected: None\r\n";
}

void StoreCharts(BenchDatabase& place, int charts, int points) {
  auto transaction = Transaction::Begin(place.Open());
  auto writer =
      RowWriter::Open(place.Open(), "chart_ascii", {"instrument_code_id", "chart_date", "ascii_file"});
  for (int i = 0; i < charts; ++i)
    (void)writer->Add({Code, DbDate{First + i}, DbBinary{Chart(First + i, points)}});
  (void)writer->Finish();
  (void)transaction->Commit();
}

std::int64_t Convert(BenchDatabase& place, int first, int charts) {
  ReferenceLists lists;
  lists.Stations = {{"North", Code, 0, 0}};
  std::vector<ChartToConvert> chosen;
  for (int i = 0; i < charts; ++i) chosen.push_back({First + first + i, false});
  UnwatchedProgress progress;
  return WriteChartRecords(place.Database, lists, Code, chosen,
                           {.Variables = {.GmtShift = 2.0F / 24}, .Overwrite = true, .LogFolder = {}},
                           place.Boxes, progress)
      .RowsWritten;
}

constexpr const char* Columns[] = {
    "station",          "instrument_code_id",    "start_time", "end_time", "depth",
    "computing_method", "data_Reliability_code", "comments"};

std::vector<std::vector<DbValue>> ReadRows(BenchDatabase& place) {
  std::vector<std::vector<DbValue>> rows;
  auto table = Recordset::Open(place.Open(), "chart", {.Columns = {std::begin(Columns), std::end(Columns)}});
  for (; !table->Eof(); (void)table->MoveNext())
    for (int i = (rows.emplace_back(), 0); i < 8; ++i) rows.back().push_back(*table->Value(i));
  return rows;
}

// Statements of 100 rows, prepared once, in transactions as large as a conversion's.
void InsertBare(Connection& connection, const std::vector<std::vector<DbValue>>& rows) {
  constexpr std::size_t OfATransaction = 10'000;
  auto writer = RowWriter::Open(connection, "chart", {std::begin(Columns), std::end(Columns)});
  for (std::size_t i = 0; i < rows.size();) {
    auto transaction = Transaction::Begin(connection);
    for (const std::size_t end = std::min(i + OfATransaction, rows.size()); i < end; ++i)
      (void)writer->Add(rows[i]);
    (void)writer->Finish();
    (void)transaction->Commit();
  }
}

void ConvertCharts(benchmark::State& state, bool postgres) {
  const int charts = static_cast<int>(state.range(0)), points = static_cast<int>(state.range(1));
  BenchDatabase place(postgres);
  if (!place.IsThere()) return state.SkipWithError("there is no such database");
  StoreCharts(place, charts, points);
  std::int64_t written = Convert(place, 0, charts);
  double growth = 0;
  std::vector<std::vector<DbValue>> rows = ReadRows(place);
  double bareSeconds = 0, seconds = 0;
  for (auto _ : state) {
    bareSeconds += place.SecondsOnEmpty("CHART", [&] { InsertBare(place.Open(), rows); });
    MostMegabytes();
    const double held = MostMegabytes();
    const double took = place.SecondsOnEmpty("CHART", [&] { written = Convert(place, 0, charts); });
    growth = std::max(growth, MostMegabytes() - held);
    seconds += took;
    state.SetIterationTime(took);
  }
  if (written != charts * points) state.SkipWithError("not all rows were written");
  Report(state, "ratio", seconds / bareSeconds, 1.43);
  state.counters["growth_MB"] = growth;
  state.SetItemsProcessed(written * state.iterations());
}
#define CONVERT(engine, postgres)                    \
  BENCHMARK_CAPTURE(ConvertCharts, engine, postgres) \
      ->ArgNames({"charts", "points"})               \
      ->Args({60, 5000})                             \
      ->Args({1000, 300})                            \
      ->UseManualTime()                              \
      ->Unit(benchmark::kMillisecond)
CONVERT(sqlite, false);
CONVERT(postgres, true);

// The time of a chart of 300 points beside none and a million rows of other instruments.
void ConvertOneChart(benchmark::State& state, bool postgres) {
  BenchDatabase place(postgres);
  if (!place.IsThere()) return state.SkipWithError("there is no such database");
  StoreCharts(place, 1, 300);
  const auto others = static_cast<int>(state.range(0));
  {
    auto transaction = Transaction::Begin(place.Open());
    auto writer =
        RowWriter::Open(place.Open(), "chart", {"instrument_code_id", "start_time", "end_time", "depth"});
    for (int i = 0; i < others; ++i) {
      const Date start = First + i % 10000 / 1440.0;
      (void)writer->Add(
          {"RG" + std::to_string(100 + i % 50), DbDate{start}, DbDate{start + 1 / 1440.0}, 0.1});
    }
    (void)writer->Finish();
    (void)transaction->Commit();
  }
  if (postgres) place.Run("ANALYZE chart");
  for (auto _ : state)
    if (Convert(place, 0, 1) != 300) state.SkipWithError("not all rows were written");
}
BENCHMARK_CAPTURE(ConvertOneChart, sqlite, false)
    ->ArgName("others")
    ->Arg(0)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ConvertOneChart, postgres, true)
    ->ArgName("others")
    ->Arg(0)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hyetex::bench
