// The states of the action machine: what a press means in each of them.
#include <algorithm>
#include <array>

#include "digitizing/action_machine.h"

namespace hyetex {

const ActionMachine::ActionState& ActionMachine::StateOf(float action) {
  using M = ActionMachine;
  static constexpr std::array<ActionState, 15> States{{
      // number, what a press does, stores a point, lays a paper, journaled
      {action::Drawing, &M::DrawPoint, true, false, true},
      {action::NewSegment, &M::StartSegment, true, false, true},
      {action::PaperLeftCorner, &M::FirstPaperCorner, false, true, true},
      {action::PaperRightCorner, &M::SecondPaperCorner, false, true, true},
      {action::PaperFirstPoint, &M::FirstPointOfPaper, true, true, true},
      {action::PageLeftCorner, &M::FirstPageCorner, false, true, true},
      {action::PageRightCorner, &M::SecondPageCorner, false, true, true},
      {action::MovingBoard, &M::DoNothing, false, false, false},
      {action::LassoStart, &M::StartLasso, false, false, true},
      {action::LassoDrag, &M::DoNothing, false, false, true},
      {action::ZoomStart, &M::StartZoom, false, false, false},
      {action::ZoomDrag, &M::DoNothing, false, false, false},
      {action::Leveling, &M::LevelPoint, true, false, true},
      {action::GapEnd, &M::EndGap, true, false, true},
      {action::RecoveredEnd, &M::EndRecovered, true, false, true},
  }};
  // There is no other, so what is none of the first ones is the last.
  return *std::find_if(States.begin(), States.end() - 1,
                       [action](const ActionState& state) { return state.Number == action; });
}

}  // namespace hyetex
