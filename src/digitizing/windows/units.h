// Between the toolkit's pixels and screen units (desk_layout.h).
#pragma once

#include <QRect>
#include <QRectF>

#include "digitizing/desk_layout.h"

namespace hyetex {

inline constexpr int UnitsPerPixel = 15;

inline int ToPixels(double units) { return qRound(units / UnitsPerPixel); }
inline QRect ToPixels(const Rect& rect) {
  return {ToPixels(rect.Left), ToPixels(rect.Top), ToPixels(rect.Width), ToPixels(rect.Height)};
}
inline QRectF ToUnits(const QRectF& pixels) {
  return {pixels.topLeft() * UnitsPerPixel, pixels.size() * UnitsPerPixel};
}

}  // namespace hyetex
