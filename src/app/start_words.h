// The words of the desktop program's command line.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "app/program.h"
#include "core/result.h"

namespace hyetex {

struct CommandLine {
  StartWords Words;
  bool Help = false, Version = false;
  std::string Pictures;  ///< folder for a picture of every window; empty to run as usual
};

/// The folder is `--folder`, else the user's own. Says what is off.
Result<CommandLine> ReadCommandLine(std::span<const std::string> words);
std::string CommandLineHelp();

}  // namespace hyetex
