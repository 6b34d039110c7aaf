#include "core/numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "core/text.h"

namespace hyetex {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// "-0.000" is a zero to everybody but a computer.
std::string WithoutNegativeZero(std::string text) {
  if (text == "-0") text = "0";
  return text;
}

// Takes trailing zeros off the decimals, and the point too when nothing is left behind it.
std::string WithoutTrailingZeros(std::string text) {
  if (text.find('.') == std::string::npos) return text;
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

// 7.25e+02 with its digits laid out in place: 725.
template <typename Float>
std::string PlainText(Float value, int significantDigits) {
  if (!std::isfinite(value)) return "0";
  std::array<char, 64> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::scientific, significantDigits - 1)
                       .ptr;
  const std::string_view text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  const std::size_t e = text.find('e');
  int exponent = 0;
  const char* digitsOfExponent = text.data() + e + (text[e + 1] == '+' ? 2 : 1);
  std::from_chars(digitsOfExponent, end, exponent);

  std::string digits;
  for (char c : text.substr(0, e))
    if (IsDigit(c)) digits += c;
  std::string plain = text.front() == '-' ? "-" : "";
  if (exponent < 0) {
    plain += "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
  } else {
    const auto whole = static_cast<std::size_t>(exponent) + 1;
    if (digits.size() < whole) digits.append(whole - digits.size(), '0');
    plain += digits.substr(0, whole) + "." + digits.substr(whole);
  }
  return WithoutNegativeZero(WithoutTrailingZeros(std::move(plain)));
}

template <typename Float>
std::string RoundTripText(Float value) {
  if (!std::isfinite(value)) return "0";
  std::array<char, 64> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  return std::string(buffer.data(), end);
}

// The decimal text of `value` to a fixed number of decimals; correctly rounded, ties to even.
std::string_view FixedText(double value, int decimals, std::array<char, 512>& buffer) {
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, decimals)
          .ptr;
  return {buffer.data(), static_cast<std::size_t>(end - buffer.data())};
}

// The number at the front of `at` if it has the plain form of chart files: a sign, at most 15 digits, a
// point, no exponent. Both the digits and the power of ten are exact in 64 bits then, so one division rounds
// correctly.
bool ReadPlain(const char* at, const char* end, double& value) {
  static constexpr std::array<double, 16> powers{1,   1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  const bool negative = at != end && *at == '-';
  if (negative) ++at;
  std::uint64_t digits = 0;  // wraps around on digits that are too many, which are refused below
  const char* const first = at;
  while (at != end && IsDigit(*at)) digits = digits * 10 + static_cast<std::uint64_t>(*at++ - '0');
  auto count = at - first, decimals = count - count;
  if (at != end && *at == '.') {
    const char* const point = ++at;
    while (at != end && IsDigit(*at)) digits = digits * 10 + static_cast<std::uint64_t>(*at++ - '0');
    decimals = at - point;
    count += decimals;
  }
  if (count == 0 || count > 15 || (at != end && (*at == 'e' || *at == 'E'))) return false;
  value = static_cast<double>(digits) / powers[static_cast<std::size_t>(decimals)];
  if (negative) value = -value;
  return true;
}

}  // namespace

double LeadingNumber(std::string_view text) {
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at != end && (*at == ' ' || *at == '\t')) ++at;
  if (at != end && *at == '+') {
    ++at;
    if (at != end && *at == '-') return 0;
  }
  double value = 0;
  if (ReadPlain(at, end, value)) return value;
  const char* digits = at != end && *at == '-' ? at + 1 : at;
  if (digits != end && *digits == '.') ++digits;
  if (digits == end || !IsDigit(*digits)) return 0;  // keeps "inf" and "nan" out
  const auto result = std::from_chars(at, end, value, std::chars_format::general);
  return result.ec == std::errc{} && std::isfinite(value) ? value : 0;
}

float LeadingFloat(std::string_view text) {
  const double value = LeadingNumber(text);
  return std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max()) ? static_cast<float>(value)
                                                                                   : 0;
}

std::int16_t LeadingInt16(std::string_view text) {
  const double value = std::nearbyint(LeadingNumber(text));
  return value >= -32768 && value <= 32767 ? static_cast<std::int16_t>(value) : std::int16_t{0};
}

std::optional<double> TypedNumber(std::string_view text) {
  std::string digits(Trim(text));
  std::ranges::replace(digits, ',', '.');  // two of either are refused below
  const char* at = digits.data();
  const char* const end = at + digits.size();
  if (at != end && (*at == '+' || *at == '-')) ++at;
  const char* const first = at != end && *at == '.' ? at + 1 : at;
  if (first == end || !IsDigit(*first)) return std::nullopt;  // keeps "inf", "nan" and a second sign out
  double value = 0;
  const auto result = std::from_chars(at, end, value, std::chars_format::general);
  if (result.ec != std::errc{} || result.ptr != end ||
      value > static_cast<double>(std::numeric_limits<float>::max()))
    return std::nullopt;
  return digits.front() == '-' ? -value : value;
}

double TypedOrLeading(std::string_view text) {
  const auto typed = TypedNumber(text);
  return typed ? *typed : LeadingNumber(text);
}

double Round(double value, int decimals) {
  if (!std::isfinite(value)) return 0;
  std::array<char, 512> buffer;
  const std::string_view text = FixedText(value, decimals, buffer);
  double rounded = 0;
  std::from_chars(text.data(), text.data() + text.size(), rounded);
  return rounded == 0 ? 0 : rounded;
}

std::int16_t RoundToInt16(double value) {
  if (std::isnan(value)) return 0;
  return static_cast<std::int16_t>(std::nearbyint(std::clamp(value, -32768.0, 32767.0)));
}

std::string ShortText(float value) { return PlainText(value, 7); }
std::string ShortText(double value) { return PlainText(value, 15); }
std::string ShortText(int value) { return std::to_string(value); }

std::string RoundedText(double value, int decimals) {
  if (!std::isfinite(value)) return "0";
  std::array<char, 512> buffer;
  return WithoutNegativeZero(WithoutTrailingZeros(std::string(FixedText(value, decimals, buffer))));
}

std::string ExactText(double value) { return RoundTripText(value); }
std::string ExactText(float value) { return RoundTripText(value); }

std::string PadNumber(double value, int width) {
  std::string text = ShortText(value);
  const auto wanted = static_cast<std::size_t>(std::max(width, 0));
  const std::size_t integerDigits = std::min(text.find('.'), text.size());
  if (integerDigits >= wanted) return text.substr(0, wanted);
  return std::string(wanted - integerDigits, '0') + text;
}

std::string StepNumber(std::string_view text, double step, std::optional<double> lowest) {
  const double value = TypedOrLeading(text);
  double next = value + step;
  if (lowest) next = std::max(next, step > 0 ? *lowest : std::min(value, *lowest));
  return ShortText(static_cast<float>(next));
}

float TickStep(float x) {
  struct Rung {
    float Limit, Step;
  };
  static constexpr std::array<Rung, 14> ladder{{{0.01F, 0.005F},
                                                {0.075F, 0.05F},
                                                {0.125F, 0.1F},
                                                {0.4F, 0.25F},
                                                {0.8F, 0.5F},
                                                {2, 1},
                                                {7, 5},
                                                {15, 10},
                                                {35, 20},
                                                {80, 50},
                                                {150, 100},
                                                {250, 200},
                                                {350, 300},
                                                {450, 400}}};
  for (const Rung& rung : ladder)
    if (x <= rung.Limit) return rung.Step;
  return 500;
}

}  // namespace hyetex
