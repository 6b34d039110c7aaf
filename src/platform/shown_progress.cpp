#include "platform/shown_progress.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <algorithm>

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

// Of all menus only the entry that ends the program can be reached.
bool LeadsOut(const QObject* watched, const QEvent& event) {
  const auto isOut = [](const QAction* action) { return action->menuRole() == QAction::QuitRole; };
  if (const auto* action = qobject_cast<const QAction*>(watched)) return isOut(action);
  const auto* menu = qobject_cast<const QMenu*>(watched);
  const auto* bar = qobject_cast<const QMenuBar*>(watched);
  if (menu == nullptr && bar == nullptr) return false;
  const QAction* meant = menu ? menu->activeAction() : bar->activeAction();
  QKeySequence letter;
  if (const auto* mouse = dynamic_cast<const QMouseEvent*>(&event)) {
    const QPoint at = mouse->position().toPoint();
    meant = menu ? menu->actionAt(at) : bar->actionAt(at);
  } else if (const auto* shortcut = dynamic_cast<const QShortcutEvent*>(&event)) {
    letter = shortcut->key();
  } else if (const auto* key = dynamic_cast<const QKeyEvent*>(&event);
             key && !key->text().trimmed().isEmpty()) {
    letter = QKeySequence(Qt::ALT | static_cast<Qt::Key>(key->key()));
  }
  if (!letter.isEmpty()) {
    const QList<QAction*> actions = menu ? menu->actions() : bar->actions();
    const auto named = std::ranges::find(
        actions, letter, [](const QAction* action) { return QKeySequence::mnemonic(action->text()); });
    if (named == actions.end()) return false;
    meant = *named;
  }
  return meant == nullptr || meant->menu() != nullptr || isOut(meant);
}

/// Closes a frame when it goes.
struct ClosedBehind : QObject {
  explicit ClosedBehind(QWidget* frame) : Frame(frame) {}
  ~ClosedBehind() override {
    if (Frame) Frame->close();
  }
  QPointer<QWidget> Frame;
};

}  // namespace

ShownProgress::ShownProgress(QProgressBar& bar, QPushButton& cancel,
                             std::function<void(const std::string&)> tell)
    : bar_(bar), cancel_(cancel), caption_(cancel.text()), tell_(std::move(tell)) {
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
  if (closing_ == nullptr) return;
  cancel_.setText(caption_);
  // A deferred deletion waits for the loops of all boxes that are shown from here on.
  closing_->deleteLater();
}

void ShownProgress::StopAndClose(QWidget& frame) {
  cancelled_ = true;
  if (closing_ == nullptr) closing_ = new ClosedBehind(&frame);
  cancel_.setEnabled(false);
  cancel_.setText(tr("Stopping, then the program ends"));
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
      QApplication::activeModalWidget() != nullptr || LeadsOut(watched, *event))
    return false;
  if (event->type() == QEvent::Close) {
    auto* widget = qobject_cast<QWidget*>(watched);
    if (widget != nullptr && widget->windowType() == Qt::Popup) return false;
    event->ignore();
    if (widget != nullptr && widget->isWindow()) StopAndClose(*widget);
  }
  if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
    cancelled_ = true;
  return true;
}

}  // namespace hyetex
