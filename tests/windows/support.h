// What the window tests share: boxes that answer by themselves and tell what they were asked, a desk without
// windows, and hands for keys and buttons.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QTest>
#include <cstdlib>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "../support.h"  // the name alone is this file's own
#include "core/desk.h"
#include "platform/dialogs.h"
#include "staging/definitions.h"

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

inline ShownBox Warning(std::string title, std::string text) {
  return {std::move(title), std::move(text), BoxButtons::Ok, BoxIcon::Warning};
}

/// Gives the answers that the test has laid down, in their order. A box with one button needs none; any other
/// that finds none fails the test.
class ScriptedDialogs : public Dialogs {
 public:
  std::deque<BoxAnswer> Answers;
  std::vector<ShownBox> Boxes;

  BoxAnswer MessageBox(const std::string& title, const std::string& text, BoxButtons buttons,
                       BoxIcon icon) override {
    Boxes.push_back({title, text, buttons, icon});
    if (buttons == BoxButtons::Ok) return BoxAnswer::Ok;
    if (Answers.empty()) {
      Unexpected(text);
      return buttons == BoxButtons::YesNo ? BoxAnswer::No : BoxAnswer::Cancel;
    }
    const BoxAnswer answer = Answers.front();
    Answers.pop_front();
    return answer;
  }
  std::optional<std::string> InputBox(const std::string&, const std::string& prompt,
                                      const std::string&) override {
    return Unexpected(prompt);
  }
  std::optional<std::string> ChooseFolder(const std::string& title, const std::string&) override {
    return Unexpected(title);
  }
  std::optional<std::string> ChooseFileToSave(const std::string& title, const std::string&) override {
    return Unexpected(title);
  }

 private:
  static std::nullopt_t Unexpected(const std::string& question) {
    ADD_FAILURE() << "nobody expected the question: " << question;
    return std::nullopt;
  }
};

/// Opens nothing, and tells what it was asked for.
class EmptyDesk : public Desk {
 public:
  std::set<WindowId> Present;  ///< what Has() says yes to
  std::vector<WindowId> Opened, ClosedWindows;
  std::vector<std::string> LargeViews;  ///< caption and text, and which were closed
  bool IsLoggedIn = false, HasEnded = false;

  bool Has(WindowId id) const override { return Present.contains(id); }
  void Open(WindowId id) override { Opened.push_back(id); }
  void Closed(WindowId id) override { ClosedWindows.push_back(id); }
  void OpenLargeView(const std::string& caption, const std::string& text) override {
    LargeViews.push_back(caption + ": " + text);
  }
  void CloseLargeView(const std::string& caption) override { LargeViews.push_back("close " + caption); }
  void LoggedIn() override { IsLoggedIn = true; }
  void EndProgram() override { HasEnded = true; }
};

/// A program folder, and boxes that answer by themselves.
class FolderTest : public ::testing::Test {
 protected:
  void Remember(const char* key, const char* value) {
    ASSERT_TRUE(SetDefinition(folder_.Path(), key, value).has_value());
  }
  std::string Remembered(const char* key) { return GetDefinition(folder_.Path(), key); }

  TempFolder folder_;
  ScriptedDialogs dialogs_;
};

/// One window, which thinks that it is at a desk.
template <typename Window>
class WindowTest : public FolderTest {
 protected:
  template <typename... Arguments>
  Window& Show(Arguments&&... arguments) {
    window_ =
        std::make_unique<Window>(desk_, dialogs_, folder_.Path(), std::forward<Arguments>(arguments)...);
    window_->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    return *window_;
  }

  EmptyDesk desk_;
  std::unique_ptr<Window> window_;
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

using Captions = std::vector<std::pair<const char*, std::string>>;
inline void ExpectCaptions(QWidget& in, const Captions& captions) {
  for (const auto& [name, caption] : captions)
    EXPECT_EQ(Caption(Find<QAbstractButton>(in, name).text()), caption);
}

template <typename Condition>
[[nodiscard]] bool WaitFor(Condition&& met, int milliseconds = 5000) {
  return QTest::qWaitFor(std::forward<Condition>(met), milliseconds);
}

}  // namespace hyetex::test
