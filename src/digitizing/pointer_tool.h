// What the mouse and the arrow keys work on while they do not trace: correcting points, marking a distance on
// a scan. Positions are report units.
#pragma once

namespace hyetex {

class PointerTool {
 public:
  virtual ~PointerTool() = default;

  virtual void Press(double x, double y) = 0;
  /// A double click's second press.
  virtual void PressTwice(double x, double y) = 0;
  virtual void Move(double x, double y, bool held) = 0;
  virtual void Release(double x, double y) = 0;
  /// An arrow key, by so much to the right and up; false where it is the cursor that it moves.
  virtual bool Step(double right, double up) = 0;
};

}  // namespace hyetex
