// The chart view. The trace is painted into a picture that is kept, so that a cursor that moves over it, some
// hundred times a second, never draws the trace again.
#pragma once

#include <QPixmap>
#include <QWidget>
#include <functional>

#include "core/colour.h"
#include "platform/surface.h"

namespace hyetex {

class picGraph : public QWidget {
  Q_OBJECT

 public:
  /// `draw` draws the whole graph, in screen units (desk_layout.h).
  picGraph(std::function<void(Surface&)> draw, QWidget* parent);

  /// Draws the graph anew with the next repaint, however often it is asked before.
  void DrawGraph();
  void SetBackground(Rgb colour);
  Rgb Background() const { return background_; }
  /// How often the graph has been drawn.
  int Drawings() const { return drawings_; }

 signals:
  void Wheeled(double steps, QPointF at);  ///< notches, away from the operator counting up

 protected:
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void Draw();

  std::function<void(Surface&)> draw_;
  QPixmap picture_;
  Rgb background_{255, 255, 255};
  bool outdated_ = true;
  int drawings_ = 0;
};

}  // namespace hyetex
