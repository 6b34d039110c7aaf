#include "digitizing/scan_placement.h"

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

}  // namespace hyetex
