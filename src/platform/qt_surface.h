// A chart drawn with the toolkit's painter: on the screen, on a picture, on a page.
#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QRectF>

#include "platform/surface.h"

namespace hyetex {

inline QColor ToQt(Rgb colour) { return QColor(colour.Red, colour.Green, colour.Blue); }
inline QRectF ToQt(const Rect& rect) { return QRectF(rect.Left, rect.Top, rect.Width, rect.Height); }

/// The painter's own transformation says what a unit is; of a line, width 0 is one pixel of its screen, and
/// each step above that two more, so that a thick line stands out on any background.
class QtSurface : public Surface {
 public:
  /// Clear() fills `area` (in the painter's units) with `background`.
  QtSurface(QPainter& painter, const QRectF& area, const QColor& background)
      : painter_(painter), area_(area), background_(background) {}

  Rect Area() const override { return {area_.left(), area_.top(), area_.width(), area_.height()}; }
  void Clear() override;
  void Line(double x1, double y1, double x2, double y2, Rgb colour, int width) override;
  void Circle(double x, double y, double radius, Rgb colour) override;
  void Polyline(std::span<const SurfacePoint> points, const Stroke& stroke) override;
  void FillRect(const Rect& rect, Rgb colour, double opacity) override;
  void FillShape(std::span<const SurfacePoint> corners, Rgb colour) override;
  void Text(double x, double y, std::string_view text, const TextStyle& style) override;
  TextSize Measure(std::string_view text, const Font& font) const override;
  void Clip(const Rect& area) override;
  void Unclip() override;

 private:
  void SetPen(Rgb colour, int width);
  QFont FontOf(const Font& font) const;

  QPainter& painter_;
  QRectF area_;
  QColor background_;
};

/// How many of a painter's units make a point (1/72 inch) on a screen or a page: what the painter is scaled
/// by for a surface whose units are points.
double UnitsPerPoint(const QPaintDevice& device);

}  // namespace hyetex
