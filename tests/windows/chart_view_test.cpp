// The chart's views as a widget: zoom, pan, the read-out, and the page that is printed.
#include "editor/windows/chart_view.h"

#include <gmock/gmock.h>

#include <QPdfWriter>
#include <QPrinter>
#include <QRubberBand>
#include <QSignalSpy>
#include <QWheelEvent>

#include "core/numbers.h"
#include "platform/page_printing.h"
#include "platform/qt_text.h"
#include "support.h"

namespace hyetex {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class ChartViewTest : public ::testing::Test {
 protected:
  ChartViewTest() {
    auto reading = std::make_shared<ChartReading>();
    ReadChartText(
        "Instrument Code: RG1\r\nStart: 05/03/98 20:00\r\nEnd: 06/03/98 06:00\r\nEyed Depth: 9\r\n"
        "Selected Depth: 10\r\nManual Depth: -1\r\n0,0,\r\n50,50,Ink is thin\r\n100,100,\r\n",
        "", {}, *reading);
    View.resize(800, 500);
    View.Show(reading);
    View.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&View));
    QObject::connect(&View, &ChartView::ReadOutChanged,
                     [this](const QString& text) { ReadOut = FromQt(text); });
    QObject::connect(&View, &ChartView::ZoomChanged, [this](bool zoomed) { Zooms.push_back(zoomed); });
  }
  void Move(QPoint to, Qt::MouseButtons buttons = Qt::NoButton) {
    QMouseEvent event(QEvent::MouseMove, to, View.mapToGlobal(to), Qt::NoButton, buttons, Qt::NoModifier);
    QApplication::sendEvent(&View, &event);
  }
  void Drag(QPoint from, QPoint to, Qt::MouseButton button) {
    QTest::mousePress(&View, button, {}, from);
    Move(to, button);
    QTest::mouseRelease(&View, button, {}, to);
  }
  void Wheel(QPoint at, int notches) {
    QWheelEvent event(at, View.mapToGlobal(at), {}, {0, 120 * notches}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&View, &event);
  }
  std::string ReadAt(QPoint at) {
    Move(at);
    return ReadOut;
  }
  /// The millimetres along and high, to a part of a pixel.
  std::string PlaceAt(QPoint at) { return ReadAt(at).substr(ReadOut.find("mm/h")); }
  const GraphWindow& Zoom() { return *View.Options().Zoom; }

  ChartView View;
  std::string ReadOut;
  std::vector<bool> Zooms;
};

TEST_F(ChartViewTest, RectangleZoomsOnlyWhenItIsAskedFor) {
  Drag({200, 100}, {500, 300}, Qt::LeftButton);
  EXPECT_FALSE(View.Options().Zoom);
  View.SetSelecting(true);
  QTest::mouseClick(&View, Qt::LeftButton, {}, {300, 200});  // no rectangle yet
  QTest::mousePress(&View, Qt::LeftButton, {}, {200, 100});
  Move({500, 300}, Qt::LeftButton);
  EXPECT_TRUE(test::Find<QRubberBand>(View, "shpSelect").isVisible());
  const std::string corner = ReadAt({200, 300});
  QTest::mouseRelease(&View, Qt::LeftButton, {}, {500, 300});
  ASSERT_TRUE(View.Options().Zoom);
  EXPECT_FALSE(test::Find<QRubberBand>(View, "shpSelect").isVisible());
  // The paper's millimetres under the rectangle's corner are those at the zoomed view's corner.
  const std::string along = RoundedText(Zoom().FromX, 1);
  EXPECT_THAT(corner, HasSubstr(along + " mm along"));
  View.SetSelecting(false);
  EXPECT_FALSE(View.Options().Zoom);
  EXPECT_EQ(Zooms, (std::vector<bool>{true, false}));
}

TEST_F(ChartViewTest, WheelKeepsWhatIsUnderThePointerAndDragsMoveIt) {
  const QPoint at(400, 250);
  const std::string before = PlaceAt(at);
  Wheel(at, 3);
  EXPECT_EQ(PlaceAt(at), before);
  const GraphWindow zoomed = Zoom();
  Drag({400, 250}, {460, 250}, Qt::RightButton);
  EXPECT_LT(Zoom().FromX, zoomed.FromX);
  EXPECT_EQ(Zoom().FromY, zoomed.FromY);
  EXPECT_EQ(PlaceAt({460, 250}), before);
  Drag({460, 250}, {400, 250}, Qt::MiddleButton);
  QTest::keyPress(&View, Qt::Key_Space);
  Drag({400, 250}, {400, 280}, Qt::LeftButton);
  QTest::keyRelease(&View, Qt::Key_Space);
  EXPECT_NEAR(Zoom().FromX, zoomed.FromX, 1e-9);
  EXPECT_GT(Zoom().FromY, zoomed.FromY);
  QTest::keyClick(&View, Qt::Key_Home);
  EXPECT_FALSE(View.Options().Zoom);
  Wheel(at, 2);
  QTest::mouseDClick(&View, Qt::LeftButton, {}, at);
  EXPECT_FALSE(View.Options().Zoom);
  Wheel(at, -2);
  EXPECT_FALSE(View.Options().Zoom);
}

TEST_F(ChartViewTest, ReadsOutInBothViewsAndLeavesArrowsToTheWindow) {
  EXPECT_THAT(ReadAt({5, 5}), "");
  EXPECT_THAT(ReadAt({400, 250}), HasSubstr(" mm/h"));
  ChartViewOptions options = View.Options();
  options.Kind = ChartViewKind::TimeDepth;
  options.HyetographMinutes = 30;
  View.SetOptions(options);
  EXPECT_THAT(ReadAt({400, 250}), StartsWith("06/03/1998 0"));
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(&View, &leave);
  EXPECT_EQ(ReadOut, "");
  for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Down, Qt::Key_PageDown}) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&View, &event);
    EXPECT_FALSE(event.isAccepted());
  }
}

TEST_F(ChartViewTest, DrawsOnceForEachChangeAndNeverForThePointer) {
  QApplication::processEvents();
  const int drawn = View.Drawings();
  for (int x = 100; x < 700; x += 10) ReadAt({x, 200});
  View.repaint();
  EXPECT_EQ(View.Drawings(), drawn);
  ChartViewOptions options = View.Options();
  options.Grid = false;
  View.SetOptions(options);
  View.repaint();
  EXPECT_EQ(View.Drawings(), drawn + 1);
  const QImage with = View.grab().toImage();
  View.Show(nullptr);
  View.repaint();
  EXPECT_NE(View.grab().toImage(), with);
  EXPECT_EQ(ReadAt({400, 250}), "");
}

TEST_F(ChartViewTest, PrintsBothWaysRoundAndTellsOfAPageThatFails) {
  const test::TempFolder folder;
  const auto draw = [this](Surface& surface) { View.DrawOn(surface); };
  for (const auto orientation : {QPageLayout::Portrait, QPageLayout::Landscape}) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(hyetex::ToQt(folder / "a.pdf"));
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(orientation);
    EXPECT_TRUE(DrawOn(printer, draw));
    const std::string pdf = test::ReadFile(folder / "a.pdf");
    EXPECT_THAT(pdf, HasSubstr(orientation == QPageLayout::Portrait ? "[0 0 595.000000 842.000000]"
                                                                    : "[0 0 842.000000 595.000000]"));
    EXPECT_GT(pdf.size(), 5000U);
  }
  QPdfWriter nowhere(hyetex::ToQt(folder / "no/a.pdf"));
  EXPECT_FALSE(DrawOn(nowhere, draw));
}

}  // namespace
}  // namespace hyetex
