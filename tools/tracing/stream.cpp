#include "tracing/stream.h"

#include <cmath>
#include <utility>

#include "digitizing/desk_layout.h"

namespace hyetex {
namespace {

// At 9600 baud a tablet sends 60 to 190 reports a second.
constexpr int GlideReports = 6, PressedReports = 3, ReleasedReports = 2, CommentReports = 150;

class Cursor {
 public:
  explicit Cursor(const TabletType& tablet)
      : tablet_(tablet),
        at_{static_cast<int>(tablet.Extents.TabletWidthUnits / 2),
            static_cast<int>(tablet.Extents.TabletHeightUnits / 2), -1} {}

  void PressAt(double x, double y) {
    const TabletReport from = at_;
    for (int i = 1; i <= GlideReports; ++i) {
      const double part = static_cast<double>(i) / GlideReports;
      at_.X = static_cast<int>(std::lround(std::lerp(from.X, x, part)));
      at_.Y = static_cast<int>(std::lround(std::lerp(from.Y, y, part)));
      Send(1, -1);
    }
    Send(PressedReports, tablet_.DrawingButton);
    Send(ReleasedReports, -1);
  }
  void Rest() { Send(CommentReports, -1); }

  std::string Bytes;

 private:
  void Send(int reports, int button) {
    at_.Button = button;
    for (int i = 0; i < reports; ++i) Bytes += EncodeReport(tablet_, at_);
  }

  const TabletType& tablet_;
  TabletReport at_;
};

}  // namespace

std::string EncodeSteps(const TabletType& tablet, std::span<const JournalEvent> steps) {
  const DeskLayout layout = DefaultDeskLayout(tablet.Extents);
  Cursor cursor(tablet);
  for (const JournalEvent& step : steps) {
    if (step.What == JournalEvent::Kind::Press)
      cursor.PressAt(step.X, step.Y);
    else if (step.What == JournalEvent::Kind::Comment)
      cursor.Rest();
    else if (step.What == JournalEvent::Kind::Tool) {
      const auto [x, y] = TabletPositionOfTool(layout, tablet.Extents, step.Tool);
      cursor.PressAt(x, y);
    }
  }
  return std::move(cursor.Bytes);
}

std::string JournalText(int tablet, std::span<const JournalEvent> steps) {
  std::string text = JournalHead(tablet);
  for (const JournalEvent& step : steps) text += JournalLine(step) + "\n";
  return text;
}

}  // namespace hyetex
