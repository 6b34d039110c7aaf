#include "digitizing/tablets.h"

#include <bit>
#include <cstdio>

#include "digitizing/report_decoder.h"

namespace hyetex {
namespace {

using enum LineParity;

constexpr std::array<TabletType, TabletTypeCount> Types{{
    {"HIPAD-Plus", WireFormat::ParityAscii, {9600, None, 8, 1}, "", 0, 15, {18285, 12190, 915, 610}},
    {"DrawingBoard III+", WireFormat::Ascii, {9600, Odd, 8, 1}, "\x69\x40\x46", 0, 2, {9145, 6100, 458, 350}},
    {"GT-1812", WireFormat::BinaryPacked, {9600, None, 8, 1}, "", 4, 12, {16511, 12000, 414, 305}},
    {"DrawingBoard III",
     WireFormat::AsciiMapped,
     {9600, Even, 7, 1},
     "\x37\x32\x48\x1B\x14hW025",
     1,
     2,
     {3100, 3100, 310, 307}},
    {"SummaSketch (31)", WireFormat::Ascii, {9600, Odd, 8, 1}, "Fc@iza", 0, 2, {9145, 6100, 458, 307}},
}};

constexpr std::uint8_t WithEvenParity(int character) {
  const auto byte = static_cast<std::uint8_t>(character);
  return static_cast<std::uint8_t>(byte | (std::popcount(byte) % 2) << 7);
}

constexpr std::array<std::uint8_t, 256> MakeParityDigits() {
  std::array<std::uint8_t, 256> digits{};
  digits.fill(1);
  for (int value = 0; value <= 16; ++value)
    digits[WithEvenParity('0' + value)] = static_cast<std::uint8_t>(value);
  return digits;
}

std::string Printed(const char* form, int x, int y) {
  std::array<char, 32> text;
  const int length = std::snprintf(text.data(), text.size(), form, x, y);
  return std::string(text.data(), static_cast<std::size_t>(length));
}

std::string EncodeParityAscii(const TabletReport& report) {
  std::string bytes = Printed("%05d,%05d,", report.X, report.Y);
  bytes += static_cast<char>('0' + (report.Button >= 0 && report.Button <= 15 ? report.Button + 1 : 0));
  bytes += "\r\n";
  for (char& c : bytes) c = static_cast<char>(WithEvenParity(c));
  return bytes;
}

std::string EncodeAscii(const TabletReport& report, int buttonDigit) {
  std::string bytes = Printed("%04d,%04d,", report.X, report.Y);
  bytes += static_cast<char>('0' + buttonDigit);
  return bytes + "\r\n";
}

std::string EncodeBinaryPacked(const TabletReport& report) {
  const bool carried = report.Button == 4 || report.Button == 8 || report.Button == 16 || report.Button == 32;
  std::string bytes;
  for (int byte : {report.X / 128, report.X % 128, 0, report.Y / 128, report.Y % 128,
                   0x80 + (carried ? report.Button : 0)})
    bytes += static_cast<char>(byte);
  return bytes;
}

}  // namespace

const std::array<std::uint8_t, 256> wire::ParityDigits = MakeParityDigits();

std::span<const TabletType, TabletTypeCount> TabletTypes() { return Types; }

std::string EncodeReport(const TabletType& type, const TabletReport& report) {
  const int button = report.Button;
  switch (type.Format) {
    case WireFormat::ParityAscii:
      return EncodeParityAscii(report);
    case WireFormat::Ascii:
      return EncodeAscii(report, button >= 0 && button <= 8 ? button + 1 : 0);
    case WireFormat::AsciiMapped:
      return EncodeAscii(report, button == 1                  ? 3
                                 : button == 2                ? 9
                                 : button >= 3 && button <= 7 ? button + 1
                                                              : 0);
    case WireFormat::BinaryPacked:
      return EncodeBinaryPacked(report);
  }
  return {};
}

}  // namespace hyetex
