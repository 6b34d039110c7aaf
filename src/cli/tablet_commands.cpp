// decode and trace: from a tablet's bytes.
#include <array>

#include "cli/commands.h"
#include "cli/port.h"
#include "core/numbers.h"
#include "digitizing/action_machine.h"

namespace hyetex::cli {
namespace {

constexpr std::size_t MostBytesAtOnce = 1024;
constexpr Option TabletOption{"--tablet", "N", "the tablet's type, 0 to 4"};

struct Stream {
  int TabletIndex;
  const TabletType& Tablet;
  Port Line;
};

// Opens what both commands read, or says why not.
Result<Stream> OpenStream(const Words& words, Exit& exit) {
  exit = WordsOff;
  if (words.Rest().size() > 1) return Failure("one stream at a time");
  const auto index = words.Number("--tablet", 0, TabletTypeCount - 1);
  if (!index) return Failure(index.error());
  if (!*index) return Failure("--tablet is missing");
  const TabletType& tablet = TabletTypes()[static_cast<std::size_t>(**index)];
  exit = Failed;
  auto port = Port::Open(words.Rest().empty() ? "-" : words.Rest()[0], tablet);
  if (!port) return Failure(port.error());
  return Stream{**index, tablet, std::move(*port)};
}

// Calls `take(bytes)` until the stream ends.
template <typename Take>
Exit ReadToEnd(Port& port, Take&& take) {
  std::array<std::uint8_t, MostBytesAtOnce> buffer;
  for (;;) {
    const auto bytes = port.Read(buffer);
    if (!bytes) return Fail(bytes.error());
    if (bytes->empty()) return Done;
    take(*bytes);
  }
}

Exit Decode(const Words& words) {
  Exit exit{};
  auto stream = OpenStream(words, exit);
  if (!stream) return Say(stream.error()), exit;
  ReportDecoder decoder(stream->Tablet);
  return ReadToEnd(stream->Line, [&](std::span<const std::uint8_t> bytes) {
    decoder.Receive(bytes, [](const TabletReport& report) {
      Print(ShortText(report.X) + " " + ShortText(report.Y) + " " + ShortText(report.Button) + "\n");
    });
  });
}

class PrintedJournal : public JournalSink {
 public:
  void Record(const JournalEvent& event) override { Print(JournalLine(event) + "\n"); }
};

// A view with nobody before it: says what the operator would be told.
class HeadlessView : public SilentView {
 public:
  void ShowMessage(std::string_view, std::string_view text) override { Say(text); }
};

Exit Trace(const Words& words) {
  Exit exit{};
  auto stream = OpenStream(words, exit);
  if (!stream) return Say(stream.error()), exit;

  std::optional<JournalFile> file;
  PrintedJournal printed;
  if (const auto path = words.Value("--journal")) {
    auto started = JournalFile::Start(*path, stream->TabletIndex);
    if (!started) return Fail(started.error());
    file.emplace(std::move(*started));
  } else {
    Print(JournalHead(stream->TabletIndex));
  }
  HeadlessView view;
  // The kind of chart plays no part in what is journaled but for presses off an arc, and those digitize
  // tells.
  Session session(stream->Tablet.Extents, ChartTypeRecord{}, ChartRecord{}, Now());
  ActionMachine machine(session, stream->Tablet, view, file ? static_cast<JournalSink*>(&*file) : &printed);
  machine.Start();
  exit = ReadToEnd(stream->Line, [&](std::span<const std::uint8_t> bytes) {
    machine.Receive(bytes);
    if (!machine.CommentIsOpen()) return;
    // Nobody is there to write a comment: the code that the window proposes is taken.
    machine.AddComment(machine.OpenCommentRequest()->Code, "");
    machine.CommentClosed();
  });
  if (file && file->Trouble()) return Fail(*file->Trouble());
  return exit;
}

constexpr Option DecodeOptions[] = {TabletOption};
constexpr Option TraceOptions[] = {
    TabletOption, {"--journal", "FILE", "where the journal goes (default: standard output)"}};

}  // namespace

constinit const Command DecodeCommand{
    "decode", "[FILE|PORT]",
    "Turns a tablet's bytes into one line a report: X Y BUTTON, the button -1 when none is down.\n"
    "Reads standard input without FILE or with -. Bytes that belong to no report are passed over.",
    DecodeOptions, Decode};

constinit const Command TraceCommand{"trace", "[FILE|PORT]",
                                     "Runs a session at a tablet without a screen and writes its journal.\n"
                                     "The first two presses calibrate the page, then presses trace the pen "
                                     "line; the tool board lies in the top\n"
                                     "right corner of the tablet. A gap or a recovered segment gets its code "
                                     "without a text. Ends with the stream.",
                                     TraceOptions, Trace};

}  // namespace hyetex::cli
