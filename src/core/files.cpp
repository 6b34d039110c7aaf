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

namespace hyetex {
namespace {

tl::unexpected<std::string> FailureOf(std::string_view what, const std::string& path, int error) {
  return Failure(std::string(what) + " " + path + ": " + std::strerror(error));
}

// A file descriptor that closes itself; Close() reports what closing found.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { Close(); }
  bool Valid() const { return fd_ >= 0; }
  int Get() const { return fd_; }
  bool Close() {
    const int fd = fd_;
    fd_ = -1;
    return fd < 0 || ::close(fd) == 0;
  }

 private:
  int fd_;
};

bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

// What the user lets others do with files of theirs; the lists hold passwords. The mask can only be read by
// setting it.
mode_t NewFileMode() {
  const mode_t mask = ::umask(0077);
  ::umask(mask);
  return 0666 & ~mask;
}

// A rename is on disk only when its folder is. File systems that cannot flush a folder say EINVAL.
bool FlushFolder(const std::string& folder) {
  Descriptor fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!fd.Valid()) return errno == EACCES;  // a folder that may be written but not read
  return ::fsync(fd.Get()) == 0 || errno == EINVAL;
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

Result<void> WriteWholeFile(const std::string& path, std::string_view bytes) {
  // A link keeps pointing where it points: the file behind it is the one that is replaced.
  std::error_code noTarget;
  std::string target = std::filesystem::weakly_canonical(path, noTarget).string();
  if (noTarget || target.empty()) target = path;
  const std::string folder = std::filesystem::path(target).parent_path().string();

  std::string temporary = target + ".XXXXXX";
  Descriptor fd(::mkostemp(temporary.data(), O_CLOEXEC));
  if (!fd.Valid()) return FailureOf("Cannot write", path, errno);
  struct stat old {};
  mode_t mode = NewFileMode();
  if (::stat(target.c_str(), &old) == 0) mode = old.st_mode & 07777;
  const bool written = ::fchmod(fd.Get(), mode) == 0 && WriteAll(fd.Get(), bytes) && ::fsync(fd.Get()) == 0 &&
                       fd.Close() && ::rename(temporary.c_str(), target.c_str()) == 0;
  if (!written) {
    const int error = errno;
    ::unlink(temporary.c_str());
    return FailureOf("Cannot write", path, error);
  }
  if (!FlushFolder(folder.empty() ? "." : folder))
    return FailureOf("Cannot flush the folder of", path, errno);
  return {};
}

}  // namespace hyetex
