// Sessions on a scan in the real program: a picture of a page whose places are known.
#pragma once

#include <QImage>
#include <QPainter>
#include <cmath>

#include "digitizing/windows/desk_scan.h"
#include "scans/drawn_scan.h"
#include "scans/scan_damage.h"
#include "scans/scan_file.h"
#include "staging/lists/lists.h"
#include "tracing/rain.h"
#include "windows/mouse_fixture.h"

namespace hyetex::test {

class ScanDesk : public MouseDesk {
 protected:
  static constexpr int Width = 1600, Height = 800;
  static constexpr double Dpi = 200;

  /// A page with grid and pen line, and what the file says of its resolution.
  std::string WriteScan(const char* name, double dpi = Dpi, QColor paper = Qt::white) {
    QImage image(Width, Height, QImage::Format_RGB32);
    image.fill(paper);
    QPainter painter(&image);
    painter.setPen(QColor(240, 150, 120));
    for (int x = 100; x <= 1500; x += 50) painter.drawLine(x, 60, x, 700);
    for (int y = 100; y <= 700; y += 60) painter.drawLine(100, y, 1500, y);
    painter.setPen(QPen(QColor(40, 30, 110), 4));
    painter.drawPolyline(QPolygon({{100, 700}, {500, 500}, {900, 470}, {1300, 200}}));
    painter.end();
    image.setDotsPerMeterX(qRound(dpi / 0.0254));
    image.setDotsPerMeterY(qRound(dpi / 0.0254));
    const std::string path = folder_ / name;
    EXPECT_TRUE(image.save(QString::fromStdString(path)));
    return path;
  }
  /// A drawn scan of a day's known rain, with this damage.
  DrawnScan DrawDay(const char* name, const char* damage = "") {
    std::vector<RainPoint> rain{{0, 0}};
    for (int i = 1; i <= 40; ++i) rain.push_back({2 + i * 0.45, rain.back().Rain + 0.1 * (i % 9)});
    rain.push_back({24, rain.back().Rain});
    return DrawDayOf(rain, name, damage);
  }
  DrawnScan DrawDayOf(const std::vector<RainPoint>& rain, const char* name, const char* damage = "") {
    RainChart chart;
    chart.Paper = ReadLists(folder_.Path())->ChartTypes[0];
    ScanStyle style;
    style.Dpi = 150;
    EXPECT_TRUE(*damage == 0 || Damage(style, damage, 7));
    auto drawn = DrawScan(*DrawRain(rain, chart), style, 7);
    EXPECT_TRUE(drawn) << drawn.error();
    WriteFile(folder_ / name, *EncodeScan(drawn->Image, name, style.Dpi));
    return *std::move(drawn);
  }
  /// Chooses a scan for the first chart of Hill Farm.
  void ChooseScan(const std::string& path) {
    OpenTasks();
    Click(Tasks(), "optDig5");
    dialogs_.Opened = {path};
    Click(Tasks(), "cmdScan");
  }
  void OpenScan(const std::string& path) {
    ChooseScan(path);
    Click(Tasks(), "cmdActivate");
    ASSERT_TRUE(IsOpen());
    for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
  }
  DeskScan& Scan() { return *Window().findChild<DeskScan*>(); }
  std::string Label(const char* name) { return Part<QLabel>(name).text().toStdString(); }
  /// All of it, of which the label shows what there is room for.
  std::string ScanState() { return Find<QLabel>(Tasks(), "labDetect").toolTip().toStdString(); }

  /// A press on a place of the image, in pixels.
  void PressPixel(double px, double py) {
    const auto [x, y] = TabletPosition(Scan().Placement(), px, py);
    MousePress(x, y);
  }
  /// The colour on the screen where a place of the image is seen.
  QColor ColourAt(double px, double py) {
    const auto [x, y] = TabletPosition(Scan().Placement(), px, py);
    return Graph().grab().toImage().pixelColor(Seen(x, y).toPoint());
  }
};

}  // namespace hyetex::test
