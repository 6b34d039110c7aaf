// Times a piece of work against a baseline, turn by turn in the same run, so that a noisy machine slows both
// alike.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <optional>
#include <string>

namespace hyetex::bench {

/// Ends the name of the counter that holds a figure's target.
inline constexpr const char* AtMost = "_at_most";

/// A figure of a benchmark with what it should stay below; main.cpp says on standard error when it does not.
inline void Report(benchmark::State& state, const std::string& figure, double value,
                   std::optional<double> atMost) {
  state.counters[figure] = value;
  if (atMost) state.counters[figure + AtMost] = *atMost;
}

/// Runs both in each iteration; reports the work's time and, as the figure "ratio", how many times the
/// baseline it took.
template <typename Baseline, typename Work>
void CompareWithBaseline(benchmark::State& state, std::optional<double> atMost, Baseline&& baseline,
                         Work&& work) {
  using Clock = std::chrono::steady_clock;
  double baselineSeconds = 0, workSeconds = 0;
  for (auto _ : state) {
    const auto start = Clock::now();
    baseline();
    const auto middle = Clock::now();
    work();
    const std::chrono::duration<double> ours = Clock::now() - middle, theirs = middle - start;
    baselineSeconds += theirs.count();
    workSeconds += ours.count();
    state.SetIterationTime(ours.count());
  }
  Report(state, "ratio", workSeconds / baselineSeconds, atMost);
}

}  // namespace hyetex::bench
