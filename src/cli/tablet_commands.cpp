// decode and trace: from a tablet's bytes.
#include <array>
#include <filesystem>

#include "cli/commands.h"
#include "cli/port.h"
#include "core/files.h"
#include "core/folder_lock.h"
#include "core/numbers.h"
#include "digitizing/action_machine.h"
#include "digitizing/resume.h"

namespace hyetex::cli {
namespace {

constexpr std::size_t MostBytesAtOnce = 1024;

const TabletType& TabletOf(const DecodeWords& words) {
  return TabletTypes()[static_cast<std::size_t>(words.Tablet)];
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

class PrintedJournal : public JournalSink {
 public:
  void Record(const JournalEvent& event) override { Print(JournalLine(event) + "\n"); }
};

}  // namespace

Exit RunDecode(const DecodeWords& words) {
  const TabletType& tablet = TabletOf(words);
  auto port = Port::Open(words.From, tablet);
  if (!port) return Fail(port.error());
  ReportDecoder decoder(tablet);
  return ReadToEnd(*port, [&](std::span<const std::uint8_t> bytes) {
    decoder.Receive(bytes, [](const TabletReport& report) {
      Print(ShortText(report.X) + " " + ShortText(report.Y) + " " + ShortText(report.Button) + "\n");
    });
  });
}

Exit RunTrace(const TraceWords& words) {
  const TabletType& tablet = TabletOf(words);
  auto port = Port::Open(words.From, tablet);
  if (!port) return Fail(port.error());

  std::optional<FolderLock> lock;
  std::optional<JournalFile> file;
  PrintedJournal printed;
  if (!words.Journal.empty()) {
    if (BaseName(words.Journal) == JournalFileName) {
      // A program folder's journal of the session that is running.
      auto taken = FolderLock::Take(std::filesystem::absolute(words.Journal).parent_path().string());
      if (!taken) return Fail(taken.error());
      lock.emplace(*std::move(taken));
    }
    auto started = JournalFile::Start(words.Journal, words.Tablet);
    if (!started) return Fail(started.error());
    file.emplace(std::move(*started));
  } else {
    Print(JournalHead(words.Tablet));
  }
  SaidView view;
  // The kind of chart plays no part in what is journaled but for presses off an arc, and those digitize
  // tells.
  Session session(tablet.Extents, ChartTypeRecord{}, ChartRecord{});
  ActionMachine machine(session, tablet, view, file ? static_cast<JournalSink*>(&*file) : &printed);
  machine.Start();
  const Exit exit = ReadToEnd(*port, [&](std::span<const std::uint8_t> bytes) {
    machine.Receive(bytes);
    if (!machine.CommentIsOpen()) return;
    // Nobody is there to write a comment: the code that the window proposes is taken.
    machine.AddComment(machine.OpenCommentRequest()->Code, "");
    machine.CommentClosed();
  });
  if (file && file->Trouble()) return Fail(*file->Trouble());
  return exit;
}

}  // namespace hyetex::cli
