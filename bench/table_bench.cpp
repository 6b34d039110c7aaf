// Editing single rows of a table: what opening it and moving in it costs, beside the same on a small one.
#include <benchmark/benchmark.h>

#include "bench_database.h"
#include "database/tables/table_editor.h"
#include "platform/odbc/recordset.h"
#include "ratio.h"

namespace hyetex::bench {
namespace {

constexpr int SmallRows = 1000, LargeRows = 1'000'000;

// Each as the operator meets it. Stepping begins in the middle of what nobody has looked at.
enum class Task { Open, Next, Previous, Last, Find };

void Fill(BenchDatabase& place, const char* table, const std::string& column, int rows) {
  auto transaction = Transaction::Begin(place.Open());
  auto writer = RowWriter::Open(place.Open(), table, {column, column + "_code"});
  for (int i = 0; i < rows; ++i)
    (void)writer->Add({"Name of a place " + std::to_string(i), std::to_string(i % 1000)});
  (void)writer->Finish();
  (void)transaction->Commit();
}

void Do(Task task, const EditedTable& table, const std::string& text, TableEditor& editor) {
  UnwatchedProgress unwatched;
  switch (task) {
    case Task::Open:
      benchmark::DoNotOptimize(TableEditor::Open(table, text));
      break;
    case Task::Next:
      for (int i = 0; i < 250; ++i) (void)editor.Rows().MoveNext();
      break;
    case Task::Previous:
      for (int i = 0; i < 250; ++i) (void)editor.Rows().MovePrevious();
      break;
    case Task::Last:
      (void)editor.Rows().Requery();
      (void)editor.Rows().MoveFirst();
      (void)editor.Rows().MoveLast();
      break;
    case Task::Find:
      (void)editor.Find("No such place", unwatched);
      break;
  }
}

// Two tables of one shape, both in their own order.
constexpr const char *LargeTable = "LUT_LOCAL_BASIN", *SmallTable = "LUT_REGION";

void EditTable(benchmark::State& state, bool postgres, Task task, std::optional<double> atMost) {
  BenchDatabase place(postgres);
  if (!place.IsThere()) return state.SkipWithError("there is no such database");
  for (const char* table : {LargeTable, SmallTable}) place.Empty(table);
  Fill(place, LargeTable, "local_basin", LargeRows);
  Fill(place, SmallTable, "region", SmallRows);
  if (postgres) place.Run("ANALYZE");
  place.Database.Close();
  const EditedTable &large = EditedTables()[3], &small = EditedTables()[10];
  const std::string& text = place.Database.ConnectionText;
  auto largeEditor = TableEditor::Open(large, text), smallEditor = TableEditor::Open(small, text);
  if (!largeEditor || !smallEditor) return state.SkipWithError("the tables do not open");
  if (task == Task::Previous)
    for (auto* editor : {&*largeEditor, &*smallEditor}) (void)(*editor)->Rows().MoveLast();
  CompareWithBaseline(
      state, atMost, [&] { Do(task, small, text, **smallEditor); },
      [&] { Do(task, large, text, **largeEditor); });
  for (const char* table : {LargeTable, SmallTable}) place.Empty(table);
}
#define EDIT(engine, postgres, task, atMost)                                  \
  BENCHMARK_CAPTURE(EditTable, engine##_##task, postgres, Task::task, atMost) \
      ->Iterations(3)                                                         \
      ->UseManualTime()                                                       \
      ->Unit(benchmark::kMillisecond)
EDIT(sqlite, false, Open, 2);
EDIT(sqlite, false, Next, 2);
EDIT(sqlite, false, Previous, 2);
EDIT(sqlite, false, Last, std::nullopt);
EDIT(sqlite, false, Find, std::nullopt);
EDIT(postgres, true, Open, 2);
EDIT(postgres, true, Next, 2);
EDIT(postgres, true, Previous, 2);
EDIT(postgres, true, Last, std::nullopt);
EDIT(postgres, true, Find, std::nullopt);

}  // namespace
}  // namespace hyetex::bench
