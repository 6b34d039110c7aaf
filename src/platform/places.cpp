#include "platform/places.h"

#include <QGuiApplication>
#include <QMdiSubWindow>
#include <QScreen>

#include "core/numbers.h"
#include "platform/qt_text.h"
#include "platform/units.h"

namespace hyetex {
namespace {

// The shell gives each of its windows a frame; that frame is what moves.
QWidget& FrameOf(QWidget& window) {
  auto* frame = qobject_cast<QMdiSubWindow*>(window.parentWidget());
  return frame ? *frame : window;
}

QRect AreaFor(const QWidget& frame, QPoint place) {
  if (frame.parentWidget() && !frame.isWindow()) return frame.parentWidget()->rect();
  QScreen* screen = QGuiApplication::screenAt(place);
  return (screen ? screen : QGuiApplication::primaryScreen())->availableGeometry();
}

float ToUnits(int pixels) { return static_cast<float>(pixels * UnitsPerPixel); }

}  // namespace

QPoint BroughtInside(const QRect& frame, const QRect& area) {
  const int right = area.left() + area.width() - frame.width(),
            bottom = area.top() + area.height() - frame.height();
  return {qMax(area.left(), qMin(frame.left(), right)), qMax(area.top(), qMin(frame.top(), bottom))};
}

void RestorePlace(QWidget& window, const Settings& settings) {
  QWidget& frame = FrameOf(window);
  const std::string name = FromQt(window.objectName());
  const bool known = settings.Has(setting::PlaceLeft, name) || settings.Has(setting::PlaceTop, name);
  const QPoint place(ToPixels(settings.Get(setting::PlaceLeft, name)),
                     ToPixels(settings.Get(setting::PlaceTop, name)));
  // A frame that was never shown has its hint's size, not its own.
  const QSize size =
      frame.testAttribute(Qt::WA_Resized) || frame.isVisible() ? frame.size() : frame.sizeHint();
  const QRect area = AreaFor(frame, place);
  QRect wanted(place, size);
  if (!known) wanted.moveCenter(area.center());
  frame.move(BroughtInside(wanted, area));
}

void StorePlace(const QWidget& window, Settings& settings) {
  const QWidget& frame = FrameOf(const_cast<QWidget&>(window));
  if (frame.isMaximized() || frame.isMinimized()) return;
  // A place that cannot be kept is not worth a message.
  const std::string name = FromQt(window.objectName());
  (void)settings.Set(setting::PlaceTop, name, ToUnits(frame.y()));
  (void)settings.Set(setting::PlaceLeft, name, ToUnits(frame.x()));
}

void RestoreSize(QWidget& window, const Settings& settings) {
  const std::string kept = settings.Get(setting::PlaceSize, FromQt(window.objectName()));
  const std::size_t comma = kept.find(',');
  if (comma == std::string::npos) return;
  QWidget& frame = FrameOf(window);
  const QSize size(ToPixels(LeadingFloat(kept)), ToPixels(LeadingFloat(kept.substr(comma + 1))));
  if (!size.isEmpty())
    frame.resize(size.boundedTo(AreaFor(frame, {}).size()).expandedTo(frame.minimumSizeHint()));
}

void StoreSize(const QWidget& window, Settings& settings) {
  const QWidget& frame = FrameOf(const_cast<QWidget&>(window));
  if (frame.isMaximized() || frame.isMinimized()) return;
  (void)settings.Set(setting::PlaceSize, FromQt(window.objectName()),
                     ShortText(ToUnits(frame.width())) + "," + ShortText(ToUnits(frame.height())));
}

}  // namespace hyetex
