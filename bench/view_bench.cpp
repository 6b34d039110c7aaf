// The editor's views: a chart file of 5,000 points read, made into a view of 1600 x 1000 and drawn on a
// picture, as for the screen; and on a page of PDF without the toolkit. Both are to fit into 50 ms.
#include <QImage>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "application.h"
#include "chartfiles/chart_text.h"
#include "digitizing/tablets.h"
#include "editor/chart_read_out.h"
#include "editor/chart_views.h"
#include "graph/draw.h"
#include "platform/cairo/pictures.h"
#include "platform/qt_surface.h"
#include "ratio.h"

namespace hyetex::bench {
namespace {

constexpr double MostMilliseconds = 50;
constexpr int Width = 1600, Height = 1000;

// A pen that climbs and is emptied, with gaps, comments and levels on its way.
std::string FullChart() {
  ChartTypeRecord type;
  type.DepthScale = 0.125F;
  type.TimeScale = 1 / 16.1F;
  ChartRecord chart;
  chart.StartTime = MakeDate(1998, 3, 5, 7);
  chart.EndTime = chart.StartTime + 8;
  chart.EyedDepth = 500;
  Session session(TabletTypes()[0].Extents, type, chart);
  session.Line.SetPage(300, 400, 8000, 470);
  for (int i = 0; i <= MaxPoint; ++i)
    session.Line.Add(300 + 1.5 * i, 420 + i * 7 % 1500, i % 900 == 899,
                     i % 250 == 249   ? "CODE205 + Clock malfunction"
                     : i % 331 == 330 ? "CODE203"
                     : i % 500 == 17  ? "Ink is thin"
                                      : "");
  const std::string path = (std::filesystem::temp_directory_path() / "RG12-19980305-0700.dat").string();
  std::ofstream(path, std::ios::binary)
      << MakeChartText(session, {"North", "Meteo", "Hill", "RG12", "Ann"}, "")->Text;
  return path;
}

template <typename Draw>
void ReadAndDraw(benchmark::State& state, ChartViewKind kind, Draw&& draw) {
  const std::string path = FullChart();
  const ChartViewOptions options{.Kind = kind, .HyetographMinutes = 15};
  using Clock = std::chrono::steady_clock;
  std::chrono::duration<double, std::milli> taken{};
  for (auto _ : state) {
    const auto start = Clock::now();
    ChartReading reading;
    if (!ReadChartFile(path, "", {}, reading)) state.SkipWithError("the chart cannot be read");
    draw(MakeChartGraph(reading, options), ChartReadOut(reading, kind));
    taken += Clock::now() - start;
  }
  std::filesystem::remove(path);
  Report(state, "milliseconds", taken.count() / static_cast<double>(state.iterations()), MostMilliseconds);
}

void ViewOnScreen(benchmark::State& state, ChartViewKind kind) {
  const Application application;
  QImage picture(Width, Height, QImage::Format_ARGB32_Premultiplied);
  ReadAndDraw(state, kind, [&](const Graph& graph, const ChartReadOut& readOut) {
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const double scale = UnitsPerPoint(picture);
    painter.scale(scale, scale);
    QtSurface surface(painter, QRectF(0, 0, Width / scale, Height / scale), Qt::white);
    const GraphLayout layout = LayOut(graph, surface);
    Draw(graph, layout, surface);
    benchmark::DoNotOptimize(readOut.At(layout, Width / scale / 2, Height / scale / 2));
  });
}
BENCHMARK_CAPTURE(ViewOnScreen, trace, ChartViewKind::Digitization)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ViewOnScreen, series, ChartViewKind::TimeDepth)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void ViewOnPage(benchmark::State& state, ChartViewKind kind) {
  ReadAndDraw(state, kind, [&](const Graph& graph, const ChartReadOut&) {
    benchmark::DoNotOptimize(MakePicture(PictureFormat::Pdf, A4Landscape, 28, 150,
                                         [&](Surface& surface) { Draw(graph, surface); }));
  });
}
BENCHMARK_CAPTURE(ViewOnPage, trace, ChartViewKind::Digitization)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ViewOnPage, series, ChartViewKind::TimeDepth)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hyetex::bench
