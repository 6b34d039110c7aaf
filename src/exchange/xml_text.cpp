#include "exchange/xml_text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace hyetex {
namespace {

constexpr std::string_view Digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

enum class Byte : std::uint8_t { Plain, Return, Mark, Bracket, Control, High };

constexpr std::array<Byte, 256> Bytes = [] {
  std::array<Byte, 256> bytes{};
  for (std::size_t i = 0; i < 32; ++i) bytes[i] = Byte::Control;
  bytes['\t'] = bytes['\n'] = Byte::Plain;
  bytes['\r'] = Byte::Return;
  bytes['<'] = bytes['&'] = Byte::Mark;
  bytes['>'] = Byte::Bracket;
  for (std::size_t i = 128; i < 256; ++i) bytes[i] = Byte::High;
  return bytes;
}();

Byte KindOf(char c) { return Bytes[static_cast<unsigned char>(c)]; }

bool EndsSection(std::string_view text, std::size_t bracket) {
  return bracket >= 2 && text[bracket - 1] == ']' && text[bracket - 2] == ']';
}

// The length of the character of UTF-8 that XML may hold at `at`; 0 where there is none.
std::size_t HighCharacter(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) -> std::uint32_t { return static_cast<unsigned char>(text[at + i]); };
  const std::uint32_t lead = byte(0);
  const std::size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
  if (length == 0 || text.size() - at < length) return 0;
  std::uint32_t code = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) return 0;
    code = code << 6U | (byte(i) & 0x3FU);
  }
  const bool tooLong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  return tooLong || surrogate || code > 0x10FFFF || code == 0xFFFE || code == 0xFFFF ? 0 : length;
}

constexpr std::array<std::int8_t, 256> DigitValues = [] {
  std::array<std::int8_t, 256> values{};
  values.fill(-1);
  for (std::size_t i = 0; i < Digits.size(); ++i)
    values[static_cast<unsigned char>(Digits[i])] = static_cast<std::int8_t>(i);
  return values;
}();

}  // namespace

XmlText KindOfXmlText(std::string_view text) {
  XmlText kind = XmlText::Plain;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t length = 1;
    switch (KindOf(text[at])) {
      case Byte::Plain:
        break;
      case Byte::Return:
        kind = std::max(kind, XmlText::Changed);
        break;
      case Byte::Mark:
        kind = XmlText::Markup;
        break;
      case Byte::Bracket:
        if (EndsSection(text, at)) kind = XmlText::Markup;
        break;
      case Byte::Control:
        return XmlText::Unfit;
      case Byte::High:
        length = HighCharacter(text, at);
        if (length == 0) return XmlText::Unfit;
        break;
    }
    at += length;
  }
  return kind;
}

void AppendEscaped(std::string& to, std::string_view text) {
  std::size_t begin = 0;
  const auto put = [&](std::size_t at, std::string_view instead) {
    to.append(text, begin, at - begin).append(instead);
    begin = at + 1;
  };
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    if (c == '<')
      put(at, "&lt;");
    else if (c == '&')
      put(at, "&amp;");
    else if (c == '\r')
      put(at, "&#13;");
    else if (c == '>' && EndsSection(text, at))
      put(at, "&gt;");
  }
  to.append(text, begin);
}

void AppendBase64(std::string& to, std::string_view bytes) {
  to.reserve(to.size() + (bytes.size() + 2) / 3 * 4);
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::size_t count = std::min<std::size_t>(bytes.size() - at, 3);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 3; ++i)
      bits = bits << 8U | (i < count ? static_cast<unsigned char>(bytes[at + i]) : 0U);
    for (std::size_t i = 0; i < 4; ++i) to += i <= count ? Digits[bits >> (18 - 6 * i) & 63U] : '=';
  }
}

std::optional<std::string> FromBase64(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3 + 3);
  std::uint32_t bits = 0;
  std::size_t digits = 0, fill = 0;
  for (const char c : text) {
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') continue;
    if (c == '=') {
      ++fill;
      continue;
    }
    const std::int8_t value = DigitValues[static_cast<unsigned char>(c)];
    if (value < 0 || fill > 0) return std::nullopt;
    bits = bits << 6U | static_cast<std::uint32_t>(value);
    if (++digits % 4 != 0) continue;
    for (const unsigned shift : {16U, 8U, 0U}) bytes += static_cast<char>(bits >> shift & 0xFFU);
    bits = 0;
  }
  const std::size_t rest = digits % 4;
  if (rest == 1 || fill != (rest == 0 ? 0 : 4 - rest)) return std::nullopt;
  if (rest >= 2) bytes += static_cast<char>(bits >> (rest == 2 ? 4U : 10U) & 0xFFU);
  if (rest == 3) bytes += static_cast<char>(bits >> 2U & 0xFFU);
  return bytes;
}

bool IsXmlName(std::string_view name) {
  const auto isLetter = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<signed char>(c) < 0;
  };
  const auto isInner = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.'; };
  return !name.empty() && isLetter(name[0]) && std::ranges::all_of(name, isInner) &&
         KindOfXmlText(name) == XmlText::Plain;
}

}  // namespace hyetex
