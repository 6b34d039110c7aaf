// hyetex-cli: what a rain-gauge service wants to script, without a screen.
#include <cstdio>
#include <vector>

#include "cli/command_line.h"
#include "cli/commands.h"
#include "platform/odbc/connection_text.h"

namespace hyetex::cli {

// A message may repeat a word, and goes into the log of whoever runs the command by a timetable.
void Say(std::string_view line) { commandline::Say("hyetex-cli", ShownConnection(line)); }

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
  const std::vector<std::string> words(argv + 1, argv + argc);
  hyetex::HidePasswords({argv, static_cast<std::size_t>(argc)});
  const Exit exit = RunCommandLine(words);
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
    return exit == Done ? Fail("the output could not be written") : exit;
  return exit;
}
