// Finds out on which serial port the tablet is: the searched ports are opened in turn, each for a tick of the
// caller's timer, until one of them brings a report of the tablet's type. A tablet that falls silent for two
// ticks counts as lost, and the search goes on behind its port.
#pragma once

#include <cstdint>
#include <span>

#include "digitizing/report_decoder.h"
#include "platform/serial_line.h"

namespace hyetex {

inline constexpr int NoPort = -1;

/// The one port that is open at a time.
class TrialPort {
 public:
  virtual ~TrialPort() = default;
  /// Opens a port and sends the tablet's initialisation. Whether that worked is of no concern: a port that
  /// cannot be opened brings no report, and has its turn again.
  virtual void Open(int port, const TabletType& type) = 0;
  virtual void Close() = 0;
};

class TabletSearch {
 public:
  /// `type` is an index of TabletTypes(). Nothing is opened before the first tick.
  TabletSearch(TrialPort& port, int type);

  int Type() const { return type_; }
  int TestPort() const { return testPort_; }  ///< the one that was opened last; 0 before
  int DetectedPort() const { return detectedPort_; }

  /// Starts again with another type. Returns whether a port was open for the old one.
  bool SetType(int type);
  /// The timer has ticked.
  void Tick();
  /// What the open port has brought.
  void Receive(std::span<const std::uint8_t> bytes);
  /// Closes the port; the detected one stays known.
  void Stop();

 private:
  void Lose();
  void ClosePort();

  static constexpr int SilentTicks = 2;

  TrialPort& port_;
  int type_;
  ReportDecoder decoder_;
  int testPort_ = 0, detectedPort_ = NoPort;
  int ticks_ = 0;  // since the last report
  bool open_ = false;
};

}  // namespace hyetex
