#include "platform/places.h"

#include <QGuiApplication>
#include <QMdiSubWindow>
#include <QScreen>

#include "core/definitions.h"
#include "core/numbers.h"
#include "platform/qt_text.h"

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

std::string Key(const QWidget& window, const char* side) { return FromQt(window.objectName()) + side; }

int ReadPixels(const std::string& folder, const std::string& key) {
  return qRound(LeadingFloat(GetDefinition(folder, key)) / PlaceUnitsPerPixel);
}

}  // namespace

QPoint BroughtInside(const QRect& frame, const QRect& area) {
  const int right = area.left() + area.width() - frame.width(),
            bottom = area.top() + area.height() - frame.height();
  return {qMax(area.left(), qMin(frame.left(), right)), qMax(area.top(), qMin(frame.top(), bottom))};
}

void RestorePlace(QWidget& window, const std::string& programFolder) {
  QWidget& frame = FrameOf(window);
  const QPoint place(ReadPixels(programFolder, Key(window, "-Left")),
                     ReadPixels(programFolder, Key(window, "-Top")));
  // A frame that was never shown has its hint's size, not its own.
  const QSize size =
      frame.testAttribute(Qt::WA_Resized) || frame.isVisible() ? frame.size() : frame.sizeHint();
  frame.move(BroughtInside(QRect(place, size), AreaFor(frame, place)));
}

void StorePlace(const QWidget& window, const std::string& programFolder) {
  const QPoint place = FrameOf(const_cast<QWidget&>(window)).pos();
  // A place that cannot be kept is not worth a message.
  (void)SetDefinition(programFolder, Key(window, "-Top"),
                      ShortText(static_cast<float>(place.y() * PlaceUnitsPerPixel)));
  (void)SetDefinition(programFolder, Key(window, "-Left"),
                      ShortText(static_cast<float>(place.x() * PlaceUnitsPerPixel)));
}

}  // namespace hyetex
