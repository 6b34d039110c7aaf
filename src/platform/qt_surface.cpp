#include "platform/qt_surface.h"

namespace hyetex {

void QtSurface::Clear() { painter_.fillRect(area_, background_); }

void QtSurface::SetPen(Rgb colour, int width) {
  QPen pen(ToQt(colour), (1 + 2 * width) * painter_.device()->devicePixelRatioF());
  pen.setCosmetic(true);
  painter_.setPen(pen);
}

void QtSurface::Line(double x1, double y1, double x2, double y2, Rgb colour, int width) {
  SetPen(colour, width);
  painter_.drawLine(QPointF(x1, y1), QPointF(x2, y2));
}

void QtSurface::Circle(double x, double y, double radius, Rgb colour) {
  SetPen(colour, 0);
  painter_.setBrush(Qt::NoBrush);
  painter_.drawEllipse(QPointF(x, y), radius, radius);
}

}  // namespace hyetex
