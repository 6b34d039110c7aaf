// The tablet's end of a serial line, on a pseudo-terminal, under a name that stays when the tablet is
// unplugged and plugged in again.
#pragma once

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <QByteArray>
#include <array>
#include <filesystem>
#include <string>
#include <utility>

#include "windows/support.h"

namespace hyetex::test {

class WiredTablet {
 public:
  explicit WiredTablet(std::string link) : link_(std::move(link)) { PlugIn(); }
  ~WiredTablet() { Unplug(); }
  WiredTablet(const WiredTablet&) = delete;

  const std::string& Link() const { return link_; }
  void PlugIn() {
    std::array<char, 64> name{};
    ASSERT_EQ(::openpty(&master_, &slave_, name.data(), nullptr, nullptr), 0);
    // As a wire has it: nothing is echoed or translated on the way.
    termios line{};
    ::tcgetattr(slave_, &line);
    ::cfmakeraw(&line);
    ::tcsetattr(slave_, TCSANOW, &line);
    std::filesystem::remove(link_);
    std::filesystem::create_symlink(name.data(), link_);
  }
  void Unplug() {
    if (master_ < 0) return;
    std::filesystem::remove(link_);
    ::close(slave_);
    ::close(master_);
    master_ = slave_ = -1;
  }
  void Send(const QByteArray& bytes) {
    ASSERT_EQ(::write(master_, bytes.constData(), static_cast<std::size_t>(bytes.size())), bytes.size());
  }
  QByteArray Heard(qsizetype count) {
    QByteArray heard;
    std::array<char, 256> buffer{};
    EXPECT_TRUE(WaitFor([&] {
      pollfd waiting{master_, POLLIN, 0};
      while (::poll(&waiting, 1, 0) > 0 && (waiting.revents & POLLIN) != 0)
        heard.append(buffer.data(), ::read(master_, buffer.data(), buffer.size()));
      return heard.size() >= count;
    }));
    return heard;
  }

 private:
  std::string link_;
  int master_ = -1, slave_ = -1;
};

}  // namespace hyetex::test
