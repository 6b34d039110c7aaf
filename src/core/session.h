// The digitization of one chart: the tracing of its paper, with any strips attached to it, on a tablet.
#pragma once

#include <utility>

#include "core/dates.h"
#include "core/trace.h"

namespace hyetex {

struct Session {
  /// A new session for `chart` (the activated task): no points, no paper. The band of the chart paper is
  /// always 100 mm high here, whatever its record says.
  Session(const TabletExtents& tablet, ChartTypeRecord chartType, ChartRecord chart)
      : Line(ChartScales{tablet, std::move(chartType)}), Chart(std::move(chart)) {
    ChartScales scales = Line.Scales();
    scales.ChartType.ChartHeightMm = 100;
    Line.SetScales(std::move(scales));
  }

  Trace Line;
  ChartRecord Chart;   ///< what is known of the chart; its general comment is the session's
  bool Saved = false;  ///< nothing has been done since the chart file was written

  Date ChartStart() const { return Chart.StartTime; }
  /// Date and time of a point; the chart's start for point 0 and for -1.
  Date PointTime(int point) const { return ChartStart() + Line.TimeTo(point); }
  float TotalDepth(int point) const { return Line.TotalDepth(point); }
};

}  // namespace hyetex
