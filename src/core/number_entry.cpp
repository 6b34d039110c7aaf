#include "core/number_entry.h"

#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {

std::optional<std::string> CheckNumber(std::string_view typed, const NumberEntry& entry) {
  typed = Trim(typed);
  if (typed.empty()) return std::nullopt;
  const auto value = TypedNumber(typed);
  if (!value) return "\"" + ShownText(typed) + "\" is no number. Type a number alone, as 2.5.";
  if ((*value >= entry.Least && *value <= entry.Most) || value == entry.Beside) return std::nullopt;
  const std::string begin = std::string(entry.What) + " must be ";
  if (entry.Most == std::numeric_limits<double>::max())
    return begin + "no less than " + ShortText(entry.Least) + ".";
  return begin + "from " + ShortText(entry.Least) + " to " + ShortText(entry.Most) + ".";
}

}  // namespace hyetex
