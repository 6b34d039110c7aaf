// The list of all comment codes, as the comment window shows it.
#pragma once

#include <span>
#include <string>

#include "core/records.h"

namespace hyetex {

/// The codes that users have defined, then those of the program, a line each, joined by carriage return and
/// line feed. The blank entry that an unused list begins with is left out.
std::string CommentListText(std::span<const CommentRecord> userComments);

}  // namespace hyetex
