// How many pixels of a scan a millimetre of its paper has: by the file's resolution, by two marks and the
// distance between them, or by the paper's known width. What was used is remembered for the kind of paper.
#pragma once

#include <optional>
#include <string>

#include "core/result.h"

namespace hyetex {

struct ScanScale {
  enum class Source { Resolution, Marks, PaperWidth };

  Source From = Source::Resolution;
  double PixelsPerMm = 0;
  double Mm = 0;  ///< the distance of the marks, or the paper's width; 0 by resolution

  bool operator==(const ScanScale&) const = default;
};

/// "300 dpi by the file", "300 dpi by two marks 200 mm apart", "300 dpi by a paper 442 mm wide".
std::string ScaleText(const ScanScale& scale);

/// By two places of the image, in pixels, and the millimetres between them. Fails, in words, on marks that
/// lie too close, on a distance that is no length, and on a scale that no scanner has.
Result<ScanScale> ScaleByMarks(double x1, double y1, double x2, double y2, double mm);
/// By the width of the paper, which fills the image from side to side.
Result<ScanScale> ScaleByPaperWidth(int imageWidth, double mm);

/// What was used last for a chart type, kept in the program folder by the type's name.
std::optional<ScanScale> RememberedScale(const std::string& programFolder, const std::string& chartType);
Result<void> RememberScale(const std::string& programFolder, const std::string& chartType,
                           const ScanScale& scale);

}  // namespace hyetex
