// Windows remember where they stood. The keys are the window's name (its objectName) with "-Top" and "-Left";
// the values count 15 to a pixel at 96 dpi, and inside the shell from the top left of its area.
#pragma once

#include <QRect>
#include <QWidget>
#include <string>

namespace hyetex {

inline constexpr int PlaceUnitsPerPixel = 15;

/// Moves the window to its remembered place, 0 and 0 when there is none; brought inside the area, or onto a
/// screen that is present, where that place lies outside. A window of the shell must stand in its area
/// already.
void RestorePlace(QWidget& window, const std::string& programFolder);
void StorePlace(const QWidget& window, const std::string& programFolder);

/// Where a frame goes so that it stands inside `area` with as much as fits, its top left corner first.
QPoint BroughtInside(const QRect& frame, const QRect& area);

}  // namespace hyetex
