#include "digitizing/windows/picGraph.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <utility>

#include "digitizing/windows/units.h"
#include "platform/qt_surface.h"

namespace hyetex {
namespace {

constexpr int EdgeWidth = 5;  // in the colour of what the next press means

}  // namespace

picGraph::picGraph(std::function<void(Surface&)> draw, QWidget* parent)
    : QWidget(parent), draw_(std::move(draw)) {
  setObjectName(QStringLiteral("picGraph"));
  setAccessibleName(QStringLiteral("Chart"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
}

void picGraph::DrawGraph() {
  outdated_ = true;
  update();
}

void picGraph::SetBackground(Rgb colour) {
  if (colour == background_) return;
  background_ = colour;
  DrawGraph();
}

void picGraph::SetBelow(std::function<void(QImage&)> below) {
  below_ = std::move(below);
  DrawGraph();
}

void PaintGraph(QImage& picture, Rgb background, const std::function<void(QImage&)>& below,
                const std::function<void(Surface&)>& draw) {
  if (below) below(picture);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(1.0 / UnitsPerPixel, 1.0 / UnitsPerPixel);
  QtSurface surface(painter, ToUnits(QRectF({}, picture.deviceIndependentSize())),
                    below ? QColor(Qt::transparent) : ToQt(background));
  draw(surface);
}

void picGraph::Draw() {
  const QSize pixels = (QSizeF(size()) * devicePixelRatioF()).toSize();
  if (picture_.size() != pixels) picture_ = QImage(pixels, QImage::Format_RGB32);
  picture_.setDevicePixelRatio(devicePixelRatioF());
  PaintGraph(picture_, background_, below_, draw_);
  outdated_ = false;
  ++drawings_;
}

void picGraph::paintEvent(QPaintEvent*) {
  if (outdated_ || picture_.deviceIndependentSize() != QSizeF(size())) Draw();
  QPainter painter(this);
  painter.drawImage(0, 0, picture_);
  if (!below_) return;
  painter.setPen(QPen(ToQt(background_), 2 * EdgeWidth));
  painter.drawRect(rect());
}

void picGraph::wheelEvent(QWheelEvent* event) {
  constexpr double notch = 120;
  emit Wheeled(event->angleDelta().y() / notch, event->position());
  event->accept();
}

void picGraph::mousePressEvent(QMouseEvent* event) { emit Pressed(event->position(), event->button()); }

void picGraph::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton)
    emit PressedTwice(event->position());
  else
    emit Pressed(event->position(), event->button());
}

void picGraph::mouseReleaseEvent(QMouseEvent* event) { emit Released(event->position(), event->button()); }

void picGraph::mouseMoveEvent(QMouseEvent* event) { emit Moved(event->position(), event->buttons()); }

}  // namespace hyetex
