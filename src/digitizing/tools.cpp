#include "digitizing/tools.h"

#include <array>

#include "digitizing/desk_state.h"

namespace hyetex {
namespace {

constexpr std::array<Tool, ToolCount> Board{{
    {"Return to Chart Details window"},
    {"Save current digitization"},
    {"Reditize the chart (remove all points)"},
    {"Recover data gap", action::RecoveredEnd, "Marking a recovered segment",
     "Click at the point where the recovered segment ends"},
    {"Attach new strip chart", action::PaperLeftCorner, "Append a new paper",
     "Click the bottom-left corner of the new paper"},
    {""},
    {"Note alpha skew point", std::nullopt, "Toggling an alpha sign",
     "Click at the point where the instrument has finished cycling"},
    {"Delete last point"},
    {"New segment (join two segments)", action::NewSegment, "Starting a new segment",
     "Click the point that overlaps the last point drawn"},
    {.Text = "Move tool box", .ViewOnly = true},
    {.Text = "Close toolbox (reopen with bottom button of the cursor)", .ViewOnly = true},
    {"Add a general Comment"},
    {"Add a Comment for a selected segment (lasso points using the cursor)", action::LassoStart,
     "Add a Comment for a segment", "Select the segement to which you would like to add a Comment"},
    {"Zoom on a selected area", action::ZoomStart, "Zooming",
     "Select the area which you would like to zoom on", true},
    {.Text = "Decrease the size of board by 10%", .ViewOnly = true},
    {.Text = "Increase the size of board by 10%", .ViewOnly = true},
    {"Level next point to the depth of the previous point", action::Leveling, "Leveling a segment",
     "The follwing point would be considered in the same height as the first one"},
    {"Skip data gap", action::GapEnd, "Data Gap", "Choose the point where the data gap ends"},
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
