#include "graph/windows/graph_view.h"

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

GraphView::GraphView(QWidget* parent)
    : QWidget(parent), shpSelect_(new QRubberBand(QRubberBand::Rectangle, this)) {
  shpSelect_->setObjectName(QStringLiteral("shpSelect"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setContextMenuPolicy(Qt::PreventContextMenu);  // the right button moves the view
}

GraphView::~GraphView() = default;

// ---- What is shown

void GraphView::ShowGraph(Graph graph) {
  const bool zoomed = graph_.Zoom.has_value();
  graph_ = std::move(graph);
  EndDrag();
  outdated_ = true;
  update();
  TellReadOut();
  if (graph_.Zoom.has_value() != zoomed) emit ZoomChanged(!zoomed);
}

const GraphLayout& GraphView::Layout() {
  LayOutAnew();
  return layout_;
}

void GraphView::SetSelecting(bool on) {
  selecting_ = on;
  EndDrag();
  if (!on) ResetView();
}

void GraphView::ResetView() { SetZoom(std::nullopt); }

void GraphView::SetFrame(const std::optional<GraphSpan>& framed) {
  framed_ = framed;
  update();
}

std::string GraphView::ReadOutAt(const GraphLayout&, double, double) { return {}; }

void GraphView::SetZoom(const std::optional<GraphWindow>& zoom) {
  if (zoom == graph_.Zoom) return;
  const bool changes = zoom.has_value() != graph_.Zoom.has_value();
  graph_.Zoom = zoom;
  ZoomTaken(zoom);
  outdated_ = true;
  update();
  TellReadOut();
  if (changes) emit ZoomChanged(zoom.has_value());
}

// ---- Drawing

double GraphView::Points(double pixels) const { return pixels / UnitsPerPoint(*this); }

template <typename Use>
void GraphView::OnPicture(Use&& use) {
  QPainter painter(&picture_);
  painter.setRenderHint(QPainter::Antialiasing);
  const double scale = UnitsPerPoint(*this);
  painter.scale(scale, scale);
  QtSurface surface(painter, QRectF(0, 0, Points(width()), Points(height())), Qt::white);
  use(surface);
}

void GraphView::LayOutAnew() {
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

void GraphView::paintEvent(QPaintEvent*) {
  LayOutAnew();
  QPainter painter(this);
  painter.drawPixmap(0, 0, picture_);
  PaintFrame(painter);
  if (hasFocus()) {
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
  }
}

void GraphView::PaintFrame(QPainter& painter) {
  if (!framed_ || !layout_.HasPlot) return;
  const Rect& plot = layout_.Plot;
  const double scale = UnitsPerPoint(*this);
  const double from = std::clamp(layout_.X.ToSurface(framed_->From), plot.Left, plot.Right());
  const double to = std::clamp(layout_.X.ToSurface(framed_->To), plot.Left, plot.Right());
  if (framed_->To < layout_.X.From || framed_->From > layout_.X.To) return;
  // Wide enough to be seen around a thin bar.
  const double wide = std::max((to - from) * scale, 5.0), middle = (from + to) / 2 * scale;
  painter.setPen(QPen(Qt::black, 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(QRectF(middle - wide / 2, plot.Top * scale, wide, plot.Height * scale));
}

void GraphView::DrawOn(Surface& surface) const { Draw(graph_, surface); }

// ---- The pointer

GraphPoint GraphView::DataAt(QPointF pixels) {
  LayOutAnew();
  const Rect& plot = layout_.Plot;
  return layout_.ToData(std::clamp(Points(pixels.x()), plot.Left, plot.Right()),
                        std::clamp(Points(pixels.y()), plot.Top, plot.Bottom()));
}

void GraphView::TellReadOut() {
  if (!pointerIsInside_) {
    emit ReadOutChanged({});
    return;
  }
  LayOutAnew();
  emit ReadOutChanged(hyetex::ToQt(ReadOutAt(layout_, Points(pointer_.x()), Points(pointer_.y()))));
}

void GraphView::BeginMove(QPointF at) {
  LayOutAnew();
  if (!layout_.HasPlot) return;
  drag_ = Drag::Moving;
  dragFrom_ = at;
  movedFrom_ = ViewOf(graph_);
  ShowCursor();
}

void GraphView::EndDrag() {
  drag_ = Drag::None;
  shpSelect_->hide();
  ShowCursor();
}

void GraphView::ShowCursor() {
  if (drag_ == Drag::Moving)
    setCursor(Qt::ClosedHandCursor);
  else if (spaceIsDown_)
    setCursor(Qt::OpenHandCursor);
  else if (selecting_)
    setCursor(Qt::CrossCursor);
  else
    unsetCursor();
}

void GraphView::mousePressEvent(QMouseEvent* event) {
  if (drag_ != Drag::None) return;
  const bool left = event->button() == Qt::LeftButton;
  if (left ? spaceIsDown_ : event->button() == Qt::RightButton || event->button() == Qt::MiddleButton) {
    BeginMove(event->position());
  } else if (left && selecting_) {
    drag_ = Drag::Selecting;
    dragFrom_ = event->position();
    shpSelect_->setGeometry(QRect(dragFrom_.toPoint(), QSize()));
    shpSelect_->show();
  } else if (left) {
    drag_ = Drag::Pressed;
    dragFrom_ = event->position();
  }
}

void GraphView::mouseMoveEvent(QMouseEvent* event) {
  pointer_ = event->position();
  pointerIsInside_ = true;
  if (drag_ == Drag::Selecting) {
    shpSelect_->setGeometry(QRect(dragFrom_.toPoint(), pointer_.toPoint()).normalized());
  } else if (drag_ == Drag::Moving) {
    const double perX = (movedFrom_.ToX - movedFrom_.FromX) / layout_.Plot.Width;
    const double perY = (movedFrom_.ToY - movedFrom_.FromY) / layout_.Plot.Height;
    const double dx = -Points(pointer_.x() - dragFrom_.x()) * perX;
    const double dy = Points(pointer_.y() - dragFrom_.y()) * perY;
    if (graph_.Zoom)
      SetZoom(KeepInside(
          graph_, {movedFrom_.FromX + dx, movedFrom_.ToX + dx, movedFrom_.FromY + dy, movedFrom_.ToY + dy}));
  }
  TellReadOut();
}

void GraphView::mouseReleaseEvent(QMouseEvent* event) {
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
  } else if (drag_ == Drag::Pressed) {
    EndDrag();
    LayOutAnew();
    const Rect& plot = layout_.Plot;
    const double x = Points(dragFrom_.x()), y = Points(dragFrom_.y());
    const bool stayed = (event->position() - dragFrom_).manhattanLength() < QApplication::startDragDistance();
    if (stayed && layout_.HasPlot && x >= plot.Left && x <= plot.Right() && y >= plot.Top &&
        y <= plot.Bottom())
      emit Clicked(layout_.ToData(x, y));
  } else if (drag_ == Drag::Moving) {
    EndDrag();
  }
}

void GraphView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton)
    ResetView();
  else
    mousePressEvent(event);
}

void GraphView::wheelEvent(QWheelEvent* event) {
  event->accept();
  if (drag_ == Drag::None) ZoomBy(event->angleDelta().y() / Notch, event->position());
}

void GraphView::ZoomBy(double steps, QPointF at) {
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

void GraphView::leaveEvent(QEvent* event) {
  QWidget::leaveEvent(event);
  pointerIsInside_ = false;
  TellReadOut();
}

// ---- Keys

void GraphView::keyPressEvent(QKeyEvent* event) {
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
    if (drag_ == Drag::Moving && graph_.Zoom) SetZoom(movedFrom_);
    EndDrag();
  } else {
    QWidget::keyPressEvent(event);
  }
}

void GraphView::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Space && !event->isAutoRepeat()) {
    spaceIsDown_ = false;
    ShowCursor();
  } else {
    QWidget::keyReleaseEvent(event);
  }
}

void GraphView::focusOutEvent(QFocusEvent* event) {
  spaceIsDown_ = false;
  ShowCursor();
  QWidget::focusOutEvent(event);
}

}  // namespace hyetex
