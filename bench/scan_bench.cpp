// Scans of charts: a view that pans and zooms over one of 100 million pixels, and opening it against decoding
// alone.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "ratio.h"
#include "scan/scan_image.h"

namespace hyetex::bench {
namespace {

// A frame of a screen with 60 a second, in milliseconds, and two of them.
constexpr double Frame = 16.7, TwoFrames = 33;
constexpr int ViewWidth = 2560, ViewHeight = 1440;

// A strip of 20,000 x 5,000 pixels: paper with its grain, a grid in orange, a pen line.
const cv::Mat& Strip() {
  static const cv::Mat strip = [] {
    cv::Mat image(5000, 20000, CV_8UC3, cv::Scalar(205, 228, 238));
    for (int x = 0; x < image.cols; x += 47)
      cv::line(image, {x, 0}, {x, image.rows}, {90, 150, 240}, x % 282 == 0 ? 5 : 2);
    for (int y = 0; y < image.rows; y += 47) cv::line(image, {0, y}, {image.cols, y}, {90, 150, 240}, 2);
    cv::Point pen(0, 4500);
    for (int i = 0; pen.x < image.cols; ++i) {
      const cv::Point next(pen.x + 37, i % 70 == 69 ? 4500 : pen.y - i * 7919 % 113);
      cv::line(image, pen, next, {60, 45, 40}, 6, cv::LINE_AA);
      pen = next;
    }
    cv::Mat grain(image.rows / 4, image.cols, CV_8UC3);
    cv::randn(grain, 6, 4);
    for (int band = 0; band < 4; ++band) {
      cv::Mat part = image.rowRange(band * grain.rows, (band + 1) * grain.rows);
      cv::subtract(part, grain, part);
    }
    return image;
  }();
  return strip;
}

std::string FileOf(const std::string& ending) {
  static const std::filesystem::path folder = [] {
    auto path = std::filesystem::temp_directory_path() / ("hyetex-scans-" + std::to_string(::getpid()));
    std::filesystem::create_directories(path);
    static const struct Remover {
      std::filesystem::path Folder;
      ~Remover() {
        std::error_code ignored;
        std::filesystem::remove_all(Folder, ignored);
      }
    } remover{path};
    return path;
  }();
  std::string path = (folder / ("strip" + ending)).string();
  if (!std::filesystem::exists(path)) cv::imwrite(path, Strip());
  return path;
}

// The way of a view over the strip: along it at each size from all of it to pixels eight times enlarged.
std::vector<ScanWindow> Way(double degrees) {
  std::vector<ScanWindow> way;
  const double angle = degrees * CV_PI / 180;
  for (double size = 8; size > 0.125; size /= 1.19) {
    const double right = size * std::cos(angle), down = size * std::sin(angle);
    for (int step = 0; step < 4; ++step)
      way.push_back({step * 4000.0 + size * 40, 1200.0 + step * 211, right, down, -down, right});
  }
  return way;
}

void PanAndZoom(benchmark::State& state, double degrees, const ScanLook& look) {
  const auto scan = ScanImage::Open(FileOf(".jpg"));
  if (!scan) return state.SkipWithError(scan.error().c_str());
  const std::vector<ScanWindow> way = Way(degrees);
  std::vector<std::uint32_t> view(std::size_t{ViewWidth} * ViewHeight);
  std::vector<double> frames;
  std::size_t at = 0;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    scan->Render(way[at++ % way.size()], look, 0xff808080, view, ViewWidth, ViewHeight);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    frames.push_back(taken.count() * 1000);
    state.SetIterationTime(taken.count());
  }
  std::sort(frames.begin(), frames.end());
  Report(state, "median_ms", frames[frames.size() / 2], Frame);
  Report(state, "p99_ms", frames[frames.size() * 99 / 100], std::nullopt);
  Report(state, "worst_ms", frames.back(), TwoFrames);
}
#define PAN_AND_ZOOM(name, ...)                    \
  BENCHMARK_CAPTURE(PanAndZoom, name, __VA_ARGS__) \
      ->Iterations(400)                            \
      ->UseManualTime()                            \
      ->Unit(benchmark::kMillisecond)
PAN_AND_ZOOM(upright, 0, ScanLook{});
PAN_AND_ZOOM(turned, 1.3, ScanLook{});
PAN_AND_ZOOM(quarter, 90, ScanLook{});
PAN_AND_ZOOM(faded, 1.3, ScanLook{.Brightness = 10, .Contrast = 20, .FadeGrid = 80});

// Its checksum and its smaller sizes included.
void OpenScan(benchmark::State& state, const std::string& ending) {
  const std::string path = FileOf(ending);
  std::size_t decoded = 0, opened = 0;
  CompareWithBaseline(
      state, 1.5,
      [&] {
        const cv::Mat image = cv::imread(path);
        decoded = image.total() * image.elemSize();
      },
      [&] {
        const auto scan = ScanImage::Open(path);
        opened = scan ? scan->Bytes() : 0;
      });
  if (opened == 0) state.SkipWithError("The scan does not open");
  Report(state, "memory", static_cast<double>(opened) / static_cast<double>(decoded), 1.34);
}
BENCHMARK_CAPTURE(OpenScan, jpeg, ".jpg")->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OpenScan, png, ".png")->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OpenScan, tiff, ".tif")->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace hyetex::bench
