// The tool board that floats over the chart view: 18 squares, a marker on the one that waits for its click,
// the tablet's own cursor while it is over the board, and the time and depth under that cursor.
#pragma once

#include <QAbstractButton>
#include <QIcon>
#include <QLabel>
#include <QWidget>
#include <array>

#include "digitizing/desk_layout.h"
#include "digitizing/windows/shape.h"

namespace hyetex {

/// One square. It takes no focus: the keyboard has the menus.
class ToolSquare : public QAbstractButton {
  Q_OBJECT

 public:
  ToolSquare(int tool, QWidget* parent);

  void SetZoomed(bool zoomed);
  void Highlight(bool on);
  bool IsHighlighted() const { return highlighted_; }

 signals:
  void Hovered();
  void Left();
  void Dragged(QPoint by);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  int tool_;
  bool highlighted_ = false;
  QPoint grabbedAt_;
};

class frmToolBox : public QWidget {
  Q_OBJECT

 public:
  explicit frmToolBox(QWidget* parent);

  void Arrange(const DeskLayout& layout);
  /// Arranges it for a place beside the chart view, from which it is not moved.
  void Dock(const DeskLayout& layout);
  void Highlight(int tool);  ///< -1: none
  void PlaceMarker(int tool);
  void ShowMarker(bool visible) { shpColor->setVisible(visible); }
  void SetZoomed(bool zoomed);
  void PlaceCursor(QPoint at);
  void HideCursor() { picCur->hide(); }
  void ShowReadOut(const QString& text) { labCursor->setText(text); }

 signals:
  void Clicked(int tool);
  void Hovered(int tool);  ///< by the mouse; -1: it has gone
  void Dragged(QPoint by);

 private:
  std::array<ToolSquare*, ToolCount> picButton;
  QLabel* labCursor;
  Shape *shpColor, *picCur;
};

}  // namespace hyetex
