#include "chartfiles/windows/frmLargeView.h"

#include <QFontInfo>
#include <QPushButton>
#include <memory>

#include "staging/definitions.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using test::Caption;
using test::Find;

class LargeView : public ::testing::Test {
 protected:
  frmLargeView& Open(const std::string& caption, const std::string& text) {
    window_ = std::make_unique<frmLargeView>(desk_, dialogs_, folder_.Path(), caption, text);
    window_->show();
    return *window_;
  }
  // What a page of paper looks like is asked of a file in its place.
  std::string Printed(const std::string& path) {
    QPrinter printer;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setOutputFileName(QString::fromStdString(path));
    window_->PrintOn(printer);
    return test::ReadFile(path);
  }
  static int Count(const std::string& text, const std::string& what) {
    int count = 0;
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) ++count;
    return count;
  }

  test::TempFolder folder_;
  test::EmptyDesk desk_;
  test::ScriptedDialogs dialogs_;
  std::unique_ptr<frmLargeView> window_;
};

TEST_F(LargeView, ShowsItsTextInOneWidth) {
  frmLargeView& window = Open("Comments List", "CODE201 - a\r\nCODE202 - \xE9t\xE9");
  EXPECT_EQ(window.windowTitle(), "Comments List");
  auto& text = Find<QPlainTextEdit>(window, "txtView");
  EXPECT_EQ(text.toPlainText().toStdString(), "CODE201 - a\nCODE202 - été");
  EXPECT_TRUE(text.isReadOnly());
  EXPECT_TRUE(QFontInfo(text.font()).fixedPitch());
  EXPECT_EQ(Caption(Find<QRadioButton>(window, "optPrint0").text()), "Landscape");
  EXPECT_EQ(Caption(Find<QRadioButton>(window, "optPrint1").text()), "Portrait");
  EXPECT_EQ(Caption(Find<QPushButton>(window, "cmdPrint").text()), "Print");
  EXPECT_EQ(Caption(Find<QPushButton>(window, "Command1").text()), "Close");

  const QSize before = text.size();
  window.resize(window.size() + QSize(100, 80));
  EXPECT_TRUE(test::WaitFor([&] { return text.size() == before + QSize(100, 80); }));
  EXPECT_EQ(Open("", "").windowTitle(), "Large View");
}

TEST_F(LargeView, PrintsEveryLineInTheOrientationChosen) {
  std::string text;
  for (int i = 0; i < 200; ++i) text += "line " + std::to_string(i) + "\r\n";
  frmLargeView& window = Open("File Summary", text);
  ASSERT_TRUE(Find<QRadioButton>(window, "optPrint1").isChecked()) << "narrow text";
  const std::string upright = Printed(folder_ / "upright.pdf");
  EXPECT_THAT(upright, testing::HasSubstr("/MediaBox [0 0 595"));
  const int pages = Count(upright, "/MediaBox");

  Find<QRadioButton>(window, "optPrint0").click();
  const std::string across = Printed(folder_ / "across.pdf");
  EXPECT_THAT(across, testing::HasSubstr("/MediaBox [0 0 842"));
  EXPECT_GT(Count(across, "/MediaBox"), pages) << "fewer lines stand on a page";
  EXPECT_TRUE(dialogs_.Boxes.empty());

  Open("Wide", std::string(120, 'x'));
  EXPECT_TRUE(Find<QRadioButton>(*window_, "optPrint0").isChecked());
}

TEST_F(LargeView, TellsWhenPrintingFails) {
  Open("Comments List", "text");
  Printed(folder_ / "no such folder/out.pdf");
  const test::ShownBox box{"Printing Text", "An error has occured while the computer attempted to print"};
  EXPECT_THAT(dialogs_.Boxes, testing::ElementsAre(box));
  EXPECT_TRUE(window_->isVisible());
}

TEST_F(LargeView, ClosesWithEscapeAndRemembersItsPlace) {
  Open("Comments List", "text").move(40, 30);
  EXPECT_TRUE(desk_.Flags.IsOpen(WindowId::LargeView));
  QTest::keyClick(&Find(*window_, "txtView"), Qt::Key_Escape);
  EXPECT_FALSE(window_->isVisible());
  EXPECT_THAT(desk_.ClosedWindows, testing::ElementsAre(WindowId::LargeView));
  EXPECT_EQ(GetDefinition(folder_.Path(), "frmLargeView-Top"), "450");
}

}  // namespace
}  // namespace hyetex
