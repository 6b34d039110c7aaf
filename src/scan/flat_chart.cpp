#include "scan/flat_chart.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>

namespace hyetex {
namespace {

constexpr double PixelsPerMm = 8;
constexpr int Apart = 32;  // columns and rows between places that are looked up; straight lines in between

}  // namespace

FlatChart LayFlat(const ScanImage& image, const Lattice& lattice, const PaperPart& part) {
  FlatChart flat{
      {}, PixelsPerMm, part.FromMm, part.TopMm, lattice.AcrossMm(), lattice.UpMm(), lattice.LineAtMm()};
  const cv::Size size(static_cast<int>((part.ToMm - part.FromMm) * PixelsPerMm),
                      static_cast<int>((part.TopMm - part.BottomMm) * PixelsPerMm));
  // A finer image is read at about twice the flat one's resolution, so that no thin line falls between
  // pixels.
  const double step = std::max(1.0, lattice.PixelsPerMm() / (1.6 * PixelsPerMm));
  const cv::Mat whole =
      RenderColours(image, {0, 0, step, 0, 0, step},
                    {static_cast<int>(image.Width() / step), static_cast<int>(image.Height() / step)});
  cv::Mat coarse(size.height / Apart + 2, size.width / Apart + 2, CV_32FC2);
  for (int y = 0; y < coarse.rows; ++y)
    for (int x = 0; x < coarse.cols; ++x) {
      const cv::Point2d place = lattice.ToImage({flat.AlongMm(x * Apart), flat.HeightMm(y * Apart)});
      coarse.at<cv::Vec2f>(y, x) = {static_cast<float>(place.x / step - 0.5),
                                    static_cast<float>(place.y / step - 0.5)};
    }
  cv::Mat places(size, CV_32FC2);
  for (int y = 0; y < size.height; ++y) {
    const int row = y / Apart;
    const float down = static_cast<float>(y % Apart) / Apart;
    const auto *above = coarse.ptr<cv::Vec2f>(row), *below = coarse.ptr<cv::Vec2f>(row + 1);
    auto* to = places.ptr<cv::Vec2f>(y);
    for (int x = 0; x < size.width; ++x) {
      const int column = x / Apart;
      const float right = static_cast<float>(x % Apart) / Apart;
      to[x] = (1 - down) * ((1 - right) * above[column] + right * above[column + 1]) +
              down * ((1 - right) * below[column] + right * below[column + 1]);
    }
  }
  cv::remap(whole, flat.Colours, places, {}, cv::INTER_LINEAR, cv::BORDER_CONSTANT,
            cv::Scalar(255, 255, 255));
  return flat;
}

}  // namespace hyetex
