// A decoded image with its half, quarter, ... sizes, and how a part of it is put into a view.
#pragma once

#include <cstdint>
#include <opencv2/core.hpp>
#include <span>
#include <vector>

#include "scan/scan_image.h"

namespace hyetex {

class ScanPyramid {
 public:
  ScanPyramid() = default;
  /// Of one or three channels (blue, green, red) of 8 bits. A third of its memory is added.
  explicit ScanPyramid(cv::Mat image);

  int Width() const { return levels_.empty() ? 0 : levels_.front().cols; }
  int Height() const { return levels_.empty() ? 0 : levels_.front().rows; }
  std::size_t Bytes() const;

  /// As ScanImage::Render().
  void Render(const ScanWindow& window, const ScanLook& look, std::uint32_t around,
              std::span<std::uint32_t> pixels, int width, int height) const;

 private:
  std::vector<cv::Mat> levels_;  // each half as wide and high as the one before it, rounded up
  cv::Vec3b paper_{255, 255, 255};
};

}  // namespace hyetex
