// A graph as a widget, on a white page on any desktop, as it will be printed.
#pragma once

#include <QPixmap>
#include <QWidget>

#include "graph/graph.h"

namespace hyetex {

/// The object's name is picGraph.
class AlphaPlot : public QWidget {
  Q_OBJECT

 public:
  AlphaPlot();

  void Show(Graph graph);
  const Graph& Shown() const { return graph_; }
  /// On all of a surface, such as a page's.
  void DrawOn(Surface& surface) const;

  QSize sizeHint() const override { return {640, 420}; }
  QSize minimumSizeHint() const override { return {200, 140}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  Graph graph_;
  QPixmap picture_;  // of the graph at the widget's size
  bool outdated_ = true;
};

}  // namespace hyetex
