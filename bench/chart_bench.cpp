// Reading a full chart file with its series against a newline scan of the same bytes, and asking for the last
// point's time and depth after every press.
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "chartfiles/chart_reader.h"
#include "chartfiles/chart_text.h"
#include "core/files.h"
#include "core/numbers.h"
#include "digitizing/tablets.h"
#include "ratio.h"

namespace hyetex::bench {
namespace {

Session FullSession(int points) {
  ChartTypeRecord type;
  type.DepthScale = 0.125F;
  type.TimeScale = 1 / 16.1F;
  ChartRecord chart;
  chart.StartTime = MakeDate(1998, 3, 5, 7);
  chart.EndTime = chart.StartTime + 1;
  Session session(TabletTypes()[0].Extents, type, chart);
  session.Line.SetPage(300, 400, 8000, 470);
  for (int i = 0; i < points; ++i) session.Line.Add(300 + 1.5 * i, 420 + i * 7 % 1500);
  return session;
}

void ReadChart(benchmark::State& state, bool fromDisk) {
  const ChartText file = *MakeChartText(FullSession(5000), {"North", "Meteo", "Hill", "RG12", "Ann"}, "");
  const std::string path = (std::filesystem::temp_directory_path() / "RG12-19980305-0700.dat").string();
  std::ofstream(path, std::ios::binary) << file.Text;
  ChartReading reading;
  CompareWithBaseline(
      state, 10,
      [&] {
        const std::string bytes = fromDisk ? *ReadWholeFile(path, MostChartBytes) : std::string();
        const std::string& text = fromDisk ? bytes : file.Text;
        std::size_t lines = 0;
        for (const char *at = text.data(), *end = at + text.size(); at < end; ++lines) {
          const void* found = std::memchr(at, '\n', static_cast<std::size_t>(end - at));
          at = found == nullptr ? end : static_cast<const char*>(found) + 1;
        }
        benchmark::DoNotOptimize(lines);
      },
      [&] {
        if (fromDisk)
          (void)ReadChartFile(path, "", {}, reading);
        else
          ReadChartText(file.Text, "RG12-19980305-0700.dat", {}, reading);
        benchmark::DoNotOptimize(reading.SeriesPoints.data());
      });
  std::filesystem::remove(path);
  state.SetBytesProcessed(static_cast<std::int64_t>(file.Text.size()) * state.iterations());
}
BENCHMARK_CAPTURE(ReadChart, stored_text, false)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ReadChart, file, true)->UseManualTime()->Unit(benchmark::kMicrosecond);

// The time for a press must not grow with the trace: "ratio" is what a press costs in a session of 5000
// against one of 500.
void LastPointAfterEachPress(benchmark::State& state) {
  const auto trace = [](int points) {
    Session session = FullSession(0);
    double sum = 0;
    for (int i = 0; i < points; ++i) {
      session.Line.Add(300 + 1.5 * i, 420 + i * 7 % 1500);
      sum += session.PointTime(i) + session.TotalDepth(i);
    }
    benchmark::DoNotOptimize(sum);
  };
  CompareWithBaseline(
      state, 2,
      [&] {
        for (int i = 0; i < 10; ++i) trace(500);
      },
      [&] { trace(5000); });
}
BENCHMARK(LastPointAfterEachPress)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace hyetex::bench
