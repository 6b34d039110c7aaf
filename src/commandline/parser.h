// What the descriptions of our programs' words have in common. Includes the parser, which is slow to compile:
// only the one file of a program that describes its words includes this.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <span>
#include <string>

#include "commandline/answer.h"

namespace hyetex::commandline {

/// A description with --help (on its commands too) and --version. Its word --man, which the help does not
/// name, gives the manual page for the package.
class Description : public CLI::App {
 public:
  Description(const std::string& name, const std::string& does);
};

/// Reads the words behind the program's name into what the description is bound to. Nothing if all is in
/// order.
std::optional<Answer> Parse(CLI::App& program, std::span<const std::string> words);

/// Validators for CLI::Option::transform. A number is written in decimal, stands alone, and is finite.
CLI::Validator WholeNumber(int least, int most);
CLI::Validator Number(double least, double most);
/// A name, which an empty word is not: it comes of a script's unset variable.
CLI::Validator Name();

/// A number that follows an option; `what` stands for it in the help.
template <typename Target>
CLI::Option* AddWhole(CLI::App& command, const std::string& option, Target& number, int least, int most,
                      const std::string& what, const std::string& help) {
  return command.add_option(option, number, help)->type_name(what)->transform(WholeNumber(least, most));
}
template <typename Target>
CLI::Option* AddNumber(CLI::App& command, const std::string& option, Target& number, double least,
                       double most, const std::string& what, const std::string& help) {
  return command.add_option(option, number, help)->type_name(what)->transform(Number(least, most));
}
/// A tablet's type.
CLI::Option* AddTablet(CLI::App& command, int& tablet);
CLI::Option* AddTablet(CLI::App& command, std::optional<int>& tablet);
/// A path or a code that follows an option; `what` stands for it in the help.
CLI::Option* AddName(CLI::App& command, const std::string& option, std::string& name, const std::string& what,
                     const std::string& help);
/// A word without an option, called `what`.
CLI::Option* AddWord(CLI::App& command, const std::string& what, std::string& word,
                     const std::string& help = {});

}  // namespace hyetex::commandline
