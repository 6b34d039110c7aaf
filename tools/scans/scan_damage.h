// The kinds of damage that a scan can have, by name, so that each can be tried alone and mixed.
#pragma once

#include <span>
#include <string_view>

#include "core/result.h"
#include "scans/chance.h"
#include "scans/scan_style.h"

namespace hyetex {

struct ScanDamage {
  std::string_view Name, What;
  void (*Do)(ScanStyle& style, double strength, Chance& chance);
};

std::span<const ScanDamage> ScanDamages();

/// Does to the style what a list such as "tilt,stains=0.8" says. Strengths go from 0 to 1; one that is not
/// given is 0.5. Fails on a name that is no damage and a strength that is none.
Result<void> Damage(ScanStyle& style, std::string_view list, std::uint64_t seed);

}  // namespace hyetex
