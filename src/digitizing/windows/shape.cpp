#include "digitizing/windows/shape.h"

#include <QPainter>

namespace hyetex {
namespace {

constexpr int OutlineWidth = 3;

}  // namespace

Shape::Shape(const char* name, Kind kind, const QColor& colour, QWidget* parent)
    : QWidget(parent), kind_(kind), colour_(colour) {
  setObjectName(QString::fromLatin1(name));
  setAttribute(Qt::WA_TransparentForMouseEvents);
  hide();
}

void Shape::SetColour(const QColor& colour) {
  if (colour == colour_) return;
  colour_ = colour;
  update();
}

void Shape::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  switch (kind_) {
    case Kind::Filled:
      painter.fillRect(rect(), colour_);
      break;
    case Kind::Outline:
      painter.setPen(QPen(colour_, OutlineWidth, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
      painter.drawRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5));
      break;
    case Kind::Dashed:
      painter.setPen(QPen(colour_, 1, Qt::DashLine));
      painter.drawRect(rect().adjusted(0, 0, -1, -1));
      break;
    case Kind::Pointer: {
      painter.setRenderHint(QPainter::Antialiasing);
      painter.setPen(QPen(colour_, 2));
      painter.drawEllipse(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5));
      painter.setBrush(colour_);
      painter.drawEllipse(QRectF(rect()).center(), 1, 1);
      break;
    }
  }
}

}  // namespace hyetex
