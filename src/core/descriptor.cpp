#include "core/descriptor.h"

#include <cerrno>

namespace hyetex {

bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written == 0) errno = ENOSPC;  // or this would go on without end
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool AppendAll(int fd, std::string_view bytes, bool flush) {
  const off_t before = ::lseek(fd, 0, SEEK_END);
  if (WriteAll(fd, bytes) && (!flush || ::fdatasync(fd) == 0)) return true;
  const int error = errno;
  if (before >= 0 && ::ftruncate(fd, before) != 0) {
    // Nothing more can be done; the reader names the broken line.
  }
  errno = error;
  return false;
}

}  // namespace hyetex
