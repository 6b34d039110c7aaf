// A program's manual page, made from the description that its --help is made from.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace hyetex::commandline {

/// The page in the form that man takes, section 1: what the program does, its words, and those of each of its
/// commands.
std::string ManPage(const CLI::App& program);

}  // namespace hyetex::commandline
