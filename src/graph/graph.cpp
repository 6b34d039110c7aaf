#include "graph/graph.h"

#include <algorithm>

namespace hyetex {
namespace {

struct Span {
  double From, To;
};

// At least `least` long, within the axis.
Span Inside(const GraphAxis& axis, Span span) {
  const double whole = axis.To - axis.From;
  const double wanted = std::clamp(span.To - span.From, std::min(axis.LeastSpan, whole), whole);
  const double middle = (span.From + span.To) / 2;
  if (wanted != span.To - span.From) span = {middle - wanted / 2, middle + wanted / 2};
  if (span.From < axis.From) span = {axis.From, axis.From + wanted};
  if (span.To > axis.To) span = {axis.To - wanted, axis.To};
  return span;
}

}  // namespace

GraphWindow WholeOf(const Graph& graph) { return {graph.X.From, graph.X.To, graph.Left.From, graph.Left.To}; }

GraphWindow ViewOf(const Graph& graph) {
  return graph.Zoom ? KeepInside(graph, *graph.Zoom) : WholeOf(graph);
}

GraphWindow KeepInside(const Graph& graph, GraphWindow window) {
  const Span x = Inside(graph.X, {window.FromX, window.ToX});
  const Span y = Inside(graph.Left, {window.FromY, window.ToY});
  return {x.From, x.To, y.From, y.To};
}

std::optional<GraphWindow> ZoomAround(const Graph& graph, double factor, double x, double y) {
  const GraphWindow view = ViewOf(graph), whole = WholeOf(graph);
  const auto around = [factor](double at, double from, double to) {
    return Span{at - (at - from) / factor, at + (to - at) / factor};
  };
  const Span across = around(x, view.FromX, view.ToX), up = around(y, view.FromY, view.ToY);
  const GraphWindow zoomed = KeepInside(graph, {across.From, across.To, up.From, up.To});
  if (zoomed == whole || (factor < 1 && across.To - across.From >= whole.ToX - whole.FromX &&
                          up.To - up.From >= whole.ToY - whole.FromY))
    return std::nullopt;
  return zoomed;
}

}  // namespace hyetex
