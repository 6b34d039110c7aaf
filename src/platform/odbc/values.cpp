#include "platform/odbc/values.h"

#include <algorithm>

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {
namespace {

constexpr std::size_t YearMonthDay = 10;  // characters

template <typename... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

}  // namespace

std::string TextOf(const DbValue& value) {
  return std::visit(Overloaded{[](DbNull) { return std::string(); },
                               [](std::int64_t number) { return std::to_string(number); },
                               [](double number) { return ShortText(number); },
                               [](const std::string& text) { return text; },
                               [](DbDate date) { return GeneralDateText(date.Value); },
                               [](const DbBinary& binary) { return binary.Bytes; }},
                    value);
}

double NumberOf(const DbValue& value) {
  if (const auto* number = std::get_if<double>(&value)) return *number;
  if (const auto* number = std::get_if<std::int64_t>(&value)) return static_cast<double>(*number);
  if (const auto* date = std::get_if<DbDate>(&value)) return date->Value;
  return LeadingNumber(TextOf(value));
}

Date DateOf(const DbValue& value) {
  const auto* stored = std::get_if<std::string>(&value);
  if (stored == nullptr) return NumberOf(value);
  const std::string_view text = Trim(*stored);
  const std::size_t end = std::min(text.find_first_of(".Z+", YearMonthDay), text.size());
  const auto parsed = ParseDateText(text.substr(0, end));
  if (!parsed) return 0;
  const std::string_view fraction = text.substr(end);
  const int more =
      fraction.starts_with('.') ? SecondsOfFraction(LeadingNumber("0" + std::string(fraction))) : 0;
  return parsed->Value + more / static_cast<double>(SecondsPerDay);
}

int SecondsOfFraction(double fraction) { return fraction >= 0.95 ? 1 : 0; }

bool IsLocked(const DbError& error) {
  const auto tells = [&](const char* words) { return error.Description.find(words) != std::string::npos; };
  return error.Number == db_error::Locked || error.State == "55P03" || tells("database is locked") ||
         tells("database table is locked");
}

std::string NumberAndDescription(const DbError& error) {
  return std::to_string(error.Number) + " " + error.Description;
}

}  // namespace hyetex
