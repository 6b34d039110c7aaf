// hyetex-tablet: plays a tablet on a pseudo-terminal, so that the program can be tried and tested without
// one.
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "commandline/parser.h"
#include "core/files.h"
#include "digitizing/tablets.h"
#include "tablet/pty_line.h"

namespace hyetex {
namespace {

using namespace commandline;
using namespace std::chrono_literals;

constexpr std::size_t MostBytes = 64 << 20;
// A program sets up a line and clears it after opening; a tablet that waits for no word leaves it time for
// that.
constexpr auto LineSettles = 300ms;
constexpr auto RestingReportEvery = 20ms;

struct Order {
  std::string File;
  std::string Link;
  int Tablet = 0, Opening = 1;
  int Baud = 9600;
  double WaitSeconds = 30;
  std::optional<int> Chunk;
  bool NoWaitInit = false, Stay = false;

  const TabletType& Type() const { return TabletTypes()[static_cast<std::size_t>(Tablet)]; }
  std::size_t ChunkBytes() const {
    const int tenMs = Baud == 0 ? 1024 : std::max(1, Baud / 1000);
    return static_cast<std::size_t>(Chunk.value_or(tenMs));
  }
};

class CommandLine : public Description {
 public:
  explicit CommandLine(Order& order)
      : Description(
            "hyetex-tablet",
            "Makes a pseudo-terminal, prints its path, waits until it has been opened as the serial port "
            "of the "
            "tablet\nand the tablet's initialisation has come, plays FILE, waits until all has been "
            "read, and "
            "hangs up.") {
    AddTablet(*this, order.Tablet)->required();
    AddName(*this, "--link", order.Link, "PATH",
            "make a symbolic link to the pseudo-terminal, and remove it at the end");
    AddWhole(*this, "--baud", order.Baud, 0, 100'000'000, "B",
             "speed of the line, ten bits a byte; 0: as fast as it is read")
        ->capture_default_str();
    AddWhole(*this, "--chunk", order.Chunk, 1, 1'000'000, "BYTES",
             "bytes in one write (default: what 10 ms hold)");
    AddNumber(*this, "--wait", order.WaitSeconds, 0, 1e6, "SECONDS",
              "how long to wait for the opening and the initialisation")
        ->capture_default_str();
    add_flag("--no-wait-init", order.NoWaitInit, "do not wait for the initialisation");
    AddWhole(*this, "--opening", order.Opening, 1, 1000, "K",
             "play to the K-th opening; those before it see a cursor at rest, as when a\nprogram first looks "
             "for the "
             "tablet and then opens it for the session")
        ->capture_default_str();
    add_flag("--stay", order.Stay,
             "do not hang up: the cursor rests when FILE is played, and FILE is played\nanew to each later "
             "opening");
    AddWord(*this, "FILE", order.File, "the tablet's bytes")->required();
  }
};

// The symbolic link, for as long as it is needed.
class Link {
 public:
  static Result<Link> Make(const std::string& path, const std::string& to) {
    std::error_code error;
    if (std::filesystem::is_symlink(path, error))
      std::filesystem::remove(path, error);  // of a run that was killed
    std::filesystem::create_symlink(to, path, error);
    if (error) return Failure(path + ": " + error.message());
    return Link(path);
  }
  Link() = default;
  Link(Link&& other) noexcept : path_(std::exchange(other.path_, {})) {}
  Link& operator=(Link&& other) noexcept {
    std::swap(path_, other.path_);
    return *this;
  }
  ~Link() {
    if (!path_.empty()) ::unlink(path_.c_str());
  }

 private:
  explicit Link(std::string path) : path_(std::move(path)) {}
  std::string path_;
};

// Raised by a wait that a signal has ended: the tablet goes, and there is nothing to complain about.
constexpr const char* Quietly = "";

class Tablet {
 public:
  Tablet(PtyLine& line, const Order& order) : line_(line), order_(order) {}

  Result<void> Play(std::string_view stream) {
    const auto patience = std::chrono::duration<double>(order_.WaitSeconds);
    until_ = PtyLine::Clock::now() + std::chrono::duration_cast<PtyLine::Clock::duration>(patience);
    while (line_.Openings() < order_.Opening - 1)
      if (auto rested = RestUntilClosed(order_.Opening); !rested) return rested;
    for (;;) {
      if (auto ready = WaitUntilReady(); !ready) return ready;
      const int opening = line_.Openings();
      if (auto sent = Send(stream); !sent && !(order_.Stay && line_.Readers() == 0)) return sent;
      if (!order_.Stay) return Ended(line_.WaitUntilRead());
      if (auto rested = RestUntilClosed(opening + 1); !rested) return rested;
    }
  }

 private:
  static Result<void> Ended(PtyLine::End end) {
    if (end == PtyLine::End::Hurried) return Failure(Quietly);
    return {};
  }
  Result<void> WaitForReader() {
    const PtyLine::End end = line_.WaitForReader(until_);
    if (end == PtyLine::End::TimedOut) return Failure("nobody opened " + line_.Path() + " in time");
    return Ended(end);
  }

  // Or until the line has been opened `opening` times.
  Result<void> RestUntilClosed(int opening) {
    const TabletExtents& size = order_.Type().Extents;
    const TabletReport resting{static_cast<int>(size.TabletWidthUnits / 2),
                               static_cast<int>(size.TabletHeightUnits / 2), -1};
    const std::string report = EncodeReport(order_.Type(), resting);
    if (auto opened = WaitForReader(); !opened) return opened;
    while (line_.Readers() > 0 && line_.Openings() < opening) {
      std::string_view bytes = report;
      if (line_.Unread() < 1000)
        if (auto written = Ended(line_.Write(bytes)); !written) return written;
      if (auto waited = Ended(line_.WaitUntil(PtyLine::Clock::now() + RestingReportEvery)); !waited)
        return waited;
    }
    if (line_.Readers() == 0) line_.Forget();  // what stands there now may be the next reader's
    return {};
  }

  Result<void> WaitUntilReady() {
    if (auto opened = WaitForReader(); !opened) return opened;
    const std::string_view word = order_.Type().Initialisation;
    if (order_.NoWaitInit || word.empty()) return Ended(line_.WaitUntil(PtyLine::Clock::now() + LineSettles));
    const PtyLine::End end = line_.WaitForText(word, until_);
    if (end == PtyLine::End::TimedOut) return Failure("the tablet's initialisation did not come in time");
    return Ended(end);
  }

  Result<void> Send(std::string_view stream) {
    const auto start = PtyLine::Clock::now();
    const std::string_view whole = stream;
    while (!stream.empty()) {
      if (order_.Baud > 0) {
        const double seconds = static_cast<double>(whole.size() - stream.size()) * 10 / order_.Baud;
        const auto due = start + std::chrono::duration_cast<PtyLine::Clock::duration>(
                                     std::chrono::duration<double>(seconds));
        if (auto waited = Ended(line_.WaitUntil(due)); !waited) return waited;
      }
      std::string_view chunk = stream.substr(0, order_.ChunkBytes());
      const std::size_t size = chunk.size();
      if (auto written = Ended(line_.Write(chunk)); !written) return written;
      stream.remove_prefix(size - chunk.size());
      if (line_.Readers() == 0) return Failure("the line was closed before all had been played");
    }
    return {};
  }

  PtyLine& line_;
  const Order& order_;
  PtyLine::Time until_;
};

Result<void> Run(const Order& order) {
  const auto stream = ReadWholeFile(order.File, MostBytes);
  if (!stream) return Failure(stream.error());
  auto line = PtyLine::Open();
  if (!line) return Failure(line.error());
  Link link;
  if (!order.Link.empty()) {
    auto made = Link::Make(order.Link, line->Path());
    if (!made) return Failure(made.error());
    link = *std::move(made);
  }
  std::printf("%s\n", line->Path().c_str());
  std::fflush(stdout);
  return Tablet(*line, order).Play(*stream);
}

int Main(std::span<const std::string> words) {
  Order order;
  CommandLine line(order);
  if (const auto answer = Parse(line, words)) return Give(line.get_name(), *answer);
  const auto run = Run(order);
  if (run) return Done;
  return run.error() == Quietly ? Failed : Fail(line.get_name(), run.error());
}

}  // namespace
}  // namespace hyetex

int main(int argc, char** argv) { return hyetex::Main(std::vector<std::string>(argv + 1, argv + argc)); }
