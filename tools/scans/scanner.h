// What a scanner makes of a paper.
#pragma once

#include "scans/scan_style.h"

namespace hyetex {

/// Lays ink on an image of 8 bits each of blue, green and red: where `cover` is 255 only the ink's colour is
/// left of what lay below.
void LayInk(cv::Mat& image, const cv::Mat& cover, Rgb ink, double strength = 1);

/// The image as the scanner gives it: three channels in colour, else one; black and white as 0 and 255.
cv::Mat Scanned(cv::Mat image, const ScanStyle& style, std::uint64_t seed);

}  // namespace hyetex
