#include "platform/odbc/values.h"

#include "core/dates.h"
#include "core/numbers.h"

namespace hyetex {
namespace {

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
  const auto* text = std::get_if<std::string>(&value);
  if (text == nullptr) return NumberOf(value);
  const auto parsed = ParseDateText(*text);
  return parsed ? parsed->Value : 0;
}

bool IsLocked(const DbError& error) {
  const auto tells = [&](const char* words) { return error.Description.find(words) != std::string::npos; };
  return error.Number == db_error::Locked || error.State == "55P03" || tells("database is locked") ||
         tells("database table is locked");
}

std::string NumberAndDescription(const DbError& error) {
  return std::to_string(error.Number) + " " + error.Description;
}

}  // namespace hyetex
