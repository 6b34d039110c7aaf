// The words of hyetex-cli.
#pragma once

#include <span>
#include <string>

#include "commandline/answer.h"

namespace hyetex::cli {

/// Runs the command that the words ask for.
commandline::Exit RunCommandLine(std::span<const std::string> words);

}  // namespace hyetex::cli
