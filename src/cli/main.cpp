// hyetex-cli: what a rain-gauge service wants to script, without a screen.
#include <cstdio>
#include <vector>

#include "cli/command_line.h"
#include "cli/commands.h"

namespace hyetex::cli {

void Say(std::string_view line) { commandline::Say("hyetex-cli", line); }

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
  const Exit exit = RunCommandLine(std::vector<std::string>(argv + 1, argv + argc));
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
    return exit == Done ? Fail("the output could not be written") : exit;
  return exit;
}
