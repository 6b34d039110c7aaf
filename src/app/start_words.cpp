#include "app/start_words.h"

#include <charconv>
#include <filesystem>

#include "core/files.h"
#include "core/records.h"
#include "digitizing/tablets.h"

namespace hyetex {
namespace {

// A serial device by its whole path: a relative one would be looked for among the system's devices.
std::string DeviceOf(const std::string& port) {
  return HasSeparator(port) ? std::filesystem::absolute(port).string() : port;
}

Result<int> Number(const std::string& option, const std::string& text, int most) {
  int number = -1;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size() || number < 0 || number > most)
    return Failure(option + " takes a number from 0 to " + std::to_string(most) + ", not " + text);
  return number;
}

}  // namespace

Result<CommandLine> ReadCommandLine(std::span<const std::string> words) {
  CommandLine line;
  line.Words.Folder = DefaultProgramFolder();
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& option = words[i];
    if (option == "--help") {
      line.Help = true;
      continue;
    }
    if (option == "--version") {
      line.Version = true;
      continue;
    }
    const bool isKnown = option == "--folder" || option == "--task" || option == "--tablet" ||
                         option == "--port" || option == "--pictures";
    if (!isKnown) return Failure("There is no option " + option);
    if (++i == words.size() || words[i].empty()) return Failure(option + " is without its value");

    const std::string& value = words[i];
    if (option == "--folder") line.Words.Folder = value;
    if (option == "--port") line.Words.Port = DeviceOf(value);
    if (option == "--pictures") line.Pictures = value;
    if (option == "--task" || option == "--tablet") {
      const auto number = Number(option, value, option == "--task" ? MaxTask : TabletTypeCount - 1);
      if (!number) return Failure(number.error());
      (option == "--task" ? line.Words.Task : line.Words.Tablet) = *number;
    }
  }
  return line;
}

std::string_view CommandLineHelp() {
  return "usage: hyetex [--folder DIR] [--task N [--tablet T] [--port DEVICE]]\n"
         "\n"
         "Digitizes rainfall strip charts.\n"
         "\n"
         "  --folder DIR   the program folder; without it $XDG_DATA_HOME/hyetex\n"
         "  --task N       digitize chart N of the staging area, from 0, right after the login\n"
         "  --tablet T     type of the tablet, 0 to 4; without it the one of the settings\n"
         "  --port DEVICE  serial device of the tablet; without it serial port 1\n"
         "  --version      tell the version\n"
         "  --help         tell this\n";
}

}  // namespace hyetex
