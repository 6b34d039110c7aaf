#include "commandline/parser.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "commandline/man_page.h"
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

// The parser takes a word in brackets for a list where there may be several words, and drops the brackets, as
// it would of a file's name. Such words get a mark in front, which is taken off when their option has them.
constexpr char Mark = '\x01';

std::string Marked(const std::string& word) {
  const bool inBrackets = word.size() > 1 && word.front() == '[' && word.back() == ']';
  return inBrackets || word.starts_with(Mark) ? Mark + word : word;
}

std::string Unmarked(std::string word) {
  if (word.starts_with(Mark)) word.erase(0, 1);
  return word;
}

void Unmark(CLI::App& program) {
  const auto unmark = [](std::string& word) {
    word = Unmarked(std::move(word));
    return std::string();
  };
  for (CLI::Option* option : program.get_options()) option->transform(CLI::Validator(unmark, ""));
  for (CLI::App* command : program.get_subcommands([](CLI::App*) { return true; })) Unmark(*command);
}

Answer WhatIsOff(const CLI::App& program, const std::string& text) {
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
  if (words.size() == 1 && words.front() == "--man") return Answer{Done, ManPage(program)};
  std::vector<std::string> marked;  // the parser takes them from the back
  std::transform(words.rbegin(), words.rend(), std::back_inserter(marked), Marked);
  Unmark(program);
  try {
    program.parse(std::move(marked));
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
      if (unknown != "--") return WhatIsOff(program, CLI::ExtrasError({Unmarked(unknown)}).what());
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
