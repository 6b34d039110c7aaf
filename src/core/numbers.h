// Numbers as text, the way chart files, settings and reports hold them: "." as decimal point whatever
// the machine's language, read leniently, written in the shortest form.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hyetex {

/// The longest leading number of `text` (blanks before it are passed over), or 0 when there is none.
/// Takes an optional sign, digits, one ".", and an exponent. Text that says infinity or no number, and
/// numbers too large for 64 bits, read as 0, so that neither ever enters a record.
double LeadingNumber(std::string_view text);
/// The same as a 32-bit float; a number that no 32-bit float can hold reads as 0.
float LeadingFloat(std::string_view text);
/// The same as a signed 16-bit number, rounded to nearest; a number out of its range reads as 0.
std::int16_t LeadingInt16(std::string_view text);

/// A number as an operator types it: the whole text, blanks around it passed over, a decimal comma taken as
/// a point. Nothing for any other text, however it begins, and for what no 32-bit float can hold.
std::optional<double> TypedNumber(std::string_view text);
/// The same; of a text that is no number the leading one, as files are read.
double TypedOrLeading(std::string_view text);

/// `value` rounded to `decimals` decimals, ties going to the even digit. The decision is made on the
/// exact binary value, so 2.675 (stored a little below) gives 2.67. What is not finite comes back as 0.
double Round(double value, int decimals);
/// To the nearest whole number, ties to even, held within 16 bits.
std::int16_t RoundToInt16(double value);

/// The shortest general form: no exponent, no trailing zeros, no plus sign, a zero before the point, at
/// most 7 significant digits for a 32-bit float and 15 for a 64-bit one. Never "-0", "nan" or "inf".
std::string ShortText(float value);
std::string ShortText(double value);
std::string ShortText(int value);
/// Rounded to `decimals`, then in the shortest form.
std::string RoundedText(double value, int decimals);
/// The shortest text that reads back as exactly the same value.
std::string ExactText(double value);
std::string ExactText(float value);

/// The number's text with "0" put in front until its integer part has `width` digits; a text whose
/// integer part is already that wide is cut to `width` characters.
std::string PadNumber(double value, int width);

/// A typed number after a step of its up-down control, of any text its leading one. It does not fall below
/// `lowest`; what is lower already (an unknown depth is -1) comes up to it with the first step up.
std::string StepNumber(std::string_view text, double step, std::optional<double> lowest = 0);

/// The step of a graph axis for a raw step `x`: 0.005 to 500, from a fixed ladder.
float TickStep(float x);

}  // namespace hyetex
