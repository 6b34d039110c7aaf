// The state of one digitization: the tracing of one chart, with any strips attached to it, on a tablet.
#pragma once

#include <cmath>
#include <string>

#include "core/dates.h"
#include "core/trace.h"

namespace hyetex {

/// The states of the action machine: what the next press of the tablet's cursor means. Held as a 32-bit float
/// and compared for equality; 1.7, 7.1, 7.2 and 8.1 are the nearest floats.
namespace action {
inline constexpr float Drawing = 0;
inline constexpr float NewSegment = 0.5F;
inline constexpr float PaperLeftCorner = 1;
inline constexpr float PaperRightCorner = 1.5F;
inline constexpr float PaperFirstPoint = 1.7F;
inline constexpr float PageLeftCorner = 3;
inline constexpr float PageRightCorner = 3.5F;
inline constexpr float MovingBoard = 6;
inline constexpr float LassoStart = 7.1F;
inline constexpr float LassoDrag = 7.2F;
inline constexpr float ZoomStart = 8;
inline constexpr float ZoomDrag = 8.1F;
inline constexpr float Leveling = 9;
inline constexpr float GapEnd = 10;
inline constexpr float RecoveredEnd = 11;
}  // namespace action

struct Session {
  /// A new session for `chart` (the activated task): no points, no paper, waiting for the page's first
  /// corner. The band of the chart paper is always 100 mm high here, whatever its record says.
  Session(const TabletExtents& tablet, ChartTypeRecord chartType, ChartRecord chart, Date now)
      : Line(ChartScales{tablet, std::move(chartType)}), Chart(std::move(chart)) {
    ChartScales scales = Line.Scales();
    scales.ChartType.ChartHeightMm = 100;
    Line.SetScales(std::move(scales));
    SessionStamp = std::nearbyint(now * 24) / 24;
  }

  Trace Line;
  ChartRecord Chart;  ///< what is known of the chart; its general comment is the session's

  Date ChartStart() const { return Chart.StartTime; }
  /// Date and time of a point; the chart's start for point 0 and for -1.
  Date PointTime(int point) const { return ChartStart() + Line.TimeTo(point); }
  float TotalDepth(int point) const { return Line.TotalDepth(point); }

  float UnitsPerHourAtOneHourPerMm() const {
    return Line.Scales().Tablet.TabletWidthUnits / Line.Scales().Tablet.TabletWidthMm * 24;
  }
  float UnitsPerMmVertical() const {
    return Line.Scales().Tablet.TabletHeightUnits / Line.Scales().Tablet.TabletHeightMm;
  }

  float Action = action::PageLeftCorner;
  std::int16_t CurrentTool = -1;  ///< tool board square under the cursor, 0 to 17, -1 for none
  bool Saved = false;
  float PageAngle = 0;  ///< angle of the paper in use, radians

  float ViewX0 = 0, ViewY0 = 0;  ///< tablet position of the view's left and bottom edges; 0 when not zoomed
  float ScaleX = 1, ScaleY = 1;  ///< screen units for each tablet unit
  bool Zoomed = false;

  double CursorX = 0, CursorY = 0;  ///< last position reported, report units
  std::int16_t CursorButton = -1;   ///< last button reported; -1 none
  bool ButtonHeld = false;          ///< the press now held has been acted on
  bool OverToolBox = false;         ///< the last position lies on the tool board
  bool WaitForRelease = false;      ///< ignore presses until the button has been released
  bool AlphaNext = false;           ///< the next point drawn is an alpha point
  Date CursorTime = 0;
  float CursorDepth = 0;

  float RefX = 0, RefY = 0;  ///< where the read-out on the tool board is measured from
  Date RefTime = 0;
  float RefDepth = 0;
  float CornerX = 0, CornerY = 0;  ///< first corner of a page or paper while its second is awaited
  float SelectX = 0, SelectY = 0;  ///< screen position of the first corner of a drag rectangle
  Date SessionStamp = 0;           ///< the hour at which the session was opened
};

}  // namespace hyetex
