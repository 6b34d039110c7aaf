// The chart that is open, drawn in one of its views.
#pragma once

#include <memory>
#include <optional>

#include "chartfiles/chart_reader.h"
#include "editor/chart_read_out.h"
#include "editor/chart_views.h"
#include "graph/windows/graph_view.h"

namespace hyetex {

/// The object's name is picPreview.
class ChartView : public GraphView {
  Q_OBJECT

 public:
  explicit ChartView(QWidget* parent = nullptr);

  /// The chart to show, all of it in view; nullptr for none.
  void Show(std::shared_ptr<const ChartReading> reading);
  void SetOptions(const ChartViewOptions& options);
  const ChartViewOptions& Options() const { return options_; }

 protected:
  std::string ReadOutAt(const GraphLayout& layout, double x, double y) override;
  void ZoomTaken(const std::optional<GraphWindow>& zoom) override { options_.Zoom = zoom; }

 private:
  void Remake();

  std::shared_ptr<const ChartReading> reading_;
  ChartViewOptions options_;
  ChartReadOut readOut_;
};

}  // namespace hyetex
