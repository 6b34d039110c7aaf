#include "core/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "core/descriptor.h"
#include "core/temporary_file.h"

namespace hyetex {
namespace {

tl::unexpected<std::string> FailureOf(std::string_view what, const std::string& path, int error) {
  return Failure(std::string(what) + " " + path + ": " + std::strerror(error));
}

}  // namespace

bool HasSeparator(std::string_view path) { return path.find_first_of("/\\") != std::string_view::npos; }

std::string_view BaseName(std::string_view path) {
  const std::size_t at = path.find_last_of("/\\");
  return at == std::string_view::npos ? path : path.substr(at + 1);
}

std::string WithBackslash(std::string path) {
  if (path.empty() || !HasSeparator(std::string_view(path).substr(path.size() - 1))) path += PathSeparator;
  return path;
}

std::string JoinPath(std::string folder, std::string_view name) {
  return WithBackslash(std::move(folder)).append(name);
}

bool FileExists(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error);
}

bool FolderExists(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_directory(path, error);
}

std::string CheckTargetFolder(const std::string& stored, const std::string& programFolder) {
  if (stored.empty() || !FolderExists(WithBackslash(stored))) return programFolder;
  return WithBackslash(stored);
}

std::string DefaultProgramFolder() {
  if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data != '\0')
    return JoinPath(data, "hyetex");
  const char* home = std::getenv("HOME");
  return JoinPath(home != nullptr ? home : ".", ".local/share/hyetex");
}

unsigned NewFileMode() {
  // The mask can only be read by setting it.
  const mode_t mask = ::umask(0077);
  ::umask(mask);
  return 0666 & ~mask;
}

std::optional<unsigned> ModeOf(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) return std::nullopt;
  return info.st_mode & 07777;
}

Result<std::string> ReadWholeFile(const std::string& path, std::size_t mostBytes) {
  // Not blocking, so that a named pipe in a file's place is an error and not a wait without end.
  Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!fd.Valid()) return FailureOf("Cannot read", path, errno);
  struct stat info {};
  if (::fstat(fd.Get(), &info) != 0) return FailureOf("Cannot read", path, errno);
  if (!S_ISREG(info.st_mode)) return Failure("Cannot read " + path + ": it is no file");
  std::string bytes;
  bytes.reserve(std::min(static_cast<std::size_t>(info.st_size), mostBytes));
  std::array<char, 65536> block;
  for (;;) {
    const ssize_t got = ::read(fd.Get(), block.data(), block.size());
    if (got < 0) {
      if (errno == EINTR) continue;
      return FailureOf("Cannot read", path, errno);
    }
    if (got == 0) return bytes;
    if (bytes.size() + static_cast<std::size_t>(got) > mostBytes)
      return Failure("Cannot read " + path + ": it is longer than " + std::to_string(mostBytes) + " bytes");
    bytes.append(block.data(), static_cast<std::size_t>(got));
  }
}

Result<std::string> ReadFirstBytes(const std::string& path, std::size_t most) {
  const Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!fd.Valid()) return FailureOf("Cannot read", path, errno);
  std::string bytes(most, '\0');
  std::size_t got = 0;
  while (got < most) {
    const ssize_t more = ::read(fd.Get(), bytes.data() + got, most - got);
    if (more < 0 && errno == EINTR) continue;
    if (more < 0) return FailureOf("Cannot read", path, errno);
    if (more == 0) break;
    got += static_cast<std::size_t>(more);
  }
  bytes.resize(got);
  return bytes;
}

Result<void> WriteWholeFile(const std::string& path, std::string_view bytes, std::optional<unsigned> mode) {
  // A link keeps pointing where it points: the file behind it is the one that is replaced.
  std::error_code noTarget;
  std::string target = std::filesystem::weakly_canonical(path, noTarget).string();
  if (noTarget || target.empty()) target = path;

  auto file = TemporaryFile::In(std::filesystem::path(target).parent_path().string());
  if (!file) return Failure("Cannot write " + path + ": " + file.error());
  if (!WriteAll(file->Get(), bytes)) return FailureOf("Cannot write", path, errno);
  if (!mode) mode = ModeOf(target).value_or(NewFileMode());
  if (const auto placed = file->Replace(target, *mode); !placed)
    return Failure("Cannot write " + path + ": " + placed.error());
  return {};
}

Result<void> WriteNewFile(const std::string& path, std::string_view bytes, unsigned mode) {
  auto file = TemporaryFile::In(std::filesystem::path(path).parent_path().string());
  if (!file) return Failure("Cannot write " + path + ": " + file.error());
  if (!WriteAll(file->Get(), bytes)) return FailureOf("Cannot write", path, errno);
  if (const auto placed = file->Become(path, mode); !placed)
    return Failure("Cannot write " + path + ": " + placed.error());
  return {};
}

Result<void> AppendToFile(const std::string& path, std::string_view bytes) {
  Descriptor fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
  if (!fd.Valid() || !AppendAll(fd.Get(), bytes, false) || !fd.Close())
    return FailureOf("Cannot write", path, errno);
  return {};
}

}  // namespace hyetex
