// The 18 squares of the tool board, one row each: what it says, and, for the tools that wait for a press,
// the state in which they wait.
#pragma once

#include <optional>
#include <span>
#include <string_view>

namespace hyetex {

namespace tool {
enum Index : int {
  None = -1,
  NewFile = 0,
  SaveFile = 1,
  Redigitize = 2,
  Recovered = 3,
  AttachPaper = 4,
  Alpha = 6,
  Erase = 7,
  NewSegment = 8,
  MoveBoard = 9,
  CloseBoard = 10,
  GeneralComment = 11,
  SegmentComment = 12,
  Zoom = 13,
  Shrink = 14,
  Grow = 15,
  Level = 16,
  Gap = 17,
};
}  // namespace tool

inline constexpr int ToolCount = 18;

struct Tool {
  std::string_view Text;
  std::optional<float> WaitsIn = {};  ///< the action in which it waits for its press
  bool ViewOnly = false;              ///< changes what is seen, and nothing of the chart
};

std::span<const Tool, ToolCount> Tools();

/// The text of a tool's square; empty for an index without one. While zoomed the zoom tool offers the way
/// back.
std::string_view GetToolText(int index, bool zoomed);

/// Whether a tool only changes what is seen; not so for an index without one.
bool IsViewTool(int index);

}  // namespace hyetex
