// A rectangle of whatever is drawn on, counted from its left and its top.
#pragma once

namespace hyetex {

struct Rect {
  double Left = 0, Top = 0, Width = 0, Height = 0;

  double Right() const { return Left + Width; }
  double Bottom() const { return Top + Height; }
  /// Strictly inside: a position on the edge is outside.
  bool Holds(double x, double y) const { return x > Left && x < Left + Width && y > Top && y < Top + Height; }
};

}  // namespace hyetex
