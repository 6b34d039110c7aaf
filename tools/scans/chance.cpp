#include "scans/chance.h"

#include <cmath>

namespace hyetex {
namespace {

constexpr std::size_t WanderValues = 512;

}  // namespace

Chance::Chance(std::uint64_t seed, std::string_view part) : state_(seed * 0x9e3779b97f4a7c15U + 1) {
  for (const char c : part) state_ = (state_ ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
  Next();
}

// Steps by a constant and mixes the bits: short, and the same on every machine.
std::uint64_t Chance::Next() {
  state_ += 0x9e3779b97f4a7c15U;
  std::uint64_t mixed = state_;
  mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9U;
  mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111ebU;
  return mixed ^ (mixed >> 31);
}

double Chance::Uniform(double from, double to) {
  return from + (to - from) * (static_cast<double>(Next() >> 11) * 0x1p-53);
}

int Chance::Whole(int from, int to) {
  return from + static_cast<int>(Next() % static_cast<std::uint64_t>(to - from + 1));
}

Wander::Wander(Chance& chance, double length) : length_(length), values_(WanderValues) {
  for (double& value : values_) value = chance.Uniform(-1, 1);
}

double Wander::At(double place) const {
  const double at = place / length_, whole = std::floor(at), part = at - whole;
  const auto index = static_cast<std::size_t>(static_cast<std::int64_t>(whole)) % WanderValues;
  const double smooth = part * part * (3 - 2 * part);
  return std::lerp(values_[index], values_[(index + 1) % WanderValues], smooth);
}

}  // namespace hyetex
