// The simulated tablet over a real pseudo-terminal, opened and set as a serial port is.
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <csignal>

#include "paths.h"
#include "support.h"
#include "tools/traced_chart.h"

extern char** environ;

namespace hyetex::test {
namespace {

using namespace std::chrono_literals;

/// The simulator as a child process. Ended at the latest when this goes.
class Simulator {
 public:
  explicit Simulator(std::vector<std::string> words) {
    int out[2] = {}, err[2] = {};
    EXPECT_EQ(::pipe2(out, O_CLOEXEC), 0);
    EXPECT_EQ(::pipe2(err, O_CLOEXEC), 0);
    words.insert(words.begin(), test::TabletProgram());
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    ::posix_spawn_file_actions_adddup2(&actions, err[1], 2);
    EXPECT_EQ(::posix_spawn(&process_, argv[0], &actions, nullptr, argv.data(), environ), 0);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]);
    ::close(err[1]);
    errors_ = err[0];
    for (char c = 0; ::read(out[0], &c, 1) == 1 && c != '\n';) Path += c;
    ::close(out[0]);
  }
  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;
  ~Simulator() {
    if (process_ > 0) ::kill(process_, SIGKILL), Wait();
    ::close(errors_);
  }

  void Signal(int signal) const { ::kill(process_, signal); }
  int Wait() {
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  std::string Errors() const {
    std::string text(1000, '\0');
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(0, ::read(errors_, text.data(), text.size()))));
    return text;
  }

  std::string Path;

 private:
  pid_t process_ = -1;
  int errors_ = -1;
};

/// The reader's end, set as the tablet's line asks.
class Port {
 public:
  Port(const std::string& path, tcflag_t lineFlags)
      : fd_(::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    EXPECT_GE(fd_, 0) << path;
    termios settings{};
    ::tcgetattr(fd_, &settings);
    ::cfmakeraw(&settings);
    settings.c_cflag =
        (settings.c_cflag & ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD)) | CREAD | CLOCAL | lineFlags;
    ::cfsetspeed(&settings, B9600);
    // A pseudo-terminal keeps to 8 bits whatever it is told; what matters is that nothing is lost by asking.
    ::tcsetattr(fd_, TCSANOW, &settings);
    ::tcflush(fd_, TCIOFLUSH);
  }
  Port(const Port&) = delete;
  Port& operator=(const Port&) = delete;
  ~Port() { ::close(fd_); }

  void Send(std::string_view bytes) const {
    EXPECT_EQ(::write(fd_, bytes.data(), bytes.size()), std::ssize(bytes));
  }
  bool HasBytes(std::chrono::milliseconds within) const {
    pollfd waiting{fd_, POLLIN, 0};
    return ::poll(&waiting, 1, static_cast<int>(within.count())) > 0 && (waiting.revents & POLLIN) != 0;
  }
  /// At most `most` bytes; nothing after the hang-up.
  std::string Read(std::size_t most) const {
    std::string bytes(most, '\0');
    bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(0, ::read(fd_, bytes.data(), most))));
    return bytes;
  }
  /// Everything up to the hang-up.
  std::string ReadAll(std::size_t most = 4096, std::chrono::microseconds pause = 0us) const {
    std::string all;
    for (std::string piece; !(piece = Read(most)).empty();) {
      all += piece;
      if (pause > 0us) ::usleep(static_cast<useconds_t>(pause.count()));
    }
    return all;
  }

 private:
  int fd_;
};

tcflag_t LineFlags(const TabletType& tablet) {
  const bool odd = tablet.Line.Parity == LineParity::Odd;
  const bool even = tablet.Line.Parity == LineParity::Even;
  const bool seven = tablet.Line.DataBits == 7;
  return (seven ? CS7 : CS8) | (odd ? PARENB | PARODD : 0U) | (even ? PARENB : 0U);
}

std::string StreamOf(int tablet) {
  return EncodeSteps(TabletOf(tablet), TracePage(RealChart(), TabletOf(tablet), {}).value());
}

class TabletSimulator : public ::testing::Test {
 protected:
  TempFolder Folder;
  std::string Save(const std::string& bytes) {
    WriteFile(Folder / "stream.bin", bytes);
    return Folder / "stream.bin";
  }
};

TEST_F(TabletSimulator, HandsEveryByteOnUnchangedAndThenHangsUp) {
  for (int tablet = 0; tablet < TabletTypeCount; ++tablet) {
    SCOPED_TRACE(tablet);
    const std::string stream = StreamOf(tablet);
    Simulator simulator({"--tablet", std::to_string(tablet), "--baud", "0", Save(stream)});
    const Port port(simulator.Path, LineFlags(TabletOf(tablet)));
    port.Send(TabletOf(tablet).Initialisation);
    EXPECT_TRUE(port.ReadAll() == stream);
    EXPECT_EQ(simulator.Wait(), 0);
  }
}

TEST_F(TabletSimulator, LosesNothingToReaderSlowerThanTheLine) {
  std::string stream;
  while (stream.size() < 150'000) stream += StreamOf(1);
  Simulator simulator({"--tablet", "1", "--baud", "0", "--chunk", "5000", Save(stream)});
  const Port port(simulator.Path, LineFlags(TabletOf(1)));
  port.Send(TabletOf(1).Initialisation);
  ::usleep(200'000);  // the line fills up
  EXPECT_TRUE(port.ReadAll(900, 1ms) == stream);
  EXPECT_EQ(simulator.Wait(), 0);
}

TEST_F(TabletSimulator, KeepsToTheSpeedOfTheLine) {
  const std::string stream = StreamOf(4).substr(0, 400);
  Simulator simulator({"--tablet", "4", "--baud", "9600", Save(stream)});
  const Port port(simulator.Path, LineFlags(TabletOf(4)));
  const auto start = std::chrono::steady_clock::now();
  port.Send(TabletOf(4).Initialisation);
  EXPECT_EQ(port.ReadAll(), stream);
  EXPECT_GT(std::chrono::steady_clock::now() - start, 400ms);  // 4000 bits at 9600 a second
}

TEST_F(TabletSimulator, SaysNothingBeforeItsInitialisation) {
  const std::string stream = StreamOf(3);
  Simulator simulator({"--tablet", "3", "--baud", "0", Save(stream)});
  const Port port(simulator.Path, LineFlags(TabletOf(3)));
  const std::string_view word = TabletOf(3).Initialisation;
  port.Send(word.substr(0, 4));
  EXPECT_FALSE(port.HasBytes(400ms));
  port.Send(word.substr(4));
  EXPECT_TRUE(port.ReadAll() == stream);
}

TEST_F(TabletSimulator, RestsWhileTheProgramOnlyLooksForIt) {
  const TabletType& tablet = TabletOf(1);
  const std::string stream = StreamOf(1).substr(0, 1300);
  Simulator simulator({"--tablet", "1", "--baud", "0", "--opening", "2", Save(stream)});
  {
    const Port looking(simulator.Path, LineFlags(tablet));
    looking.Send(tablet.Initialisation);
    ASSERT_TRUE(looking.HasBytes(5s));
    EXPECT_EQ(looking.Read(13), EncodeReport(tablet, {4572, 3050, -1}));
  }
  ::usleep(200'000);
  const Port port(simulator.Path, LineFlags(tablet));
  port.Send(tablet.Initialisation);
  EXPECT_EQ(port.ReadAll(), stream);
  EXPECT_EQ(simulator.Wait(), 0);
}

TEST_F(TabletSimulator, GivesUpInOneLineWhenNobodyComes) {
  Simulator simulator({"--tablet", "1", "--wait", "0.1", "--link", Folder / "tty", Save("x")});
  EXPECT_EQ(simulator.Wait(), 1);
  EXPECT_EQ(simulator.Errors(), "hyetex-tablet: nobody opened " + simulator.Path + " in time\n");
  EXPECT_FALSE(std::filesystem::is_symlink(Folder / "tty"));
}

TEST_F(TabletSimulator, NoticesReaderThatLeavesEarly) {
  Simulator simulator({"--tablet", "0", Save(StreamOf(0))});
  {
    const Port port(simulator.Path, LineFlags(TabletOf(0)));
    ASSERT_TRUE(port.HasBytes(5s));
  }
  EXPECT_EQ(simulator.Wait(), 1);
  EXPECT_EQ(simulator.Errors(), "hyetex-tablet: the line was closed before all had been played\n");
}

TEST_F(TabletSimulator, TakesItsLinkAwayWhenItIsEnded) {
  const std::string link = Folder / "tty";
  for (const char* opening : {"1", "2"}) {
    Simulator simulator(
        {"--tablet", "1", "--opening", opening, "--wait", "5", "--stay", "--link", link, Save(StreamOf(1))});
    ASSERT_EQ(std::filesystem::read_symlink(link).string(), simulator.Path);
    simulator.Signal(SIGTERM);
    EXPECT_GE(simulator.Wait(), 0) << "ended by the signal itself";
    EXPECT_EQ(simulator.Errors(), "") << "it waited on for opening " << opening;
    EXPECT_FALSE(std::filesystem::is_symlink(link));
  }
}

TEST_F(TabletSimulator, RefusesBadWordsInOneLine) {
  const std::vector<std::vector<std::string>> bad{{},
                                                  {"--tablet", "1"},
                                                  {"--tablet", "5", "x"},
                                                  {"--tablet", "1", "x", "y"},
                                                  {"--tablet", "1", "--baud", "fast", "x"},
                                                  {"--tablet", "1", "--chunk", "1.5", "x"},
                                                  {"--tablet", "1", "--speed", "1", "x"}};
  for (const auto& words : bad) {
    Simulator simulator(words);
    EXPECT_EQ(simulator.Wait(), 2) << words.size() << " words";
    EXPECT_EQ(std::ranges::count(simulator.Errors(), '\n'), 1);
  }
}

}  // namespace
}  // namespace hyetex::test
