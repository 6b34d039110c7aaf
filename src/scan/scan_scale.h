// How many pixels of a scan a millimetre of its paper has: by the file's resolution, by two marks and the
// distance between them, or by the paper's known width. What was used is remembered for the kind of paper.
#pragma once

#include <optional>
#include <string>

#include "core/result.h"
#include "scan/scan_image.h"

namespace hyetex {

inline constexpr double MmPerInch = 25.4;
/// No scanner is coarser or finer.
inline constexpr double LeastScanDpi = 40, MostScanDpi = 4800;

struct ScanScale {
  enum class Source { Resolution, Marks, PaperWidth };

  Source From = Source::Resolution;
  double PixelsPerMm = 0;
  double Mm = 0;               ///< the distance of the marks, or the paper's width; 0 by resolution
  double FilePixelsPerMm = 0;  ///< what the file's resolution said of that scan; 0 where it said nothing

  bool operator==(const ScanScale&) const = default;
};

/// "300 dpi by the file", "300 dpi by two marks 200 mm apart", "300 dpi by a paper 442 mm wide".
std::string ScaleText(const ScanScale& scale);

/// By two places of the image, in pixels, and the millimetres between them. Fails, in words, on marks that
/// lie too close, on a distance that is no length, and on a scale that no scanner has.
Result<ScanScale> ScaleByMarks(double x1, double y1, double x2, double y2, double mm);
/// By the width of the paper, which fills the image from side to side.
Result<ScanScale> ScaleByPaperWidth(int imageWidth, double mm);

/// What was used last for a chart type, kept in the program folder (`Scans.dat`) by the type's name.
std::optional<ScanScale> RememberedScale(const std::string& programFolder, const std::string& chartType);
/// Fails, with the file as it was, on a name of more than one line and where it cannot be written.
Result<void> RememberScale(const std::string& programFolder, const std::string& chartType,
                           const ScanScale& scale);

/// The scale that a newly opened scan begins with: measured as the last one of its chart type was, so that a
/// box of scans is measured once.
/// - By resolution, or with nothing remembered: what the file says.
/// - By the paper's width: that width over this image's.
/// - By marks: what was found is how far that scanner's resolution is off, and holds for this file's own
///   resolution too.
/// Nothing where that cannot be: then the operator is asked, with the remembered `Mm` as the proposal.
std::optional<ScanScale> InitialScale(const std::optional<ScanScale>& remembered, const ScanFacts& facts);

}  // namespace hyetex
