#include "core/folder_lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "core/files.h"
#include "core/temporary_file.h"

namespace hyetex {
namespace {

// The number that the holder wrote into its lock.
std::string HolderOf(int fd) {
  std::array<char, 32> bytes{};
  const ssize_t got = ::pread(fd, bytes.data(), bytes.size(), 0);
  const std::string_view text(bytes.data(), got < 0 ? 0 : static_cast<std::size_t>(got));
  return std::string(text.substr(0, text.find_first_not_of("0123456789")));
}

}  // namespace

Result<FolderLock> FolderLock::Take(const std::string& folder) { return Take(folder, false); }
Result<FolderLock> FolderLock::TakeOrShare(const std::string& folder) { return Take(folder, true); }

Result<FolderLock> FolderLock::Take(const std::string& folder, bool orShare) {
  const std::string path = JoinPath(folder, "hyetex.lock");
  Descriptor fd(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
  if (!fd.Valid())
    return Failure("The program folder " + folder + " cannot be written: " + std::strerror(errno));
  if (::flock(fd.Get(), LOCK_EX | LOCK_NB) != 0) {
    const bool held = errno == EWOULDBLOCK;
    const std::string holder = held ? HolderOf(fd.Get()) : std::string();
    if (held && orShare && holder == std::to_string(::getppid())) return FolderLock(std::move(fd));
    if (held)
      return Failure("Hyetex is already running on the program folder " + folder +
                     (holder.empty() ? "" : " (process " + holder + ")"));
    return Failure("The program folder " + folder + " cannot be locked: " + std::strerror(errno));
  }
  // The file stays when the lock is given up: one that went could be locked by two. The number is only told,
  // so a disk without room for it does not matter.
  const std::string number = std::to_string(::getpid()) + "\n";
  if (::ftruncate(fd.Get(), 0) == 0) (void)WriteAll(fd.Get(), number);
  ClearTemporaries(folder);
  return FolderLock(std::move(fd));
}

}  // namespace hyetex
