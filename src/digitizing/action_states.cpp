// The states of the action machine: what a press means in each of them, and how that is told.
#include <algorithm>
#include <array>

#include "digitizing/action_machine.h"

namespace hyetex {
namespace {

constexpr std::string_view LassoTitle = "Add a Comment for a segment";
constexpr std::string_view LassoPrompt = "Select the segement to which you would like to add a Comment";
constexpr std::string_view ZoomTitle = "Zooming";
constexpr std::string_view ZoomPrompt = "Select the area which you would like to zoom on";

}  // namespace

const ActionMachine::ActionState& ActionMachine::StateOf(float action) {
  using M = ActionMachine;
  static constexpr std::array<ActionState, 15> States{{
      // number, what a press does, stores a point, lays a paper, journaled, title, prompt, what Undo calls it
      {action::Drawing, &M::DrawPoint, true, false, true, DrawingTitle, "", "point"},
      {action::NewSegment, &M::StartSegment, true, false, true, "Starting a new segment",
       "Click the point that overlaps the last point drawn", "new segment"},
      {action::PaperLeftCorner, &M::FirstPaperCorner, false, true, true, "Append a new paper",
       "Click the bottom-left corner of the new paper", "corner"},
      {action::PaperRightCorner, &M::SecondPaperCorner, false, true, true, "Append a new paper",
       "Click the bottom-right corner of the new paper", "attached strip"},
      {action::PaperFirstPoint, &M::FirstPointOfPaper, true, true, true, "Append a new paper",
       "Click the first point of the new paper and continue drawing normally", "first point of the strip"},
      {action::PageLeftCorner, &M::FirstPageCorner, false, true, true, "Setting the page angle",
       "Click the bottom left point of the page", "corner"},
      {action::PageRightCorner, &M::SecondPageCorner, false, true, true, "Setting the page angle",
       "Click the bottom-right Corner of the Page", "setting of the page"},
      {action::MovingBoard, &M::DoNothing, false, false, false, "Moving the tool box",
       "Release the button where the tool box is to stay", ""},
      {action::LassoStart, &M::StartLasso, false, false, true, LassoTitle, LassoPrompt, ""},
      {action::LassoDrag, &M::DoNothing, false, false, true, LassoTitle, LassoPrompt, ""},
      {action::ZoomStart, &M::StartZoom, false, false, false, ZoomTitle, ZoomPrompt, ""},
      {action::ZoomDrag, &M::DoNothing, false, false, false, ZoomTitle, ZoomPrompt, ""},
      {action::Leveling, &M::LevelPoint, true, false, true, "Leveling a segment",
       "The follwing point would be considered in the same height as the first one", "leveled point"},
      {action::GapEnd, &M::EndGap, true, false, true, "Data Gap", "Choose the point where the data gap ends",
       "data gap"},
      {action::RecoveredEnd, &M::EndRecovered, true, false, true, "Marking a recovered segment",
       "Click at the point where the recovered segment ends", "recovered segment"},
  }};
  // There is no other, so what is none of the first ones is the last.
  return *std::find_if(States.begin(), States.end() - 1,
                       [action](const ActionState& state) { return state.Number == action; });
}

}  // namespace hyetex
