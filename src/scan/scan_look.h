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

  /// A row of an image of one or three channels as 0xffRRGGBB.
  void Show(const std::uint8_t* row, int channels, int count, std::uint32_t* to) const;

 private:
  void Fade(const std::uint8_t* row, int count, std::uint32_t* to) const;

  int fade_ = 0;  // 0 to 256
  cv::Vec3b paper_;
  int paperTint_ = 0;
  std::array<std::uint8_t, 256> tone_{};    // brightness and contrast
  std::array<std::uint32_t, 256> greys_{};  // all of it, of a grey image
};

}  // namespace hyetex
