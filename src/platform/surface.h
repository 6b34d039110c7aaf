// What charts are drawn on: the screen, a picture, a page of the printer. The logic draws through this, so
// that a drawing can be tested without a screen.
#pragma once

#include "core/colour.h"

namespace hyetex {

class Surface {
 public:
  virtual ~Surface() = default;

  virtual void Clear() = 0;
  /// Width 0 is the thinnest line there is.
  virtual void Line(double x1, double y1, double x2, double y2, Rgb colour, int width) = 0;
  virtual void Circle(double x, double y, double radius, Rgb colour) = 0;
};

}  // namespace hyetex
