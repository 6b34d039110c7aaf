// The chart view. The trace is painted into a picture that is kept, so that a cursor that moves over it, some
// hundred times a second, never draws the trace again.
#pragma once

#include <QImage>
#include <QWidget>
#include <functional>

#include "core/colour.h"
#include "platform/surface.h"

namespace hyetex {

/// Paints a graph, in screen units, into a picture whose device pixel ratio is set. `below` fills the picture
/// with what lies under the graph; without it that is `background`.
void PaintGraph(QImage& picture, Rgb background, const std::function<void(QImage&)>& below,
                const std::function<void(Surface&)>& draw);

class picGraph : public QWidget {
  Q_OBJECT

 public:
  /// `draw` draws the whole graph, in screen units (desk_layout.h).
  picGraph(std::function<void(Surface&)> draw, QWidget* parent);

  /// Draws the graph anew with the next repaint, however often it is asked before.
  void DrawGraph();
  void SetBackground(Rgb colour);
  /// `below` fills each picture with what lies under the graph. The background is then no more than an edge
  /// around it.
  void SetBelow(std::function<void(QImage&)> below);
  Rgb Background() const { return background_; }
  /// How often the graph has been drawn.
  int Drawings() const { return drawings_; }

 signals:
  void Wheeled(double steps, QPointF at);  ///< notches, away from the operator counting up
  void Pressed(QPointF at, Qt::MouseButton button);
  void PressedTwice(QPointF at);  ///< the second press of a double click, by the left button
  void Released(QPointF at, Qt::MouseButton button);
  void Moved(QPointF at, Qt::MouseButtons held);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  void Draw();

  std::function<void(Surface&)> draw_;
  std::function<void(QImage&)> below_;
  QImage picture_;
  Rgb background_{255, 255, 255};
  bool outdated_ = true;
  int drawings_ = 0;
};

}  // namespace hyetex
