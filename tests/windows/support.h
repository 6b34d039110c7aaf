// What the window tests share: boxes that answer by themselves and tell what they were asked, a desk without
// windows, and hands for keys and buttons.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QTest>
#include <cstdlib>
#include <deque>
#include <set>
#include <string>
#include <vector>

#include "core/desk.h"
#include "platform/dialogs.h"
#include "../support.h"  // the name alone is this file's own

// These end a test function of another framework; in a GoogleTest body a failure of theirs is silent.
#undef QVERIFY
#undef QCOMPARE
#define QVERIFY(...) static_assert(false, "use EXPECT_TRUE")
#define QCOMPARE(...) static_assert(false, "use EXPECT_EQ")

namespace hyetex::test {

/// A message box as it was shown.
struct ShownBox {
  std::string Title, Text;
  BoxButtons Buttons = BoxButtons::Ok;
  BoxIcon Icon = BoxIcon::None;

  bool operator==(const ShownBox&) const = default;
  friend void PrintTo(const ShownBox& box, std::ostream* out) {
    *out << "[" << box.Title << "] " << box.Text << " (buttons " << static_cast<int>(box.Buttons) << ", icon "
         << static_cast<int>(box.Icon) << ")";
  }
};

/// Gives the answers that the test has laid down, in their order. A box with one button needs none; any other
/// that finds none fails the test.
class ScriptedDialogs : public Dialogs {
 public:
  std::deque<BoxAnswer> Answers;
  std::deque<std::optional<std::string>> Texts;  ///< for input and file boxes
  std::vector<ShownBox> Boxes;
  std::vector<std::string> Prompts;  ///< of input boxes; the titles of file boxes

  BoxAnswer MessageBox(const std::string& title, const std::string& text, BoxButtons buttons,
                       BoxIcon icon) override {
    Boxes.push_back({title, text, buttons, icon});
    if (buttons == BoxButtons::Ok) return BoxAnswer::Ok;
    if (Answers.empty()) {
      ADD_FAILURE() << "nobody expected the question: " << text;
      return buttons == BoxButtons::YesNo ? BoxAnswer::No : BoxAnswer::Cancel;
    }
    const BoxAnswer answer = Answers.front();
    Answers.pop_front();
    return answer;
  }
  std::optional<std::string> InputBox(const std::string&, const std::string& prompt,
                                      const std::string&) override {
    return NextText(prompt);
  }
  std::optional<std::string> ChooseFolder(const std::string& title, const std::string&) override {
    return NextText(title);
  }
  std::optional<std::string> ChooseFileToSave(const std::string& title, const std::string&) override {
    return NextText(title);
  }

 private:
  std::optional<std::string> NextText(const std::string& prompt) {
    Prompts.push_back(prompt);
    if (Texts.empty()) {
      ADD_FAILURE() << "nobody expected the question: " << prompt;
      return std::nullopt;
    }
    auto text = Texts.front();
    Texts.pop_front();
    return text;
  }
};

/// Opens nothing, and tells what it was asked for.
class EmptyDesk : public Desk {
 public:
  std::set<WindowId> Present;  ///< what Has() says yes to
  std::vector<WindowId> Opened, ClosedWindows;
  std::vector<std::string> LargeViews;  ///< their texts
  bool IsLoggedIn = false, HasEnded = false;

  bool Has(WindowId id) const override { return Present.contains(id); }
  void Open(WindowId id) override { Opened.push_back(id); }
  void Closed(WindowId id) override { ClosedWindows.push_back(id); }
  void OpenLargeView(const std::string&, const std::string& text) override { LargeViews.push_back(text); }
  void LoggedIn() override { IsLoggedIn = true; }
  void EndProgram() override { HasEnded = true; }
};

template <typename Widget = QWidget>
Widget& Find(QWidget& in, const char* name) {
  auto* found = in.findChild<Widget*>(name);
  if (found == nullptr) {
    ADD_FAILURE() << "there is no " << name;
    std::abort();
  }
  return *found;
}

/// Presses and lets go a button as the mouse does; a disabled one takes no notice.
inline void Click(QWidget& in, const char* name) { QTest::mouseClick(&Find(in, name), Qt::LeftButton); }

/// What a button or a menu entry says, without the mark of its letter.
inline std::string Caption(QString text) { return text.remove('&').toStdString(); }

template <typename Condition>
[[nodiscard]] bool WaitFor(Condition&& met, int milliseconds = 5000) {
  return QTest::qWaitFor(std::forward<Condition>(met), milliseconds);
}

}  // namespace hyetex::test
