// What the action machine remembers from one report of the tablet to the next: what the next press means,
// where the cursor is, and what it reads there.
#pragma once

#include <cstdint>
#include <optional>

#include "core/dates.h"

namespace hyetex {

/// The states of the action machine by their numbers. They are compared for equality; 1.7, 7.1, 7.2 and 8.1
/// are the nearest floats. What each of them means stands in action_states.cpp.
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

/// What a point at a position of the chart would stand for.
struct CursorReading {
  Date Time = 0;
  std::optional<float> Depth;  ///< mm of water; none on charts whose trace gives no depth
};

struct DeskState {
  float Action = action::PageLeftCorner;
  std::int16_t CurrentTool = -1;  ///< tool board square under the cursor, 0 to 17, -1 for none
  bool AlphaNext = false;         ///< the next point drawn is an alpha point
  float PageAngle = 0;            ///< angle of the paper in use, radians

  std::int16_t SelectedPoint = -1;  ///< the point that is being corrected; -1 for none

  double CursorX = 0, CursorY = 0;       ///< last position reported, report units
  std::int16_t CursorButton = -1;        ///< last button reported; -1 none
  bool ButtonHeld = false;               ///< the press now held has been acted on
  bool WaitForRelease = false;           ///< ignore presses until the button has been released
  bool OverToolBox = false;              ///< the last position lies on the tool board
  std::optional<CursorReading> Reading;  ///< under the cursor; none where there is no chart

  float CornerX = 0, CornerY = 0;  ///< first corner of a page or paper while its second is awaited
  float SelectX = 0, SelectY = 0;  ///< screen position of the first corner of a drag rectangle
};

}  // namespace hyetex
