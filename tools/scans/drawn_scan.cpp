#include "scans/drawn_scan.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/numbers.h"
#include "digitizing/tablets.h"
#include "scans/form.h"
#include "scans/paper.h"
#include "scans/pen.h"
#include "scans/scanner.h"
#include "tracing/operator.h"

namespace hyetex {
namespace {

constexpr double MmPerInch = 25.4;
// Where the image's bottom-left corner comes to lie on the tablet.
constexpr double LaidLeftMm = 15, LaidBottomMm = 30;

const TabletType& Stand() { return TabletTypes()[ScanTablet]; }

cv::Mat Drawn(const PenLine& line, const ChartForm& form, const ScanStyle& style, std::uint64_t seed,
              const ScannedSheet& sheet) {
  cv::Mat image = LayPaper(form, style, seed, sheet);
  {
    InkLayer grid(sheet), letters(sheet);
    PrintForm(form, line, style, seed, grid, letters);
    LayInk(image, grid.Cover, style.Grid, style.PrintInk);
    LayInk(image, letters.Cover, style.Grid, style.PrintInk);
  }
  {
    InkLayer pen(sheet), hand(sheet);
    DrawPen(line, style, seed, pen);
    LayInk(image, pen.Cover, style.Pen);
    if (style.Writing > 0 || style.TimeMarks > 0) {
      Write(form, line, style, seed, hand);
      LayInk(image, hand.Cover, {50, 48, 62}, 0.85);
    }
  }
  if (style.Folds > 0) {
    InkLayer cracks(sheet);
    Crack(form, style, seed, cracks);
    image.setTo(cv::Scalar(style.Paper.Blue, style.Paper.Green, style.Paper.Red) * 0.97, cracks.Cover > 96);
  }
  CutOut(style, seed, sheet, image);
  return image;
}

}  // namespace

cv::Point2d DrawnScan::PlaceOf(double hours, double heightMm) const {
  const double along = Line.AlongMm({PenStep::Point, hours, heightMm, 0});
  return Paper.Turned(Paper.Place(along, heightMm));
}

Result<DrawnScan> DrawScan(const PenLine& line, const ScanStyle& style, std::uint64_t seed) {
  if (line.Points.size() < 2) return Failure("there is no line to draw");
  const ChartForm form = FormOf(line, style);
  const double scale = style.Dpi / MmPerInch;
  const double pixels = (form.Paper.width + 2 * style.Shape.BorderMm) *
                        (form.Paper.height + 2 * style.Shape.BorderMm) * scale * scale;
  if (!(pixels > 0 && pixels <= MostDrawnPixels))
    return Failure("a scan of " + RoundedText(pixels / 1e6, 0) + " million pixels is too large to draw");
  DrawnScan scan{.Image = {},
                 .PixelsPerMm = scale,
                 .BottomLeft = {},
                 .BottomRight = {},
                 .Presses = {},
                 .Line = line,
                 .Paper = ScannedSheet(style.Shape, form.Paper, scale, seed)};
  scan.Image = scan.Paper.Turned(Scanned(Drawn(line, form, style, seed, scan.Paper), style, seed));
  scan.BottomLeft = scan.PlaceOf(0, 0);
  scan.BottomRight = scan.PlaceOf(line.Hours, 0);
  for (const PenPoint& point : PressedPoints(line, Stand()).Points)
    scan.Presses.push_back({point, scan.PlaceOf(point.Hours, point.HeightMm)});
  return scan;
}

ScanPlacement PlacementOf(const DrawnScan& scan) {
  const TabletExtents& size = Stand().Extents;
  const double unitsPerMm = size.TabletWidthUnits / size.TabletWidthMm;
  ScanPlacement placement;
  placement.UnitsPerPx = unitsPerMm / scan.PixelsPerMm;
  const cv::Point2d along = scan.BottomRight - scan.BottomLeft;
  placement.AngleDegrees = 90 * std::round(std::atan2(along.y, along.x) / std::acos(0.0));
  double left = 0, bottom = 0;
  for (const int right : {0, scan.Image.cols})
    for (const int down : {0, scan.Image.rows}) {
      const auto [x, y] = TabletPosition(placement, right, down);
      left = std::min(left, x);
      bottom = std::min(bottom, y);
    }
  placement.X0 = LaidLeftMm * unitsPerMm - left;
  placement.Y0 = LaidBottomMm * unitsPerMm - bottom;
  return placement;
}

std::vector<JournalEvent> MouseSteps(const DrawnScan& scan, const ScanPlacement& placement) {
  return TraceAt(PressedPoints(scan.Line, Stand()), [&](double alongMm, double heightMm) {
    const cv::Point2d place = scan.Paper.Turned(scan.Paper.Place(alongMm, heightMm));
    return TabletPosition(placement, place.x, place.y);
  });
}

std::string TruthText(const DrawnScan& scan, double firstHour) {
  static constexpr std::array<const char*, 5> kinds{"point", "drop", "segment", "gap", "level"};
  std::string text = "hour,mm,x,y,kind\n";
  for (std::size_t i = 0; i < scan.Presses.size(); ++i) {
    const auto& [point, place] = scan.Presses[i];
    text += RoundedText(firstHour + point.Hours, 5) + "," + RoundedText(point.Rain, 4) + "," +
            RoundedText(place.x, 2) + "," + RoundedText(place.y, 2) + "," +
            (i == 0 ? "start" : kinds[static_cast<std::size_t>(point.Step)]) + "\n";
  }
  return text;
}

}  // namespace hyetex
