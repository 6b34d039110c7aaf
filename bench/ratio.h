// Times a piece of work against a baseline, turn by turn in the same run, so that a noisy machine slows both
// alike.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>

namespace hyetex::bench {

/// Runs both in each iteration; reports the work's time and, as the counter "ratio", how many times the
/// baseline it took.
template <typename Baseline, typename Work>
void CompareWithBaseline(benchmark::State& state, Baseline&& baseline, Work&& work) {
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
  state.counters["ratio"] = workSeconds / baselineSeconds;
}

}  // namespace hyetex::bench
