// What a graph shows, as plain values: axes, curves, bars, points, shaded bands, and the part in view.
// graph/layout.h says where all of it lies on a surface, graph/draw.h draws it.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/colour.h"
#include "platform/surface.h"

namespace hyetex {

/// Colours that also those tell apart who see few, on white; and those of grid and days.
namespace graph_colour {
inline constexpr Rgb Black{0, 0, 0}, Grey{100, 100, 100}, Purple{120, 0, 120};
inline constexpr Rgb Blue{0, 114, 178}, Sky{86, 180, 233}, Green{0, 158, 115}, Orange{230, 159, 0},
    Vermilion{213, 94, 0}, Pink{204, 121, 167};
}  // namespace graph_colour

struct GraphPoint {
  double X = 0, Y = 0;

  bool operator==(const GraphPoint&) const = default;
};

/// A part of a graph, in the units of its X and left axes.
struct GraphWindow {
  double FromX = 0, ToX = 1, FromY = 0, ToY = 1;

  bool operator==(const GraphWindow&) const = default;
};

enum class AxisKind {
  Number,
  Time,  ///< `Date`s; the ticks follow hours, days of the month, months
};

struct GraphAxis {
  std::string Title;
  AxisKind Kind = AxisKind::Number;
  double From = 0, To = 1;  ///< of the whole graph; finite, From below To
  double LeastSpan = 0;     ///< a window shows no less of it
};

/// A line, in pieces that do not touch. Where there is room a dot marks each point.
struct GraphCurve {
  std::string Name;  ///< in the legend; none when empty, as for all layers
  std::vector<std::vector<GraphPoint>> Pieces;
  hyetex::Stroke Stroke;
  bool Dots = false;
};

struct GraphBar {
  double From = 0, To = 0;  ///< on the X axis
  double Value = 0;         ///< from 0
};
struct GraphBars {
  std::string Name;
  std::vector<GraphBar> Bars;
  Rgb Colour;
  bool OnRight = false;  ///< values are of the right axis
};

enum class Marker { Circle, Square, Diamond, Triangle, TriangleDown };
struct GraphMarks {
  std::string Name;
  std::vector<GraphPoint> Points;
  Marker Shape = Marker::Circle;
  Rgb Colour;
};

struct GraphSpan {
  double From = 0, To = 0;  ///< on the X axis
};
/// Parts of the X axis, shaded over the graph's height.
struct GraphBands {
  std::string Name;
  std::vector<GraphSpan> Spans;
  Rgb Colour;
  double Opacity = 0.25;
};

using GraphLayer = std::variant<GraphBands, GraphBars, GraphCurve, GraphMarks>;

/// A part of the X axis with a name of its own; a line stands between two of them.
struct GraphSection {
  double From = 0, To = 0;
  std::string Name;
};

/// A value with its name, marked where the X axis ends.
struct GraphEndMark {
  std::string Name;
  double Value = 0;  ///< of the left axis
  Marker Shape = Marker::Circle;
  Rgb Colour;
};

struct Graph {
  std::string Title;
  double TitleTimes = 1.4;  ///< the title's size by the font size
  GraphAxis X, Left;
  std::optional<GraphAxis> Right;
  std::vector<GraphLayer> Layers;      ///< from the back to the front
  std::vector<GraphSection> Sections;  ///< in the order of the X axis
  std::vector<GraphEndMark> Ends;
  /// What there is to say: in a corner of the graph, or in place of one that has no layers.
  std::vector<std::string> Notes;
  bool Grid = true;
  double FontPoints = 10;
  std::optional<GraphWindow> Zoom;  ///< none: the whole graph
};

GraphWindow WholeOf(const Graph& graph);
/// The part in view: the zoom as far as it lies in the graph and shows no less than the axes allow.
GraphWindow ViewOf(const Graph& graph);
/// `window` moved into the whole graph, and cut to it where it is larger.
GraphWindow KeepInside(const Graph& graph, GraphWindow window);
/// The part in view enlarged `factor` times, what lies at (x, y) staying there; nothing where all would be in
/// view.
std::optional<GraphWindow> ZoomAround(const Graph& graph, double factor, double x, double y);

}  // namespace hyetex
