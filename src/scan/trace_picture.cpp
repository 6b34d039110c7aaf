#include "scan/trace_picture.h"

#include <algorithm>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "scan/lattice.h"

namespace hyetex {
namespace {

constexpr double MostWidth = 6000;
constexpr float Weak = 0.5F;

}  // namespace

Result<std::string> PictureOfTrace(const ScanImage& image, const ScanTrace& trace, const std::string& name) {
  const double step = std::max(1.0, std::max(image.Width(), image.Height()) / MostWidth);
  cv::Mat picture =
      RenderColours(image, {0, 0, step, 0, 0, step},
                    {static_cast<int>(image.Width() / step), static_cast<int>(image.Height() / step)});
  std::vector<char> doubted(trace.Points.size(), 0);
  for (const TraceDoubt& doubt : trace.Doubts)
    for (int i = std::max(1, doubt.FirstPoint + 1); i <= doubt.LastPoint; ++i)
      doubted[static_cast<std::size_t>(i)] = 1;
  const auto place = [&](const ScanPoint& point) {
    return cv::Point(static_cast<int>(point.X / step), static_cast<int>(point.Y / step));
  };
  const int width = std::max(1, static_cast<int>(0.2 * trace.PixelsPerMm / step));
  for (std::size_t i = 1; i < trace.Points.size(); ++i) {
    if (trace.Points[i].How == ScanPoint::Step::Segment) continue;
    const cv::Scalar colour = doubted[i] != 0                     ? cv::Scalar(30, 30, 230)
                              : trace.Points[i].Confidence < Weak ? cv::Scalar(0, 140, 255)
                                                                  : cv::Scalar(40, 160, 20);
    cv::line(picture, place(trace.Points[i - 1]), place(trace.Points[i]), colour, width, cv::LINE_AA);
  }
  for (const ScanPoint& point : trace.Points)
    cv::circle(picture, place(point), width + 1, {200, 60, 0}, -1, cv::LINE_AA);
  const std::size_t dot = name.rfind('.');
  std::vector<std::uint8_t> bytes;
  try {
    if (dot == std::string::npos || !cv::imencode(name.substr(dot), picture, bytes))
      return Failure("Cannot write " + name + ": a picture's name ends in .png, .jpg or .tif");
  } catch (const cv::Exception&) {
    return Failure("Cannot write " + name + ": a picture's name ends in .png, .jpg or .tif");
  }
  return std::string(bytes.begin(), bytes.end());
}

}  // namespace hyetex
