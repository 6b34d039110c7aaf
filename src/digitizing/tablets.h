// The serial tablets that Hyetex knows, one row each: how their line is set, what wakes them, what their
// reports look like, and how large they are. From the tablets' own manuals and from listening to them.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "core/geometry.h"
#include "platform/serial_line.h"

namespace hyetex {

/// How a report stands on the wire.
enum class WireFormat {
  ParityAscii,   ///< A: 7-bit characters with even parity in bit 7, "XXXXX,YYYYY,B" CR LF
  Ascii,         ///< B: plain ASCII, "XXXX,YYYY,B" CR LF
  AsciiMapped,   ///< C: the layout of B, with buttons numbered in a way of its own
  BinaryPacked,  ///< D: six bytes: X high, X low, one not used, Y high, Y low, status
};

/// Of a report, in bytes.
struct ReportLengths {
  std::size_t Packet;  ///< what it takes out of the buffer
  std::size_t Frame;   ///< what must have come before it can be told and read
};
constexpr ReportLengths LengthsOf(WireFormat format) {
  // Format D takes out five, so that its status byte is passed over as the next report is looked for. A
  // report is told by its sixth byte and so waits for it.
  constexpr std::array<ReportLengths, 4> lengths{{{15, 15}, {13, 13}, {13, 13}, {5, 6}}};
  return lengths[static_cast<std::size_t>(format)];
}

struct TabletType {
  std::string_view Name;
  WireFormat Format;
  LineSettings Line;
  std::string_view Initialisation;  ///< sent once after opening; may be empty
  std::int16_t DrawingButton;       ///< the button under the operator's finger
  std::int16_t ToolBoxButton;       ///< the button that opens and closes the tool board
  TabletExtents Extents;
};

inline constexpr int TabletTypeCount = 5;
/// All types; the index is the digitizer type of settings and journals, 0 to 4.
std::span<const TabletType, TabletTypeCount> TabletTypes();

/// One report: a position in report units, and the button that is down (-1 for none).
struct TabletReport {
  int X = 0;
  int Y = 0;
  int Button = -1;

  bool operator==(const TabletReport&) const = default;
};

/// The bytes that a tablet sends for a report, the inverse of decoding. The position must be within 0 to 9999
/// (format D: 32767, A: 99999); a button that the format cannot carry is sent as none.
std::string EncodeReport(const TabletType& type, const TabletReport& report);

}  // namespace hyetex
