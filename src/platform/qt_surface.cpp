#include "platform/qt_surface.h"

#include <QFontMetricsF>
#include <QPolygonF>

#include "platform/qt_text.h"

namespace hyetex {
namespace {

QPolygonF ToQt(std::span<const SurfacePoint> points) {
  QPolygonF polygon;
  polygon.reserve(static_cast<qsizetype>(points.size()));
  for (const SurfacePoint& point : points) polygon.append({point.X, point.Y});
  return polygon;
}

}  // namespace

void QtSurface::Clear() { painter_.fillRect(area_, background_); }

void QtSurface::SetPen(Rgb colour, int width) {
  QPen pen(hyetex::ToQt(colour), (1 + 2 * width) * painter_.device()->devicePixelRatioF());
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

void QtSurface::Polyline(std::span<const SurfacePoint> points, const Stroke& stroke) {
  QPen pen(hyetex::ToQt(stroke.Colour), stroke.Width, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin);
  if (stroke.Dashed) pen.setDashPattern({4, 2});
  painter_.setPen(pen);
  painter_.setBrush(Qt::NoBrush);
  painter_.drawPolyline(ToQt(points));
}

void QtSurface::FillRect(const Rect& rect, Rgb colour, double opacity) {
  QColor fill = hyetex::ToQt(colour);
  fill.setAlphaF(static_cast<float>(opacity));
  painter_.fillRect(hyetex::ToQt(rect), fill);
}

void QtSurface::FillShape(std::span<const SurfacePoint> corners, Rgb colour) {
  painter_.setPen(Qt::NoPen);
  painter_.setBrush(hyetex::ToQt(colour));
  painter_.drawPolygon(ToQt(corners));
}

// A font's size counts in points of its device, whatever the painter is scaled by; pixels would be whole.
QFont QtSurface::FontOf(const Font& font) const {
  QFont made(QStringLiteral("Arial"));
  made.setStyleHint(QFont::SansSerif);
  made.setHintingPreference(QFont::PreferNoHinting);
  made.setPointSizeF(font.Size * 72 / painter_.device()->logicalDpiY());
  made.setBold(font.Bold);
  return made;
}

void QtSurface::Text(double x, double y, std::string_view text, const TextStyle& style) {
  const QString shown = hyetex::ToQt(text);
  const double width = style.Place == TextPlace::Begins ? 0 : Measure(text, style.Font).Width;
  painter_.save();
  painter_.setPen(hyetex::ToQt(style.Colour));
  painter_.setFont(FontOf(style.Font));
  painter_.translate(x, y);
  if (style.Upwards) painter_.rotate(-90);
  painter_.drawText(QPointF(style.Place == TextPlace::Ends ? -width : -width / 2, 0), shown);
  painter_.restore();
}

TextSize QtSurface::Measure(std::string_view text, const Font& font) const {
  const QFontMetricsF metrics(FontOf(font), painter_.device());
  return {metrics.horizontalAdvance(hyetex::ToQt(text)), metrics.ascent(), metrics.descent()};
}

void QtSurface::Clip(const Rect& area) { painter_.setClipRect(hyetex::ToQt(area)); }

void QtSurface::Unclip() { painter_.setClipping(false); }

double UnitsPerPoint(const QPaintDevice& device) { return device.logicalDpiY() / 72.0; }

}  // namespace hyetex
