#include "grid_rows.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <numbers>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "core/files.h"
#include "drawn_chart.h"
#include "scan/lattice.h"
#include "scans/scan_damage.h"
#include "scans/scan_file.h"

namespace hyetex {
namespace {

constexpr double EveryHours = 0.5, EveryMm = 4;  // between the places that are looked at
constexpr double WellWithinMm = 0.3;             // at all but a twentieth of the places
constexpr double ViewMm = 600;                   // from a camera to the sheet

// The worst value but a share of them.
double Quantile(std::vector<double> values, double share) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1) + 0.5)];
}

// What a camera sees of an image that it looks at askew: its picture, and where places come to lie in it.
cv::Matx33d SeenAskew(cv::Mat& image, double degrees, double pixelsPerMm, Rgb around) {
  const double w = image.cols, h = image.rows, angle = degrees * std::numbers::pi / 180;
  const double far = std::sin(angle) / (ViewMm * pixelsPerMm);
  // Farther to the right, and a little downwards.
  const cv::Matx33d middle(1, 0, -w / 2, 0, 1, -h / 2, 0, 0, 1),
      turn(std::cos(angle), 0, 0, 0, 1, 0, far, 0.5 * far, 1);
  const cv::Matx33d flat = turn * middle;
  std::vector<cv::Point2d> corners{{0, 0}, {w, 0}, {0, h}, {w, h}}, seen;
  cv::perspectiveTransform(corners, seen, flat);
  cv::Point2d least = seen[0], most = seen[0];
  for (const cv::Point2d& at : seen) {
    least = {std::min(least.x, at.x), std::min(least.y, at.y)};
    most = {std::max(most.x, at.x), std::max(most.y, at.y)};
  }
  const cv::Matx33d all = cv::Matx33d(1, 0, -least.x, 0, 1, -least.y, 0, 0, 1) * flat;
  cv::Mat picture;
  cv::warpPerspective(
      image, picture, all,
      {static_cast<int>(std::ceil(most.x - least.x)), static_cast<int>(std::ceil(most.y - least.y))},
      cv::INTER_AREA, cv::BORDER_CONSTANT, cv::Scalar(around.Blue, around.Green, around.Red));
  image = picture;
  return all;
}

struct GridRow {
  int Charts = 0, Found = 0, WrongStart = 0, Untold = 0, Doubts = 0, WrongBand = 0, Well = 0;
  std::vector<double> Across, Up, Seconds;

  void Add(const GridRow& other) {
    Charts += other.Charts;
    Found += other.Found;
    WrongStart += other.WrongStart;
    Untold += other.Untold;
    Doubts += other.Doubts;
    WrongBand += other.WrongBand;
    Well += other.Well;
    for (const auto& [to, from] :
         {std::pair(&Across, &other.Across), std::pair(&Up, &other.Up), std::pair(&Seconds, &other.Seconds)})
      to->insert(to->end(), from->begin(), from->end());
  }
};

void Print(const std::string& name, const GridRow& row) {
  std::printf(
      "| %-36s | %3d | %3d | %3d | %2d | %2d | %2d | %2d | %.2f | %.2f | %5.2f | %.2f | %.2f | %5.2f | %.2f "
      "|\n",
      name.c_str(), row.Charts, row.Found, row.Well, row.WrongBand, row.WrongStart, row.Untold, row.Doubts,
      Quantile(row.Across, 0.5), Quantile(row.Across, 0.95), Quantile(row.Across, 1), Quantile(row.Up, 0.5),
      Quantile(row.Up, 0.95), Quantile(row.Up, 1), Quantile(row.Seconds, 0.5));
  std::fflush(stdout);
}

// Where the lattice has a place of the paper, less the whole lines by which all of it may be off.
void Hold(const Lattice& lattice, const DrawnScan& drawn, const cv::Matx33d& seen, const std::string& which,
          GridRow& row) {
  const ChartTypeRecord& paper = drawn.Line.Paper;
  std::vector<double> across, up;
  for (double hour = 0; hour <= drawn.Line.Hours + 1e-6; hour += EveryHours)
    for (double mm = 0; mm <= paper.ChartHeightMm; mm += EveryMm) {
      std::vector<cv::Point2d> place{drawn.PlaceOf(hour, mm)};
      cv::perspectiveTransform(place, place, seen);
      const cv::Point2d at = lattice.ToPaper(place[0]);
      across.push_back(at.x - hour / paper.TimeScale);
      up.push_back(at.y - mm);
    }
  const auto settle = [](std::vector<double>& off, double line) {
    const double lines = std::round(Quantile(off, 0.5) / line);
    for (double& value : off) value = std::abs(value - lines * line);
    return lines;
  };
  const double start = settle(across, lattice.AcrossMm()), foot = settle(up, lattice.UpMm());
  const bool band = foot == 0 && std::abs(lattice.BandMm() - paper.ChartHeightMm) < 2 * lattice.UpMm();
  const bool well = Quantile(across, 0.95) < WellWithinMm && Quantile(up, 0.95) < WellWithinMm;
  ++row.Found;
  row.Well += well ? 1 : 0;
  row.WrongBand += band ? 0 : 1;
  row.WrongStart += start == 0 ? 0 : 1;
  row.Untold += start != 0 && lattice.Doubts().empty() ? 1 : 0;
  row.Doubts += lattice.Doubts().empty() ? 0 : 1;
  row.Across.insert(row.Across.end(), across.begin(), across.end());
  row.Up.insert(row.Up.end(), up.begin(), up.end());
  if (!well || !band || start != 0 || !lattice.Doubts().empty())
    std::fprintf(
        stderr,
        "%s: start off by %g lines, foot by %g, band %.1f mm; 95%% within %.2f mm across, %.2f mm up; "
        "%zu doubts\n",
        which.c_str(), start, foot, lattice.BandMm(), Quantile(across, 0.95), Quantile(up, 0.95),
        lattice.Doubts().size());
}

Result<void> Measure(const GridKind& kind, std::uint64_t seed, const std::string& folder, GridRow& row) {
  const PenLine line = RandomChart(seed, DrawnPaper::Siphon);
  ScanStyle style = PlainStyle(line);
  style.Shape.Quarters = std::max(0, kind.Quarters);
  if (const auto damaged = Damage(style, kind.Damage, seed); !damaged) return Failure(damaged.error());
  auto drawn = DrawScan(line, style, seed);
  if (!drawn) return Failure(drawn.error());
  cv::Matx33d seen = cv::Matx33d::eye();
  if (kind.AngleDegrees != 0)
    seen =
        SeenAskew(drawn->Image, (seed % 2 == 0 ? 1 : -1) * kind.AngleDegrees, drawn->PixelsPerMm, style.Bed);
  const std::string path = folder + (style.JpegQuality ? "/grid.jpg" : "/grid.png");
  const auto bytes = EncodeScan(drawn->Image, path, style.Dpi, style.JpegQuality.value_or(92));
  if (!bytes) return Failure(bytes.error());
  if (const auto written = WriteWholeFile(path, *bytes); !written) return Failure(written.error());
  const auto image = ScanImage::Open(path);
  if (!image) return Failure(image.error());

  const std::string which = kind.Name + " " + std::to_string(seed);
  const std::clock_t begun = std::clock();
  const auto lattice = Lattice::Find(*image, {line.Paper, style.FirstHour, line.Hours});
  row.Seconds.push_back(static_cast<double>(std::clock() - begun) / CLOCKS_PER_SEC);
  ++row.Charts;
  if (lattice)
    Hold(*lattice, *drawn, seen, which, row);
  else
    std::fprintf(stderr, "%s: %s\n", which.c_str(), lattice.error().c_str());
  return {};
}

}  // namespace

std::span<const GridKind> HardGrids() {
  static const std::vector<GridKind> kinds{
      {"warp 0.2", "warp=0.2"},
      {"warp 0.5, tilt, shrink", "warp=0.5,tilt=0.5,shrink=0.5"},
      {"warp 0.8", "warp=0.8"},
      {"warp 1", "warp=1"},
      {"warp 1, 1 bit, 150 dpi", "warp=1,bits=0.4,coarse=0.5"},
      {"out of focus 0.3, tilt", "blur=0.3,tilt=0.3"},
      {"out of focus 0.7", "blur=0.7"},
      {"out of focus 0.6, grey, 150 dpi, jpeg", "blur=0.6,grey,coarse=0.75,jpeg=0.6"},
      {"out of focus 0.5, contrast lost", "blur=0.5,pale=0.6,warp=0.2"},
      {"1 bit 0.8", "bits=0.8"},
      {"1 bit, worn 0.5, warp", "bits=0.5,worn=0.5,warp=0.4"},
      {"1 bit, worn 0.8, tilt", "bits=0.6,worn=0.8,tilt=0.3"},
      {"1 bit, 150 dpi, tilt, writing", "bits=0.5,coarse=0.75,tilt=0.5,writing=0.8"},
      {"borders, warp, shear", "borders=1,warp=0.5,shear=0.6"},
      {"stains, holes, tint, worn", "stains=1,holes=1,tint=1,worn=0.5"},
      {"a quarter turn, tilt", "tilt=0.4", 0, 1},
      {"on its head, tilt, grey", "tilt=0.4,grey", 0, 2},
      {"three quarters, 1 bit, warp", "warp=0.3,bits=0.4", 0, 3},
      {"a photograph, 2 degrees", "borders=0.3", 2},
      {"a photograph, 5 degrees", "borders=0.3,tilt=0.3,jpeg=0.3", 5},
      {"all at once", "warp=0.6,tilt=0.6,shear=0.6,shrink=0.8,stains=0.5,writing=0.7,jpeg=0.5,worn=0.4"},
  };
  return kinds;
}

int MeasureGrids(std::span<const GridKind> kinds, int each, int seed, const std::string& folder) {
  std::printf(
      "| damage | charts | found | well | wrong band | wrong start | and not told | doubts | across, mm, "
      "median "
      "| 95%% | worst | up, mm, median | 95%% | worst | s a grid |\n"
      "| --- | --- | --- | --- | --- | --- | --- | --- | --- | --- | --- | --- | --- | --- | --- |\n");
  GridRow all;
  for (const GridKind& kind : kinds) {
    // The same charts for a kind, whichever others are measured.
    std::uint64_t day = 0;
    for (const char letter : kind.Name) day = (day * 31 + static_cast<unsigned char>(letter)) % 9973;
    GridRow row;
    for (int i = 0; i < each; ++i) {
      const auto one = static_cast<std::uint64_t>(seed) * 10000 + day + static_cast<std::uint64_t>(i);
      if (const auto measured = Measure(kind, one, folder, row); !measured) {
        std::fprintf(stderr, "%s: %s\n", kind.Name.c_str(), measured.error().c_str());
        return 1;
      }
    }
    Print(kind.Name, row);
    all.Add(row);
  }
  Print("all", all);
  return 0;
}

}  // namespace hyetex
