#include "platform/controls.h"

#include <QFocusEvent>

namespace hyetex {
namespace {

class FocusSelects : public QObject {
 public:
  explicit FocusSelects(QLineEdit* box) : QObject(box), box_(box) { box->installEventFilter(this); }

  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() != QEvent::FocusIn) return false;
    // At once, so that no key comes before it; but a click that brings the focus also sets the cursor, after
    // it.
    box_->selectAll();
    if (static_cast<QFocusEvent*>(event)->reason() == Qt::MouseFocusReason)
      QMetaObject::invokeMethod(box_, &QLineEdit::selectAll, Qt::QueuedConnection);
    return false;
  }

 private:
  QLineEdit* box_;
};

}  // namespace

void SelectAllOnFocus(QLineEdit* box) { new FocusSelects(box); }

}  // namespace hyetex
