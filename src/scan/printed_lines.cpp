#include "scan/printed_lines.h"

#include <algorithm>
#include <cmath>

namespace hyetex {
namespace {

constexpr double HeavyShare = 0.25;  // of the darkest lines' ink
constexpr int FewestTogether = 4;    // lines on either side of missing ones

}  // namespace

LineRun LongestRun(const InkOnLines& lines, double share, int missing) {
  std::vector<double> sorted = lines.Ink;
  std::sort(sorted.begin(), sorted.end());
  const double least = share * sorted[sorted.size() * 2 / 3];
  std::vector<LineRun> runs;
  for (int line = lines.First; line <= lines.Last(); ++line) {
    if (!(lines.At(line) > least)) continue;
    if (runs.empty() || runs.back().Last != line - 1) runs.push_back({line, line - 1});
    runs.back().Last = line;
  }
  const auto isLong = [](const LineRun& run) { return run.Last - run.First + 1 >= FewestTogether; };
  LineRun best, run;
  for (const LineRun& next : runs) {
    if (!isLong(next)) continue;
    if (run.Last >= run.First && next.First - run.Last <= missing + 1)
      run.Last = next.Last;
    else
      run = next;
    if (run.Last - run.First > best.Last - best.First) best = run;
  }
  return best;
}

LineRun AllLines(const InkOnLines& lines) {
  std::vector<double> sorted = lines.Ink;
  std::sort(sorted.begin(), sorted.end());
  const double least = 0.5 * sorted[sorted.size() * 19 / 20];
  LineRun run{lines.Last(), lines.First};
  for (int line = lines.First; line <= lines.Last(); ++line) {
    if (!(lines.At(line) > least)) continue;
    run.First = std::min(run.First, line);
    run.Last = line;
  }
  return run;
}

void TakeHeavyLinesAround(const InkOnLines& lines, int apart, int most, LineRun& run) {
  std::vector<double> sorted = lines.Ink;
  std::sort(sorted.begin(), sorted.end());
  const double heavy = HeavyShare * sorted[sorted.size() * 19 / 20];
  for (const int step : {-1, 1}) {
    int& end = step < 0 ? run.First : run.Last;
    for (int line = end + step, left = apart; left > 0; line += step, --left)
      if (lines.At(line) > heavy && run.Last - run.First + std::abs(line - end) <= most) {
        end = line;
        break;
      }
  }
}

HeavyLines FoldLines(const InkOnLines& lines, const LineRun& run, std::initializer_list<int> everies) {
  HeavyLines best;
  for (const int every : everies) {
    if (run.Last - run.First < 2 * every) continue;
    std::vector<double> sums(static_cast<std::size_t>(every)), counts(sums);
    for (int line = run.First; line <= run.Last; ++line) {
      const auto fold = static_cast<std::size_t>((line % every + every) % every);
      sums[fold] += lines.At(line);
      counts[fold] += 1;
    }
    double all = 0;
    std::size_t heavy = 0;
    for (std::size_t i = 0; i < sums.size(); ++i) {
      sums[i] /= counts[i];
      all += sums[i];
      if (sums[i] > sums[heavy]) heavy = i;
    }
    const double others = every == 1 ? 0 : (all - sums[heavy]) / (every - 1);
    const double standOut = every == 1 ? 0 : sums[heavy] / std::max(1e-9, others) - 1;
    if (standOut > best.StandOut) best = {every, static_cast<int>(heavy), standOut};
  }
  return best;
}

}  // namespace hyetex
