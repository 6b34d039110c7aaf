// A drawn scan as a file, with the resolution that a scanner writes into it.
#pragma once

#include <optional>
#include <string>

#include "core/result.h"
#include "scans/drawn_scan.h"

namespace hyetex {

/// Whether a name ends in the suffix of a format that EncodeScan() knows.
Result<void> CheckScanName(const std::string& name);

/// PNG, JPEG, TIFF or BMP by the name's suffix; an image of black and white alone with one bit a pixel where
/// the format has it. `dpi`: as the file tells it; nothing leaves it out. Fails as CheckScanName() does.
Result<std::string> EncodeScan(const cv::Mat& image, const std::string& name, std::optional<double> dpi,
                               int jpegQuality = 92);

}  // namespace hyetex
