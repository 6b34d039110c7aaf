// hyetex-tablet: plays a tablet on a pseudo-terminal, so that the program can be tried and tested without
// one.
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <filesystem>

#include "core/files.h"
#include "digitizing/tablets.h"
#include "options.h"
#include "tablet/pty_line.h"

namespace hyetex {
namespace {

using namespace std::chrono_literals;

constexpr const char* Help =
    R"(usage: hyetex-tablet --tablet N [options] FILE

Makes a pseudo-terminal, prints its path, waits until it has been opened as the serial port of tablet type N (0 to 4)
and the tablet's initialisation has come, plays FILE, waits until all has been read, and hangs up.

  --link PATH     make a symbolic link to the pseudo-terminal, and remove it at the end
  --baud B        speed of the line, ten bits a byte (default 9600); 0: as fast as it is read
  --chunk BYTES   bytes in one write (default: what 10 ms hold)
  --wait SECONDS  how long to wait for the opening and the initialisation (default 30)
  --no-wait-init  do not wait for the initialisation
  --opening K     play to the K-th opening (default 1); those before it see a cursor at rest, as when a program first
                  looks for the tablet and then opens it for the session
  --stay          do not hang up: the cursor rests when FILE is played, and FILE is played anew to each later opening
)";

constexpr OptionRule Rules[] = {{"--help"},         {"--tablet", 1},  {"--link", 1},
                                {"--baud", 1},      {"--chunk", 1},   {"--wait", 1},
                                {"--no-wait-init"}, {"--opening", 1}, {"--stay"}};
constexpr std::size_t MostBytes = 64 << 20;
// A program sets up a line and clears it after opening; a tablet that waits for no word leaves it time for
// that.
constexpr auto LineSettles = 300ms;
constexpr auto RestingReportEvery = 20ms;

struct Order {
  std::string File;
  std::optional<std::string> Link;
  int Tablet = 0, Opening = 1;
  double Baud = 9600, WaitSeconds = 30;
  std::size_t Chunk = 0;
  bool WaitInit = true, Stay = false;

  const TabletType& Type() const { return TabletTypes()[static_cast<std::size_t>(Tablet)]; }
};

Result<Order> Understand(const Options& options) {
  Order order;
  std::string trouble;
  const auto whole = [&](std::string_view name, double otherwise, double least, double most) {
    const auto number = options.NumberOr(name, otherwise, least, most);
    if (trouble.empty() && !number) trouble = number.error();
    if (trouble.empty() && *number != std::floor(*number))
      trouble = std::string(name) + " takes a whole number";
    return number.value_or(otherwise);
  };
  order.Tablet = static_cast<int>(whole("--tablet", 0, 0, TabletTypeCount - 1));
  order.Opening = static_cast<int>(whole("--opening", 1, 1, 1000));
  order.Baud = whole("--baud", 9600, 0, 1e8);
  const double tenMs = order.Baud == 0 ? 1024 : std::max(1.0, std::floor(order.Baud / 1000));
  order.Chunk = static_cast<std::size_t>(whole("--chunk", tenMs, 1, 1e6));
  if (const auto wait = options.NumberOr("--wait", 30, 0, 1e6); wait)
    order.WaitSeconds = *wait;
  else if (trouble.empty())
    trouble = wait.error();
  order.WaitInit = !options.Has("--no-wait-init");
  order.Stay = options.Has("--stay");
  order.Link = options.Text("--link");
  if (!options.Has("--tablet"))
    trouble = "--tablet is missing";
  else if (options.Words().empty())
    trouble = "the file to play is missing";
  else
    order.File = options.Words().front();
  if (!trouble.empty()) return Failure(trouble);
  return order;
}

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
    if (line_.WaitForReader(until_) == PtyLine::End::TimedOut)
      return Failure("nobody opened " + line_.Path() + " in time");
    return {};
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
    if (!order_.WaitInit || word.empty()) return Ended(line_.WaitUntil(PtyLine::Clock::now() + LineSettles));
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
      std::string_view chunk = stream.substr(0, order_.Chunk);
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
  if (order.Link) {
    auto made = Link::Make(*order.Link, line->Path());
    if (!made) return Failure(made.error());
    link = *std::move(made);
  }
  std::printf("%s\n", line->Path().c_str());
  std::fflush(stdout);
  return Tablet(*line, order).Play(*stream);
}

int Main(int argc, char** argv) {
  const auto complain = [](const std::string& why, int code) {
    if (why != Quietly) std::fprintf(stderr, "hyetex-tablet: %s\n", why.c_str());
    return code;
  };
  const auto options = Options::Parse(argc, argv, Rules, 1);
  if (!options) return complain(options.error(), 2);
  if (options->Has("--help")) return std::fputs(Help, stdout), 0;
  const auto order = Understand(*options);
  if (!order) return complain(order.error(), 2);
  if (auto run = Run(*order); !run) return complain(run.error(), 1);
  return 0;
}

}  // namespace
}  // namespace hyetex

int main(int argc, char** argv) { return hyetex::Main(argc, argv); }
