// Where the image of a scanned chart lies under the trace. A scan takes the tablet's place: it lies at its
// true size on a sheet as large as the tablet, and what the mouse presses on it is a position of that tablet,
// in report units.
#pragma once

#include <string>
#include <utility>

#include "core/geometry.h"
#include "core/result.h"

namespace hyetex {

/// The tablet that a scan, or a mouse on an empty page, stands in for: the largest and finest, with units of
/// the same length across and up. An index of TabletTypes().
inline constexpr int ScanTablet = 0;

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

/// The tablet position of a place of the image, in pixels from its left and top edges.
std::pair<double, double> TabletPosition(const ScanPlacement& placement, double px, double py);
/// The place of the image that lies at a tablet position.
std::pair<double, double> ImagePosition(const ScanPlacement& placement, double x, double y);

/// An image of width x height pixels laid upright and at its true size in the middle of the tablet's sheet,
/// or so far up and to the right of it that no turn about the image's middle brings any of it to a negative
/// position, which no press may have. Fails, in words, where that would leave the positions of a trace.
Result<ScanPlacement> LaidOnSheet(const TabletExtents& tablet, int width, int height, double pixelsPerMm);
/// The placement after a turn about the image's middle, counter-clockwise; its angle above -180 and up to
/// 180.
ScanPlacement TurnAboutCentre(const ScanPlacement& placement, int width, int height, double degrees);

}  // namespace hyetex
