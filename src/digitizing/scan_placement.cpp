#include "digitizing/scan_placement.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace hyetex {
namespace {

// Quarter turns are exact, so that an upright scan's pixels keep to their lines.
std::pair<double, double> CosineAndSine(double degrees) {
  const double quarters = degrees / 90;
  if (quarters == std::floor(quarters)) {
    constexpr int sine[] = {0, 1, 0, -1};
    const int turn = static_cast<int>(std::fmod(std::fmod(quarters, 4) + 4, 4));
    return {sine[(turn + 1) % 4], sine[turn]};
  }
  const double angle = degrees * std::numbers::pi / 180;
  return {std::cos(angle), std::sin(angle)};
}

// The same placement, moved so that the image's middle lies at x, y.
ScanPlacement WithCentre(ScanPlacement placement, int width, int height, double x, double y) {
  const auto [atX, atY] = TabletPosition(placement, width / 2.0, height / 2.0);
  placement.X0 += x - atX;
  placement.Y0 += y - atY;
  return placement;
}

}  // namespace

bool IsSha256(std::string_view text) {
  return text.size() == 64 && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::optional<std::string> CheckPlacement(const ScanPlacement& placement) {
  if (!IsSha256(placement.Sha256)) return "The scan has no checksum.";
  if (placement.Page < 0) return "The scan has no such page.";
  if (!std::isfinite(placement.X0) || !std::isfinite(placement.Y0) ||
      !std::isfinite(placement.AngleDegrees) || !std::isfinite(placement.UnitsPerPx) ||
      placement.UnitsPerPx <= 0)
    return "The scan has no place on the tablet.";
  if (placement.Path.empty()) return "The scan has no path.";
  if (placement.Path.find_first_of(std::string_view("\r\n\0", 3)) != std::string::npos)
    return "The path of the scan has a line end in it. Rename the file or its folder.";
  return std::nullopt;
}

std::pair<double, double> TabletPosition(const ScanPlacement& placement, double px, double py) {
  const auto [c, s] = CosineAndSine(placement.AngleDegrees);
  const double right = px * placement.UnitsPerPx, up = -py * placement.UnitsPerPx;
  return {placement.X0 + right * c - up * s, placement.Y0 + right * s + up * c};
}

std::pair<double, double> ImagePosition(const ScanPlacement& placement, double x, double y) {
  const auto [c, s] = CosineAndSine(placement.AngleDegrees);
  const double dx = x - placement.X0, dy = y - placement.Y0;
  return {(dx * c + dy * s) / placement.UnitsPerPx, (dx * s - dy * c) / placement.UnitsPerPx};
}

Result<ScanPlacement> LaidOnSheet(const TabletExtents& tablet, int width, int height, double pixelsPerMm) {
  ScanPlacement placement;
  placement.UnitsPerPx = tablet.UnitsPerMmVertical() / pixelsPerMm;
  const double reach = std::ceil(std::hypot(width, height) / 2 * placement.UnitsPerPx);
  const double x = std::max(tablet.TabletWidthUnits / 2.0, reach),
               y = std::max(tablet.TabletHeightUnits / 2.0, reach);
  // Also on what is no number.
  if (!(pixelsPerMm > 0 && x + reach < SegmentMark && y + reach < SegmentMark))
    return Failure("At this scale the scan is too large to be traced; set the scale anew.");
  return WithCentre(placement, width, height, x, y);
}

ScanPlacement TurnAboutCentre(const ScanPlacement& placement, int width, int height, double degrees) {
  const auto [x, y] = TabletPosition(placement, width / 2.0, height / 2.0);
  ScanPlacement turned = placement;
  turned.AngleDegrees = std::remainder(placement.AngleDegrees + degrees, 360);
  if (turned.AngleDegrees <= -180) turned.AngleDegrees += 360;
  return WithCentre(turned, width, height, x, y);
}

}  // namespace hyetex
