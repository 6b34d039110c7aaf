#include "scan/lattice.h"

#include <algorithm>
#include <cmath>

namespace hyetex {
namespace {

cv::Point2d Moved(const cv::Matx23d& by, cv::Point2d place) {
  return {by(0, 0) * place.x + by(0, 1) * place.y + by(0, 2),
          by(1, 0) * place.x + by(1, 1) * place.y + by(1, 2)};
}

constexpr int Approaches = 14;  // of a place to where the field has a number

}  // namespace

double ArcLeadMm(const ChartTypeRecord& paper, double upMm) {
  const double middle = paper.MiddleToBottomMm, height = paper.ChartHeightMm;
  if (paper.ChartMethod != static_cast<std::int16_t>(ChartMethod::NonLinear) || !(middle > 0)) return 0;
  const double radius = (middle * middle + height * height / 4) / (2 * middle), off = height / 2 - upMm;
  return middle - radius + std::sqrt(std::max(0.0, radius * radius - off * off));
}

cv::Mat RenderColours(const ScanImage& image, const ScanWindow& window, cv::Size size) {
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(size.area()));
  image.Render(window, {}, 0xffffffff, pixels, size.width, size.height);
  cv::Mat colours(size, CV_8UC3);
  const std::uint32_t* from = pixels.data();
  for (int y = 0; y < size.height; ++y) {
    auto* to = colours.ptr<cv::Vec3b>(y);
    for (int x = 0; x < size.width; ++x, ++from)
      to[x] = {static_cast<std::uint8_t>(*from), static_cast<std::uint8_t>(*from >> 8),
               static_cast<std::uint8_t>(*from >> 16)};
  }
  return colours;
}

cv::Point2d Lattice::ToPaper(cv::Point2d image) const {
  const cv::Point2d place = Moved(toPicture_, image);
  const double up = -depths_.At(place.x, place.y) * upMm_;
  return {hours_.At(place.x, place.y) * acrossMm_ + ArcLeadMm(page_.Paper, up), up};
}

cv::Point2d Lattice::ToImage(cv::Point2d paper) const { return Moved(toImage_, ToPicture(paper)); }

cv::Point2d Lattice::ToPicture(cv::Point2d paper) const {
  const double depth = -paper.y / upMm_, hour = (paper.x - ArcLeadMm(page_.Paper, paper.y)) / acrossMm_;
  cv::Point2d place{hour * hours_.Period(), depth * depths_.Period()};
  for (int i = 0; i < Approaches; ++i) {
    place.x += (hour - hours_.At(place.x, place.y)) * hours_.Period();
    place.y += (depth - depths_.At(place.x, place.y)) * depths_.Period();
  }
  return place;
}

double Lattice::BowMm() const {
  constexpr int Places = 7;
  const double pageMm = page_.Hours / page_.Paper.TimeScale;
  std::vector<double> bows;
  for (int i = 0; i < Places; ++i) {
    const double along = pageMm * (i + 0.5) / Places;
    const cv::Point2d middle = (ToPicture({along, 0}) + ToPicture({along, bandMm_})) * 0.5;
    bows.push_back(hours_.At(middle.x, middle.y) * acrossMm_ - along);
  }
  std::nth_element(bows.begin(), bows.begin() + Places / 2, bows.end());
  return bows[Places / 2];
}

void Lattice::StartAt(cv::Point2d image) {
  const cv::Point2d paper = ToPaper(image);
  const double lines = -(paper.x - ArcLeadMm(page_.Paper, paper.y)) / acrossMm_;
  hours_.Shift(lines);
  lineAt_ += lines;
  depths_.Shift(paper.y / upMm_);
  doubts_.clear();
}

}  // namespace hyetex
