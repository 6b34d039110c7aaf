// A graph as a widget, to zoom into and to move about in. Shows itself on a white page on any desktop, as it
// will be printed.
#pragma once

#include <QPixmap>
#include <QWidget>
#include <optional>
#include <string>

#include "graph/graph.h"
#include "graph/layout.h"

class QRubberBand;

namespace hyetex {

/// The wheel zooms about the pointer, a drag with the right or middle button or with the space bar held moves
/// the part in view, a double click or Home shows all. Arrow keys are left to the window.
class GraphView : public QWidget {
  Q_OBJECT

 public:
  explicit GraphView(QWidget* parent = nullptr);
  ~GraphView() override;

  /// With its zoom.
  void ShowGraph(Graph graph);
  const Graph& Shown() const { return graph_; }
  /// Where all of it lies now, in points.
  const GraphLayout& Layout();
  /// The next drag with the left button makes the zoom rectangle (shpSelect). Off: all is shown again.
  void SetSelecting(bool on);
  void ResetView();
  /// A frame around a part of the X axis, on the screen alone; nothing for none.
  void SetFrame(const std::optional<GraphSpan>& framed);
  /// Draws the view as it is on all of a surface, such as a page's.
  void DrawOn(Surface& surface) const;
  /// How often the view has been drawn anew.
  int Drawings() const { return drawings_; }

  QSize sizeHint() const override { return {640, 420}; }
  QSize minimumSizeHint() const override { return {200, 140}; }

 signals:
  void ReadOutChanged(const QString& text);  ///< what is under the pointer; empty outside the graph
  void ZoomChanged(bool zoomed);
  void Clicked(GraphPoint at);  ///< with the left button, in the graph

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void leaveEvent(QEvent* event) override;

  /// What is told of a place of the layout's surface; empty: nothing.
  virtual std::string ReadOutAt(const GraphLayout& layout, double x, double y);
  /// Another part is in view.
  virtual void ZoomTaken(const std::optional<GraphWindow>& /*zoom*/) {}

 private:
  void SetZoom(const std::optional<GraphWindow>& zoom);
  void LayOutAnew();
  template <typename Use>
  void OnPicture(Use&& use);
  double Points(double pixels) const;
  GraphPoint DataAt(QPointF pixels);
  void ZoomBy(double steps, QPointF at);
  void BeginMove(QPointF at);
  void EndDrag();
  void ShowCursor();
  void TellReadOut();
  void PaintFrame(QPainter& painter);

  Graph graph_;
  GraphLayout layout_;
  std::optional<GraphSpan> framed_;
  QPixmap picture_;  // of the graph at the widget's size
  bool outdated_ = true;
  int drawings_ = 0;

  enum class Drag { None, Pressed, Selecting, Moving };
  Drag drag_ = Drag::None;
  bool selecting_ = false, spaceIsDown_ = false;
  QPointF dragFrom_, pointer_;
  bool pointerIsInside_ = false;
  GraphWindow movedFrom_;
  QRubberBand* shpSelect_;
};

}  // namespace hyetex
