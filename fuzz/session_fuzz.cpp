// Any bytes from a tablet, and the same bytes as a journal: the session stays whole, and what it did can be
// replayed.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "chartfiles/chart_report.h"
#include "chartfiles/chart_text.h"
#include "digitizing/action_machine.h"

namespace {

using namespace hyetex;

struct TextJournal : JournalSink {
  std::string Text;
  void Record(const JournalEvent& event) override { Text += JournalLine(event) + "\n"; }
};

Session NewSession(const TabletType& tablet, int method) {
  ChartTypeRecord type;
  type.ChartMethod = static_cast<std::int16_t>(method);
  type.MiddleToBottomMm = 20;
  ChartRecord chart;
  chart.StartTime = 30000;
  chart.EndTime = 30001;
  return Session(tablet.Extents, type, chart);
}

void CheckTexts(const Session& session) {
  const auto file = MakeChartText(session, {}, "");
  if (!file || file->Text.find("nan") != std::string::npos || file->Text.find("inf") != std::string::npos)
    std::abort();
  ChartReport report;
  WriteReport(session, report);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const int index = data[0] % TabletTypeCount, method = data[1] % 3;
  const TabletType& tablet = TabletTypes()[static_cast<std::size_t>(index)];
  const std::span<const std::uint8_t> bytes(data + 2, size - 2);

  SilentView view;
  TextJournal journal;
  journal.Text = JournalHead(index);
  Session session = NewSession(tablet, method);
  ActionMachine machine(session, tablet, view, &journal);
  machine.Start();
  for (std::size_t at = 0; at < bytes.size(); at += 64) {
    machine.Receive(bytes.subspan(at, std::min<std::size_t>(64, bytes.size() - at)));
    if (machine.CommentIsOpen()) {
      machine.AddComment(machine.OpenCommentRequest()->Code, "text");
      machine.CommentClosed();
    }
    const int point = bytes[at] % 16;
    switch (bytes[at] / 16) {
      case 0:
        machine.Undo();
        break;
      case 1:
        machine.Redo();
        break;
      case 2:
        (void)machine.DeletePoint(point);
        break;
      case 3:
        (void)machine.MovePoint(point, machine.State().CursorX, machine.State().CursorY);
        break;
      case 4:
        (void)machine.InsertPoint(point, machine.State().CursorX, machine.State().CursorY);
        break;
      default:
        break;
    }
  }
  CheckTexts(session);

  Session again = NewSession(tablet, method);
  ActionMachine replayed(again, tablet, view);
  replayed.Start();
  if (!Replay(ReadJournal(journal.Text), replayed) || again.Line.LastPoint() != session.Line.LastPoint())
    std::abort();

  Session third = NewSession(tablet, method);
  ActionMachine asJournal(third, tablet, view);
  asJournal.Start();
  const std::string text =
      JournalHead(index) + std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  (void)Replay(ReadJournal(text), asJournal);
  CheckTexts(third);
  return 0;
}
