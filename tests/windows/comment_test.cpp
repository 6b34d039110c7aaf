#include "chartfiles/windows/frmComment.h"

#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

// What a target wants, and what it was asked for; it outlives the target.
struct Wanted {
  std::string Title = {};
  std::optional<std::string> Code = {};
  std::vector<std::string> Choices = {};
  bool CanClear = true;
  std::optional<std::string> Refusal = {};
  std::vector<std::string> Added = {};
  int Cleared = 0, Closed = 0;
};

class Target : public CommentTarget {
 public:
  explicit Target(Wanted& wanted) : wanted_(wanted) {}

  std::string Title() const override { return wanted_.Title; }
  std::optional<std::string> Code() const override { return wanted_.Code; }
  std::vector<std::string> Choices() const override { return wanted_.Choices; }
  bool CanClear() const override { return wanted_.CanClear; }
  std::optional<std::string> Add(std::string_view code, std::string_view text) override {
    wanted_.Added.push_back(std::string(code) + "|" + std::string(text));
    return wanted_.Refusal;
  }
  void Clear() override { ++wanted_.Cleared; }
  void Closed() override { ++wanted_.Closed; }

 private:
  Wanted& wanted_;
};

class CommentWindow : public WindowTest<frmComment> {
 protected:
  frmComment& Open(Wanted wanted = {}) {
    target_ = std::move(wanted);
    return Show(comments_, std::make_unique<Target>(target_));
  }
  QLineEdit& Code() { return Find<QLineEdit>(*window_, "txtCode"); }
  QLineEdit& Text() { return Find<QLineEdit>(*window_, "txtComment"); }

  std::vector<CommentRecord> comments_{{"Ink ran dry", 301}};
  Wanted target_;
};

TEST_F(CommentWindow, OpensAsItIsWanted) {
  Remember("frmComment-Code", "301");
  frmComment& window = Open({.Title = "Add a general Comment...", .Code = ""});
  EXPECT_EQ(window.windowTitle(), "Add a general Comment...");
  EXPECT_EQ(Code().text(), "");
  EXPECT_TRUE(desk_.Flags.IsOpen(WindowId::Comment));
  EXPECT_EQ(window.focusWidget(), &Text());
  EXPECT_FALSE(Find(window, "lstChoices").isVisible());
  ExpectCaptions(window, {{"cmdAdd", "Add Comment"},
                          {"cmdCancel", "Cancel"},
                          {"cmdClear", "Clear all comments"},
                          {"cmdList", "View Comments List"}});
  Click(window, "cmdClear");
  EXPECT_EQ(target_.Cleared, 1);
  EXPECT_TRUE(window.isVisible());

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
  EXPECT_TRUE(target_.Added.empty());
  ASSERT_EQ(window_->focusWidget(), &Text());
  ASSERT_TRUE(WaitFor([&] { return Text().hasSelectedText(); }));
  QTest::keyClicks(&Text(), "Clock malfunction");
  QTest::keyClick(&Text(), Qt::Key_Return);
  EXPECT_THAT(target_.Added, testing::ElementsAre("205|Clock malfunction"));
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(target_.Closed, 1);
  EXPECT_FALSE(desk_.Flags.IsOpen(WindowId::Comment));
  EXPECT_THAT(desk_.ClosedWindows, testing::ElementsAre(WindowId::Comment));
  EXPECT_EQ(Remembered("frmComment-Code"), "205");
}

TEST_F(CommentWindow, StaysOpenWithNothingToAddAndAfterARefusal) {
  Open({.Code = ""});
  Click(*window_, "cmdAdd");
  EXPECT_TRUE(target_.Added.empty());

  target_.Refusal = "It holds a line break.";
  Text().setText("bad");
  Click(*window_, "cmdAdd");
  EXPECT_THAT(dialogs_.Boxes, testing::ElementsAre(Warning("Add a comment", "It holds a line break.")));
  EXPECT_TRUE(window_->isVisible());
  EXPECT_EQ(target_.Closed, 0);
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
  EXPECT_THAT(target_.Added, testing::ElementsAre("205|Pen did not record"));
}

TEST_F(CommentWindow, TakesItsListAlongWhenItCloses) {
  Open();
  Click(*window_, "cmdList");
  QTest::keyClick(&Code(), Qt::Key_Escape);
  EXPECT_THAT(desk_.LargeViews,
              testing::ElementsAre(testing::StartsWith("Comments List: CODE301 - Ink ran dry\r\n\r\n"
                                                       "Programmer's Comments Codes\r\n"),
                                   "close Comments List"));
  EXPECT_TRUE(target_.Added.empty());
  window_->close();
  EXPECT_EQ(target_.Closed, 1) << "closing twice";
}

}  // namespace
}  // namespace hyetex
