// Listing 10,000 chart files against opening each and reading its first line, with the longest time between
// two steps; and the summary of 1,000 charts against reading them.
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "chartfiles/chart_text.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
#include "editor/chart_summary.h"
#include "editor/folder_charts.h"
#include "ratio.h"

namespace hyetex::bench {
namespace {

class ChartFolder {
 public:
  ChartFolder(int count, int points)
      : Folder((std::filesystem::temp_directory_path() / "hyetex-bench-XXXXXX").string()) {
    Folder = ::mkdtemp(Folder.data());
    std::string lines;
    for (int i = 0; i < points; ++i)
      lines += RoundedText(i * 0.37, 2) + "," + RoundedText(i * 7 % 1500 / 15.0, 2) + ",\r\n";
    for (int i = 0; i < count; ++i) {
      const Date start = MakeDate(1980, 1, 1, 7) + i;
      Paths.push_back(JoinPath(Folder, ChartFileName("NM-Station-01", start)));
      std::ofstream(Paths.back(), std::ios::binary)
          << "HYETEX88 ASCII FILE\r\nStation Name: Station\r\nInstrument Code: NM-Station-01\r\nStart: "
          << DateText(start) << "\r\nEnd: " << DateText(start + 1)
          << "\r\nDigitized Time: 24\r\nEyed Depth: 10\r\nDigitized Depth: 10.1\r\nDigitation Points:\r\n"
          << lines << "General Comment: \r\nAlpha Value Selected: None\r\n";
    }
  }
  ChartFolder(const ChartFolder&) = delete;
  ChartFolder& operator=(const ChartFolder&) = delete;
  ~ChartFolder() { std::filesystem::remove_all(Folder); }

  std::string Folder;
  std::vector<std::string> Paths;
};

class LongestStep : public Progress {
 public:
  bool Step(std::int64_t, std::int64_t, std::string_view) override {
    const auto now = std::chrono::steady_clock::now();
    Milliseconds = std::max(Milliseconds, std::chrono::duration<double, std::milli>(now - last_).count());
    last_ = now;
    return true;
  }
  double Milliseconds = 0;

 private:
  std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

void ListFolder(benchmark::State& state) {
  const ChartFolder folder(10000, 40);
  const std::vector<StationRecord> stations;
  FolderCharts charts(folder.Folder, stations);
  double longest = 0;
  std::size_t listed = 0;
  CompareWithBaseline(
      state, 3,
      [&] {
        std::string line;
        for (const std::string& path : folder.Paths) {
          std::ifstream file(path, std::ios::binary);
          std::getline(file, line);
          benchmark::DoNotOptimize(line.data());
        }
      },
      [&] {
        LongestStep steps;
        const auto list = charts.List({}, steps);
        listed = list ? list->Files.size() : 0;
        longest = std::max(longest, steps.Milliseconds);
      });
  if (listed != folder.Paths.size()) state.SkipWithError("not all charts were listed");
  Report(state, "longest_step_ms", longest, 100);
}
BENCHMARK(ListFolder)->UseManualTime()->Unit(benchmark::kMillisecond);

void SumUpCharts(benchmark::State& state) {
  const ChartFolder folder(1000, 1000);
  ChartReading reading;
  std::string text;
  CompareWithBaseline(
      state, 2,
      [&] {
        for (const std::string& path : folder.Paths) {
          (void)ReadChartFile(path, "", {}, reading);
          benchmark::DoNotOptimize(reading.SeriesPoints.data());
        }
      },
      [&] {
        ChartSummary summary;
        for (const std::string& path : folder.Paths)
          if (ReadChartFile(path, "", {}, reading)) summary.Add(reading.Chart);
        text = summary.Text();
      });
  if (std::ranges::count(text, '\n') < std::ssize(folder.Paths))
    state.SkipWithError("not all charts were summed up");
}
BENCHMARK(SumUpCharts)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hyetex::bench
