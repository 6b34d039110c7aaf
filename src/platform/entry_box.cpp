#include "platform/entry_box.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QTabBar>
#include <QToolTip>
#include <utility>

#include "platform/controls.h"
#include "platform/qt_text.h"

namespace hyetex {

EntryBox::EntryBox(Rule rule) : rule_(std::move(rule)) {
  SelectAllOnFocus(this);
  connect(this, &QLineEdit::textChanged, this, [this] {
    if (isMarked_ && !Refusal()) Mark(false);
  });
}

EntryBox::EntryBox(const NumberEntry& entry)
    : EntryBox([entry](std::string_view text) { return CheckNumber(text, entry); }) {}

std::optional<std::string> EntryBox::Refusal() const { return rule_(FromQt(text())); }

void EntryBox::Mark(bool refused) {
  isMarked_ = refused;
  QPalette colours;  // the window's own where it says nothing
  if (refused) {
    colours.setColor(QPalette::Base, QColor(255, 224, 224));
    colours.setColor(QPalette::Text, Qt::black);
  }
  setPalette(colours);
}

bool EntryBox::event(QEvent* event) {
  const bool asks = event->type() == QEvent::ToolTip && isMarked_;
  const bool leaves = event->type() == QEvent::FocusOut && isVisible();
  const bool done = !asks && QLineEdit::event(event);
  if (!asks && !leaves) return done;
  const auto refusal = Refusal();
  Mark(refusal.has_value());
  // Behind the events that bring the focus elsewhere, which would hide it.
  if (refusal) QMetaObject::invokeMethod(this, &EntryBox::TellRefusal, Qt::QueuedConnection);
  return done || asks;
}

void EntryBox::TellRefusal() {
  const auto refusal = Refusal();
  if (refusal && isVisible()) QToolTip::showText(mapToGlobal(rect().bottomLeft()), ToQt(*refusal), this);
}

bool RefusesEntries(QWidget& window, Dialogs& dialogs, const std::string& title) {
  for (EntryBox* box : window.findChildren<EntryBox*>()) {
    const auto refusal = box->isEnabled() && box->isVisibleTo(&window) ? box->Refusal() : std::nullopt;
    if (!refusal) continue;
    box->setFocus();
    dialogs.MessageBox(title, *refusal, BoxButtons::Ok, BoxIcon::Warning);
    return true;
  }
  return false;
}

namespace {

class WheelGuard : public QObject {
 public:
  WheelGuard() { qApp->installEventFilter(this); }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Wheel && event->type() != QEvent::Polish) return false;
    auto* box = qobject_cast<QWidget*>(watched);
    if (!IsBox(box)) return false;
    if (event->type() == QEvent::Polish) {
      if (box->focusPolicy() == Qt::WheelFocus) box->setFocusPolicy(Qt::StrongFocus);
      return false;
    }
    const QWidget* focus = QApplication::focusWidget();
    if (focus != nullptr && (focus == box || box->isAncestorOf(focus))) return false;
    event->ignore();  // and so it goes on to what is around the box
    return true;
  }

 private:
  static bool IsBox(const QWidget* widget) {
    return qobject_cast<const QComboBox*>(widget) || qobject_cast<const QAbstractSpinBox*>(widget) ||
           qobject_cast<const QTabBar*>(widget);
  }
};

}  // namespace

std::unique_ptr<QObject> KeepWheelFromBoxes() { return std::make_unique<WheelGuard>(); }

}  // namespace hyetex
