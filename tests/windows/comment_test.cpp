#include "chartfiles/windows/frmComment.h"

#include <QPushButton>
#include <memory>

#include "platform/up_down.h"
#include "staging/definitions.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using test::Caption;
using test::Click;
using test::Find;
using test::ShownBox;

// What a target is asked for, which outlives the target.
struct Asked {
  std::vector<std::string> Added;
  int Cleared = 0, Closed = 0;
  std::optional<std::string> Refusal;
};

struct Wanted {
  std::string Title = {};
  std::optional<std::string> Code = {};
  std::vector<std::string> Choices = {};
  bool CanClear = true;
};

class Target : public CommentTarget {
 public:
  Target(Wanted wanted, Asked& asked) : wanted_(std::move(wanted)), asked_(asked) {}

  std::string Title() const override { return wanted_.Title; }
  std::optional<std::string> Code() const override { return wanted_.Code; }
  std::vector<std::string> Choices() const override { return wanted_.Choices; }
  bool CanClear() const override { return wanted_.CanClear; }
  std::optional<std::string> Add(std::string_view code, std::string_view text) override {
    asked_.Added.push_back(std::string(code) + "|" + std::string(text));
    return asked_.Refusal;
  }
  void Clear() override { ++asked_.Cleared; }
  void Closed() override { ++asked_.Closed; }

 private:
  Wanted wanted_;
  Asked& asked_;
};

class ListDesk : public test::EmptyDesk {
 public:
  void OpenLargeView(const std::string& caption, const std::string& text) override {
    Lists.push_back(caption);
    EmptyDesk::OpenLargeView(caption, text);
  }
  void CloseLargeView(const std::string& caption) override { Lists.push_back("close " + caption); }
  std::vector<std::string> Lists;
};

class CommentWindow : public ::testing::Test {
 protected:
  frmComment& Open(Wanted wanted = {}) {
    window_ = std::make_unique<frmComment>(desk_, dialogs_, folder_.Path(), comments_,
                                           std::make_unique<Target>(std::move(wanted), asked_));
    window_->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    return *window_;
  }
  QLineEdit& Code() { return Find<QLineEdit>(*window_, "txtCode"); }
  QLineEdit& Text() { return Find<QLineEdit>(*window_, "txtComment"); }

  test::TempFolder folder_;
  ListDesk desk_;
  test::ScriptedDialogs dialogs_;
  std::vector<CommentRecord> comments_{{"Ink ran dry", 301}};
  Asked asked_;
  std::unique_ptr<frmComment> window_;
};

TEST_F(CommentWindow, OpensAsItIsWanted) {
  ASSERT_TRUE(SetDefinition(folder_.Path(), "frmComment-Code", "301"));
  frmComment& window = Open({.Title = "Add a general Comment...", .Code = ""});
  EXPECT_EQ(window.windowTitle(), "Add a general Comment...");
  EXPECT_EQ(Code().text(), "");
  EXPECT_TRUE(desk_.Flags.IsOpen(WindowId::Comment));
  EXPECT_EQ(window.focusWidget(), &Text());
  EXPECT_FALSE(Find(window, "lstChoices").isVisible());
  const std::map<const char*, std::string> buttons{{"cmdAdd", "Add Comment"},
                                                   {"cmdCancel", "Cancel"},
                                                   {"cmdClear", "Clear all comments"},
                                                   {"cmdList", "View Comments List"}};
  for (const auto& [name, caption] : buttons) {
    EXPECT_EQ(Caption(Find<QPushButton>(window, name).text()), caption);
    EXPECT_TRUE(Find(window, name).isVisible()) << name;
  }

  Open({.CanClear = false});
  EXPECT_EQ(window_->windowTitle(), "Add a comment");
  EXPECT_EQ(Code().text(), "301") << "the code used last";
  EXPECT_FALSE(Find(*window_, "cmdClear").isVisible());
}

TEST_F(CommentWindow, AddsByKeysAlone) {
  Open({.Code = ""});
  Text().setText("left over");
  Code().setFocus();
  QTest::keyClicks(&Code(), "205");
  QTest::keyClick(&Code(), Qt::Key_Return);
  EXPECT_TRUE(asked_.Added.empty());
  ASSERT_EQ(window_->focusWidget(), &Text());
  ASSERT_TRUE(test::WaitFor([&] { return Text().hasSelectedText(); }));
  QTest::keyClicks(&Text(), "Clock malfunction");
  QTest::keyClick(&Text(), Qt::Key_Return);
  EXPECT_THAT(asked_.Added, testing::ElementsAre("205|Clock malfunction"));
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(asked_.Closed, 1);
  EXPECT_FALSE(desk_.Flags.IsOpen(WindowId::Comment));
  EXPECT_THAT(desk_.ClosedWindows, testing::ElementsAre(WindowId::Comment));
  EXPECT_EQ(GetDefinition(folder_.Path(), "frmComment-Code"), "205");
}

TEST_F(CommentWindow, StaysOpenWithNothingToAddAndAfterARefusal) {
  Open({.Code = ""});
  Click(*window_, "cmdAdd");
  EXPECT_TRUE(asked_.Added.empty());

  asked_.Refusal = "It holds a line break.";
  Text().setText("bad");
  Click(*window_, "cmdAdd");
  EXPECT_THAT(dialogs_.Boxes, testing::ElementsAre(ShownBox{"Add a comment", "It holds a line break.",
                                                            BoxButtons::Ok, BoxIcon::Warning}));
  EXPECT_TRUE(window_->isVisible());
  EXPECT_EQ(asked_.Closed, 0);
}

TEST_F(CommentWindow, OffersReasonsThatFillTheDescription) {
  Open({.Code = "205", .Choices = {"Pen did not record", "Clock malfunction"}});
  auto& choices = Find<QListWidget>(*window_, "lstChoices");
  ASSERT_TRUE(choices.isVisible());
  Text().setText("my own");
  choices.setFocus(Qt::TabFocusReason);
  EXPECT_EQ(Text().text(), "my own") << "passing over the list takes nothing away";
  QTest::mouseClick(choices.viewport(), Qt::LeftButton, {}, choices.visualItemRect(choices.item(1)).center());
  EXPECT_EQ(Text().text(), "Clock malfunction");
  QTest::keyClick(&choices, Qt::Key_Up);
  QTest::keyClick(&choices, Qt::Key_Return);
  EXPECT_THAT(asked_.Added, testing::ElementsAre("205|Pen did not record"));
}

TEST_F(CommentWindow, StepsTheCodeDownToZero) {
  Open({.Code = "1"});
  auto& steps = Find<UpDown>(*window_, "udnCode");
  for (int i = 0; i < 3; ++i) steps.Step(-1);
  EXPECT_EQ(Code().text(), "0");
  QTest::keyClick(&Code(), Qt::Key_Up);
  EXPECT_EQ(Code().text(), "1");
}

TEST_F(CommentWindow, ClearsAndStaysOpen) {
  Open();
  Click(*window_, "cmdClear");
  EXPECT_EQ(asked_.Cleared, 1);
  EXPECT_TRUE(window_->isVisible());
}

TEST_F(CommentWindow, TakesItsListAlongWhenItCloses) {
  Open();
  Click(*window_, "cmdList");
  ASSERT_EQ(desk_.LargeViews.size(), 1U);
  EXPECT_THAT(desk_.LargeViews[0],
              testing::StartsWith("CODE301 - Ink ran dry\r\n\r\nProgrammer's Comments Codes\r\n"));
  QTest::keyClick(&Code(), Qt::Key_Escape);
  EXPECT_THAT(desk_.Lists, testing::ElementsAre("Comments List", "close Comments List"));
  EXPECT_TRUE(asked_.Added.empty());
  window_->close();
  EXPECT_EQ(asked_.Closed, 1) << "closing twice";
}

}  // namespace
}  // namespace hyetex
