// How well the printed grid of drawn scans is found: their lattices held against where the paper truly lies.
#pragma once

#include <span>
#include <string>

namespace hyetex {

/// A row of the table: its name, and the damage as Damage() reads it.
struct GridKind {
  std::string Name, Damage;
  double AngleDegrees = 0;  ///< by which a camera looks askew, each way in turn; 0: a scanner
  int Quarters = -1;        ///< of a turn in which the sheet lies; below 0: upright
};

/// Mixes of damage at which a grid is hard to follow.
std::span<const GridKind> HardGrids();

/// Prints a row for each kind, of `each` charts, and to the standard errors each chart whose grid was not
/// found or lies elsewhere. `folder` is for the scans.
int MeasureGrids(std::span<const GridKind> kinds, int each, int seed, const std::string& folder);

}  // namespace hyetex
