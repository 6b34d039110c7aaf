#include "digitizing/tablet_search.h"

#include <utility>

namespace hyetex {
namespace {

const TabletType& TypeOf(int type) { return TabletTypes()[static_cast<std::size_t>(type)]; }

}  // namespace

TabletSearch::TabletSearch(TrialPort& port, int type) : port_(port), type_(type), decoder_(TypeOf(type)) {}

bool TabletSearch::SetType(int type) {
  const bool wasOpen = open_;
  if (wasOpen) Lose();
  type_ = type;
  decoder_ = ReportDecoder(TypeOf(type));
  return wasOpen;
}

void TabletSearch::Tick() {
  if (detectedPort_ != NoPort) {
    if (++ticks_ >= SilentTicks) Lose();
    return;
  }
  ClosePort();
  testPort_ = testPort_ >= LastSearchedPort ? FirstSearchedPort : testPort_ + 1;
  ticks_ = 0;
  decoder_.Clear();
  open_ = true;
  port_.Open(testPort_, TypeOf(type_));
}

void TabletSearch::Receive(std::span<const std::uint8_t> bytes) {
  if (!open_) return;
  bool found = false;
  decoder_.Receive(bytes, [&](const TabletReport&) { found = true; });
  if (!found) return;
  ticks_ = 0;
  detectedPort_ = testPort_;
}

void TabletSearch::Stop() { ClosePort(); }

// The next tick opens the port behind this one.
void TabletSearch::Lose() {
  ClosePort();
  if (detectedPort_ == NoPort) testPort_ = 0;
  detectedPort_ = NoPort;
}

void TabletSearch::ClosePort() {
  if (std::exchange(open_, false)) port_.Close();
}

}  // namespace hyetex
