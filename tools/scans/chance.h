// Chance that falls the same way for the same seed.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace hyetex {

/// Random numbers for one part of a drawing. Each part has its own, so that one part more or less leaves the
/// others as they were.
class Chance {
 public:
  Chance(std::uint64_t seed, std::string_view part);

  std::uint64_t Next();
  double Uniform(double from = 0, double to = 1);
  int Whole(int from, int to);  ///< both ends count
  bool Falls(double share) { return Uniform() < share; }
  double Sign() { return Falls(0.5) ? 1 : -1; }

 private:
  std::uint64_t state_;
};

/// A smooth curve that wanders between -1 and 1 along a line: as a hand trembles, ink flows, print wears.
class Wander {
 public:
  /// `length`: what it takes to wander from one value to another, in the units of the place asked for.
  Wander(Chance& chance, double length);
  double At(double place) const;

 private:
  double length_;
  std::vector<double> values_;
};

}  // namespace hyetex
