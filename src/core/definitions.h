// The settings: `Definitions.dat` in the program folder, a text file of "key: value" lines that operators
// also edit by hand. It may hold the database's password, so it is for its owner alone. Nothing is held in
// memory, so a change by hand is seen by the next call.
//
// A line belongs to a key when the key's text, in the same case, stands anywhere in it, be it in the value;
// of several such lines the last one counts. Values are bytes and may hold colons.
#pragma once

#include <string>
#include <string_view>

#include "core/result.h"

namespace hyetex {

inline constexpr std::string_view DefinitionsFileName = "Definitions.dat";

/// The value of a key: what stands two characters behind the line's first colon; of a line without a colon
/// all but its first character. Empty for a missing key and for a file that cannot be read. A missing file is
/// created empty.
std::string GetDefinition(const std::string& programFolder, std::string_view key);

/// The same where a guess would do harm: fails on a file that cannot be read.
Result<std::string> ReadDefinition(const std::string& programFolder, std::string_view key);
/// Fails when the settings are there and cannot be read; asked once at the start, since a program that took
/// its defaults for them would go on in the wrong folder, and on the wrong database.
Result<void> CheckSettings(const std::string& programFolder);

/// Puts "key: value" in the place of the key's last line, or behind the last line. All other lines stay,
/// whatever they hold and however many they are. Fails, with the file as it was, on a key that is empty or
/// holds a colon (it would not be found again), on a text that cannot stand on one line, and on a file that
/// cannot be read or written.
Result<void> SetDefinition(const std::string& programFolder, std::string_view key, std::string_view value);

/// The file as it stands; empty for a missing one. Fails on a file that cannot be read.
Result<std::string> ReadDefinitions(const std::string& programFolder);
/// The lines of such a text for showing, as UTF-8, each ended by a line feed.
std::string ShownDefinitions(std::string_view text);
/// Puts what an operator has made of the file in its place, all or nothing. `read` is the file as it was,
/// `edited` what became of ShownDefinitions(read). A line that was not touched keeps its bytes, or takes the
/// value that has been set since; keys that were added since stay. Fails with the file as it was.
Result<void> SaveEditedDefinitions(const std::string& programFolder, std::string_view read,
                                   std::string_view edited);

}  // namespace hyetex
