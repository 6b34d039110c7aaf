// The operator's files in the program folder: settings, lists and staged charts. All are small, may be
// missing, and two of them are open to editing by hand.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"

namespace hyetex {

/// No such file comes near this; a file that is longer is something else under its name, and is refused.
inline constexpr std::size_t MaxProgramFileBytes = 4 << 20;

/// The file's bytes; none for a missing file in a folder that exists. Fails on anything else that cannot be
/// read.
Result<std::string> ReadProgramFile(const std::string& path);
/// Makes a missing file, with length 0, for its owner alone. What cannot be made stays missing, and reads as
/// empty.
void CreateIfMissing(const std::string& path);

/// The lines of a text that may have been edited by hand: carriage return, line feed and the pair each end a
/// line, also mixed. A last line without its end counts; an empty rest does not.
std::vector<std::string_view> EditedLines(std::string_view text);
/// Puts the lines in the file's place, all or nothing, each ended by carriage return and line feed. Refuses
/// what would be too long to be read again. The mode is WriteWholeFile's.
Result<void> WriteLines(const std::string& path, const std::vector<std::string_view>& lines,
                        std::optional<unsigned> mode = std::nullopt);

/// Copies a file that was not wholly understood beside itself, all or nothing, before another is written over
/// it; with the file's own permissions. The copy's path: the file's own with ".bak-YYYYMMDD-HHMMSS" behind
/// it, or that of an earlier copy with the same bytes. Fails on what is no file or cannot be copied.
Result<std::string> KeepCopy(const std::string& path);

/// What a file is renamed or copied to when it makes way: its path with ".bak-YYYYMMDD-HHMMSS" behind it, and
/// a number where that is taken.
std::string BackupName(const std::string& path);

/// The text in quotes, as an error or a note shows it: on one line, and cut if it is long.
std::string Quoted(std::string_view text);

}  // namespace hyetex
