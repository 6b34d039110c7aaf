// The chart that is open, drawn in one of its views, to zoom into and to move about in. Shows itself on a
// white page on any desktop, as it will be printed.
#pragma once

#include <QPixmap>
#include <QWidget>
#include <memory>
#include <optional>

#include "chartfiles/chart_reader.h"
#include "editor/chart_read_out.h"
#include "editor/chart_views.h"
#include "graph/layout.h"

class QRubberBand;

namespace hyetex {

/// The object's name is picPreview. The wheel zooms about the pointer, a drag with the right or middle button
/// or with the space bar held moves the part in view, a double click or Home shows all. Arrow keys are left
/// to the window.
class ChartView : public QWidget {
  Q_OBJECT

 public:
  explicit ChartView(QWidget* parent = nullptr);
  ~ChartView() override;

  /// The chart to show, all of it in view; nullptr for none.
  void Show(std::shared_ptr<const ChartReading> reading);
  void SetOptions(const ChartViewOptions& options);
  const ChartViewOptions& Options() const { return options_; }
  /// The next drag with the left button makes the zoom rectangle (shpSelect). Off: all is shown again.
  void SetSelecting(bool on);
  void ResetView();
  /// Draws the view as it is on all of a surface, such as a page's.
  void DrawOn(Surface& surface) const;
  /// How often the view has been drawn anew.
  int Drawings() const { return drawings_; }

  QSize sizeHint() const override { return {640, 420}; }
  QSize minimumSizeHint() const override { return {200, 140}; }

 signals:
  void ReadOutChanged(const QString& text);  ///< what is under the pointer; empty outside the graph
  void ZoomChanged(bool zoomed);

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

 private:
  void Remake();
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

  std::shared_ptr<const ChartReading> reading_;
  ChartViewOptions options_;
  Graph graph_;
  GraphLayout layout_;
  ChartReadOut readOut_;
  QPixmap picture_;  // of the graph at the widget's size
  bool outdated_ = true;
  int drawings_ = 0;

  enum class Drag { None, Selecting, Moving };
  Drag drag_ = Drag::None;
  bool selecting_ = false, spaceIsDown_ = false;
  QPointF dragFrom_, pointer_;
  bool pointerIsInside_ = false;
  GraphWindow movedFrom_;
  QRubberBand* shpSelect_;
};

}  // namespace hyetex
