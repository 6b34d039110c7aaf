// Which image lies under a trace, and where. A session keeps it beside its points; what it means for the
// positions of the tablet stands in digitizing/scan_placement.h.
#pragma once

#include <string>

namespace hyetex {

struct ScanPlacement {
  std::string Sha256 = {};  ///< of the file's bytes, 64 lower-case hexadecimal digits
  int Page = 0;             ///< of the file, from 0
  /// The tablet position of the image's top-left corner, the outer corner of its first pixel.
  double X0 = 0, Y0 = 0;
  double UnitsPerPx = 1;  ///< report units for each pixel of the image
  /// By how much the image is turned about that corner, counter-clockwise; a quarter turn is 90.
  double AngleDegrees = 0;
  std::string Path = {};  ///< of the file

  bool operator==(const ScanPlacement&) const = default;
};

}  // namespace hyetex
