#include "graph/draw.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace hyetex {
namespace {

constexpr double GridWidth = 0.3, DayWidth = 0.5, FrameWidth = 0.9, BoundaryWidth = 0.9, LeaderWidth = 0.5;
constexpr double MarkerRadius = 0.38, DotRadius = 0.13;  // of the font size
constexpr double DotRoom = 0.8;                          // between two dots, of the font size
constexpr double BarGap = 0.4, GappedBar = 6;            // bars of this width have a gap between them
constexpr double EdgeRoom = 1.2;
constexpr Rgb White{255, 255, 255};

std::vector<SurfacePoint> ShapeOf(Marker shape, SurfacePoint at, double radius) {
  const auto corners = [&](int count, double turn) {
    std::vector<SurfacePoint> points;
    for (int i = 0; i < count; ++i) {
      const double angle = 2 * std::numbers::pi * (i + turn) / count;
      points.push_back({at.X + radius * std::sin(angle), at.Y - radius * std::cos(angle)});
    }
    return points;
  };
  switch (shape) {
    case Marker::Square:
      return corners(4, 0.5);
    case Marker::Diamond:
      return corners(4, 0);
    case Marker::Triangle:
      return corners(3, 0);
    case Marker::TriangleDown:
      return corners(3, 0.5);
    case Marker::Circle:
      break;
  }
  return corners(24, 0);
}

class Drawer {
 public:
  Drawer(const Graph& graph, const GraphLayout& layout, Surface& surface)
      : graph_(graph), layout_(layout), surface_(surface) {}

  void DrawAll() {
    surface_.Clear();
    if (layout_.HasPlot) {
      DrawLayers([](const GraphLayer& layer) { return std::holds_alternative<GraphBands>(layer); });
      if (graph_.Grid) DrawGrid();
      DrawFrame();
      // A line along an edge is seen whole.
      const Rect& plot = layout_.Plot;
      surface_.Clip(
          {plot.Left - EdgeRoom, plot.Top - EdgeRoom, plot.Width + 2 * EdgeRoom, plot.Height + 2 * EdgeRoom});
      DrawLayers([](const GraphLayer& layer) { return !std::holds_alternative<GraphBands>(layer); });
      surface_.Unclip();
      DrawEnds();
    }
    for (const PlacedSample& sample : layout_.Legend)
      std::visit([&](const auto& layer) { DrawSample(layer, sample.Box); }, graph_.Layers[sample.Layer]);
    for (const PlacedText& text : layout_.Texts) surface_.Text(text.At.X, text.At.Y, text.Text, text.Style);
  }

 private:
  double Em(double times) const { return times * graph_.FontPoints; }
  void Draw(const std::vector<PlacedLine>& lines, const Stroke& stroke) {
    for (const PlacedLine& line : lines) DrawLine(line.From, line.To, stroke);
  }
  void DrawLine(SurfacePoint from, SurfacePoint to, const Stroke& stroke) {
    surface_.Polyline(std::array{from, to}, stroke);
  }
  void DrawMarker(Marker shape, SurfacePoint at, Rgb colour) {
    surface_.FillShape(ShapeOf(shape, at, Em(MarkerRadius) + 0.8), White);
    surface_.FillShape(ShapeOf(shape, at, Em(MarkerRadius)), colour);
  }

  void DrawGrid() {
    Draw(layout_.Grid, {graph_colour::Grey, GridWidth});
    Draw(layout_.DayMarks, {graph_colour::Purple, DayWidth});
  }

  void DrawFrame() {
    const Rect& frame = layout_.Frame;
    const SurfacePoint corners[] = {{frame.Left, frame.Top},
                                    {frame.Right(), frame.Top},
                                    {frame.Right(), frame.Bottom()},
                                    {frame.Left, frame.Bottom()},
                                    {frame.Left, frame.Top}};
    const Stroke stroke{graph_colour::Black, FrameWidth};
    surface_.Polyline(corners, stroke);
    Draw(layout_.Ticks, stroke);
    Draw(layout_.Boundaries, {graph_colour::Black, BoundaryWidth, true});
    if (!layout_.Ends.empty())
      DrawLine({layout_.Plot.Right(), frame.Top}, {layout_.Plot.Right(), frame.Bottom()},
               {graph_colour::Grey, GridWidth});
  }

  void DrawEnds() {
    for (const PlacedEnd& end : layout_.Ends)
      DrawLine(end.At, end.Label, {graph_.Ends[end.Mark].Colour, LeaderWidth});
    for (const PlacedEnd& end : layout_.Ends)
      DrawMarker(graph_.Ends[end.Mark].Shape, end.At, graph_.Ends[end.Mark].Colour);
  }

  template <typename Take>
  void DrawLayers(Take&& take) {
    for (const GraphLayer& layer : graph_.Layers)
      if (take(layer)) std::visit([&](const auto& one) { DrawLayer(one); }, layer);
  }

  void DrawLayer(const GraphBands& bands) {
    for (const GraphSpan& span : bands.Spans) FillSpan(span.From, span.To, layout_.Plot, bands);
  }
  void FillSpan(double from, double to, const Rect& plot, const GraphBands& bands) {
    const double left = std::max(layout_.X.ToSurface(from), plot.Left);
    const double right = std::min(layout_.X.ToSurface(to), plot.Right());
    if (right > left)
      surface_.FillRect({left, plot.Top, right - left, plot.Height}, bands.Colour, bands.Opacity);
  }

  void DrawLayer(const GraphBars& bars) {
    const AxisScale& scale = bars.OnRight && layout_.Right ? *layout_.Right : layout_.Left;
    const Rect& plot = layout_.Plot;
    const double zero = std::clamp(scale.ToSurface(0), plot.Top, plot.Bottom());
    for (const GraphBar& bar : bars.Bars) {
      double left = std::max(layout_.X.ToSurface(bar.From), plot.Left);
      double right = std::min(layout_.X.ToSurface(bar.To), plot.Right());
      if (right <= left || bar.Value == 0) continue;
      if (right - left >= GappedBar) {
        left += BarGap / 2;
        right -= BarGap / 2;
      }
      const double top = std::clamp(scale.ToSurface(bar.Value), plot.Top, plot.Bottom());
      surface_.FillRect({left, std::min(top, zero), right - left, std::abs(zero - top)}, bars.Colour, 1);
    }
  }

  // Only what may be in view goes to the surface, and nothing far outside it, where devices lose their way.
  void DrawLayer(const GraphCurve& curve) {
    for (const std::vector<GraphPoint>& piece : curve.Pieces) {
      std::vector<SurfacePoint> run;
      const auto end = [&] {
        if (run.size() > 1) surface_.Polyline(run, curve.Stroke);
        run.clear();
      };
      for (std::size_t i = 1; i < piece.size(); ++i) {
        SurfacePoint from = layout_.ToSurface(piece[i - 1]), to = layout_.ToSurface(piece[i]);
        const SurfacePoint last = to;
        if (!CutToView(from, to)) {
          end();
          continue;
        }
        if (run.empty()) run.push_back(from);
        run.push_back(to);
        if (!(to == last)) end();
      }
      end();
    }
    if (curve.Dots) DrawDots(curve);
  }

  void DrawDots(const GraphCurve& curve) {
    std::vector<SurfacePoint> seen;
    for (const std::vector<GraphPoint>& piece : curve.Pieces)
      for (const GraphPoint& point : piece)
        if (const SurfacePoint at = layout_.ToSurface(point); layout_.Plot.Holds(at.X, at.Y))
          seen.push_back(at);
    if (static_cast<double>(seen.size()) * Em(DotRoom) > layout_.Plot.Width) return;
    for (const SurfacePoint& at : seen)
      surface_.FillShape(ShapeOf(Marker::Circle, at, Em(DotRadius) + curve.Stroke.Width / 2),
                         curve.Stroke.Colour);
  }

  // Cuts a line to the plot with some room around it; false where it is wholly outside.
  bool CutToView(SurfacePoint& from, SurfacePoint& to) const {
    constexpr double room = 20;
    const Rect& plot = layout_.Plot;
    const double dx = to.X - from.X, dy = to.Y - from.Y;
    double enters = 0, leaves = 1;
    const auto cut = [&](double step, double distance) {  // step * t <= distance holds inside
      if (step == 0) return distance >= 0;
      const double t = distance / step;
      if (step < 0)
        enters = std::max(enters, t);
      else
        leaves = std::min(leaves, t);
      return enters <= leaves;
    };
    if (!cut(-dx, from.X - (plot.Left - room)) || !cut(dx, plot.Right() + room - from.X) ||
        !cut(-dy, from.Y - (plot.Top - room)) || !cut(dy, plot.Bottom() + room - from.Y))
      return false;
    const SurfacePoint begin = from;
    if (leaves < 1) to = {begin.X + leaves * dx, begin.Y + leaves * dy};
    if (enters > 0) from = {begin.X + enters * dx, begin.Y + enters * dy};
    return true;
  }

  void DrawLayer(const GraphMarks& marks) {
    const double room = Em(1);
    const Rect near{layout_.Plot.Left - room, layout_.Plot.Top - room, layout_.Plot.Width + 2 * room,
                    layout_.Plot.Height + 2 * room};
    for (const GraphPoint& point : marks.Points)
      if (const SurfacePoint at = layout_.ToSurface(point); near.Holds(at.X, at.Y))
        DrawMarker(marks.Shape, at, marks.Colour);
  }

  void DrawSample(const GraphBands& bands, const Rect& box) {
    surface_.FillRect(box, bands.Colour, bands.Opacity);
  }
  void DrawSample(const GraphBars& bars, const Rect& box) { surface_.FillRect(box, bars.Colour, 1); }
  void DrawSample(const GraphCurve& curve, const Rect& box) {
    const double y = box.Top + box.Height / 2;
    DrawLine({box.Left, y}, {box.Right(), y}, curve.Stroke);
  }
  void DrawSample(const GraphMarks& marks, const Rect& box) {
    DrawMarker(marks.Shape, {box.Left + box.Width / 2, box.Top + box.Height / 2}, marks.Colour);
  }

  const Graph& graph_;
  const GraphLayout& layout_;
  Surface& surface_;
};

}  // namespace

void Draw(const Graph& graph, Surface& surface) { Draw(graph, LayOut(graph, surface), surface); }

void Draw(const Graph& graph, const GraphLayout& layout, Surface& surface) {
  Drawer(graph, layout, surface).DrawAll();
}

}  // namespace hyetex
