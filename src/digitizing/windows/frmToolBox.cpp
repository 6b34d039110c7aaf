#include "digitizing/windows/frmToolBox.h"

#include <QFile>
#include <QMouseEvent>
#include <QPainter>

#include "digitizing/windows/tool_icons.h"
#include "digitizing/windows/units.h"
#include "platform/qt_text.h"

namespace hyetex {

ToolSquare::ToolSquare(int tool, QWidget* parent) : QAbstractButton(parent), tool_(tool) {
  setObjectName(QStringLiteral("picButton%1").arg(tool));
  setFocusPolicy(Qt::NoFocus);
  setEnabled(!GetToolText(tool, false).empty());
  SetZoomed(false);
}

void ToolSquare::SetZoomed(bool zoomed) {
  const QString text = ToQt(GetToolText(tool_, zoomed));
  setToolTip(text);
  setAccessibleName(text);
  setText(text.section(' ', 0, 0));
  const QString file = ToolIconFile(tool_, zoomed);
  setIcon(QFile::exists(file) ? QIcon(file) : QIcon());
}

void ToolSquare::Highlight(bool on) {
  if (on == highlighted_) return;
  highlighted_ = on;
  update();
}

void ToolSquare::paintEvent(QPaintEvent*) {
  if (text().isEmpty()) return;  // a place without a tool
  QPainter painter(this);
  const QRect inside = rect().adjusted(2, 2, -2, -2);
  if (icon().isNull())
    painter.drawText(inside, Qt::AlignCenter | Qt::TextWrapAnywhere, text());
  else
    icon().paint(&painter, isDown() ? inside.translated(1, 1) : inside);
  if (!highlighted_ && !(underMouse() && isEnabled())) return;
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter.drawRect(rect().adjusted(1, 1, -1, -1));
}

void ToolSquare::enterEvent(QEnterEvent* event) {
  QAbstractButton::enterEvent(event);
  update();
  emit Hovered();
}

void ToolSquare::leaveEvent(QEvent* event) {
  QAbstractButton::leaveEvent(event);
  update();
  emit Left();
}

void ToolSquare::mousePressEvent(QMouseEvent* event) {
  grabbedAt_ = event->globalPosition().toPoint();
  QAbstractButton::mousePressEvent(event);
}

void ToolSquare::mouseMoveEvent(QMouseEvent* event) {
  QAbstractButton::mouseMoveEvent(event);
  if (!(event->buttons() & Qt::LeftButton)) return;
  const QPoint at = event->globalPosition().toPoint();
  if (const QPoint by = at - grabbedAt_; !by.isNull()) {
    grabbedAt_ = at;
    emit Dragged(by);
  }
}

frmToolBox::frmToolBox(QWidget* parent)
    : QWidget(parent),
      labCursor(new QLabel(this)),
      shpColor(new Shape("shpColor", Shape::Kind::Outline, QColor(230, 81, 0), this)),
      picCur(new Shape("picCur", Shape::Kind::Pointer, Qt::black, this)) {
  setObjectName(QStringLiteral("frmToolBox"));
  setAccessibleName(QStringLiteral("ToolBox"));
  setAutoFillBackground(true);
  setCursor(Qt::ArrowCursor);
  labCursor->setObjectName(QStringLiteral("labCursor"));
  labCursor->setAlignment(Qt::AlignCenter);
  for (int i = 0; i < ToolCount; ++i) {
    auto* square = picButton[static_cast<std::size_t>(i)] = new ToolSquare(i, this);
    connect(square, &ToolSquare::clicked, this, [this, i] { emit Clicked(i); });
    connect(square, &ToolSquare::Hovered, this, [this, i] { emit Hovered(i); });
    connect(square, &ToolSquare::Left, this, [this] { emit Hovered(tool::None); });
    if (i == tool::MoveBoard) connect(square, &ToolSquare::Dragged, this, &frmToolBox::Dragged);
  }
  shpColor->raise();
  picCur->raise();
  picCur->resize(ToPixels(2 * ToolCursorPoint), ToPixels(2 * ToolCursorPoint));
  hide();
}

void frmToolBox::Arrange(const DeskLayout& layout) {
  for (std::size_t i = 0; i < picButton.size(); ++i) picButton[i]->setGeometry(ToPixels(layout.Squares[i]));
  labCursor->setGeometry(ToPixels(layout.ReadOut));
  setGeometry(ToPixels(layout.Board));
}

void frmToolBox::Dock(const DeskLayout& layout) {
  Arrange(layout);
  setFixedSize(size());
  picButton[tool::MoveBoard]->setEnabled(false);
}

void frmToolBox::Highlight(int tool) {
  for (int i = 0; i < ToolCount; ++i) picButton[static_cast<std::size_t>(i)]->Highlight(i == tool);
}

void frmToolBox::PlaceMarker(int tool) {
  shpColor->setGeometry(picButton[static_cast<std::size_t>(tool)]->geometry());
}

void frmToolBox::SetZoomed(bool zoomed) { picButton[tool::Zoom]->SetZoomed(zoomed); }

void frmToolBox::PlaceCursor(QPoint at) {
  picCur->move(at);
  picCur->show();
}

}  // namespace hyetex
