// Ten years of an instrument's rows to daily sums and all maxima, against reading the same rows bare: at most
// twice the time is wanted. And the first picture of a year beside another instrument's ten million rows,
// which is wanted within a second. HYETEX_RAIN_ROWS and HYETEX_RAIN_OTHERS make both smaller.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>

#include "bench_database.h"
#include "core/dates.h"
#include "graph/draw.h"
#include "platform/cairo/pictures.h"
#include "rain/rain_graphs.h"
#include "rain/rain_maxima.h"
#include "rain/rain_reading.h"
#include "rain/rain_steps.h"
#include "ratio.h"

namespace hyetex::bench {
namespace {

constexpr const char* Code = "NM-Hill Farm-01";
constexpr const char* OtherCode = "NM-Mill Pond-01";
constexpr int Years = 10;

std::int64_t CountOf(const char* variable, std::int64_t otherwise) {
  const char* text = std::getenv(variable);
  return text == nullptr ? otherwise : std::atoll(text);
}

// Rows that follow one another through the years, made by the database itself; every third one has rain.
void MakeRows(BenchDatabase& place, bool postgres, const char* code, std::int64_t rows) {
  const std::int64_t seconds = (RainTime{Years} * 365 * DaySeconds / rows) / 10 * 10;
  const std::string step = std::to_string(seconds), count = std::to_string(rows);
  const std::string depth = "CASE WHEN n % 3 = 0 THEN (n % 89 * 7919 % 97) * 0.01 ELSE 0 END";
  const std::string into =
      "INSERT INTO CHART (station, instrument_code_id, start_time, end_time, depth, computing_method, "
      "data_Reliability_code, comments) ";
  if (postgres)
    place.Run(into + "SELECT 'Station', '" + code + "', timestamp '1990-01-01' + n * interval '" + step +
              " second', timestamp '1990-01-01' + (n + 1) * interval '" + step + " second', " + depth +
              ", 'ASCII', 'Acceptable', ' ' FROM generate_series(0, " + count + " - 1) AS n");
  else
    place.Run(into +
              "WITH RECURSIVE numbers(n) AS (SELECT 0 UNION ALL SELECT n + 1 FROM numbers WHERE n + 1 < " +
              count + ") SELECT 'Station', '" + code + "', strftime('%Y-%m-%d %H:%M:%S', 631152000 + n * " +
              step + ", 'unixepoch'), strftime('%Y-%m-%d %H:%M:%S', 631152000 + (n + 1) * " + step +
              ", 'unixepoch'), " + depth + ", 'ASCII', 'Acceptable', ' ' FROM numbers");
}

double ReadBare(BenchDatabase& place) {
  Selection selection{.Columns = {"start_time", "end_time", "depth"},
                      .Where = {{"instrument_code_id", Compare::EqualIgnoringCase, Code}},
                      .Page = Page{.OrderBy = {"start_time"}}};
  auto table = Recordset::Open(place.Open(), "chart", std::move(selection));
  double sum = 0;
  for (; table && !table->Eof(); (void)table->MoveNext()) {
    benchmark::DoNotOptimize(DateOf(*table->Value(0)) + DateOf(*table->Value(1)));
    sum += NumberOf(*table->Value(2));
  }
  return sum;
}

void RainOfTenYears(benchmark::State& state, bool postgres) {
  BenchDatabase place(postgres);
  if (!place.IsThere()) return state.SkipWithError("there is no such database");
  const std::int64_t rows = CountOf("HYETEX_RAIN_ROWS", 1'000'000);
  MakeRows(place, postgres, Code, rows);
  if (postgres) place.Run("ANALYZE chart");
  UnwatchedProgress progress;
  double bare = 0, depth = 0, growth = 0;
  std::int64_t read = 0;
  CompareWithBaseline(
      state, 2, [&] { bare = ReadBare(place); },
      [&] {
        MostMegabytes();
        const double held = MostMegabytes();
        RainSteps days(RainDays, {}, {}, [&](const RainStep& day) { benchmark::DoNotOptimize(day); });
        RainMaxima maxima;
        const auto remarks = ReadRain(place.Database, {.Instrument = Code}, {&days, &maxima}, progress);
        if (!remarks) return state.SkipWithError(remarks.error().Description.c_str());
        depth = MmOf(remarks->Depth);
        read = remarks->Rows;
        growth = std::max(growth, MostMegabytes() - held);
      });
  if (read != rows || std::abs(depth - bare) > 1e-3) state.SkipWithError("not all rain was read");
  state.counters["growth_MB"] = growth;
  state.SetItemsProcessed(rows * state.iterations());
}
BENCHMARK_CAPTURE(RainOfTenYears, sqlite, false)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RainOfTenYears, postgres, true)->UseManualTime()->Unit(benchmark::kMillisecond);

void FirstPictureOfAYear(benchmark::State& state, bool postgres) {
  BenchDatabase place(postgres);
  if (!place.IsThere()) return state.SkipWithError("there is no such database");
  MakeRows(place, postgres, OtherCode, CountOf("HYETEX_RAIN_OTHERS", 10'000'000));
  MakeRows(place, postgres, Code, CountOf("HYETEX_RAIN_ROWS", 1'000'000));
  if (postgres) place.Run("ANALYZE chart");
  UnwatchedProgress progress;
  const RainTime begin = SecondsOf(MakeDate(1995, 1, 1));
  const RainSpan span{begin, begin + 365 * DaySeconds};
  double seconds = 0;
  for (auto _ : state) {
    place.Database.Close();
    const auto start = std::chrono::steady_clock::now();
    if (!FindRainExtent(place.Database, Code)) state.SkipWithError("there is no rain");
    std::vector<RainStep> steps;
    RainSteps days(RainDays, {}, span, [&](const RainStep& day) { steps.push_back(day); });
    (void)ReadRain(place.Database, {.Instrument = Code, .Span = span}, {&days}, progress);
    const Graph graph = MakeRainGraph(steps, {.Title = "Rain"});
    (void)MakePicture(PictureFormat::Png, A4Landscape, 28, 96,
                      [&](Surface& surface) { Draw(graph, surface); });
    seconds =
        std::max(seconds, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    if (std::ranges::count(steps, 1.0, &RainStep::Covered) < 364)
      state.SkipWithError("not all days were drawn");
  }
  Report(state, "seconds", seconds, 1);
}
BENCHMARK_CAPTURE(FirstPictureOfAYear, sqlite, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FirstPictureOfAYear, postgres, true)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hyetex::bench
