#include "alpha/windows/alpha_plot.h"

#include <QPainter>

#include "graph/draw.h"
#include "platform/qt_surface.h"

namespace hyetex {

AlphaPlot::AlphaPlot() {
  setObjectName(QStringLiteral("picGraph"));
  setAccessibleName(QStringLiteral("Alpha values over the dates of their charts"));
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void AlphaPlot::Show(Graph graph) {
  graph_ = std::move(graph);
  outdated_ = true;
  update();
}

void AlphaPlot::DrawOn(Surface& surface) const { Draw(graph_, surface); }

void AlphaPlot::paintEvent(QPaintEvent*) {
  const QSize pixels = (QSizeF(size()) * devicePixelRatioF()).toSize();
  if (outdated_ || picture_.size() != pixels) {
    outdated_ = false;
    picture_ = QPixmap(pixels);
    picture_.setDevicePixelRatio(devicePixelRatioF());
    QPainter painter(&picture_);
    painter.setRenderHint(QPainter::Antialiasing);
    const double scale = UnitsPerPoint(*this);
    painter.scale(scale, scale);
    QtSurface surface(painter, QRectF(0, 0, width() / scale, height() / scale), Qt::white);
    DrawOn(surface);
  }
  QPainter(this).drawPixmap(0, 0, picture_);
}

}  // namespace hyetex
