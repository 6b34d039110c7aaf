// The digitizing window while points and page corners are corrected by the mouse and the keys.
#include "digitizing/drawing.h"
#include "digitizing/windows/frmHyetex.h"

namespace hyetex {

void frmHyetex::ToggleCorrecting() {
  if (corrects_) return LeaveCorrecting();
  if (!IsCalibrated(session_.Line.Paper(0)) || replaying_) {
    shell_.ShowPanel(panel::Instruction, "There is nothing to correct before the page is set");
    return ShowModes();
  }
  corrects_ = true;
  hand_->SetTool(&correcting_);
  setFocus();
  ShowInstruction({});
  ShowModes();
  ShowView();
}

void frmHyetex::LeaveCorrecting() {
  if (!std::exchange(corrects_, false)) return;
  // While a doubt is looked at, no press traces.
  correctsDoubt_ = false;
  review_.Leave();
  correcting_.LetGo();
  hand_->SetTool(nullptr);
  ShowInstruction(machine_.Instruction());
  ShowModes();
  ShowView();
}

void frmHyetex::SetPageAgain() {
  LeaveCorrecting();
  machine_.SetPageAgain();
}

// Delete is a key of the menu: while points are corrected it means the one that is selected, and no other.
void frmHyetex::RunTool(int tool) {
  if (!corrects_ || tool != tool::Erase) return machine_.RunTool(tool);
  correcting_.Delete();
  ShowView();
}

void frmHyetex::InsertPoint() {
  if (!corrects_) return;
  correcting_.Insert();
  ShowView();
}

void frmHyetex::PaintCorrecting(Surface& surface, const DeskLayout& layout) const {
  const Trace& line = session_.Line;
  const ChartPaper& paper = line.Paper(line.CurrentPaper());
  DrawHandle(paper.BottomLeftX, paper.BottomLeftY, false, layout, surface);
  DrawHandle(paper.BottomRightX, paper.BottomRightY, false, layout, surface);
  const auto place = correcting_.Place();
  if (!place) return;
  const auto [x, y] = *place;
  const int point = correcting_.Point();
  if (correcting_.IsDragged() && !correcting_.HasCorner()) {
    if (point > 0 && !line.Point(point).StartsSegment())
      DrawDragged(line.Point(point - 1).TrueX(), line.Point(point - 1).Y, x, y, layout, surface);
    if (point < line.LastPoint() && !line.Point(point + 1).StartsSegment())
      DrawDragged(x, y, line.Point(point + 1).TrueX(), line.Point(point + 1).Y, layout, surface);
  }
  DrawHandle(x, y, true, layout, surface);
}

}  // namespace hyetex
