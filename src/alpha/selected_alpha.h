// The one alpha (pen skew) that counts for a chart: as it is typed, and in the line of a chart's text that
// holds it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/number_entry.h"
#include "core/result.h"

namespace hyetex {

/// Time distance by height, both in mm of paper; the value that stands for none lies outside.
inline constexpr NumberEntry AlphaEntry{.What = "An alpha value", .Least = -999, .Most = 999};
/// As grids and files write that there is none.
inline constexpr std::string_view NoAlphaText = "None";

struct SelectedAlpha {
  std::optional<double> Value;

  /// As chart files have it.
  std::string Text() const;
  bool operator==(const SelectedAlpha&) const = default;
};

/// What an operator types: a number in the range of AlphaEntry. "None", and any other words without a "0" in
/// them, are no alpha; a text that may have been meant for a number is refused.
Result<SelectedAlpha> ReadSelectedAlpha(std::string_view typed);

/// A stored text, the name of its file ahead, with the value in the line that holds the selected alpha; all
/// else stays to the byte. The line is told by its label, never by words in a comment or a point. A chart
/// without one gets it where the writer of chart files puts it, at the end. Fails, in one line without the
/// chart's name, on a text that is no chart, on one that would be too long to be read again, and where a line
/// of another program has the last word.
Result<std::string> RewriteSelectedAlpha(std::string_view storedText, const SelectedAlpha& alpha);

}  // namespace hyetex
