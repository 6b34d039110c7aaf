#include "app/start_words.h"

#include <filesystem>

#include "commandline/parser.h"
#include "core/files.h"
#include "core/records.h"

namespace hyetex {

using namespace commandline;

tl::expected<StartWords, Answer> ReadStartWords(std::span<const std::string> words) {
  StartWords start;
  start.Folder = DefaultProgramFolder();

  Description program("hyetex", "Digitizes rainfall strip charts.");
  AddName(program, "--folder", start.Folder, "DIR", "the program folder (default: $XDG_DATA_HOME/hyetex)");
  AddWhole(program, "--task", start.Task, 0, MaxTask, "N",
           "digitize this chart of the staging area, from 0, right after the login");
  AddTablet(program, start.Tablet)->description("type of the tablet (default: the one of the settings)");
  AddName(program, "--port", start.Port, "DEVICE", "serial device of the tablet (default: serial port 1)");
  if (auto answer = Parse(program, words)) return tl::unexpected(*std::move(answer));

  // A serial device by its whole path: a relative one would be looked for among the system's devices.
  if (HasSeparator(start.Port)) start.Port = std::filesystem::absolute(start.Port).string();
  return start;
}

}  // namespace hyetex
