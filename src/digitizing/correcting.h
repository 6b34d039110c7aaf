// Correcting what is traced: a press takes the point or the page's corner that lies there, a drag or the
// arrow keys move it, and it can be deleted or given a neighbour. Nothing that is pressed here is traced.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "digitizing/action_machine.h"
#include "digitizing/pointer_tool.h"

namespace hyetex {

inline constexpr std::string_view CorrectingPrompt =
    "Correcting: click a point or a page corner, and drag it or press the arrow keys. Delete takes a point "
    "out, "
    "Insert or a double click puts one in, Escape goes back to tracing";

class Correcting : public PointerTool {
 public:
  /// `refused` is told why a correction cannot be.
  Correcting(ActionMachine& machine, std::function<void(const std::string& why)> refused)
      : machine_(machine), refused_(std::move(refused)) {}

  /// Where what is taken lies; while it is dragged that is where the mouse has it. Nothing if nothing is.
  std::optional<std::pair<double, double>> Place() const;
  /// The selected point; -1 for none.
  int Point() const { return machine_.State().SelectedPoint; }
  bool HasCorner() const { return corner_.has_value(); }
  bool IsDragged() const { return dragged_; }

  void Press(double x, double y) override;
  /// Puts a point into the line that lies there.
  void PressTwice(double x, double y) override;
  void Move(double x, double y, bool held) override;
  void Release(double x, double y) override;
  bool Step(double right, double up) override;
  /// Takes the selected point out; the one that comes into its place is selected then.
  void Delete();
  /// Puts a point halfway between the selected one and the next.
  void Insert();
  /// Lets go of what is selected; false where nothing was.
  bool LetGo();

 private:
  enum class Corner { Left, Right };

  void Select(int point);
  std::pair<double, double> PlaceOf(int point) const;
  std::pair<double, double> PlaceOf(Corner corner) const;
  int PointAt(double x, double y) const;
  std::optional<Corner> CornerAt(double x, double y) const;
  void MoveTo(double x, double y);
  bool Tell(const Result<void>& corrected);
  double Reach() const;
  const Trace& Line() const { return machine_.CurrentSession().Line; }

  ActionMachine& machine_;
  std::function<void(const std::string&)> refused_;
  std::optional<Corner> corner_;  // of the paper in use
  bool held_ = false, dragged_ = false;
  double fromX_ = 0, fromY_ = 0;  // where it was taken
  double x_ = 0, y_ = 0;          // where it is while it is dragged
};

}  // namespace hyetex
