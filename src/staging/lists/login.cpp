#include "staging/lists/login.h"

#include <algorithm>

#include "core/text.h"

namespace hyetex {

tl::expected<std::int16_t, LoginFault> CheckLogin(const std::vector<UserRecord>& users, std::string_view name,
                                                  std::string_view password) {
  // What is typed is UTF-8; what is stored may be older than that.
  const auto hasName = [&](const UserRecord& user) { return EqualIgnoringCase(ShownText(user.Name), name); };
  const auto user = std::find_if(users.begin(), users.end(), hasName);
  if (user == users.end()) return tl::unexpected(LoginFault::NoSuchUser);
  if (ShownText(user->Password) != password) return tl::unexpected(LoginFault::WrongPassword);
  return static_cast<std::int16_t>(user - users.begin());
}

std::string_view LoginFaultText(LoginFault fault) {
  return fault == LoginFault::NoSuchUser ? "There is no such user" : "The password given is incorrect";
}

bool IsAllowed(Right right, std::int16_t level) {
  switch (right) {
    case Right::Everyone:
      return true;
    case Right::Database:
      return level <= DatabaseLevel;
    case Right::QualityControl:
      return level != DigitizerLevel;
    case Right::Users:
      return level < DatabaseLevel;
  }
  return false;
}

std::optional<Refusal> CheckRight(Right right, std::int16_t level) {
  if (IsAllowed(right, level)) return std::nullopt;
  if (right == Right::QualityControl)
    return Refusal{"Authorization Error", "you are not authorized to use this option"};
  return Refusal{"Authorization Limitation", "You are not authorized to perform that action."};
}

}  // namespace hyetex
