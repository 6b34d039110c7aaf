// The commands of hyetex-cli. Results go to standard output, messages to standard error.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "core/words.h"

namespace hyetex::cli {

/// What a command ended with; also the program's exit status.
enum Exit : int { Done = 0, Failed = 1, WordsOff = 2 };

struct Command {
  std::string_view Name;
  std::string_view Rest;  ///< what follows the options, for the help
  std::string_view Help;
  std::span<const Option> Options;
  Exit (*Run)(const Words& words);
};

// The rooms that commands stand in.
extern const Command DecodeCommand, TraceCommand;                 // tablet_commands.cpp
extern const Command DigitizeCommand;                             // digitize_command.cpp
extern const Command ShowCommand, SeriesCommand;                  // chart_commands.cpp
extern const Command SettingCommand, ListsCommand, TasksCommand;  // folder_commands.cpp
extern const Command StructureCommand, CreateTablesCommand;       // database_commands.cpp
extern const Command LoadCommand, ExtractCommand;                 // load_commands.cpp
extern const Command PopulateCommand;                             // populate_command.cpp
extern const Command SynchroniseCommand;                          // synchronise_command.cpp
extern const Command RowsCommand;                                 // rows_command.cpp

/// The program folder: --folder, or the user's own.
std::string ProgramFolder(const Words& words);
inline constexpr Option FolderOption{"--folder", "DIR", "the program folder (default: the user's own)"};

/// Says on standard error why a command failed, or what is off with its words.
Exit Fail(std::string_view why);
Exit Off(std::string_view why);
void Say(std::string_view line);

/// Writes to standard output; a command whose output could not be written has failed.
void Print(std::string_view text);

}  // namespace hyetex::cli
