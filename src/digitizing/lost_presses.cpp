#include "digitizing/lost_presses.h"

#include <algorithm>

#include "core/numbers.h"

namespace hyetex {

void LostPresses::Receive(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    // A receive buffer takes no more at a time.
    const auto piece = bytes.first(std::min(bytes.size(), RxBufferSize / 2));
    bytes = bytes.subspan(piece.size());
    decoder_.Receive(piece, [this](const TabletReport& report) {
      const bool pressed = report.Button >= 0;
      if (pressed && !pressed_) ++count_;
      pressed_ = pressed;
    });
  }
}

std::string LostPressesText(int count) {
  return ShortText(count) +
         (count == 1 ? " press of the tablet was lost" : " presses of the tablet were lost") +
         " while the program could not take them. Look where the line ends, and go on from there.";
}

}  // namespace hyetex
