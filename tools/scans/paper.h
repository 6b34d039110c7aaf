// The paper that a chart is printed on, and what became of it.
#pragma once

#include "scans/brush.h"
#include "scans/form.h"

namespace hyetex {

/// The paper without a line on it: tint, stains, the shades of its folds. 8 bits each of blue, green and red.
cv::Mat LayPaper(const ChartForm& form, const ScanStyle& style, std::uint64_t seed,
                 const ScannedSheet& sheet);

/// Where ink has flaked off along the folds, 0 to 255.
void Crack(const ChartForm& form, const ScanStyle& style, std::uint64_t seed, InkLayer& cracks);

/// Puts the scanner's bed where there is no paper: around it, and in its holes.
void CutOut(const ScanStyle& style, std::uint64_t seed, const ScannedSheet& sheet, cv::Mat& image);

}  // namespace hyetex
