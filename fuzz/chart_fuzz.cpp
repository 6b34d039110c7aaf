// Any bytes as a chart file: nothing but an orderly reading may come of it.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "chartfiles/chart_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hyetex;
  static ChartReading reading;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  ReadStoredChart(text, {.UseAlpha = size % 2 == 0, .MinimalLapse = static_cast<float>(size % 30)}, reading);
  if (reading.Chart.RawCount > MaxPoint || reading.Chart.SeriesCount > MaxPoint ||
      reading.Chart.AlphaCount > MaxAlpha)
    std::abort();
  for (const SeriesPoint& point : reading.SeriesPoints)
    if (!std::isfinite(point.Time) || !std::isfinite(point.Depth)) std::abort();
  return 0;
}
