// The words of the desktop program's command line.
#pragma once

#include <span>
#include <string>
#include <tl/expected.hpp>

#include "app/program.h"
#include "commandline/answer.h"

namespace hyetex {

/// The folder is `--folder`, else the user's own. Else what the words alone are answered with.
tl::expected<StartWords, commandline::Answer> ReadStartWords(std::span<const std::string> words);

}  // namespace hyetex
