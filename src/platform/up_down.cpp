#include "platform/up_down.h"

#include <QKeyEvent>
#include <QToolButton>
#include <QVBoxLayout>
#include <utility>

#include "platform/qt_text.h"

namespace hyetex {

UpDown::UpDown(QLineEdit* box, std::function<std::string(std::string_view, int)> step, QWidget* parent)
    : QWidget(parent), box_(box), step_(std::move(step)) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  for (const int direction : {1, -1}) {
    auto* arrow = new QToolButton;
    arrow->setArrowType(direction > 0 ? Qt::UpArrow : Qt::DownArrow);
    arrow->setToolTip(direction > 0 ? "More" : "Less");
    arrow->setAccessibleName(arrow->toolTip());
    arrow->setAutoRepeat(true);
    arrow->setFocusPolicy(Qt::NoFocus);  // from the keyboard the box itself steps
    // Together as high as the box.
    arrow->setFixedSize(box->sizeHint().height(), box->sizeHint().height() / 2);
    connect(arrow, &QToolButton::clicked, this, [this, direction] { Step(direction); });
    layout->addWidget(arrow);
  }
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  box_->installEventFilter(this);
}

void UpDown::Step(int direction) {
  box_->setText(ToQt(step_(FromQt(box_->text()), direction)));
  emit Stepped();
}

bool UpDown::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Up || key == Qt::Key_Down) {
      Step(key == Qt::Key_Up ? 1 : -1);
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace hyetex
