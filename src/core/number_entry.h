// What a box for a number takes from an operator.
#pragma once

#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "core/records.h"

namespace hyetex {

struct NumberEntry {
  std::string_view What;  ///< begins the sentence that refuses a number, as "A depth"
  double Least = std::numeric_limits<double>::lowest();
  double Most = std::numeric_limits<double>::max();
  std::optional<double> Beside = {};  ///< taken too, though it is out of the range
};

/// mm. The unknown depth may stand in a box as its number.
inline constexpr NumberEntry DepthEntry{.What = "A depth", .Least = 0, .Beside = NoDepth};
inline constexpr NumberEntry CodeEntry{.What = "A comment code", .Least = 0};

/// Why the text cannot be taken: it is no number to its end, or is out of the range. An empty text is left to
/// those who know whether the number may be left out.
std::optional<std::string> CheckNumber(std::string_view typed, const NumberEntry& entry);

}  // namespace hyetex
