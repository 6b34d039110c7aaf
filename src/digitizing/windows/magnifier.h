// What lies around the cursor, 4 to 8 times as large: of a scan its pixels, of an empty page the view. It
// stands beside the chart view, so that it hides nothing of what it shows.
#pragma once

#include <QImage>
#include <QWidget>
#include <functional>

#include "digitizing/desk_layout.h"

namespace hyetex {

class Magnifier : public QWidget {
  Q_OBJECT

 public:
  static constexpr int Least = 4, Most = 8;

  /// `paint` fills a picture with what a view shows.
  Magnifier(std::function<void(QImage&, const DeskLayout&)> paint, QWidget* parent = nullptr);

  int Times() const { return times_; }
  /// The next of its sizes; behind the largest comes the smallest.
  void Step();
  /// Shows a tablet position. `unitsPerPixel`: report units for each pixel that is to be magnified.
  void ShowAt(double x, double y, double unitsPerPixel);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  std::function<void(QImage&, const DeskLayout&)> paint_;
  QImage picture_;
  int times_ = Least + 2;
  double x_ = 0, y_ = 0, unitsPerPixel_ = 1;
};

}  // namespace hyetex
