#include "commandline/man_page.h"

#include <algorithm>
#include <cctype>

#include "core/text.h"

namespace hyetex::commandline {
namespace {

// A text that stands as it is: a hyphen is one, and no line begins with a dot or a quote that is a command.
std::string Plain(const std::string& text) {
  std::string plain;
  for (const char c : text) {
    if (c == '\n' || plain.empty() || plain.back() == '\n') {
      if (c == '.' || c == '\'') plain += "\\&";
    }
    if (c == '\\')
      plain += "\\e";
    else if (c == '-')
      plain += "\\-";
    else
      plain += c;
  }
  return plain;
}

std::string Upper(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

// A sentence without its full stop, as the line of a page's name has it.
std::string Phrase(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  if (text.ends_with('.')) text.pop_back();
  return text;
}

// A group of options has a --help of its own that nobody can give.
void AddOptions(const CLI::App& app, std::string& page) {
  const CLI::Formatter formatter;
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_group().empty() || (app.get_name().empty() && option == app.get_help_ptr())) continue;
    const bool positional = option->get_positional() && !option->nonpositional();
    page += ".TP\n\\fB" + Plain(formatter.make_option_name(option, positional)) + "\\fR" +
            Plain(formatter.make_option_opts(option)) + "\n" + Plain(formatter.make_option_desc(option)) +
            "\n";
  }
  for (const CLI::App* group :
       app.get_subcommands([](const CLI::App* one) { return one->get_name().empty(); })) {
    page += ".PP\n\\fI" + Plain(group->get_group()) + "\\fR\n";
    AddOptions(*group, page);
  }
}

std::string Synopsis(const CLI::App& app, const std::string& name) {
  std::string line = ".B " + Plain(name) + "\n[\\fIOPTIONS\\fR]";
  for (const CLI::Option* option : app.get_options())
    if (option->get_positional()) line += " \\fI" + Plain(option->get_name(true)) + "\\fR";
  return line + "\n";
}

void AddFooter(const CLI::App& app, std::string& page) {
  if (const std::string footer = app.get_footer(); !footer.empty()) page += ".PP\n" + Plain(footer) + "\n";
}

}  // namespace

std::string ManPage(const CLI::App& program) {
  const std::string& name = program.get_name();
  std::string page = ".TH " + Upper(name) + " 1 \"\" \"Hyetex " HYETEX_VERSION "\" \"Hyetex\"\n.SH NAME\n" +
                     name + " \\- " + Plain(Phrase(program.get_description())) + "\n.SH SYNOPSIS\n";
  const auto commands =
      program.get_subcommands([](const CLI::App* command) { return !command->get_name().empty(); });
  page += commands.empty() ? Synopsis(program, name)
                           : ".B " + Plain(name) + "\n\\fICOMMAND\\fR [\\fIOPTIONS\\fR]\n";
  page += ".SH OPTIONS\n";
  AddOptions(program, page);
  if (commands.empty()) AddFooter(program, page);
  if (!commands.empty()) page += ".SH COMMANDS\n";
  for (const CLI::App* command : commands) {
    page += ".SS " + Plain(command->get_name()) + "\n" +
            Synopsis(*command, name + " " + command->get_name()) + ".PP\n" +
            Plain(command->get_description()) + "\n";
    AddOptions(*command, page);
    AddFooter(*command, page);
  }
  page += ".SH EXIT STATUS\n0 when it is done, 1 when it could not be done, 2 when the words are off.\n";
  return page;
}

}  // namespace hyetex::commandline
