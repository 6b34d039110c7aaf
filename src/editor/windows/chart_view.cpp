#include "editor/windows/chart_view.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QRubberBand>
#include <algorithm>
#include <cmath>
#include <utility>

#include "graph/draw.h"
#include "platform/qt_surface.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr double ZoomStep = 1.25;  // for each notch of the wheel
constexpr double Notch = 120;

}  // namespace

ChartView::ChartView(QWidget* parent)
    : QWidget(parent), shpSelect_(new QRubberBand(QRubberBand::Rectangle, this)) {
  setObjectName(QStringLiteral("picPreview"));
  setAccessibleName(QStringLiteral("Chart"));
  shpSelect_->setObjectName(QStringLiteral("shpSelect"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setContextMenuPolicy(Qt::PreventContextMenu);  // the right button moves the view
}

ChartView::~ChartView() = default;

// ---- What is shown

void ChartView::Show(std::shared_ptr<const ChartReading> reading) {
  reading_ = std::move(reading);
  EndDrag();
  SetZoom(std::nullopt);
  Remake();
}

void ChartView::SetOptions(const ChartViewOptions& options) {
  const bool zoomed = options_.Zoom.has_value(), otherUnits = options.Kind != options_.Kind;
  options_ = options;
  if (otherUnits) options_.Zoom.reset();
  EndDrag();
  Remake();
  if (options_.Zoom.has_value() != zoomed) emit ZoomChanged(!zoomed);
}

void ChartView::SetSelecting(bool on) {
  selecting_ = on;
  EndDrag();
  if (!on) ResetView();
}

void ChartView::ResetView() { SetZoom(std::nullopt); }

void ChartView::Remake() {
  graph_ = reading_ ? MakeChartGraph(*reading_, options_) : Graph{};
  readOut_ = reading_ ? ChartReadOut(*reading_, options_.Kind) : ChartReadOut();
  outdated_ = true;
  update();
  TellReadOut();
}

void ChartView::SetZoom(const std::optional<GraphWindow>& zoom) {
  if (zoom == options_.Zoom) return;
  const bool changes = zoom.has_value() != options_.Zoom.has_value();
  options_.Zoom = graph_.Zoom = zoom;
  outdated_ = true;
  update();
  TellReadOut();
  if (changes) emit ZoomChanged(zoom.has_value());
}

// ---- Drawing

double ChartView::Points(double pixels) const { return pixels / UnitsPerPoint(*this); }

template <typename Use>
void ChartView::OnPicture(Use&& use) {
  QPainter painter(&picture_);
  painter.setRenderHint(QPainter::Antialiasing);
  const double scale = UnitsPerPoint(*this);
  painter.scale(scale, scale);
  QtSurface surface(painter, QRectF(0, 0, Points(width()), Points(height())), Qt::white);
  use(surface);
}

void ChartView::LayOutAnew() {
  const QSize pixels = (QSizeF(size()) * devicePixelRatioF()).toSize();
  if (!outdated_ && picture_.size() == pixels && picture_.devicePixelRatio() == devicePixelRatioF()) return;
  if (picture_.size() != pixels) picture_ = QPixmap(pixels);
  outdated_ = false;
  if (picture_.isNull()) return;
  picture_.setDevicePixelRatio(devicePixelRatioF());
  OnPicture([this](QtSurface& surface) {
    layout_ = LayOut(graph_, surface);
    Draw(graph_, layout_, surface);
  });
  ++drawings_;
}

void ChartView::paintEvent(QPaintEvent*) {
  LayOutAnew();
  QPainter painter(this);
  painter.drawPixmap(0, 0, picture_);
  if (hasFocus()) {
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
  }
}

void ChartView::DrawOn(Surface& surface) const { Draw(graph_, surface); }

// ---- The pointer

GraphPoint ChartView::DataAt(QPointF pixels) {
  LayOutAnew();
  const Rect& plot = layout_.Plot;
  return layout_.ToData(std::clamp(Points(pixels.x()), plot.Left, plot.Right()),
                        std::clamp(Points(pixels.y()), plot.Top, plot.Bottom()));
}

void ChartView::TellReadOut() {
  if (!pointerIsInside_) {
    emit ReadOutChanged({});
    return;
  }
  LayOutAnew();
  emit ReadOutChanged(hyetex::ToQt(readOut_.At(layout_, Points(pointer_.x()), Points(pointer_.y()))));
}

void ChartView::BeginMove(QPointF at) {
  LayOutAnew();
  if (!layout_.HasPlot) return;
  drag_ = Drag::Moving;
  dragFrom_ = at;
  movedFrom_ = ViewOf(graph_);
  ShowCursor();
}

void ChartView::EndDrag() {
  drag_ = Drag::None;
  shpSelect_->hide();
  ShowCursor();
}

void ChartView::ShowCursor() {
  if (drag_ == Drag::Moving)
    setCursor(Qt::ClosedHandCursor);
  else if (spaceIsDown_)
    setCursor(Qt::OpenHandCursor);
  else if (selecting_)
    setCursor(Qt::CrossCursor);
  else
    unsetCursor();
}

void ChartView::mousePressEvent(QMouseEvent* event) {
  if (drag_ != Drag::None) return;
  const bool left = event->button() == Qt::LeftButton;
  if (left ? spaceIsDown_ : event->button() == Qt::RightButton || event->button() == Qt::MiddleButton) {
    BeginMove(event->position());
  } else if (left && selecting_) {
    drag_ = Drag::Selecting;
    dragFrom_ = event->position();
    shpSelect_->setGeometry(QRect(dragFrom_.toPoint(), QSize()));
    shpSelect_->show();
  }
}

void ChartView::mouseMoveEvent(QMouseEvent* event) {
  pointer_ = event->position();
  pointerIsInside_ = true;
  if (drag_ == Drag::Selecting) {
    shpSelect_->setGeometry(QRect(dragFrom_.toPoint(), pointer_.toPoint()).normalized());
  } else if (drag_ == Drag::Moving) {
    const double perX = (movedFrom_.ToX - movedFrom_.FromX) / layout_.Plot.Width;
    const double perY = (movedFrom_.ToY - movedFrom_.FromY) / layout_.Plot.Height;
    const double dx = -Points(pointer_.x() - dragFrom_.x()) * perX;
    const double dy = Points(pointer_.y() - dragFrom_.y()) * perY;
    if (options_.Zoom)
      SetZoom(KeepInside(
          graph_, {movedFrom_.FromX + dx, movedFrom_.ToX + dx, movedFrom_.FromY + dy, movedFrom_.ToY + dy}));
  }
  TellReadOut();
}

void ChartView::mouseReleaseEvent(QMouseEvent* event) {
  if (drag_ == Drag::Selecting && event->button() == Qt::LeftButton) {
    const QRectF drawn = QRectF(dragFrom_, event->position()).normalized();
    EndDrag();
    if (drawn.width() < QApplication::startDragDistance() / 2.0 ||
        drawn.height() < QApplication::startDragDistance() / 2.0)
      return;  // a click; the rectangle is still to come
    LayOutAnew();
    const auto window = layout_.WindowOf(
        {Points(drawn.left()), Points(drawn.top()), Points(drawn.width()), Points(drawn.height())});
    if (!window) return;
    selecting_ = false;
    ShowCursor();
    SetZoom(KeepInside(graph_, *window));
  } else if (drag_ == Drag::Moving) {
    EndDrag();
  }
}

void ChartView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton)
    ResetView();
  else
    mousePressEvent(event);
}

void ChartView::wheelEvent(QWheelEvent* event) {
  event->accept();
  if (drag_ == Drag::None) ZoomBy(event->angleDelta().y() / Notch, event->position());
}

void ChartView::ZoomBy(double steps, QPointF at) {
  const GraphPoint under = DataAt(at);
  if (!layout_.HasPlot || steps == 0) return;
  std::optional<GraphWindow> zoomed = ZoomAround(graph_, std::pow(ZoomStep, steps), under.X, under.Y);
  if (zoomed) {
    // Labels of another width move the plot, and what is under the pointer is to stay there all the same.
    const std::optional<GraphWindow> now = std::exchange(graph_.Zoom, zoomed);
    GraphLayout layout;
    OnPicture([&](QtSurface& surface) { layout = LayOut(graph_, surface); });
    if (layout.HasPlot) {
      const GraphPoint there = layout.ToData(Points(at.x()), Points(at.y()));
      const double dx = under.X - there.X, dy = under.Y - there.Y;
      zoomed =
          KeepInside(graph_, {zoomed->FromX + dx, zoomed->ToX + dx, zoomed->FromY + dy, zoomed->ToY + dy});
    }
    graph_.Zoom = now;
  }
  SetZoom(zoomed);
}

void ChartView::leaveEvent(QEvent* event) {
  QWidget::leaveEvent(event);
  pointerIsInside_ = false;
  TellReadOut();
}

// ---- Keys

void ChartView::keyPressEvent(QKeyEvent* event) {
  const QPointF middle = QRectF(rect()).center();
  if (event->key() == Qt::Key_Home) {
    ResetView();
  } else if (event->key() == Qt::Key_Space) {
    spaceIsDown_ = true;
    ShowCursor();
  } else if (event->key() == Qt::Key_Plus || event->matches(QKeySequence::ZoomIn)) {
    ZoomBy(1, middle);
  } else if (event->key() == Qt::Key_Minus || event->matches(QKeySequence::ZoomOut)) {
    ZoomBy(-1, middle);
  } else if (event->key() == Qt::Key_Escape && drag_ != Drag::None) {
    if (drag_ == Drag::Moving && options_.Zoom) SetZoom(movedFrom_);
    EndDrag();
  } else {
    QWidget::keyPressEvent(event);
  }
}

void ChartView::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Space && !event->isAutoRepeat()) {
    spaceIsDown_ = false;
    ShowCursor();
  } else {
    QWidget::keyReleaseEvent(event);
  }
}

void ChartView::focusOutEvent(QFocusEvent* event) {
  spaceIsDown_ = false;
  ShowCursor();
  QWidget::focusOutEvent(event);
}

}  // namespace hyetex
