// The login at the desk.
#include <QComboBox>
#include <QLineEdit>

#include "platform/qt_text.h"
#include "staging/lists/lists.h"
#include "staging/windows/frmLogin.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

class Login : public WindowTest<frmLogin> {
 protected:
  void SetUp() override {
    ReferenceLists lists;
    lists.Users = {{"Anna", "Secret", 1}, {"Ren\xE9", "", 10}};
    ASSERT_TRUE(SaveLists(folder_.Path(), lists));
  }
  void Open() { Show(lists_, user_); }
  QComboBox& UserName() { return Find<QComboBox>(*window_, "txtUserName"); }
  QLineEdit& Password() { return Find<QLineEdit>(*window_, "txtPassword"); }

  ReferenceLists lists_;
  std::int16_t user_ = -1;
};

TEST_F(Login, LogsInByKeyboardAlone) {
  Open();
  ASSERT_EQ(UserName().count(), 2);
  EXPECT_EQ(UserName().itemText(1), QString::fromUtf8("Ren\xC3\xA9"));
  EXPECT_EQ(UserName().currentText(), "");

  QTest::keyClicks(UserName().lineEdit(), "ANNA");
  QTest::keyClick(UserName().lineEdit(), Qt::Key_Return);
  EXPECT_TRUE(Password().hasFocus());
  EXPECT_FALSE(desk_.IsLoggedIn);
  EXPECT_EQ(Password().echoMode(), QLineEdit::Password);
  QTest::keyClicks(&Password(), "Secret");
  QTest::keyClick(&Password(), Qt::Key_Return);

  EXPECT_TRUE(desk_.IsLoggedIn);
  EXPECT_FALSE(desk_.HasEnded);
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(user_, 0);
  EXPECT_TRUE(dialogs_.Boxes.empty());
  EXPECT_EQ(Remembered("frmLogin-UserName"), "ANNA");
}

TEST_F(Login, StaysOpenAfterWrongNameAndWrongPassword) {
  Open();
  UserName().setEditText("Ann");  // no user, though one begins so
  Click(*window_, "cmdOK");
  UserName().setEditText("Anna");
  Password().setText("secret");
  Click(*window_, "cmdOK");

  EXPECT_EQ(dialogs_.Boxes, (std::vector{Warning("User Login", "There is no such user"),
                                         Warning("User Login", "The password given is incorrect")}));
  EXPECT_TRUE(window_->isVisible());
  EXPECT_FALSE(desk_.IsLoggedIn);
  EXPECT_EQ(user_, -1);
  EXPECT_TRUE(Password().hasFocus());
  EXPECT_TRUE(WaitFor([&] { return Password().selectedText().size() == 6; }));
}

TEST_F(Login, EndsProgramWhenCancelledOrClosedAndRemembersTheName) {
  for (const bool byKey : {false, true}) {
    desk_.HasEnded = false;
    Open();
    EXPECT_EQ(UserName().currentText(), byKey ? "Anna" : "");
    EXPECT_EQ(Password().hasFocus(), byKey);
    UserName().setEditText("Anna");
    if (byKey)
      QTest::keyClick(window_.get(), Qt::Key_Escape);
    else
      Click(*window_, "cmdCancel");
    EXPECT_TRUE(desk_.HasEnded);
    EXPECT_FALSE(desk_.IsLoggedIn);
  }
}

TEST_F(Login, TellsOfDamagedListsAndAdmitsAnyNameWithFewRights) {
  const std::string whole = ReadFile(folder_ / "lists.dat");
  WriteFile(folder_ / "lists.dat", std::string(512, '\xFF'));
  Open();
  EXPECT_TRUE(Find<QLabel>(*window_, "labNotice").text().contains("kept as lists.dat.bak-"));
  UserName().setEditText("Zoe");
  Click(*window_, "cmdOK");
  EXPECT_TRUE(desk_.IsLoggedIn);
  ASSERT_EQ(user_, 0);
  EXPECT_EQ(lists_.Users[0].Name, "Zoe");
  EXPECT_EQ(lists_.Users[0].Level, 10);

  desk_.IsLoggedIn = false;
  Open();
  WriteFile(folder_ / "lists.dat", whole);  // mended while the login is open
  UserName().setEditText("Zoe");
  Click(*window_, "cmdOK");
  EXPECT_FALSE(desk_.IsLoggedIn);
  UserName().setEditText("Anna");
  Password().setText("Secret");
  Click(*window_, "cmdOK");
  EXPECT_TRUE(desk_.IsLoggedIn);
}

// The one user of an empty list may do everything, so trouble must not look like a new installation.
TEST_F(Login, LetsNobodyInWhileTheListsCannotBeReadAtAll) {
  std::filesystem::remove(folder_ / "lists.dat");
  std::filesystem::create_directory(folder_ / "lists.dat");
  Open();
  Click(*window_, "cmdOK");
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes[0].Icon, BoxIcon::Critical);
  EXPECT_FALSE(desk_.IsLoggedIn);
}

TEST_F(Login, LetsTheFirstUserOfANewInstallationIn) {
  std::filesystem::remove(folder_ / "lists.dat");
  Open();
  Click(*window_, "cmdOK");
  EXPECT_TRUE(desk_.IsLoggedIn);
  EXPECT_EQ(user_, 0);
}

}  // namespace
}  // namespace hyetex
