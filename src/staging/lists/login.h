// Who the operator is, and what the operator's level allows. A lower level means more rights: 1 is an
// administrator, 5 a database operator, 10 a digitizer operator; the one user of an empty list has level 0.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <tl/expected.hpp>

#include "staging/lists/lists.h"

namespace hyetex {

inline constexpr std::int16_t AdministratorLevel = 1, DatabaseLevel = 5, DigitizerLevel = 10;

enum class LoginFault { NoSuchUser, WrongPassword };

/// The index of the user. Names are compared without regard to case, and the first of several counts;
/// passwords are compared exactly.
tl::expected<std::int16_t, LoginFault> CheckLogin(const std::vector<UserRecord>& users, std::string_view name,
                                                  std::string_view password);
/// What the operator is told.
std::string_view LoginFaultText(LoginFault fault);

enum class Right {
  Everyone,
  Database,        ///< level 5 or lower: all but digitizer operators
  QualityControl,  ///< any level but 10
  Users,           ///< below 5: administrators
};
bool IsAllowed(Right right, std::int16_t level);

struct Refusal {
  std::string_view Title, Text;
};
/// Why an action that needs this right is refused at this level; nothing if it is not.
std::optional<Refusal> CheckRight(Right right, std::int16_t level);

}  // namespace hyetex
