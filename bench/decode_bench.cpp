// Decoding a tablet's stream against a plain copy of the same bytes in the same chunks.
#include <cstring>
#include <vector>

#include "digitizing/report_decoder.h"
#include "ratio.h"

namespace hyetex::bench {
namespace {

// A pen line of several hours at the tablet's full rate: longer than a processor's caches.
std::vector<std::uint8_t> Stream(const TabletType& tablet) {
  constexpr std::size_t bytes = 32U << 20;
  std::vector<std::uint8_t> stream;
  stream.reserve(bytes + 16);
  for (int i = 0; stream.size() < bytes; ++i) {
    const std::string report =
        EncodeReport(tablet, {1000 + i % 2000, 300 + i / 7 % 900, i % 40 < 6 ? tablet.DrawingButton : -1});
    stream.insert(stream.end(), report.begin(), report.end());
  }
  return stream;
}

void Decode(benchmark::State& state) {
  const TabletType& tablet = TabletTypes()[static_cast<std::size_t>(state.range(0))];
  const auto chunk = static_cast<std::size_t>(state.range(1));
  const std::vector<std::uint8_t> stream = Stream(tablet);
  std::vector<std::uint8_t> copy(stream.size());
  const auto inChunks = [&](auto&& take) {
    for (std::size_t at = 0; at < stream.size(); at += chunk)
      take(std::span(stream).subspan(at, std::min(chunk, stream.size() - at)), at);
  };
  CompareWithBaseline(
      state, 4,
      [&] {
        inChunks([&](std::span<const std::uint8_t> bytes, std::size_t at) {
          std::memcpy(copy.data() + at, bytes.data(), bytes.size());
        });
        benchmark::ClobberMemory();
      },
      [&] {
        ReportDecoder decoder(tablet);
        int sum = 0;
        inChunks([&](std::span<const std::uint8_t> bytes, std::size_t) {
          decoder.Receive(bytes,
                          [&](const TabletReport& report) { sum += report.X ^ report.Y ^ report.Button; });
        });
        benchmark::DoNotOptimize(sum);
      });
  state.SetBytesProcessed(static_cast<std::int64_t>(stream.size()) * state.iterations());
}
BENCHMARK(Decode)
    ->ArgNames({"tablet", "chunk"})
    ->ArgsProduct({{0, 1, 2, 3, 4}, {5, 1900}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hyetex::bench
