// Loading 2,000 chart files against a bare insert of the same bytes through the same driver, and listing
// 10,000 stored charts. On SQLite, and on the PostgreSQL cluster of the folder that HYETEX_POSTGRES names
// (scripts/postgres start FOLDER).
#include <benchmark/benchmark.h>

#include <fstream>

#include "bench_database.h"
#include "chartfiles/chart_reader.h"
#include "chartfiles/chart_text.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
#include "database/store/file_list.h"
#include "database/store/loading.h"
#include "database/store/stored_text.h"
#include "ratio.h"

namespace hyetex::bench {
namespace {

constexpr int Instruments = 20;

// A folder of charts and a database without any.
class Place : public BenchDatabase {
 public:
  explicit Place(bool postgres) : BenchDatabase(postgres) {
    for (int i = 0; i < Instruments; ++i) {
      const std::string code = "NM-Station-" + PadNumber(i, 2);
      Lists.Stations.push_back({"Station " + ShortText(i), code, 0, 0});
    }
    if (!IsThere()) return;
    for (const StationRecord& station : Lists.Stations) {
      const DbValue code[] = {station.InstrumentCode};
      (void)Open().Execute("INSERT INTO INSTRUMENT (instrument_code_id) VALUES (?)", code);
    }
  }

  std::vector<std::string> WriteCharts(int count) const {
    std::string points;
    for (int i = 0; i < 1000; ++i)
      points += RoundedText(i * 0.37, 2) + "," + RoundedText(i * 7 % 1500 / 15.0, 2) + ",\r\n";
    std::vector<std::string> paths;
    for (int i = 0; i < count; ++i) {
      const StationRecord& station = Lists.Stations[static_cast<std::size_t>(1 + i / (count / Instruments))];
      const Date start = MakeDate(1990, 1, 1, 7) + i;
      paths.push_back(JoinPath(Folder, ChartFileName(station.InstrumentCode, start)));
      std::ofstream(paths.back(), std::ios::binary)
          << "HYETEX88 ASCII FILE\r\nStation Name: " << station.Name
          << "\r\nInstrument Code: " << station.InstrumentCode << "\r\nStart: " << DateText(start)
          << "\r\nEnd: " << DateText(start + 1)
          << "\r\nChart Reliability: 1-Acceptable\r\nDigitation Points:\r\n"
          << points << "General Comment: \r\nAlpha Value Selected: None\r\n";
    }
    return paths;
  }

  ReferenceLists Lists;
};

void InsertBare(Connection& connection, const std::vector<std::vector<DbValue>>& rows) {
  constexpr std::size_t inATransaction = 500;
  for (std::size_t i = 0; i < rows.size();) {
    auto transaction = Transaction::Begin(connection);
    auto writer = RowWriter::Open(connection, "chart_ascii",
                                  {"station", "instrument_code_id", "chart_date", "ascii_file"});
    for (const std::size_t end = std::min(rows.size(), i + inATransaction); i < end; ++i)
      (void)writer->Add(rows[i]);
    (void)writer->Finish();
    (void)transaction->Commit();
  }
}

void LoadCharts(benchmark::State& state, bool postgres) {
  Place place(postgres);
  if (!place.IsThere()) return state.SkipWithError("there is no such database");
  const std::vector<std::string> paths = place.WriteCharts(2000);
  std::vector<std::vector<DbValue>> rows;
  std::int64_t bytes = 0;
  for (const std::string& path : paths) {
    std::string text = MakeStoredText(BaseName(path), *ReadWholeFile(path, MostChartBytes));
    bytes += static_cast<std::int64_t>(text.size());
    rows.push_back({"Station", "NM-Station-00", DbDate{36526}, DbBinary{std::move(text)}});
  }
  std::size_t loaded = 0;
  double bareSeconds = 0, seconds = 0;
  for (auto _ : state) {
    bareSeconds += place.SecondsOnEmpty("CHART_ASCII", [&] { InsertBare(place.Open(), rows); });
    const double took = place.SecondsOnEmpty("CHART_ASCII", [&] {
      UnwatchedProgress unwatched;
      loaded = LoadFiles(place.Database, place.Lists, paths, unwatched).Loaded.size();
    });
    seconds += took;
    state.SetIterationTime(took);
  }
  Report(state, "ratio", seconds / bareSeconds, 1.5);
  if (loaded != paths.size()) state.SkipWithError("not all files were loaded");
  state.SetBytesProcessed(bytes * state.iterations());
}
BENCHMARK_CAPTURE(LoadCharts, sqlite, false)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LoadCharts, postgres, true)->UseManualTime()->Unit(benchmark::kMillisecond);

void ListCharts(benchmark::State& state, bool postgres) {
  Place place(postgres);
  if (!place.IsThere()) return state.SkipWithError("there is no such database");
  {
    const std::vector<std::string> paths = place.WriteCharts(10000);
    UnwatchedProgress unwatched;
    (void)LoadFiles(place.Database, place.Lists, paths, unwatched);
  }
  MostMegabytes();
  const double before = MostMegabytes();
  std::size_t listed = 0;
  for (auto _ : state) {
    UnwatchedProgress unwatched;
    const auto list = ReadDatabaseList(place.Database, place.Lists.Stations, unwatched);
    listed = list ? list->Files.size() : 0;
  }
  if (listed != 10000) state.SkipWithError("not all charts were listed");
  state.counters["growth_MB"] = MostMegabytes() - before;
}
BENCHMARK_CAPTURE(ListCharts, sqlite, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ListCharts, postgres, true)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hyetex::bench
