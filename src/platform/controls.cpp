#include "platform/controls.h"

#include <QEvent>

namespace hyetex {
namespace {

class FocusSelects : public QObject {
 public:
  explicit FocusSelects(QLineEdit* box) : QObject(box), box_(box) { box->installEventFilter(this); }

  bool eventFilter(QObject*, QEvent* event) override {
    // After the event, since the click that brings the focus also sets the cursor.
    if (event->type() == QEvent::FocusIn)
      QMetaObject::invokeMethod(box_, &QLineEdit::selectAll, Qt::QueuedConnection);
    return false;
  }

 private:
  QLineEdit* box_;
};

}  // namespace

void SelectAllOnFocus(QLineEdit* box) { new FocusSelects(box); }

}  // namespace hyetex
