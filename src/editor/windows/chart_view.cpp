#include "editor/windows/chart_view.h"

#include <utility>

namespace hyetex {

ChartView::ChartView(QWidget* parent) : GraphView(parent) {
  setObjectName(QStringLiteral("picPreview"));
  setAccessibleName(QStringLiteral("Chart"));
}

void ChartView::Show(std::shared_ptr<const ChartReading> reading) {
  reading_ = std::move(reading);
  options_.Zoom.reset();
  Remake();
}

void ChartView::SetOptions(const ChartViewOptions& options) {
  const bool otherUnits = options.Kind != options_.Kind;
  options_ = options;
  if (otherUnits) options_.Zoom.reset();
  Remake();
}

void ChartView::Remake() {
  readOut_ = reading_ ? ChartReadOut(*reading_, options_.Kind) : ChartReadOut();
  Graph graph = reading_ ? MakeChartGraph(*reading_, options_) : Graph{};
  graph.Zoom = options_.Zoom;
  ShowGraph(std::move(graph));
}

std::string ChartView::ReadOutAt(const GraphLayout& layout, double x, double y) {
  return readOut_.At(layout, x, y);
}

}  // namespace hyetex
