// How pixels of a scan are shown: brightness and contrast, and the grid's colour faded into the paper.
#pragma once

#include <array>
#include <cstdint>
#include <opencv2/core.hpp>

#include "scan/scan_image.h"

namespace hyetex {

class ScanShades {
 public:
  /// `paper`: the colour of the paper's bare places, blue, green, red.
  ScanShades(const ScanLook& look, cv::Vec3b paper);

  /// Puts an image of one or three channels into `to`, of as many pixels, as 0xffRRGGBB. The image is worked
  /// on in its place.
  void Show(cv::Mat& image, cv::Mat& to) const;

 private:
  void Fade(std::uint8_t* row, int count) const;

  int fade_ = 0;  // 0 to 256
  cv::Vec3b paper_;
  int paperTint_ = 0;
  bool plain_ = true;                       // neither brightness nor contrast
  cv::Mat tone_;                            // brightness and contrast
  std::array<std::uint32_t, 256> greys_{};  // all of it, of a grey image
};

}  // namespace hyetex
