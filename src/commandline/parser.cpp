#include "commandline/parser.h"

#include <charconv>
#include <cmath>

#include "core/numbers.h"
#include "digitizing/tablets.h"

namespace hyetex::commandline {
namespace {

// The parser's own conversions take octal, hexadecimal, blanks and "inf", so numbers are read here first.
template <typename T>
std::optional<T> WholeText(std::string_view text, T least, T most) {
  T value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size() || !(value >= least && value <= most))
    return std::nullopt;
  return value;
}

template <typename T>
std::string WhatIsWanted(const char* kind, T least, T most, const std::string& text) {
  return std::string(kind) + " from " + ShortText(least) + " to " + ShortText(most) + " is wanted, not \"" +
         text + "\"";
}

template <typename Target>
CLI::Option* AddTabletTo(CLI::App& command, Target& tablet) {
  return AddWhole(command, "--tablet", tablet, 0, TabletTypeCount - 1, "N", "the tablet's type");
}

// The command that was asked for, or the program itself.
const CLI::App& Asked(const CLI::App& program) {
  const auto commands = program.get_subcommands();
  return commands.empty() ? program : Asked(*commands.front());
}

Answer WhatIsOff(const CLI::App& program, std::string text) {
  const CLI::App& asked = Asked(program);
  std::string name = asked.get_name();
  for (const CLI::App* above = asked.get_parent(); above != nullptr; above = above->get_parent())
    name.insert(0, above->get_name() + " ");
  return {WordsOff, text + "; " + name + " --help tells more"};
}

}  // namespace

Description::Description(const std::string& name, const std::string& does) : CLI::App(does, name) {
  set_help_flag("--help", "tell this");
  set_version_flag("--version", name + " " HYETEX_VERSION, "tell the version");
}

std::optional<Answer> Parse(CLI::App& program, std::span<const std::string> words) {
  try {
    program.parse(std::vector<std::string>(words.rbegin(), words.rend()));  // it takes them from the back
    return std::nullopt;
  } catch (const CLI::CallForHelp&) {
    return Answer{Done, program.help()};
  } catch (const CLI::CallForVersion& version) {
    return Answer{Done, version.what() + std::string("\n")};
  } catch (const CLI::ValidationError& error) {
    return WhatIsOff(program, error.what());
  } catch (const CLI::ParseError& error) {
    // Of a misspelled word follows more, such as what is missing for want of it: the word is what is told.
    for (const std::string& unknown : program.remaining(true))
      if (unknown != "--") return WhatIsOff(program, CLI::ExtrasError({unknown}).what());
    return WhatIsOff(program, error.what());
  }
}

CLI::Validator WholeNumber(int least, int most) {
  return CLI::Validator(
      [=](std::string& text) {
        const auto value = WholeText(text, least, most);
        if (!value) return WhatIsWanted("a whole number", least, most, text);
        text = std::to_string(*value);
        return std::string();
      },
      ShortText(least) + " to " + ShortText(most), "whole number");
}

CLI::Validator Number(double least, double most) {
  return CLI::Validator(
      [=](std::string& text) {
        return WholeText(text, least, most) ? std::string() : WhatIsWanted("a number", least, most, text);
      },
      "", "number");
}

CLI::Validator Name() {
  return CLI::Validator([](std::string& text) { return std::string(text.empty() ? "a name is wanted" : ""); },
                        "", "name");
}

CLI::Option* AddTablet(CLI::App& command, int& tablet) { return AddTabletTo(command, tablet); }
CLI::Option* AddTablet(CLI::App& command, std::optional<int>& tablet) { return AddTabletTo(command, tablet); }

CLI::Option* AddName(CLI::App& command, const std::string& option, std::string& name, const std::string& what,
                     const std::string& help) {
  return command.add_option(option, name, help)->type_name(what)->check(Name());
}

CLI::Option* AddWord(CLI::App& command, const std::string& what, std::string& word, const std::string& help) {
  return command.add_option(what, word, help)->type_name("");
}

}  // namespace hyetex::commandline
