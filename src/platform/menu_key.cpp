#include "platform/menu_key.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QKeyEvent>

namespace hyetex {
namespace {

class MenuKey : public QObject {
 public:
  explicit MenuKey(QAbstractItemView* view) : QObject(view), view_(view) { view->installEventFilter(this); }

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::KeyPress) return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_F10 || key->modifiers() != Qt::ShiftModifier) return false;
    const QPoint at = view_->visualRect(view_->currentIndex()).center();
    QContextMenuEvent menu(QContextMenuEvent::Keyboard, at, view_->viewport()->mapToGlobal(at));
    QCoreApplication::sendEvent(view_->viewport(), &menu);
    return true;
  }

 private:
  QAbstractItemView* view_;
};

}  // namespace

void AddMenuKey(QAbstractItemView* view) { new MenuKey(view); }

}  // namespace hyetex
