// Where the points of a chart file lie in one picture. Each strip of paper that was attached has an origin of
// its own; the strips are laid out one after another, each beginning where the pen left the one before, or
// behind all of that where the pen had gone back.
#pragma once

#include <span>
#include <vector>

#include "core/records.h"

namespace hyetex {

struct PlacedStrip {
  int FirstPoint = 1;       ///< index into the raw points
  double From = 0, To = 0;  ///< mm along the picture
  double Offset = 0;        ///< what was added to the points' own position along their strip
};

struct PlacedTrace {
  std::vector<double> X;            ///< mm along the picture, by the raw points' index; slot 0 is no point
  std::vector<PlacedStrip> Strips;  ///< one at least where there are points

  /// The strip that lies at a position along the picture.
  int StripAt(double x) const;
};

PlacedTrace PlaceTrace(std::span<const RawPoint> points);

}  // namespace hyetex
