// The digitization of one chart: the tracing of its paper, with any strips attached to it, on a tablet.
#pragma once

#include <optional>
#include <utility>

#include "core/dates.h"
#include "core/scan_placement.h"
#include "core/trace.h"

namespace hyetex {

struct Session {
  /// A new session for `chart` (the activated task): no points, no paper. The chart type's height is the
  /// paper's; a type without one has the common paper's, 100 mm.
  Session(const TabletExtents& tablet, ChartTypeRecord chartType, ChartRecord chart)
      : Line(ChartScales{tablet, std::move(chartType)}), Chart(std::move(chart)) {
    if (Line.Scales().ChartType.ChartHeightMm > 0) return;
    ChartScales scales = Line.Scales();
    scales.ChartType.ChartHeightMm = ChartTypeRecord{}.ChartHeightMm;
    Line.SetScales(std::move(scales));
  }

  Trace Line;
  ChartRecord Chart;  ///< what is known of the chart; its general comment is the session's
  std::optional<ScanPlacement> Scan = {};  ///< the image under the trace, on a scanned chart
  bool Saved = false;                      ///< nothing has been done since the chart file was written

  Date ChartStart() const { return Chart.StartTime; }
  /// Date and time of a point; the chart's start for point 0 and for -1.
  Date PointTime(int point) const { return ChartStart() + Line.TimeTo(point); }
  float TotalDepth(int point) const { return Line.TotalDepth(point); }
};

}  // namespace hyetex
