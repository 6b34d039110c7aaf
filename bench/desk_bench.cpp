// The digitizing window's drawing: the whole graph of a full chart in a view of 1600 x 1000 (to fit into one
// frame of a 60 Hz screen), and what a report's cursor move costs against it.
#include <QImage>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include "application.h"
#include "core/session.h"
#include "digitizing/drawing.h"
#include "digitizing/scan_placement.h"
#include "digitizing/view.h"
#include "digitizing/windows/picGraph.h"
#include "digitizing/windows/shape.h"
#include "digitizing/windows/units.h"
#include "platform/qt_surface.h"
#include "ratio.h"
#include "scan/scan_image.h"
#include "scan/scan_view.h"

namespace hyetex::bench {
namespace {

constexpr double FrameSeconds = 1.0 / 60;
constexpr int Width = 1600, Height = 1000;

// A line that rises and falls over the whole band, with all that has a colour of its own.
struct FullGraph {
  FullGraph() : Chart({16000, 10000, 400, 250}, {"Daily", 100, 0.125F, 1 / 16.1F, 0, 0}, {}) {
    Layout.ScaleWidth = Width * UnitsPerPixel;
    Layout.ScaleHeight = Height * UnitsPerPixel;
    Layout.ScaleX = Layout.ScaleY = 1.5F;
    Trace& line = Chart.Line;
    line.SetPage(500, 500, 15500, 520);
    for (int i = 0; i <= MaxPoint; ++i)
      line.Add(500 + 3 * i, 600 + 1500 * (1 + std::sin(i * 0.02)), i % 900 == 899,
               i % 250 == 249 ? "CODE205 + Clock malfunction"
               : i % 31 == 30 ? "CODE202"
                              : "");
  }
  Session Chart;
  DeskLayout Layout;
};

void DrawFullGraph(benchmark::State& state) {
  const Application application;
  const FullGraph graph;
  QImage picture(Width, Height, QImage::Format_ARGB32_Premultiplied);
  using Clock = std::chrono::steady_clock;
  std::chrono::duration<double> drawn{};
  for (auto _ : state) {
    const auto start = Clock::now();
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(1.0 / UnitsPerPixel, 1.0 / UnitsPerPixel);
    QtSurface surface(painter, ToUnits(QRectF(picture.rect())), Qt::white);
    DrawGraph(graph.Chart.Line, graph.Layout, {.ShowPoints = state.range(0) != 0}, surface);
    painter.end();
    drawn += Clock::now() - start;
  }
  // Frames of the screen that one drawing takes.
  Report(state, "frames", drawn.count() / static_cast<double>(state.iterations()) / FrameSeconds, 1);
}
BENCHMARK(DrawFullGraph)->ArgName("points")->Arg(0)->Arg(1)->UseRealTime()->Unit(benchmark::kMillisecond);

void MoveCursor(benchmark::State& state) {
  const Application application;
  const FullGraph full;
  picGraph graph(
      [&](Surface& surface) { DrawGraph(full.Chart.Line, full.Layout, {.ShowPoints = true}, surface); },
      nullptr);
  graph.resize(Width, Height);
  Shape horizontal("linHor", Shape::Kind::Filled, Qt::black, &graph);
  Shape vertical("linVer", Shape::Kind::Filled, Qt::black, &graph);
  horizontal.resize(2 * Width, 1);
  vertical.resize(1, 2 * Height);
  horizontal.show();
  vertical.show();
  graph.show();
  QApplication::processEvents();
  int at = 0, drawings = 0;
  CompareWithBaseline(
      state, {},
      [&] {
        graph.DrawGraph();
        QApplication::processEvents();
        drawings = graph.Drawings();
      },
      [&] {
        at = (at + 7) % Height;
        horizontal.move(at - Width, at);
        vertical.move(at, at - Height);
        QApplication::processEvents();
        if (graph.Drawings() != drawings) state.SkipWithError("the cursor has drawn the trace");
      });
}
BENCHMARK(MoveCursor)->UseManualTime()->Unit(benchmark::kMillisecond);

// One frame of panning over a scan of 100 million pixels with a full trace on it, as the chart view paints
// it.
void PanOverScan(benchmark::State& state) {
  const Application application;
  QTemporaryDir folder;
  const QString file = folder.filePath("strip.jpg");
  {
    QImage strip(20000, 5000, QImage::Format_RGB32);
    strip.fill(QColor(238, 228, 205));
    QPainter painter(&strip);
    painter.setPen(QPen(QColor(240, 150, 90), 3));
    for (int x = 0; x < strip.width(); x += 47) painter.drawLine(x, 0, x, strip.height());
    for (int y = 0; y < strip.height(); y += 47) painter.drawLine(0, y, strip.width(), y);
    painter.end();
    strip.save(file, nullptr, 90);
  }
  const auto scan = ScanImage::Open(file.toStdString());
  if (!scan) return state.SkipWithError(scan.error().c_str());
  FullGraph graph;
  const auto placement = LaidOnSheet(graph.Chart.Line.Scales().Tablet, scan->Width(), scan->Height(), 25);
  if (!placement) return state.SkipWithError(placement.error().c_str());
  graph.Layout.Home = AreaOf(*placement, scan->Width(), scan->Height());
  ShowWhole(graph.Layout, graph.Chart.Line.Scales().Tablet);
  const auto middle = [](double size) { return size * UnitsPerPixel / 2; };
  for (int i = 0; i < state.range(0); ++i)
    ZoomAround(graph.Layout, graph.Chart.Line.Scales().Tablet, 1.5, middle(Width), middle(Height));

  QImage picture(Width, Height, QImage::Format_RGB32);
  using Clock = std::chrono::steady_clock;
  std::vector<double> frames;
  int step = 0;
  for (auto _ : state) {
    const auto start = Clock::now();
    Pan(graph.Layout, graph.Chart.Line.Scales().Tablet, ++step / 40 % 2 == 0 ? 300 : -300, 0);
    PaintGraph(
        picture, {},
        [&](QImage& into) {
          scan->Render(ScanWindowOf(graph.Layout, *placement, UnitsPerPixel), {}, 0xff000000U,
                       std::span(reinterpret_cast<std::uint32_t*>(into.bits()),
                                 static_cast<std::size_t>(into.width() * into.height())),
                       into.width(), into.height());
        },
        [&](Surface& surface) { DrawGraph(graph.Chart.Line, graph.Layout, {.OnScan = true}, surface); });
    frames.push_back(std::chrono::duration<double>(Clock::now() - start).count() / FrameSeconds);
  }
  std::sort(frames.begin(), frames.end());
  Report(state, "median_frames", frames[frames.size() / 2], 1);
  Report(state, "worst_frames", frames.back(), 2);
}
BENCHMARK(PanOverScan)
    ->ArgName("zoom")
    ->Arg(0)
    ->Arg(4)
    ->Arg(8)
    ->Iterations(120)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hyetex::bench
