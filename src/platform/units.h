// Between the toolkit's pixels and screen units, in which windows remember places and the chart view is
// drawn.
#pragma once

#include <QtMath>

namespace hyetex {

inline constexpr int UnitsPerPixel = 15;  ///< at 96 dpi

inline int ToPixels(double units) { return qRound(units / UnitsPerPixel); }

}  // namespace hyetex
