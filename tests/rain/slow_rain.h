// Random rows of rain, and a plain reading of them second by second, to hold the quick one against.
#pragma once

#include <algorithm>
#include <random>
#include <vector>

#include "rain/rain_rows.h"

namespace hyetex::test {

inline constexpr RainTime FirstSecond = 3'000'000'000;

/// Rows in the order of their starts: next to each other, with gaps, overlapping, of no length, falling,
/// without a depth.
inline std::vector<RainRow> RandomRows(unsigned seed, int count, bool overlapping) {
  std::mt19937 random(seed);
  const auto pick = [&](int from, int to) { return std::uniform_int_distribution(from, to)(random); };
  std::vector<RainRow> rows;
  RainTime at = FirstSecond;
  for (int i = 0; i < count; ++i) {
    if (pick(0, 5) == 0) at += pick(1, 400);
    if (overlapping && pick(0, 4) == 0)
      at -= std::min<RainTime>(pick(1, 150), at - *(rows.empty() ? at : rows.back().Start));
    RainRow row{at, at + (pick(0, 9) == 0 ? 0 : pick(1, 30) * 7), pick(0, 400) / 100.0};
    if (pick(0, 3) == 0) row.Depth = 0;
    if (pick(0, 15) == 0) row.Depth = -0.2;
    if (pick(0, 25) == 0) row.Depth.reset();
    rows.push_back(row);
    at = *row.End;
  }
  return rows;
}

/// What fell in each second, and whether it is known; rain of a moment apart, at the second that it begins.
struct SlowRain {
  explicit SlowRain(const std::vector<RainRow>& rows) {
    for (const RainRow& row : rows) Last = std::max(Last, *row.End);
    ++Last;  // so that rain of the last moment has a second too
    const auto seconds = static_cast<std::size_t>(Last - FirstSecond);
    Fallen.resize(seconds);
    Known.resize(seconds);
    Moments.resize(seconds + 1);
    std::vector<const RainRow*> of(seconds);
    for (const RainRow& row : rows) {  // the later one takes the place of an earlier one
      if (!row.Depth) continue;
      if (row.Start == row.End) Moments[Index(*row.Start)] += std::max(0.0, *row.Depth);
      for (RainTime time = *row.Start; time < *row.End; ++time) of[Index(time)] = &row;
    }
    for (std::size_t i = 0; i < seconds; ++i)
      if (of[i] != nullptr) {
        Known[i] = true;
        Fallen[i] = std::max(0.0, *of[i]->Depth) / static_cast<double>(*of[i]->End - *of[i]->Start);
      }
  }
  static std::size_t Index(RainTime time) { return static_cast<std::size_t>(time - FirstSecond); }
  double Until(RainTime from, RainTime to, bool with) const {
    double sum = 0;
    for (RainTime time = std::max(from, FirstSecond); time < std::min(to, Last); ++time)
      sum += Fallen[Index(time)] + Moments[Index(time)];
    if (with && to >= FirstSecond && to <= Last) sum += Moments[Index(to)];
    return sum;
  }
  double KnownShare(RainTime from, RainTime to) const {
    double known = 0;
    for (RainTime time = std::max(from, FirstSecond); time < std::min(to, Last); ++time)
      known += Known[Index(time)];
    return known / static_cast<double>(to - from);
  }

  RainTime Last = FirstSecond;
  std::vector<double> Fallen, Moments;
  std::vector<bool> Known;
};

inline RainRemarks Sweep(const std::vector<RainRow>& rows, std::vector<RainSink*> sinks, RainSpan span = {}) {
  RainSweep sweep(span, std::move(sinks));
  for (const RainRow& row : rows) sweep.Add(row);
  sweep.End();
  return sweep.Remarks();
}

}  // namespace hyetex::test
