// Where all of a graph lies on a surface, in plain numbers: margins as wide as the labels need, ticks with
// steps that leave their labels room, and the scales between data and surface.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "graph/graph.h"
#include "platform/surface.h"

namespace hyetex {

/// Between the values of an axis and positions on a surface.
struct AxisScale {
  double From = 0, To = 1;    ///< values in view
  double Begin = 0, End = 1;  ///< where these lie

  double ToSurface(double value) const { return Begin + (value - From) / (To - From) * (End - Begin); }
  double ToData(double position) const { return From + (position - Begin) / (End - Begin) * (To - From); }
};

struct PlacedText {
  std::string Text;
  TextStyle Style;
  SurfacePoint At;
  Rect Box;  ///< what it covers
};

struct PlacedLine {
  SurfacePoint From, To;
};

struct PlacedSample {
  std::size_t Layer = 0;  ///< of Graph::Layers
  Rect Box;
};

struct PlacedEnd {
  std::size_t Mark = 0;  ///< of Graph::Ends
  SurfacePoint At;       ///< the value
  SurfacePoint Label;    ///< where the line to its name ends
};

struct GraphLayout {
  Rect Plot;   ///< data is drawn in here
  Rect Frame;  ///< the plot, and the names of the marked ends beside it
  AxisScale X, Left;
  std::optional<AxisScale> Right;
  bool HasPlot = false;  ///< false where the graph has no layers, and where the surface has no room

  std::vector<PlacedText> Texts;  ///< none overlaps another or leaves the surface
  std::vector<PlacedLine> Grid, DayMarks, Ticks, Boundaries;
  std::vector<PlacedSample> Legend;
  std::vector<PlacedEnd> Ends;

  SurfacePoint ToSurface(GraphPoint point) const { return {X.ToSurface(point.X), Left.ToSurface(point.Y)}; }
  GraphPoint ToData(double x, double y) const { return {X.ToData(x), Left.ToData(y)}; }
  /// The part of the graph under a rectangle of the surface, as far as it lies in the plot; nothing where
  /// that has no width or height.
  std::optional<GraphWindow> WindowOf(const Rect& rect) const;
};

GraphLayout LayOut(const Graph& graph, const Surface& surface);

}  // namespace hyetex
