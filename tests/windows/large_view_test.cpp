#include "chartfiles/windows/frmLargeView.h"

#include <QFontInfo>

#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

class LargeView : public WindowTest<frmLargeView> {
 protected:
  // What a page of paper looks like is asked of a file in its place.
  std::string Printed(const std::string& path) {
    QPrinter printer;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setOutputFileName(QString::fromStdString(path));
    window_->PrintOn(printer);
    return ReadFile(path);
  }
};

TEST_F(LargeView, ShowsItsTextInOneWidth) {
  frmLargeView& window = Show("Comments List", "CODE201 - a\r\nCODE202 - \xE9t\xE9");
  EXPECT_EQ(window.windowTitle(), "Comments List");
  auto& text = Find<QPlainTextEdit>(window, "txtView");
  EXPECT_EQ(text.toPlainText().toStdString(), "CODE201 - a\nCODE202 - été");
  EXPECT_TRUE(text.isReadOnly());
  EXPECT_TRUE(QFontInfo(text.font()).fixedPitch());
  ExpectCaptions(
      window,
      {{"optPrint0", "Landscape"}, {"optPrint1", "Portrait"}, {"cmdPrint", "Print"}, {"Command1", "Close"}});
  const QSize before = text.size();
  window.resize(window.size() + QSize(100, 80));
  EXPECT_TRUE(WaitFor([&] { return text.size() == before + QSize(100, 80); }));
  EXPECT_EQ(Show("", "").windowTitle(), "Large View");
}

TEST_F(LargeView, PrintsEveryLineInTheOrientationChosen) {
  std::string text;
  for (int i = 0; i < 200; ++i) text += "line " + std::to_string(i) + "\r\n";
  frmLargeView& window = Show("File Summary", text);
  ASSERT_TRUE(Find<QRadioButton>(window, "optPrint1").isChecked()) << "narrow text";
  const std::string upright = Printed(folder_ / "upright.pdf");
  EXPECT_THAT(upright, testing::HasSubstr("/MediaBox [0 0 595"));
  EXPECT_THAT(upright, testing::Not(testing::HasSubstr("/Count 1\n"))) << "lines are missing";
  Find<QRadioButton>(window, "optPrint0").click();
  const std::string across = Printed(folder_ / "across.pdf");
  EXPECT_THAT(across, testing::HasSubstr("/MediaBox [0 0 842"));
  EXPECT_TRUE(dialogs_.Boxes.empty());

  Show("Wide", std::string(120, 'x'));
  EXPECT_TRUE(Find<QRadioButton>(*window_, "optPrint0").isChecked());
}

TEST_F(LargeView, TellsWhenPrintingFailsAndClosesWithEscape) {
  Show("Comments List", "text");
  Printed(folder_ / "no such folder/out.pdf");
  const ShownBox box{"Printing Text", "An error has occured while the computer attempted to print"};
  EXPECT_THAT(dialogs_.Boxes, testing::ElementsAre(box));
  EXPECT_TRUE(window_->isVisible());

  window_->move(40, 30);
  QTest::keyClick(&Find(*window_, "txtView"), Qt::Key_Escape);
  EXPECT_FALSE(window_->isVisible());
  EXPECT_THAT(desk_.ClosedWindows, testing::ElementsAre(WindowId::LargeView));
  EXPECT_EQ(Remembered("frmLargeView-Top"), "450");
}

}  // namespace
}  // namespace hyetex
