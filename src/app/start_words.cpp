#include "app/start_words.h"

#include <filesystem>

#include "core/files.h"
#include "core/records.h"
#include "core/words.h"
#include "digitizing/tablets.h"

namespace hyetex {
namespace {

constexpr Option Options[] = {
    {"--folder", "DIR", "the program folder; without it $XDG_DATA_HOME/hyetex"},
    {"--task", "N", "digitize chart N of the staging area, from 0, right after the login"},
    {"--tablet", "T", "type of the tablet, 0 to 4; without it the one of the settings"},
    {"--port", "DEVICE", "serial device of the tablet; without it serial port 1"},
    {"--pictures", "DIR", "write a picture of every window into DIR, and end"},
    {"--version", "", "tell the version"},
    {"--help", "", "tell this"},
};

// A serial device by its whole path: a relative one would be looked for among the system's devices.
std::string DeviceOf(const std::string& port) {
  return HasSeparator(port) ? std::filesystem::absolute(port).string() : port;
}

}  // namespace

Result<CommandLine> ReadCommandLine(std::span<const std::string> words) {
  const auto given = Words::Parse(words, Options);
  if (!given) return Failure(given.error());
  if (!given->Rest().empty()) return Failure("nothing is known of \"" + given->Rest()[0] + "\"");
  const auto task = given->Number("--task", 0, MaxTask),
             tablet = given->Number("--tablet", 0, TabletTypeCount - 1);
  if (!task) return Failure(task.error());
  if (!tablet) return Failure(tablet.error());

  CommandLine line;
  line.Words.Folder = given->Value("--folder").value_or(DefaultProgramFolder());
  line.Words.Task = *task;
  line.Words.Tablet = *tablet;
  line.Words.Port = DeviceOf(given->Value("--port").value_or(""));
  line.Pictures = given->Value("--pictures").value_or("");
  line.Help = given->Has("--help");
  line.Version = given->Has("--version");
  if (line.Words.Folder.empty()) return Failure("--folder wants a value");
  return line;
}

std::string CommandLineHelp() {
  return "usage: hyetex [--folder DIR] [--task N] [--tablet T] [--port DEVICE]\n\nDigitizes rainfall strip "
         "charts.\n\n" +
         OptionLines(Options);
}

}  // namespace hyetex
