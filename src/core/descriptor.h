// A file descriptor that closes itself.
#pragma once

#include <unistd.h>

#include <string_view>
#include <utility>

namespace hyetex {

class Descriptor {
 public:
  explicit Descriptor(int fd = -1) : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~Descriptor() { Close(); }
  bool Valid() const { return fd_ >= 0; }
  int Get() const { return fd_; }
  /// Reports what closing found.
  bool Close() {
    const int fd = std::exchange(fd_, -1);
    return fd < 0 || ::close(fd) == 0;
  }

 private:
  int fd_;
};

/// Writes all of the bytes; where that fails errno tells why.
bool WriteAll(int fd, std::string_view bytes);
/// Adds all of the bytes to the end of a file that is open for appending, or none of them: what did not fit
/// is cut off again, so that no half of a line stands in front of the next. `flush`: and only what is on disk
/// counts.
bool AppendAll(int fd, std::string_view bytes, bool flush);

}  // namespace hyetex
