// The two drawn views of a chart: the traced points as they lie on the paper, and the depth over time. A view
// is a graph (graph/graph.h) made from what a chart file says; one drawing serves the screen, the printer and
// pictures. All sizes are in points.
#pragma once

#include <optional>
#include <string>

#include "chartfiles/chart_reader.h"
#include "graph/graph.h"
#include "platform/surface.h"

namespace hyetex {

enum class ChartViewKind { Digitization, TimeDepth };

/// What txtFontSize takes, in points.
inline constexpr double LeastFontPoints = 4, MostFontPoints = 40;
/// The steps of the intensity bars, in minutes.
inline constexpr double LeastHyetographMinutes = 1, MostHyetographMinutes = 24 * 60;

struct ChartViewOptions {
  ChartViewKind Kind = ChartViewKind::Digitization;
  bool Grid = true;
  double FontPoints = 10;        ///< of txtFontSize
  double HyetographMinutes = 0;  ///< step of the intensity bars in the view of time and depth; 0 shows none
  std::optional<GraphWindow> Zoom = {};  ///< the part in view in data units; none is all

  bool operator==(const ChartViewOptions&) const = default;
};

/// Whether the depth that the series ends with is known.
bool IsDepthKnown(const ChartRecord& chart);

/// The view as a graph. A chart without points or series gives one with its title and the words that say so;
/// a depth that is not known appears nowhere.
Graph MakeChartGraph(const ChartReading& reading, const ChartViewOptions& options);

/// Draws what `reading` holds on the whole of `surface`.
void DrawChartView(Surface& surface, const ChartReading& reading, const ChartViewOptions& options);

}  // namespace hyetex
