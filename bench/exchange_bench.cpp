// A table of 1,000,000 rows (HYETEX_BENCH_ROWS in the environment for fewer) out to XML, against reading the
// same rows and printing them plainly, and in again, against a bare many-row INSERT of the same rows. On
// SQLite, and on the PostgreSQL cluster of the folder that HYETEX_POSTGRES names (scripts/postgres start
// FOLDER). "growth_MB" is what either takes of memory on top of what stood before.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>

#include "bench_database.h"
#include "core/dates.h"
#include "exchange/export_table.h"
#include "exchange/import_xml.h"
#include "ratio.h"

namespace hyetex::bench {
namespace {

constexpr double AtMostTimes = 3, AtMostMegabytes = 30;

int RowCount() {
  const char* rows = std::getenv("HYETEX_BENCH_ROWS");
  return rows == nullptr ? 1'000'000 : static_cast<int>(LeadingNumber(rows));
}

// Without the indexes, which take their time whoever writes.
class Place : public BenchDatabase {
 public:
  explicit Place(bool postgres) : BenchDatabase(postgres) {
    if (!IsThere()) return;
    Run("DROP TABLE bench_chart");
    Run("CREATE TABLE bench_chart (station varchar(25), instrument_code_id varchar(40), start_time "
        "timestamp, "
        "end_time timestamp, depth real, computing_method varchar(10), data_reliability_code varchar(20), "
        "comments varchar(25))");
  }
  ~Place() { Run("DROP TABLE bench_chart"); }

  bool Insert() {
    auto transaction = Transaction::Begin(Open());
    auto writer = RowWriter::Open(Open(), "bench_chart",
                                  {"station", "instrument_code_id", "start_time", "end_time", "depth",
                                   "computing_method", "data_reliability_code", "comments"});
    const Date start = MakeDate(1998, 3, 5);
    for (int i = 0; i < RowCount(); ++i)
      if (!writer->Add({"Hill of the old mill", "NM-Hill-01", DbDate{start + i / 1440.0},
                        DbDate{start + (i + 1) / 1440.0}, 0.25 * (i % 40), "ASCII", "Acceptable", " "}))
        return false;
    return writer->Finish() && transaction->Commit();
  }

  bool PrintPlainly() {
    std::FILE* file = std::fopen(JoinPath(Folder, "plain.csv").c_str(), "w");
    auto table = Recordset::Open(Open(), "bench_chart");
    for (; table && !table->Eof(); (void)table->MoveNext()) {
      std::string line;
      for (int i = 0; i < table->FieldCount(); ++i) line += TextOf(*table->Value(i)) + ",";
      line += "\n";
      std::fwrite(line.data(), 1, line.size(), file);
    }
    return std::fclose(file) == 0 && table;
  }

  bool Export() {
    UnwatchedProgress unwatched;
    const auto escaped = [](const std::vector<const ExportedTable*>&) {
      return std::optional(Markup::Escaped);
    };
    const ExportResult result = ExportTable(Database, "bench_chart", Folder, escaped, unwatched);
    return result.Failed.empty() && result.Tables.at(0).Rows == RowCount();
  }
  bool Import() {
    UnwatchedProgress unwatched;
    return ImportFile(Database, Folder, "bench_chart.xml", unwatched).Added == RowCount();
  }
};

void ExportRows(benchmark::State& state, bool postgres) {
  Place place(postgres);
  if (!place.IsThere()) return state.SkipWithError("there is no such database");
  bool good = place.Insert();
  MostMegabytes();
  const double before = MostMegabytes();
  CompareWithBaseline(
      state, AtMostTimes, [&] { good &= place.PrintPlainly(); }, [&] { good &= place.Export(); });
  Report(state, "growth_MB", MostMegabytes() - before, AtMostMegabytes);
  if (!good) state.SkipWithError("rows were lost");
  state.SetItemsProcessed(RowCount() * state.iterations());
}
BENCHMARK_CAPTURE(ExportRows, sqlite, false)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ExportRows, postgres, true)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void ImportRows(benchmark::State& state, bool postgres) {
  Place place(postgres);
  if (!place.IsThere()) return state.SkipWithError("there is no such database");
  bool good = place.Insert() && place.Export();
  MostMegabytes();
  const double before = MostMegabytes();
  double bareSeconds = 0, seconds = 0;
  for (auto _ : state) {
    bareSeconds += place.SecondsOnEmpty("bench_chart", [&] { good &= place.Insert(); });
    const double took = place.SecondsOnEmpty("bench_chart", [&] { good &= place.Import(); });
    seconds += took;
    state.SetIterationTime(took);
  }
  Report(state, "ratio", seconds / bareSeconds, AtMostTimes);
  Report(state, "growth_MB", MostMegabytes() - before, AtMostMegabytes);
  if (!good) state.SkipWithError("rows were lost");
  state.SetItemsProcessed(RowCount() * state.iterations());
}
BENCHMARK_CAPTURE(ImportRows, sqlite, false)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ImportRows, postgres, true)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hyetex::bench
