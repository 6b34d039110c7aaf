// Files that are read whole and never torn: what we write goes to a temporary file in the same folder, is
// flushed to disk, and takes the old file's place by a rename; the folder is flushed after. A full disk, a
// missing folder or a killed program leaves the old file as it was.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "core/result.h"

namespace hyetex {

/// Both "/" and "\" count as separators when a path is taken apart; this one is used to join.
#ifdef _WIN32
inline constexpr char PathSeparator = '\\';
#else
inline constexpr char PathSeparator = '/';
#endif

bool HasSeparator(std::string_view path);
/// What stands behind the last separator.
std::string_view BaseName(std::string_view path);
/// The path with a separator at its end.
std::string WithBackslash(std::string path);
std::string JoinPath(std::string folder, std::string_view name);

bool FileExists(const std::string& path);
bool FolderExists(const std::string& path);

/// The folder to write chart files to: the stored one, with its trailing separator, while it exists; else the
/// program folder as it was given.
std::string CheckTargetFolder(const std::string& stored, const std::string& programFolder);

/// The program folder of a user who names none: "hyetex" under $XDG_DATA_HOME, or else under ~/.local/share.
std::string DefaultProgramFolder();

/// The file's bytes. Fails, with one line that names the file, on a missing or unreadable file, a folder, and
/// a file of more than `mostBytes`.
Result<std::string> ReadWholeFile(const std::string& path, std::size_t mostBytes);

/// Up to `most` bytes from the file's beginning, whatever its length: enough to tell what it is.
Result<std::string> ReadFirstBytes(const std::string& path, std::size_t most);

/// The permissions of a file that holds passwords or users.
inline constexpr unsigned OwnerOnly = 0600;
/// The permissions that the user's mask leaves to a new file.
unsigned NewFileMode();
/// The permissions of a file; nothing where there is none.
std::optional<unsigned> ModeOf(const std::string& path);

/// Puts `bytes` in the file's place, all or nothing. Without a mode it keeps the permissions of a file that
/// was there.
Result<void> WriteWholeFile(const std::string& path, std::string_view bytes,
                            std::optional<unsigned> mode = std::nullopt);
/// The same for a new file, which never takes the place of one that is there.
Result<void> WriteNewFile(const std::string& path, std::string_view bytes, unsigned mode = NewFileMode());
/// Adds `bytes` to the file's end, all or nothing as long as the program lives; makes a missing file.
Result<void> AppendToFile(const std::string& path, std::string_view bytes);

}  // namespace hyetex
