#include "scans/sheet.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "scans/chance.h"

namespace hyetex {
namespace {

double Radians(double degrees) { return degrees * std::numbers::pi / 180; }

}  // namespace

ScannedSheet::ScannedSheet(const SheetShape& shape, const cv::Rect2d& paper, double pixelsPerMm,
                           std::uint64_t seed)
    : shape_(shape), paper_(paper), scale_(pixelsPerMm) {
  Chance chance(seed, "warp");
  for (std::size_t i = 0; i < waves_.size(); ++i) {
    // Two long waves across and two up: paper swells in sheets, it does not crumple.
    const double length = i % 2 == 0 ? chance.Uniform(250, 500) : chance.Uniform(120, 220);
    waves_[i] = {2 * std::numbers::pi / length, 2 * std::numbers::pi / chance.Uniform(200, 400),
                 chance.Uniform(0, 2 * std::numbers::pi), i < 2 ? 1.0 : 0.0};
  }
  const double tilt = Radians(shape.TiltDegrees), lean = std::tan(Radians(shape.ShearDegrees));
  const cv::Matx22d across(1 - shape.ShrunkAcross, lean * (1 - shape.ShrunkUp), 0, 1 - shape.ShrunkUp);
  // The image's y runs down.
  const cv::Matx22d turn(std::cos(tilt), -std::sin(tilt), -std::sin(tilt), -std::cos(tilt));
  turn_ = turn * across;

  double left = 1e9, top = 1e9, right = -1e9, bottom = -1e9;
  constexpr int steps = 24;
  for (int i = 0; i <= steps; ++i)
    for (int side = 0; side < 4; ++side) {
      const double part = static_cast<double>(i) / steps;
      const cv::Point2d corner(side < 2 ? side : part, side < 2 ? part : side - 2);
      const cv::Point2d at = Place(paper.x + corner.x * paper.width, paper.y + corner.y * paper.height);
      left = std::min(left, at.x);
      right = std::max(right, at.x);
      top = std::min(top, at.y);
      bottom = std::max(bottom, at.y);
    }
  const double border = shape.BorderMm * scale_;
  origin_ = {border - left, border - top};
  size_ = {static_cast<int>(std::ceil(right - left + 2 * border)),
           static_cast<int>(std::ceil(bottom - top + 2 * border))};
}

cv::Point2d ScannedSheet::Place(double alongMm, double upMm) const {
  cv::Point2d moved(alongMm, upMm);
  if (shape_.WarpMm != 0)
    for (const Wave& wave : waves_) {
      const double off = 0.5 * shape_.WarpMm * std::sin(wave.Along * alongMm + wave.Up * upMm + wave.Phase);
      moved += cv::Point2d(off * wave.Across, off * (1 - wave.Across));
    }
  const cv::Matx21d at = turn_ * cv::Matx21d(moved.x, moved.y);
  return cv::Point2d(at(0), at(1)) * scale_ + origin_;
}

cv::Point2d ScannedSheet::Turned(cv::Point2d place) const {
  switch (shape_.Quarters & 3) {
    case 1:
      return {place.y, size_.width - place.x};
    case 2:
      return {size_.width - place.x, size_.height - place.y};
    case 3:
      return {size_.height - place.y, place.x};
    default:
      return place;
  }
}

cv::Mat ScannedSheet::Turned(const cv::Mat& drawing) const {
  const int quarters = shape_.Quarters & 3;
  if (quarters == 0) return drawing;
  constexpr int codes[] = {cv::ROTATE_90_COUNTERCLOCKWISE, cv::ROTATE_180, cv::ROTATE_90_CLOCKWISE};
  cv::Mat turned;
  cv::rotate(drawing, turned, codes[quarters - 1]);
  return turned;
}

}  // namespace hyetex
