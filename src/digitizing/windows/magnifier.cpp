#include "digitizing/windows/magnifier.h"

#include <QMouseEvent>
#include <QPainter>
#include <utility>

#include "digitizing/view.h"
#include "digitizing/windows/units.h"

namespace hyetex {
namespace {

constexpr int Side = 226;  // pixels; about as wide as the tool board
constexpr int Gap = 7;     // around the middle, which the cross leaves free

}  // namespace

Magnifier::Magnifier(std::function<void(QImage&, const DeskLayout&)> paint, QWidget* parent)
    : QWidget(parent), paint_(std::move(paint)) {
  setObjectName(QStringLiteral("magnifier"));
  setAccessibleName(tr("Magnifier"));
  setToolTip(tr("A click magnifies more, or as little as it can"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFixedSize(Side, Side);
}

void Magnifier::Step() {
  times_ = times_ == Most ? Least : times_ + 1;
  update();
}

void Magnifier::ShowAt(double x, double y, double unitsPerPixel) {
  x_ = x;
  y_ = y;
  unitsPerPixel_ = unitsPerPixel;
  update();
}

void Magnifier::paintEvent(QPaintEvent*) {
  const QSize pixels = (QSizeF(size()) * devicePixelRatioF()).toSize();
  if (picture_.size() != pixels) picture_ = QImage(pixels, QImage::Format_RGB32);
  picture_.setDevicePixelRatio(devicePixelRatioF());
  paint_(picture_, Magnified(x_, y_, Side * UnitsPerPixel, times_ * UnitsPerPixel / unitsPerPixel_));

  QPainter painter(this);
  painter.drawImage(0, 0, picture_);
  constexpr int middle = Side / 2;
  for (const auto& [colour, width] :
       {std::pair(QColor(255, 255, 255, 170), 3), std::pair(QColor(Qt::black), 1)}) {
    painter.setPen(QPen(colour, width));
    painter.drawLine(0, middle, middle - Gap, middle);
    painter.drawLine(middle + Gap, middle, Side, middle);
    painter.drawLine(middle, 0, middle, middle - Gap);
    painter.drawLine(middle, middle + Gap, middle, Side);
  }
  const QString times = QString::number(times_) + QChar(0xd7);
  const QRect corner(0, Side - fontMetrics().height() - 4, fontMetrics().horizontalAdvance(times) + 8,
                     fontMetrics().height() + 4);
  painter.fillRect(corner, palette().window());
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawText(corner, Qt::AlignCenter, times);
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void Magnifier::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) Step();
}

void Magnifier::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) update();
  QWidget::changeEvent(event);
}

}  // namespace hyetex
