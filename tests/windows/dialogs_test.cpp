// The boxes on the screen.
#include <QCheckBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include "digitizing/windows/tool_icons.h"
#include "platform/qt_dialogs.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

/// Runs `look` on the box that is about to open.
template <typename Look>
void WhenShown(Look look) {
  QTimer::singleShot(0, qApp, [look] {
    QWidget* box = QApplication::activeModalWidget();
    ASSERT_NE(box, nullptr);
    look(*box);
  });
}

TEST(Dialogs, ShowsTextsAsTheyAreAndAnswersByButtonAndEscape) {
  QtDialogs dialogs;
  WhenShown([](QWidget& window) {
    auto& box = dynamic_cast<QMessageBox&>(window);
    EXPECT_EQ(box.text(), "Is 1 <b>2</b> & 3 \xC3\xA9 ?");
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.windowTitle(), "A title");
    EXPECT_EQ(box.icon(), QMessageBox::Warning);
    EXPECT_EQ(box.standardButtons(), QMessageBox::Yes | QMessageBox::No);
    box.button(QMessageBox::Yes)->click();
  });
  EXPECT_EQ(dialogs.MessageBox("A title", "Is 1 <b>2</b> & 3 \xE9 ?", BoxButtons::YesNo, BoxIcon::Warning),
            BoxAnswer::Yes);

  struct Keys {
    BoxButtons Buttons;
    BoxAnswer Escape, Return;
  };
  for (const auto& [buttons, escape, accept] :
       {Keys{BoxButtons::Ok, BoxAnswer::Ok, BoxAnswer::Ok},
        Keys{BoxButtons::OkCancel, BoxAnswer::Cancel, BoxAnswer::Ok},
        Keys{BoxButtons::YesNo, BoxAnswer::No, BoxAnswer::Yes},
        Keys{BoxButtons::YesNoCancel, BoxAnswer::Cancel, BoxAnswer::Yes},
        Keys{BoxButtons::NoUnlessYes, BoxAnswer::No, BoxAnswer::No},
        Keys{BoxButtons::CancelUnlessOk, BoxAnswer::Cancel, BoxAnswer::Cancel}}) {
    for (const auto& [key, answer] : {std::pair{Qt::Key_Escape, escape}, std::pair{Qt::Key_Return, accept}}) {
      WhenShown([key = key](QWidget& box) { QTest::keyClick(&box, key); });
      EXPECT_EQ(dialogs.MessageBox("", "?", buttons, BoxIcon::None), answer) << static_cast<int>(buttons);
    }
    WhenShown([](QWidget& box) { box.close(); });
    EXPECT_EQ(dialogs.MessageBox("", "?", buttons, BoxIcon::None), escape) << "closing the box";
  }
}

TEST(Dialogs, ShowsWhatIsTypedAsAPasswordButNeverTheStoredOne) {
  QtDialogs dialogs;
  WhenShown([](QWidget& box) {
    auto* line = box.findChild<QLineEdit*>();
    auto* show = box.findChild<QCheckBox*>();
    ASSERT_TRUE(line != nullptr && show != nullptr);
    EXPECT_EQ(line->echoMode(), QLineEdit::Password);
    EXPECT_EQ(line->text(), "stored");
    EXPECT_FALSE(show->isEnabled());
    line->deselect();
    QTest::keyClicks(line, "x");
    EXPECT_FALSE(show->isEnabled()) << "the stored one is still there";
    line->selectAll();
    QTest::keyClicks(line, "new");
    show->click();
    EXPECT_EQ(line->echoMode(), QLineEdit::Normal);
    line->undo();
    EXPECT_FALSE(line->text().contains("stored"));
    line->setText("new");
    QTest::keyClick(line, Qt::Key_Return);
  });
  EXPECT_EQ(dialogs.PasswordBox("Title", "Prompt", "stored"), "new");
}

TEST(Dialogs, TellsACancelledInputFromAnEmptyOne) {
  QtDialogs dialogs;
  WhenShown([](QWidget& box) {
    auto* line = box.findChild<QLineEdit*>();
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->text(), "old");
    line->clear();
    QTest::keyClick(line, Qt::Key_Return);
  });
  EXPECT_EQ(dialogs.InputBox("Title", "Prompt", "old"), "");
  WhenShown([](QWidget& box) { QTest::keyClick(&box, Qt::Key_Escape); });
  EXPECT_EQ(dialogs.InputBox("Title", "Prompt", "old"), std::nullopt);
}

TEST(Icons, AreThereForEveryTool) {
  for (int tool = 0; tool < ToolCount; ++tool) {
    for (const bool zoomed : {false, true}) {
      const QString file = ToolIconFile(tool, zoomed);
      EXPECT_EQ(file.isEmpty(), GetToolText(tool, zoomed).empty()) << tool;
      EXPECT_TRUE(file.isEmpty() || !QIcon(file).pixmap(32).isNull()) << tool;
    }
  }
}

}  // namespace
}  // namespace hyetex
