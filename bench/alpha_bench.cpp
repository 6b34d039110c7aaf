// The list of an instrument's charts with their alpha values against reading their texts bare, through the
// same driver. No more than 1.5 times as long is wanted.
#include <benchmark/benchmark.h>

#include "alpha/alpha_list.h"
#include "bench_database.h"
#include "chartfiles/chart_text.h"
#include "core/dates.h"
#include "core/numbers.h"
#include "platform/odbc/recordset.h"
#include "ratio.h"

namespace hyetex::bench {
namespace {

constexpr const char* Code = "RG12";
const Date First = MakeDate(1990, 1, 1, 8);

// A chart of a day with 400 points, 15 of them alpha points.
std::string Chart(Date start) {
  std::string text = ChartFileName(Code, start) + "\r\nHYETEX88 ASCII FILE\r\nInstrument Code: " + Code +
                     "\r\nStart: " + DateText(start) + "\r\nEnd: " + DateText(start + 1) +
                     "\r\nNumber of Points: 400\r\nDigitation Points:\r\n";
  for (int i = 1; i <= 400; ++i)
    text += RoundedText(i * 0.97, 2) + "," + RoundedText(i % 27 * 3.7, 2) +
            (i % 27 == 0 ? ",CODE202\r\n" : ",\r\n");
  text += "General Comment: \r\n";
  for (int i = 1; i <= MaxAlpha; ++i) text += "Alpha " + std::to_string(i) + " : 0.00431\r\n";
  return text + "Alpha Value Selected: None\r\n";
}

std::size_t ReadBare(BenchDatabase& place) {
  std::size_t bytes = 0;
  auto table = Recordset::Open(place.Open(), "chart_ascii", {.Columns = {"ascii_file"}, .LongWithRow = true});
  for (; !table->Eof(); (void)table->MoveNext())
    (void)table->ReadPieces("ascii_file", [&](std::string_view piece) {
      bytes += piece.size();
      return true;
    });
  return bytes;
}

void ListAlphas(benchmark::State& state, bool postgres) {
  const int charts = static_cast<int>(state.range(0));
  BenchDatabase place(postgres);
  if (!place.IsThere()) return state.SkipWithError("there is no such database");
  {
    auto transaction = Transaction::Begin(place.Open());
    auto writer =
        RowWriter::Open(place.Open(), "chart_ascii", {"instrument_code_id", "chart_date", "ascii_file"});
    for (int i = 0; i < charts; ++i) (void)writer->Add({Code, DbDate{First + i}, DbBinary{Chart(First + i)}});
    (void)writer->Finish();
    (void)transaction->Commit();
  }
  UnwatchedProgress unwatched;
  std::size_t listed = 0;
  CompareWithBaseline(
      state, 1.5, [&] { benchmark::DoNotOptimize(ReadBare(place)); },
      [&] { listed = ReadAlphaList(place.Database, Code, unwatched)->Charts.size(); });
  if (listed != static_cast<std::size_t>(charts)) state.SkipWithError("not all charts were listed");
  state.SetItemsProcessed(charts * state.iterations());
}
BENCHMARK_CAPTURE(ListAlphas, sqlite, false)
    ->ArgName("charts")
    ->Arg(2000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ListAlphas, postgres, true)
    ->ArgName("charts")
    ->Arg(2000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hyetex::bench
