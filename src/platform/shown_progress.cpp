#include "platform/shown_progress.h"

#include <QApplication>
#include <QKeyEvent>

#include "core/text.h"

namespace hyetex {
namespace {

// Often enough that windows follow, seldom enough that the work does not wait for them.
constexpr qint64 EventsEveryMs = 40;

bool IsInput(QEvent::Type type) {
  switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::Close:
    case QEvent::Drop:
      return true;
    default:
      return false;
  }
}

}  // namespace

ShownProgress::ShownProgress(QProgressBar& bar, QPushButton& cancel,
                             std::function<void(const std::string&)> tell)
    : bar_(bar), cancel_(cancel), tell_(std::move(tell)) {
  bar_.setRange(0, 0);
  bar_.show();
  cancel_.setEnabled(true);
  cancel_.show();
  connect(&cancel_, &QPushButton::clicked, this, [this] { cancelled_ = true; });
  QApplication::setOverrideCursor(Qt::BusyCursor);
  qApp->installEventFilter(this);
  sinceEvents_.start();
}

ShownProgress::~ShownProgress() {
  qApp->removeEventFilter(this);
  QApplication::restoreOverrideCursor();
  cancel_.hide();
  bar_.hide();
}

bool ShownProgress::Step(std::int64_t done, std::int64_t total, std::string_view what) {
  if (done == 0 || sinceEvents_.elapsed() >= EventsEveryMs) {
    bar_.setRange(0, static_cast<int>(total));
    bar_.setValue(static_cast<int>(done));
    if (tell_) tell_(ShownText(what));
    QCoreApplication::processEvents();
    sinceEvents_.restart();
  }
  return !cancelled_;
}

bool ShownProgress::eventFilter(QObject* watched, QEvent* event) {
  // A question that the work asks takes its answer; nothing else hears of keys and buttons but the one that
  // stops.
  // What comes to a window is on its way to one of the widgets in it.
  if (!IsInput(event->type()) || watched == &cancel_ || watched->isWindowType() ||
      QApplication::activeModalWidget() != nullptr)
    return false;
  if (event->type() == QEvent::Close) event->ignore();
  if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
    cancelled_ = true;
  return true;
}

}  // namespace hyetex
