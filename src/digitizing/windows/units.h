// Rectangles between the toolkit's pixels and screen units.
#pragma once

#include <QRect>
#include <QRectF>

#include "digitizing/desk_layout.h"
#include "platform/units.h"

namespace hyetex {

inline QRect ToPixels(const Rect& rect) {
  return {ToPixels(rect.Left), ToPixels(rect.Top), ToPixels(rect.Width), ToPixels(rect.Height)};
}
inline QRectF ToUnits(const QRectF& pixels) {
  return {pixels.topLeft() * UnitsPerPixel, pixels.size() * UnitsPerPixel};
}

}  // namespace hyetex
