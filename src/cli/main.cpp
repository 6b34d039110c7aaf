// hyetex-cli: what a rain-gauge service wants to script, without a screen.
#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

#include "cli/commands.h"
#include "core/files.h"
#include "core/text.h"

namespace hyetex::cli {
namespace {

constexpr std::array AllCommands{&DecodeCommand,    &TraceCommand,        &DigitizeCommand,   &ShowCommand,
                                 &SeriesCommand,    &SettingCommand,      &ListsCommand,      &TasksCommand,
                                 &StructureCommand, &CreateTablesCommand, &LoadCommand,       &ExtractCommand,
                                 &PopulateCommand,  &RowsCommand,         &SynchroniseCommand};

std::string Usage(const Command& command) {
  std::string text = "usage: hyetex-cli " + std::string(command.Name);
  if (!command.Options.empty()) text += " [options]";
  if (!command.Rest.empty()) text += " " + std::string(command.Rest);
  return text + "\n";
}

void PrintHelp(const Command& command) {
  std::string text = Usage(command) + "\n" + std::string(command.Help) + "\n";
  if (!command.Options.empty()) text += "\n" + OptionLines(command.Options);
  Print(text);
}

void PrintHelp() {
  std::string text = "usage: hyetex-cli COMMAND ...\n\n";
  for (const Command* command : AllCommands) {
    std::string name = "  " + std::string(command->Name);
    name.resize(18, ' ');
    text += name + std::string(command->Help.substr(0, command->Help.find('\n'))) + "\n";
  }
  Print(text + "\nhyetex-cli COMMAND --help tells more. --version tells the version.\n");
}

Exit Run(const std::vector<std::string>& words) {
  if (words.empty()) return Off("a command is missing; --help lists them");
  if (words[0] == "--version") {
    Print("hyetex-cli " HYETEX_VERSION "\n");
    return Done;
  }
  if (words[0] == "--help") {
    PrintHelp();
    return Done;
  }
  const auto found = std::find_if(AllCommands.begin(), AllCommands.end(),
                                  [&](const Command* c) { return c->Name == words[0]; });
  if (found == AllCommands.end()) return Off("there is no command " + words[0] + "; --help lists them");
  const Command& command = **found;
  const std::vector<std::string> rest(words.begin() + 1, words.end());
  if (std::find(rest.begin(), rest.end(), "--help") != rest.end()) {
    PrintHelp(command);
    return Done;
  }
  const auto parsed = Words::Parse(rest, command.Options);
  if (!parsed) return Off(parsed.error() + "; hyetex-cli " + words[0] + " --help tells more");
  return command.Run(*parsed);
}

}  // namespace

std::string ProgramFolder(const Words& words) {
  return words.Value(FolderOption.Name).value_or(DefaultProgramFolder());
}

void Say(std::string_view line) { std::fprintf(stderr, "hyetex-cli: %s\n", ShownText(line).c_str()); }

Exit Fail(std::string_view why) {
  Say(why);
  return Failed;
}

Exit Off(std::string_view why) {
  Say(why);
  return WordsOff;
}

void Print(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

}  // namespace hyetex::cli

int main(int argc, char** argv) {
  using namespace hyetex::cli;
  const Exit exit = Run(std::vector<std::string>(argv + 1, argv + argc));
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
    return exit == Done ? Fail("the output could not be written") : exit;
  return exit;
}
