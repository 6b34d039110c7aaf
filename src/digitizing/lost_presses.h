// Counts the presses in what the tablet sent while nobody could answer it: a box or another window was up, or
// the machine stood still. The operator traces on without looking at the screen, and must be told.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "digitizing/report_decoder.h"

namespace hyetex {

class LostPresses {
 public:
  explicit LostPresses(const TabletType& tablet) : decoder_(tablet) {}

  /// What comes next is lost. `pressed`: a button is down, whose press has been acted on.
  void Begin(bool pressed) {
    decoder_.Clear();
    pressed_ = pressed;
  }
  void Receive(std::span<const std::uint8_t> bytes);
  /// How many presses were lost since the last call.
  int Take() { return std::exchange(count_, 0); }

 private:
  ReportDecoder decoder_;
  bool pressed_ = false;
  int count_ = 0;
};

/// What the operator is told of a number of lost presses, which is not 0.
std::string LostPressesText(int count);

}  // namespace hyetex
