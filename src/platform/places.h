// Windows remember where they stood. Each has a key by its name (its objectName); the values are screen units
// (units.h), and inside the shell from the top left of its area.
#pragma once

#include <QRect>
#include <QWidget>

#include "core/settings.h"

namespace hyetex {

/// Moves the window to its remembered place, and to the middle when there is none; brought inside the area,
/// or onto a screen that is present, where that place lies outside. A window of the shell must stand in its
/// area already.
void RestorePlace(QWidget& window, const Settings& settings);
/// A window that fills the area, or is an icon in it, keeps the place that it had before.
void StorePlace(const QWidget& window, Settings& settings);

/// Gives the window its remembered size, as far as the area has it and its controls want no more.
void RestoreSize(QWidget& window, const Settings& settings);
void StoreSize(const QWidget& window, Settings& settings);

/// Where a frame goes so that it stands inside `area` with as much as fits, its top left corner first.
QPoint BroughtInside(const QRect& frame, const QRect& area);

}  // namespace hyetex
