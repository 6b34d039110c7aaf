#include "digitizing/drawing.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "core/comments.h"

namespace hyetex {
namespace {

constexpr Rgb Black{0, 0, 0}, Grey{100, 100, 100}, Blue{0, 0, 255}, Green{0, 255, 0};
constexpr Rgb White{255, 255, 255}, Dark{66, 66, 66};
constexpr int Thin = 0, Thick = 1;
constexpr double Outside = 150;  // screen units beyond the view in which nothing is seen any more

struct CodeStyle {
  int Code;
  Rgb Colour;
  int Width;
};
// In the order in which they win on a segment.
constexpr CodeStyle SegmentStyles[] = {
    {CodeGapEnd, {255, 0, 0}, Thick},
    {CodeRecoveredEnd, Green, Thin},
    {CodeAlpha, {255, 0, 255}, Thin},
    {CodeLeveled, {255, 255, 0}, Thick},
};
// A circle goes by another order: recovered, gap, leveled, alpha.
constexpr int CircleOrder[] = {1, 0, 3, 2};

CodeStyle StyleOfSegment(const DigitizedPoint& end) {
  for (const CodeStyle& style : SegmentStyles)
    if (HasCode(end.Comment, style.Code)) return style;
  return {0, Black, Thin};
}

Rgb ColourOfCircle(const DigitizedPoint& point) {
  for (int i : CircleOrder)
    if (HasCode(point.Comment, SegmentStyles[i].Code)) return SegmentStyles[i].Colour;
  return point.StartsSegment() ? Green : Blue;
}

class Drawing {
 public:
  Drawing(const ChartScales& scales, const DeskLayout& layout, Surface& surface)
      : scales_(scales), layout_(layout), surface_(surface) {}

  /// From now on lines are only edged: each is drawn wider by `pixels` in this colour.
  void Edge(Rgb colour, int pixels) { edge_ = {colour, pixels}; }
  void NoEdge() { edge_.reset(); }

  void Paper(const ChartPaper& paper) {
    const double x1 = paper.BottomLeftX, y1 = paper.BottomLeftY;
    const double x2 = paper.BottomRightX, y2 = paper.BottomRightY;
    if (x1 == 0 && y1 == 0 && x2 == 0 && y2 == 0) return;
    Line(x1, y1, x2, y2, Grey, Thin);
    const double length = BottomLength(paper), height = scales_.HeightUnits();
    if (length == 0) return;
    const double nx = (x2 - x1) * height / length, ny = (y2 - y1) * height / length;
    Line(x1, y1, x1 - ny, y1 + nx, Grey, Thin);
    Line(x2, y2, x2 - ny, y2 + nx, Grey, Thin);
    Line(x1 - ny, y1 + nx, x2 - ny, y2 + nx, Grey, Thin);
  }

  void Segment(const DigitizedPoint& from, const DigitizedPoint& to) {
    const CodeStyle style = StyleOfSegment(to);
    Line(from.TrueX(), from.Y, to.TrueX(), to.Y, style.Colour, style.Width);
  }

  void Circle(const DigitizedPoint& point, bool edged) {
    constexpr double pixel = 15;
    const double x = X(point.TrueX()), y = Y(point.Y), radius = layout_.ScaleWidth / 360;
    const Rgb colour = ColourOfCircle(point);
    if (edged && colour != Blue) surface_.Circle(x, y, radius + pixel, Dark);
    surface_.Circle(x, y, radius, colour);
  }

 private:
  double X(double x) const { return layout_.ScreenX(x); }
  double Y(double y) const { return layout_.ScreenY(y); }
  void Line(double x1, double y1, double x2, double y2, Rgb colour, int width) {
    const double fromX = X(x1), fromY = Y(y1), toX = X(x2), toY = Y(y2);
    if (std::max(fromX, toX) < -Outside || std::min(fromX, toX) > layout_.ScaleWidth + Outside ||
        std::max(fromY, toY) < -Outside || std::min(fromY, toY) > layout_.ScaleHeight + Outside)
      return;
    if (edge_)
      surface_.Line(fromX, fromY, toX, toY, edge_->Colour, width + edge_->Pixels);
    else
      surface_.Line(fromX, fromY, toX, toY, colour, width);
  }

  const ChartScales& scales_;
  const DeskLayout& layout_;
  Surface& surface_;
  struct EdgeStyle {
    Rgb Colour;
    int Pixels;
  };
  std::optional<EdgeStyle> edge_;
};

}  // namespace

void DrawGraph(const Trace& line, const DeskLayout& layout, const GraphStyle& style, Surface& surface) {
  surface.Clear();
  Drawing drawing(line.Scales(), layout, surface);
  if (style.OnScan) {
    drawing.Edge(White, 1);
    for (int i = 0; i <= MaxPaper; ++i) drawing.Paper(line.Paper(i));
  } else {
    drawing.Edge(Dark, 2);
  }
  for (int i = 0; i < line.LastPoint(); ++i) {
    const DigitizedPoint& end = line.Point(i + 1);
    if (!end.StartsSegment() && (style.OnScan || StyleOfSegment(end).Code != 0))
      drawing.Segment(line.Point(i), end);
  }
  drawing.NoEdge();
  for (int i = 0; i <= MaxPaper; ++i) drawing.Paper(line.Paper(i));
  for (int i = 0; i <= line.LastPoint(); ++i) {
    if (i < line.LastPoint() && !line.Point(i + 1).StartsSegment())
      drawing.Segment(line.Point(i), line.Point(i + 1));
    if (style.ShowPoints) drawing.Circle(line.Point(i), !style.OnScan);
  }
}

void DrawOverlay(std::span<const OverlayLine> lines, const DeskLayout& layout, Surface& surface) {
  constexpr Rgb azure{0, 110, 220};
  constexpr double pixel = 15, letters = 165, gap = 45;
  const TextStyle hour{.Font = {.Size = letters}, .Colour = azure, .Place = TextPlace::Centred};
  const TextStyle depth{.Font = {.Size = letters}, .Colour = azure, .Place = TextPlace::Ends};
  std::vector<SurfacePoint> shown;
  // Where the last labels end: those that would lie on them are left out.
  double hoursEnd = -1e9, depthsEnd = 1e9;
  for (const OverlayLine& line : lines) {
    shown.clear();
    for (const auto& [x, y] : line.Points) shown.push_back({layout.ScreenX(x), layout.ScreenY(y)});
    if (shown.empty()) continue;
    surface.Polyline(shown, {.Colour = azure, .Width = pixel});
    if (line.Label.empty()) continue;
    const TextStyle& style = line.IsHour ? hour : depth;
    const TextSize size = surface.Measure(line.Label, style.Font);
    const double x = line.IsHour ? shown.front().X : shown.front().X - gap;
    const double y = line.IsHour ? shown.front().Y + gap + size.Ascent : shown.front().Y + size.Ascent / 2;
    const double left = line.IsHour ? x - size.Width / 2 : x - size.Width;
    if (line.IsHour ? left < hoursEnd : y > depthsEnd) continue;
    (line.IsHour ? hoursEnd : depthsEnd) = line.IsHour ? left + size.Width + gap : y - size.Height();
    surface.FillRect({left, y - size.Ascent, size.Width, size.Height()}, White, 0.75);
    surface.Text(x, y, line.Label, style);
  }
}

void DrawHandle(double x, double y, bool selected, const DeskLayout& layout, Surface& surface) {
  constexpr Rgb orange{230, 81, 0}, petrol{0, 121, 107};
  const double radius = selected ? 110 : 80, atX = layout.ScreenX(x), atY = layout.ScreenY(y);
  for (const double around : {-15.0, 15.0}) surface.Circle(atX, atY, radius + around, White);
  surface.Circle(atX, atY, radius, selected ? orange : petrol);
}

void DrawDragged(double x1, double y1, double x2, double y2, const DeskLayout& layout, Surface& surface) {
  constexpr Rgb orange{230, 81, 0};
  for (const auto& [colour, width] : {std::pair(White, Thick), std::pair(orange, Thin)})
    surface.Line(layout.ScreenX(x1), layout.ScreenY(y1), layout.ScreenX(x2), layout.ScreenY(y2), colour,
                 width);
}

// On both sides of the line, so that it and the ink below it are seen.
void DrawDoubt(const Trace& line, int first, int last, bool shown, const DeskLayout& layout,
               Surface& surface) {
  constexpr Rgb amber{255, 143, 0}, red{213, 0, 0};
  constexpr double beside = 75;  // screen units
  for (int point = first + 1; point <= last; ++point) {
    const DigitizedPoint &from = line.Point(point - 1), &to = line.Point(point);
    const double x1 = layout.ScreenX(from.TrueX()), y1 = layout.ScreenY(from.Y);
    const double x2 = layout.ScreenX(to.TrueX()), y2 = layout.ScreenY(to.Y);
    const double length = std::hypot(x2 - x1, y2 - y1);
    if (length == 0) continue;
    const double right = -(y2 - y1) / length * beside, down = (x2 - x1) / length * beside;
    for (const double side : {-1.0, 1.0})
      surface.Line(x1 + side * right, y1 + side * down, x2 + side * right, y2 + side * down,
                   shown ? red : amber, shown ? Thick + 1 : Thick);
  }
}

void DrawMark(double x, double y, const DeskLayout& layout, Surface& surface) {
  constexpr Rgb red{229, 57, 53};
  constexpr double arm = 150;  // screen units
  const double atX = layout.ScreenX(x), atY = layout.ScreenY(y);
  for (const auto& [colour, width] : {std::pair(White, Thick + 1), std::pair(red, Thin)}) {
    surface.Line(atX - arm, atY, atX + arm, atY, colour, width);
    surface.Line(atX, atY - arm, atX, atY + arm, colour, width);
  }
}

}  // namespace hyetex
