#include "staging/lists/login.h"

#include <gtest/gtest.h>

namespace hyetex {
namespace {

TEST(Login, TakesFirstOfNamesThatDifferInCaseOnly) {
  const std::vector<UserRecord> users{{"Anna", "one", 1}, {"ANNA", "two", 5}};
  EXPECT_EQ(CheckLogin(users, "anna", "one"), 0);
  EXPECT_EQ(CheckLogin(users, "ANNA", "two"), tl::unexpected(LoginFault::WrongPassword));
}

TEST(Login, ComparesPasswordsExactly) {
  const std::vector<UserRecord> users{{"Anna", "Secret", 1}};
  EXPECT_EQ(CheckLogin(users, "Anna", "secret"), tl::unexpected(LoginFault::WrongPassword));
  EXPECT_EQ(CheckLogin(users, "Anna", ""), tl::unexpected(LoginFault::WrongPassword));
  EXPECT_EQ(CheckLogin(users, "Ann", "Secret"), tl::unexpected(LoginFault::NoSuchUser));
}

TEST(Login, FindsUsersStoredBeforeUtf8) {
  const std::vector<UserRecord> users{{"Ren\xE9", "\xE9t\xE9", 10}};
  EXPECT_EQ(CheckLogin(users, "Ren\xC3\xA9", "\xC3\xA9t\xC3\xA9"), 0);
}

TEST(Login, LetsTheOneUserOfAnEmptyListIn) { EXPECT_EQ(CheckLogin(std::vector<UserRecord>(1), "", ""), 0); }

TEST(Login, GrantsRightsByLevel) {
  struct Row {
    std::int16_t Level;
    bool Database, QualityControl, Users;
  };
  // 0 and 7 are set by no window, and are only compared.
  for (const Row& row : {Row{0, true, true, true}, Row{1, true, true, true}, Row{5, true, true, false},
                         Row{7, false, true, false}, Row{10, false, false, false}}) {
    EXPECT_TRUE(IsAllowed(Right::Everyone, row.Level)) << row.Level;
    EXPECT_EQ(IsAllowed(Right::Database, row.Level), row.Database) << row.Level;
    EXPECT_EQ(IsAllowed(Right::QualityControl, row.Level), row.QualityControl) << row.Level;
    EXPECT_EQ(IsAllowed(Right::Users, row.Level), row.Users) << row.Level;
  }
  EXPECT_EQ(CheckRight(Right::Database, 10)->Text, "You are not authorized to perform that action.");
  EXPECT_EQ(CheckRight(Right::QualityControl, 10)->Text, "you are not authorized to use this option");
  EXPECT_FALSE(CheckRight(Right::Database, 5));
}

}  // namespace
}  // namespace hyetex
