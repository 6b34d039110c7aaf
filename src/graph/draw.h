// Draws a graph on any surface.
#pragma once

#include "graph/graph.h"
#include "graph/layout.h"
#include "platform/surface.h"

namespace hyetex {

/// On the whole of the surface.
void Draw(const Graph& graph, Surface& surface);
/// By a layout that was made for the graph and a surface of this size.
void Draw(const Graph& graph, const GraphLayout& layout, Surface& surface);

}  // namespace hyetex
