#include "scans/brush.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace hyetex {
namespace {

constexpr double PieceMm = 6;

}  // namespace

// A piece of a stroke with round ends: each pixel's share is told by its middle's distance from the piece.
void InkLayer::Piece(cv::Point2d from, cv::Point2d to, double fromWidth, double toWidth, double fromInk,
                     double toInk) {
  const double reach = std::max({fromWidth, toWidth, 1.0}) / 2 + 1;
  const int left = std::max(0, static_cast<int>(std::floor(std::min(from.x, to.x) - reach)));
  const int right = std::min(Cover.cols - 1, static_cast<int>(std::ceil(std::max(from.x, to.x) + reach)));
  const int top = std::max(0, static_cast<int>(std::floor(std::min(from.y, to.y) - reach)));
  const int bottom = std::min(Cover.rows - 1, static_cast<int>(std::ceil(std::max(from.y, to.y) + reach)));
  const cv::Point2d step = to - from;
  const double length2 = step.dot(step), inverse = length2 > 0 ? 1 / length2 : 0;
  for (int y = top; y <= bottom; ++y) {
    std::uint8_t* row = Cover.ptr<std::uint8_t>(y);
    for (int x = left; x <= right; ++x) {
      const cv::Point2d off = cv::Point2d(x + 0.5, y + 0.5) - from;
      const double part = std::clamp(off.dot(step) * inverse, 0.0, 1.0);
      const cv::Point2d away = off - step * part;
      const double width = std::lerp(fromWidth, toWidth, part), ink = std::lerp(fromInk, toInk, part);
      // A line thinner than a pixel covers a share of it.
      const double drawn = std::max(width, 1.0);
      const double edge = drawn / 2 + 0.5 - std::sqrt(away.dot(away));
      if (edge <= 0) continue;
      const double cover = std::min(edge, 1.0) * std::min(width, 1.0) * ink;
      const auto value = static_cast<std::uint8_t>(std::lround(std::clamp(cover, 0.0, 1.0) * 255));
      if (value > row[x]) row[x] = value;
    }
  }
}

void InkLayer::Stroke(std::span<const StrokePoint> points) {
  const double scale = sheet_->PixelsPerMm();
  cv::Point2d last;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const cv::Point2d at = sheet_->Place(points[i].Mm);
    const StrokePoint& before = points[i == 0 ? 0 : i - 1];
    if (i > 0 || points.size() == 1)
      Piece(i > 0 ? last : at, at, before.WidthMm * scale, points[i].WidthMm * scale, before.Ink,
            points[i].Ink);
    last = at;
  }
}

void InkLayer::Line(cv::Point2d fromMm, cv::Point2d toMm, double widthMm, double ink) {
  const int pieces = std::max(1, static_cast<int>(std::ceil(cv::norm(toMm - fromMm) / PieceMm)));
  std::vector<StrokePoint> points;
  for (int i = 0; i <= pieces; ++i)
    points.push_back({fromMm + (toMm - fromMm) * (static_cast<double>(i) / pieces), widthMm, ink});
  Stroke(points);
}

void InkLayer::Disc(cv::Point2d middleMm, double radiusMm, double ink) {
  const StrokePoint point{middleMm, 2 * radiusMm, ink};
  Stroke({&point, 1});
}

void InkLayer::Block(const cv::Rect2d& mm, double ink) {
  const int rows = std::max(1, static_cast<int>(std::ceil(mm.height * sheet_->PixelsPerMm())));
  const double width = mm.height / rows;
  for (int i = 0; i < rows; ++i) {
    const double up = mm.y + (i + 0.5) * width;
    Line({mm.x, up}, {mm.x + mm.width, up}, 2.2 * width, ink);
  }
}

void InkLayer::Text(const std::string& text, cv::Point2d mm, const Lettering& letters) {
  if (text.empty()) return;
  // The letters are drawn larger than they will be, and each pixel looks up its share of them: by the paper's
  // turn and scale around the text, so that they lie as the paper does.
  const int font = letters.Serifs ? cv::FONT_HERSHEY_TRIPLEX : cv::FONT_HERSHEY_DUPLEX;
  constexpr double capital = 21;  // of the font's own units
  const double size = 2.5, scale = capital * size / letters.HeightMm;
  const int thick = std::max(1, static_cast<int>(std::lround(letters.StrokeMm * scale)));
  int base = 0;
  const cv::Size box = cv::getTextSize(text, font, size, thick, &base);
  const int rim = 2 * thick + 8;
  cv::Mat patch(box.height + base + 2 * rim, box.width + 2 * rim, CV_8U, cv::Scalar(0));
  cv::putText(patch, text, {rim, rim + box.height}, font, size, cv::Scalar(255), thick, cv::LINE_AA);
  const double ratio = scale / sheet_->PixelsPerMm();
  if (ratio > 1.2) cv::GaussianBlur(patch, patch, {}, 0.4 * ratio);

  const cv::Point2d middle = sheet_->Place(mm);
  const cv::Point2d along = (sheet_->Place(mm.x + 1, mm.y) - middle) / scale;
  const cv::Point2d down = (sheet_->Place(mm.x, mm.y - 1) - middle) / scale;
  const double turn = letters.TurnDegrees * std::numbers::pi / 180;
  const cv::Matx22d lie(along.x, down.x, along.y, down.y);
  const cv::Matx22d step = lie * cv::Matx22d(std::cos(turn), std::sin(turn), -std::sin(turn), std::cos(turn));
  const cv::Point2d heart(rim + letters.Anchor * box.width, rim + box.height - capital * size / 2);
  const cv::Matx22d back = step.inv();

  double left = 1e9, right = -1e9, top = 1e9, bottom = -1e9;
  for (const cv::Point2d corner : {cv::Point2d(0, 0), cv::Point2d(patch.cols, 0), cv::Point2d(0, patch.rows),
                                   cv::Point2d(patch.cols, patch.rows)}) {
    const cv::Point2d off = corner - heart;
    const cv::Matx21d moved = step * cv::Matx21d(off.x, off.y);
    left = std::min(left, middle.x + moved(0));
    right = std::max(right, middle.x + moved(0));
    top = std::min(top, middle.y + moved(1));
    bottom = std::max(bottom, middle.y + moved(1));
  }
  for (int y = std::max(0, static_cast<int>(top)); y < std::min<double>(Cover.rows, bottom + 1); ++y) {
    std::uint8_t* row = Cover.ptr<std::uint8_t>(y);
    for (int x = std::max(0, static_cast<int>(left)); x < std::min<double>(Cover.cols, right + 1); ++x) {
      const cv::Matx21d from = back * cv::Matx21d(x + 0.5 - middle.x, y + 0.5 - middle.y);
      const double px = from(0) + heart.x - 0.5, py = from(1) + heart.y - 0.5;
      const int cx = static_cast<int>(std::floor(px)), cy = static_cast<int>(std::floor(py));
      if (cx < 0 || cy < 0 || cx + 1 >= patch.cols || cy + 1 >= patch.rows) continue;
      const double upper =
          std::lerp(patch.at<std::uint8_t>(cy, cx), patch.at<std::uint8_t>(cy, cx + 1), px - cx);
      const double lower =
          std::lerp(patch.at<std::uint8_t>(cy + 1, cx), patch.at<std::uint8_t>(cy + 1, cx + 1), px - cx);
      const auto value =
          static_cast<std::uint8_t>(std::lround(std::lerp(upper, lower, py - cy) * letters.Ink));
      if (value > row[x]) row[x] = value;
    }
  }
}

}  // namespace hyetex
