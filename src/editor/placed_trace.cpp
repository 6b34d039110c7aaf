#include "editor/placed_trace.h"

#include <algorithm>

#include "core/comments.h"

namespace hyetex {

PlacedTrace PlaceTrace(std::span<const RawPoint> points) {
  PlacedTrace placed;
  placed.X.resize(points.size());
  for (std::size_t i = 1; i < points.size(); ++i) {
    const bool begins = i == 1 || HasCode(points[i].Comment, CodeNewSheet);
    if (begins) {
      PlacedStrip strip{static_cast<int>(i), 0, 0, 0};
      if (!placed.Strips.empty()) {
        // No point of the new strip may lie on the one before.
        double lowest = points[i].X;
        for (std::size_t j = i + 1; j < points.size() && !HasCode(points[j].Comment, CodeNewSheet); ++j)
          lowest = std::min(lowest, points[j].X);
        const PlacedStrip& before = placed.Strips.back();
        const double penLeft = placed.X[i - 1];
        strip.Offset = std::max(penLeft - points[i].X, before.To - lowest);
        strip.From = strip.To = before.To;
      } else {
        strip.From = strip.To = points[i].X;
      }
      placed.Strips.push_back(strip);
    }
    PlacedStrip& strip = placed.Strips.back();
    const double x = points[i].X + strip.Offset;
    placed.X[i] = x;
    strip.From = std::min(strip.From, x);
    strip.To = std::max(strip.To, x);
  }
  return placed;
}

int PlacedTrace::StripAt(double x) const {
  int strip = 0;
  for (std::size_t i = 1; i < Strips.size(); ++i)
    if (x >= Strips[i].From) strip = static_cast<int>(i);
  return strip;
}

}  // namespace hyetex
