// What charts are drawn on: the screen, a picture, a page of the printer. The logic draws through this, so
// that a drawing can be tested without a screen.
//
// Positions and sizes are in the surface's units, from its left and its top. Who makes a surface says what a
// unit is: the chart view of the digitizing desk has its screen units; a surface for graphs has points (1/72
// inch), so that a graph has the same lines and letters on the screen and on paper.
#pragma once

#include <span>
#include <string_view>

#include "core/colour.h"
#include "core/rect.h"

namespace hyetex {

struct SurfacePoint {
  double X = 0, Y = 0;

  bool operator==(const SurfacePoint&) const = default;
};

/// How a line is drawn.
struct Stroke {
  Rgb Colour;
  double Width = 1;     ///< in units
  bool Dashed = false;  ///< dashes of four widths, two apart
};

/// The sans-serif font that the machine has in place of Arial, where it has not that.
struct Font {
  double Size = 10;  ///< in units, which are points on a surface for graphs
  bool Bold = false;
};

enum class TextPlace { Begins, Centred, Ends };  ///< at a position, around it, before it

struct TextStyle {
  hyetex::Font Font;
  Rgb Colour;
  TextPlace Place = TextPlace::Begins;  ///< along the line of writing
  bool Upwards = false;                 ///< written from below to above
};

/// The heights are those of the font, so that texts of one font stand on one line.
struct TextSize {
  double Width = 0, Ascent = 0, Descent = 0;

  double Height() const { return Ascent + Descent; }
};

class Surface {
 public:
  virtual ~Surface() = default;

  /// All that can be drawn on.
  virtual Rect Area() const = 0;
  virtual void Clear() = 0;

  /// Width 0 is the thinnest line there is, whatever a unit is; each step above that is a little thicker.
  virtual void Line(double x1, double y1, double x2, double y2, Rgb colour, int width) = 0;
  virtual void Circle(double x, double y, double radius, Rgb colour) = 0;

  virtual void Polyline(std::span<const SurfacePoint> points, const Stroke& stroke) = 0;
  /// `opacity` is from 0 to 1.
  virtual void FillRect(const Rect& rect, Rgb colour, double opacity) = 0;
  /// A closed shape, without its outline.
  virtual void FillShape(std::span<const SurfacePoint> corners, Rgb colour) = 0;

  /// One line of UTF-8; `y` is what its letters stand on, or `x` where it is written upwards.
  virtual void Text(double x, double y, std::string_view text, const TextStyle& style) = 0;
  virtual TextSize Measure(std::string_view text, const Font& font) const = 0;

  /// Nothing is drawn outside `area` until Unclip(). Clips are not nested.
  virtual void Clip(const Rect& area) = 0;
  virtual void Unclip() = 0;
};

}  // namespace hyetex
