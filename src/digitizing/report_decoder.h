// Takes reports out of the byte stream of a tablet, in chunks of any size. Bytes that cannot start a report
// are passed over one at a time, without a word: a serial line starts in mid-report and picks up noise.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <span>

#include "digitizing/tablets.h"

namespace hyetex {

/// A receive buffer holds fewer bytes than this; a reception that would fill it is dropped whole.
inline constexpr std::size_t RxBufferSize = 2000;

namespace wire {

/// Values of the 256 bytes as digits of format A: 0 to 16, and 1 for a byte that is no digit there.
extern const std::array<std::uint8_t, 256> ParityDigits;

inline int Digit(std::uint8_t byte) { return byte >= '0' && byte <= '9' ? byte - '0' : 0; }

/// One wire format: whether a report stands at `p`, and what it says. `p` has at least its frame's bytes.
template <WireFormat Format>
bool IsReport(const std::uint8_t* p);
template <WireFormat Format>
TabletReport Decode(const std::uint8_t* p);

template <>
inline bool IsReport<WireFormat::ParityAscii>(const std::uint8_t* p) {
  return p[11] == 0xAC && (p[5] == 0xAC || p[14] == 0x0A);
}
template <>
inline TabletReport Decode<WireFormat::ParityAscii>(const std::uint8_t* p) {
  const auto five = [](const std::uint8_t* d) {
    const auto& digit = ParityDigits;
    return digit[d[0]] * 10000 + digit[d[1]] * 1000 + digit[d[2]] * 100 + digit[d[3]] * 10 + digit[d[4]];
  };
  // A byte that is no button reads as 0, so it is a button, as the digit 1 is.
  return {five(p), five(p + 6), ParityDigits[p[12]] - 1};
}

template <>
inline bool IsReport<WireFormat::Ascii>(const std::uint8_t* p) {
  return p[11] == '\r' && (p[4] == ',' || p[12] == '\n');
}
template <>
inline TabletReport Decode<WireFormat::Ascii>(const std::uint8_t* p) {
  const auto four = [](const std::uint8_t* d) {
    return Digit(d[0]) * 1000 + Digit(d[1]) * 100 + Digit(d[2]) * 10 + Digit(d[3]);
  };
  return {four(p), four(p + 5), Digit(p[10]) - 1};
}

template <>
inline bool IsReport<WireFormat::AsciiMapped>(const std::uint8_t* p) {
  return p[4] == ',' && p[9] == ',';
}
template <>
inline TabletReport Decode<WireFormat::AsciiMapped>(const std::uint8_t* p) {
  // Button by digit: "0" to "2" are no button here, "3" is the drawing button, "9" the one that opens the
  // board.
  static constexpr std::array<int, 10> buttons{-1, -1, -1, 1, 3, 4, 5, 6, 7, 2};
  TabletReport report = Decode<WireFormat::Ascii>(p);
  const int digit = report.Button + 1;
  report.Button = buttons[static_cast<std::size_t>(digit)];
  return report;
}

template <>
inline bool IsReport<WireFormat::BinaryPacked>(const std::uint8_t* p) {
  return p[5] == 0x80 || p[5] == 0x84 || p[5] == 0x88 || p[5] == 0x90 || p[5] == 0xA0;
}
template <>
inline TabletReport Decode<WireFormat::BinaryPacked>(const std::uint8_t* p) {
  return {p[0] * 128 + p[1], p[3] * 128 + p[4], p[5] == 0x80 ? -1 : p[5] - 0x80};
}

}  // namespace wire

class ReportDecoder {
 public:
  explicit ReportDecoder(const TabletType& type) : type_(&type) {}

  /// Forgets what has come, as while the comment window is open.
  void Clear() { count_ = 0; }
  /// Bytes that wait for the rest of their report.
  std::size_t Waiting() const { return count_; }

  /// Takes a chunk and calls `take(report)` for every report that is complete now. Returns whether the chunk
  /// ended on a report; if not, the caller acts once more on the last position and button.
  template <typename Take>
  bool Receive(std::span<const std::uint8_t> chunk, Take&& take) {
    switch (type_->Format) {
      case WireFormat::ParityAscii:
        return Run<WireFormat::ParityAscii>(chunk, take);
      case WireFormat::Ascii:
        return Run<WireFormat::Ascii>(chunk, take);
      case WireFormat::AsciiMapped:
        return Run<WireFormat::AsciiMapped>(chunk, take);
      case WireFormat::BinaryPacked:
        return Run<WireFormat::BinaryPacked>(chunk, take);
    }
    return false;
  }

 private:
  template <WireFormat Format, typename Take>
  bool Run(std::span<const std::uint8_t> chunk, Take& take);

  static constexpr std::size_t MostWaiting = 16;  // more than any frame

  const TabletType* type_;
  std::size_t count_ = 0;
  std::array<std::uint8_t, 2 * MostWaiting> waiting_{};
};

template <WireFormat Format, typename Take>
bool ReportDecoder::Run(std::span<const std::uint8_t> chunk, Take& take) {
  constexpr std::size_t Packet = LengthsOf(Format).Packet, Frame = LengthsOf(Format).Frame;
  static_assert(Frame <= MostWaiting && Packet <= Frame);
  if (chunk.empty() || chunk.size() + count_ >= RxBufferSize) return false;

  bool endedOnReport = false;
  const std::uint8_t* at = chunk.data();
  const std::uint8_t* const end = at + chunk.size();
  const auto scan = [&](const std::uint8_t* p, const std::uint8_t* starts, const std::uint8_t* stop) {
    while (p < starts && static_cast<std::size_t>(stop - p) >= Frame) {
      endedOnReport = wire::IsReport<Format>(p);
      if (endedOnReport) {
        take(wire::Decode<Format>(p));
        p += Packet;
      } else {
        ++p;
      }
    }
    return p;
  };

  if (const std::size_t had = count_; had > 0) {
    if (had + chunk.size() < Frame) {
      std::memcpy(waiting_.data() + had, at, chunk.size());
      count_ = had + chunk.size();
      return false;
    }
    // Reports that start in what was waiting and end in the chunk: read where the two are joined.
    const std::size_t joined = std::min(chunk.size(), waiting_.size() - had);
    std::memcpy(waiting_.data() + had, at, joined);
    const std::uint8_t* const first = waiting_.data();
    const std::uint8_t* const p = scan(first, first + had, first + had + joined);
    const auto passed = static_cast<std::size_t>(p - first);
    if (passed < had) {  // the chunk was too short to complete the frame
      count_ = had + joined - passed;
      std::memmove(waiting_.data(), p, count_);
      return endedOnReport;
    }
    at += passed - had;
  }
  at = scan(at, end, end);
  count_ = static_cast<std::size_t>(end - at);
  std::memcpy(waiting_.data(), at, count_);
  return endedOnReport;
}

}  // namespace hyetex
