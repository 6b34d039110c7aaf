// What the window tests share: a desk without windows, and hands for keys and buttons.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QTest>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "../support.h"  // the name alone is this file's own
#include "core/definitions.h"
#include "core/desk.h"
#include "core/settings.h"
#include "scripted_dialogs.h"

// These end a test function of another framework; in a GoogleTest body a failure of theirs is silent.
#undef QVERIFY
#undef QCOMPARE
#define QVERIFY(...) static_assert(false, "use EXPECT_TRUE")
#define QCOMPARE(...) static_assert(false, "use EXPECT_EQ")

namespace hyetex::test {

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
  Settings settings_{folder_.Path()};
  ScriptedDialogs dialogs_;
};

/// One window, which thinks that it is at a desk.
template <typename Window>
class WindowTest : public FolderTest {
 protected:
  template <typename... Arguments>
  Window& Show(Arguments&&... arguments) {
    window_ = std::make_unique<Window>(desk_, dialogs_, settings_, std::forward<Arguments>(arguments)...);
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
