#include "cli/port.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace hyetex::cli {
namespace {

tl::unexpected<std::string> FailureOf(const std::string& path) {
  return Failure("Cannot read " + path + ": " + std::strerror(errno));
}

// Every parameter is set, since a line keeps what the last program left.
bool SetLine(int fd, const LineSettings& settings) {
  termios line{};
  if (::tcgetattr(fd, &line) != 0) return false;
  ::cfmakeraw(&line);
  line.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS);
  line.c_cflag |= CREAD | CLOCAL;
  line.c_cflag |= settings.DataBits == 7 ? CS7 : CS8;
  if (settings.Parity != LineParity::None) line.c_cflag |= PARENB;
  if (settings.Parity == LineParity::Odd) line.c_cflag |= PARODD;
  if (settings.StopBits == 2) line.c_cflag |= CSTOPB;
  line.c_cc[VMIN] = 1;
  line.c_cc[VTIME] = 0;
  // It takes the number itself as well as the constant that stands for it.
  if (::cfsetspeed(&line, static_cast<speed_t>(settings.Baud)) != 0) return false;
  return ::tcsetattr(fd, TCSANOW, &line) == 0 && ::tcflush(fd, TCIFLUSH) == 0;
}

}  // namespace

Result<Port> Port::Open(const std::string& path, const TabletType& tablet) {
  if (path == "-") return Port(STDIN_FILENO, false);
  // Only a line is written to. A pipe that we could write to ourselves would never end.
  std::error_code none;
  const bool device = std::filesystem::is_character_file(path, none);
  const int fd = ::open(path.c_str(), (device ? O_RDWR | O_NONBLOCK : O_RDONLY) | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) return FailureOf(path);
  Port port(fd, ::isatty(fd) != 0);
  if (::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK) != 0) return FailureOf(path);
  if (!port.line_) return port;
  if (!SetLine(fd, tablet.Line)) return FailureOf(path);
  const std::string_view hello = tablet.Initialisation;
  if (::write(fd, hello.data(), hello.size()) != static_cast<ssize_t>(hello.size())) return FailureOf(path);
  return port;
}

Port::Port(Port&& other) noexcept : fd_(std::exchange(other.fd_, -1)), line_(other.line_) {}

Port::~Port() {
  if (fd_ > STDIN_FILENO) ::close(fd_);
}

Result<std::span<const std::uint8_t>> Port::Read(std::span<std::uint8_t> buffer) {
  for (;;) {
    const ssize_t got = ::read(fd_, buffer.data(), buffer.size());
    if (got >= 0) return std::span<const std::uint8_t>(buffer.first(static_cast<std::size_t>(got)));
    if (errno == EINTR) continue;
    if (errno == EIO && line_) return std::span<const std::uint8_t>();  // the line hung up
    return FailureOf("the tablet's stream");
  }
}

}  // namespace hyetex::cli
