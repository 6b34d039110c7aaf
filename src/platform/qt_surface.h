// A chart drawn with the toolkit's painter: on the screen, on a picture, on a page.
#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>

#include "platform/surface.h"

namespace hyetex {

inline QColor ToQt(Rgb colour) { return QColor(colour.Red, colour.Green, colour.Blue); }

/// The painter's own transformation says what a unit is; width 0 is one pixel of its screen, and
/// each step above that two more, so that a thick line stands out on any background.
class QtSurface : public Surface {
 public:
  /// Clear() fills `area` (in the painter's units) with `background`.
  QtSurface(QPainter& painter, const QRectF& area, const QColor& background)
      : painter_(painter), area_(area), background_(background) {}

  void Clear() override;
  void Line(double x1, double y1, double x2, double y2, Rgb colour, int width) override;
  void Circle(double x, double y, double radius, Rgb colour) override;

 private:
  void SetPen(Rgb colour, int width);

  QPainter& painter_;
  QRectF area_;
  QColor background_;
};

}  // namespace hyetex
