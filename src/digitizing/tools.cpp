#include "digitizing/tools.h"

#include <array>

#include "digitizing/desk_state.h"

namespace hyetex {
namespace {

constexpr std::array<Tool, ToolCount> Board{{
    {"Return to Chart Details window"},
    {"Save current digitization"},
    {"Reditize the chart (remove all points)"},
    {"Recover data gap", action::RecoveredEnd},
    {"Attach new strip chart", action::PaperLeftCorner},
    {""},
    {"Note alpha skew point"},
    {"Delete last point"},
    {"New segment (join two segments)", action::NewSegment},
    {.Text = "Move tool box", .ViewOnly = true},
    {.Text = "Close toolbox (reopen with bottom button of the cursor)", .ViewOnly = true},
    {"Add a general Comment"},
    {"Add a Comment for a selected segment (lasso points using the cursor)", action::LassoStart},
    {"Zoom on a selected area", action::ZoomStart, true},
    {.Text = "Decrease the size of board by 10%", .ViewOnly = true},
    {.Text = "Increase the size of board by 10%", .ViewOnly = true},
    {"Level next point to the depth of the previous point", action::Leveling},
    {"Skip data gap", action::GapEnd},
}};

}  // namespace

std::span<const Tool, ToolCount> Tools() { return Board; }

std::string_view GetToolText(int index, bool zoomed) {
  if (index < 0 || index >= ToolCount) return {};
  if (index == tool::Zoom && zoomed) return "Zoom Out - return to normal display";
  return Board[static_cast<std::size_t>(index)].Text;
}

bool IsViewTool(int index) {
  return index >= 0 && index < ToolCount && Board[static_cast<std::size_t>(index)].ViewOnly;
}

}  // namespace hyetex
