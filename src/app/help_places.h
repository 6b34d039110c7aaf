// Where the help page tells of each window: the id of a section.
#pragma once

#include <string_view>

#include "core/desk.h"

namespace hyetex {

/// Empty where help begins at the page's top.
std::string_view HelpPlace(WindowId window);

}  // namespace hyetex
