#include "tablet/pty_line.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/signalfd.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace hyetex {

using namespace std::chrono_literals;

Result<PtyLine> PtyLine::Open() {
  const auto fail = [](const char* what) { return Failure(std::string(what) + ": " + std::strerror(errno)); };
  PtyLine line;
  line.master_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  std::array<char, 64> path{};
  if (line.master_ < 0 || ::grantpt(line.master_) != 0 || ::unlockpt(line.master_) != 0 ||
      ::ptsname_r(line.master_, path.data(), path.size()) != 0)
    return fail("no pseudo-terminal is to be had");
  line.path_ = path.data();

  // Our own hold on the reader's end keeps the line up between readers, and tells what they have not read. It
  // is not counted among the openings, as it comes before them.
  line.slave_ = ::open(path.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  termios settings{};
  if (line.slave_ < 0 || ::tcgetattr(line.slave_, &settings) != 0) return fail(path.data());
  ::cfmakeraw(&settings);
  if (::tcsetattr(line.slave_, TCSANOW, &settings) != 0) return fail(path.data());

  line.openingsFd_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (line.openingsFd_ < 0 || ::inotify_add_watch(line.openingsFd_, path.data(), IN_OPEN | IN_CLOSE) < 0)
    return fail("the line cannot be watched");

  sigset_t ends;
  ::sigemptyset(&ends);
  ::sigaddset(&ends, SIGINT);
  ::sigaddset(&ends, SIGTERM);
  ::sigprocmask(SIG_BLOCK, &ends, nullptr);
  line.signals_ = ::signalfd(-1, &ends, SFD_NONBLOCK | SFD_CLOEXEC);
  if (line.signals_ < 0) return fail("signals cannot be watched");
  return line;
}

PtyLine::PtyLine(PtyLine&& other) noexcept
    : path_(std::move(other.path_)),
      received_(std::move(other.received_)),
      master_(std::exchange(other.master_, -1)),
      slave_(std::exchange(other.slave_, -1)),
      openingsFd_(std::exchange(other.openingsFd_, -1)),
      signals_(std::exchange(other.signals_, -1)),
      readers_(other.readers_),
      openings_(other.openings_) {}

PtyLine::~PtyLine() {
  for (int fd : {slave_, master_, openingsFd_, signals_})
    if (fd >= 0) ::close(fd);
}

template <typename Condition>
PtyLine::End PtyLine::WaitFor(Condition&& met, Time until, bool forRoom) {
  for (;;) {
    NoteOpenings();
    TakeReceived();
    if (met()) return End::Done;
    int patience = -1;
    if (until) {
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(*until - Clock::now()).count();
      if (left <= 0) return End::TimedOut;
      patience = static_cast<int>(std::min<decltype(left)>(left, 1'000'000));
    }
    std::array<pollfd, 3> watched{{{signals_, POLLIN, 0},
                                   {openingsFd_, POLLIN, 0},
                                   {master_, static_cast<short>(forRoom ? POLLIN | POLLOUT : POLLIN), 0}}};
    ::poll(watched.data(), watched.size(), patience);
    if (watched[0].revents != 0) return End::Hurried;
    if (forRoom && (watched[2].revents & POLLOUT) != 0) return End::Done;
  }
}

void PtyLine::NoteOpenings() {
  alignas(inotify_event) std::array<char, 4096> events{};
  for (ssize_t length; (length = ::read(openingsFd_, events.data(), events.size())) > 0;) {
    for (ssize_t at = 0; at < length;) {
      inotify_event event{};
      std::memcpy(&event, events.data() + at, sizeof event);
      at += static_cast<ssize_t>(sizeof event + event.len);
      if ((event.mask & IN_OPEN) != 0) ++readers_, ++openings_;
      if ((event.mask & IN_CLOSE) != 0) {
        --readers_;
        ::ioctl(slave_, TIOCNXCL);  // a reader that took the line for itself alone may have died with it
      }
    }
  }
}

void PtyLine::TakeReceived() {
  std::array<char, 1024> bytes{};
  for (ssize_t length; (length = ::read(master_, bytes.data(), bytes.size())) > 0;)
    received_.append(bytes.data(), static_cast<std::size_t>(length));
}

void PtyLine::Forget() {
  TakeReceived();
  received_.clear();
  ::tcflush(slave_, TCIFLUSH);
}

PtyLine::End PtyLine::WaitForReader(Time until) {
  return WaitFor([this] { return readers_ > 0; }, until);
}

PtyLine::End PtyLine::WaitForText(std::string_view text, Time until) {
  return WaitFor([&] { return received_.find(text) != std::string::npos; }, until);
}

PtyLine::End PtyLine::WaitUntil(Clock::time_point until) {
  const End end = WaitFor([] { return false; }, until);
  return end == End::TimedOut ? End::Done : end;
}

PtyLine::End PtyLine::Write(std::string_view& bytes) {
  for (;;) {
    const ssize_t written = ::write(master_, bytes.data(), bytes.size());
    if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
    if (written > 0 || bytes.empty()) return End::Done;
    // A full line does not always tell when there is room again, so look now and then.
    const End end = WaitFor([this] { return readers_ == 0; }, Clock::now() + 10ms, true);
    if (end == End::Hurried || readers_ == 0) return end;
  }
}

std::size_t PtyLine::Unread() const {
  int unread = 0;
  return ::ioctl(slave_, FIONREAD, &unread) == 0 && unread > 0 ? static_cast<std::size_t>(unread) : 0;
}

PtyLine::End PtyLine::WaitUntilRead() {
  // Bytes may be on their way to where they are counted, so it takes several looks to be sure.
  constexpr int SureAfter = 5;
  for (int looks = 0; looks < SureAfter;) {
    looks = Unread() == 0 ? looks + 1 : 0;
    const End end = WaitFor([this] { return readers_ == 0; }, Clock::now() + 10ms);
    if (end != End::TimedOut) return end;
  }
  return End::Done;
}

}  // namespace hyetex
