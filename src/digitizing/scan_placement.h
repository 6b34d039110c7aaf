// Where the image of a scanned chart lies under the trace. A scan takes the tablet's place: it lies at its
// true size on a sheet as large as the tablet, and what the mouse presses on it is a position of that tablet,
// in report units.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/geometry.h"
#include "core/result.h"
#include "core/scan_placement.h"

namespace hyetex {

/// The tablet that a scan, or a mouse on an empty page, stands in for: the largest and finest, with units of
/// the same length across and up. An index of TabletTypes().
inline constexpr int ScanTablet = 0;

/// Why a placement cannot stand in a journal: a checksum that is none, numbers that are none, a path that is
/// empty or has a line end in it. Nothing if it can.
std::optional<std::string> CheckPlacement(const ScanPlacement& placement);
/// Whether a text is a checksum: 64 lower-case hexadecimal digits.
bool IsSha256(std::string_view text);

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
