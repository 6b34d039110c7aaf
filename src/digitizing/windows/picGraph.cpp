#include "digitizing/windows/picGraph.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <utility>

#include "digitizing/windows/units.h"
#include "platform/qt_surface.h"

namespace hyetex {

picGraph::picGraph(std::function<void(Surface&)> draw, QWidget* parent)
    : QWidget(parent), draw_(std::move(draw)) {
  setObjectName(QStringLiteral("picGraph"));
  setAccessibleName(QStringLiteral("Chart"));
  setAttribute(Qt::WA_OpaquePaintEvent);
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

void picGraph::Draw() {
  const QSize pixels = (QSizeF(size()) * devicePixelRatioF()).toSize();
  if (picture_.size() != pixels) picture_ = QPixmap(pixels);
  picture_.setDevicePixelRatio(devicePixelRatioF());
  QPainter painter(&picture_);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(1.0 / UnitsPerPixel, 1.0 / UnitsPerPixel);
  QtSurface surface(painter, ToUnits(QRectF(rect())), ToQt(background_));
  draw_(surface);
  outdated_ = false;
  ++drawings_;
}

void picGraph::paintEvent(QPaintEvent*) {
  if (outdated_ || picture_.deviceIndependentSize() != QSizeF(size())) Draw();
  QPainter(this).drawPixmap(0, 0, picture_);
}

void picGraph::wheelEvent(QWheelEvent* event) {
  constexpr double notch = 120;
  emit Wheeled(event->angleDelta().y() / notch, event->position());
  event->accept();
}

void picGraph::TakeMouse() {
  takesMouse_ = true;
  setMouseTracking(true);
  setCursor(Qt::CrossCursor);
}

void picGraph::mousePressEvent(QMouseEvent* event) {
  if (!takesMouse_) return QWidget::mousePressEvent(event);
  emit Pressed(event->position(), event->button());
}

void picGraph::mouseDoubleClickEvent(QMouseEvent* event) {
  if (!takesMouse_) return QWidget::mouseDoubleClickEvent(event);
  if (event->button() == Qt::LeftButton)
    emit PressedTwice(event->position());
  else
    emit Pressed(event->position(), event->button());
}

void picGraph::mouseReleaseEvent(QMouseEvent* event) {
  if (!takesMouse_) return QWidget::mouseReleaseEvent(event);
  emit Released(event->position(), event->button());
}

void picGraph::mouseMoveEvent(QMouseEvent* event) {
  if (!takesMouse_) return QWidget::mouseMoveEvent(event);
  emit Moved(event->position(), event->buttons());
}

}  // namespace hyetex
