// A tablet's byte stream for a command: a serial line, set up as the tablet wants it, or a recorded stream in
// a file.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "core/result.h"
#include "digitizing/tablets.h"

namespace hyetex::cli {

class Port {
 public:
  /// Opens "-" (standard input), a file, or a serial line; a line gets the tablet's settings and is sent its
  /// initialisation string.
  static Result<Port> Open(const std::string& path, const TabletType& tablet);
  Port(Port&& other) noexcept;
  Port& operator=(Port&&) = delete;
  ~Port();

  /// What has come, into `buffer`; waits for at least one byte. Nothing at the stream's end or when the line
  /// hangs up.
  Result<std::span<const std::uint8_t>> Read(std::span<std::uint8_t> buffer);

 private:
  explicit Port(int fd, bool line) : fd_(fd), line_(line) {}

  int fd_;
  bool line_;
};

}  // namespace hyetex::cli
