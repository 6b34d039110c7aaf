// What windows with boxes and buttons are put together from.
#pragma once

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QList>
#include <QWidget>
#include <functional>
#include <string>
#include <string_view>

#include "platform/up_down.h"

namespace hyetex {

/// The control, under the name by which a test and a screen reader find it.
template <typename Control>
Control* Named(Control* control, const char* name) {
  control->setObjectName(QString::fromLatin1(name));
  return control;
}

/// A label whose marked letter leads to its control.
inline QLabel* LabelOf(const char* caption, QWidget* control) {
  auto* label = new QLabel(QObject::tr(caption));
  label->setBuddy(control);
  return label;
}

/// Some controls that stay beside each other.
inline QWidget* Together(const QList<QWidget*>& controls) {
  auto* box = new QWidget;
  auto* layout = new QHBoxLayout(box);
  layout->setContentsMargins(0, 0, 0, 0);
  for (QWidget* control : controls) layout->addWidget(control);
  return box;
}

/// The Tab key goes through the controls in this order.
inline void LinkTabs(const QList<QWidget*>& order) {
  for (qsizetype i = 1; i < order.size(); ++i) QWidget::setTabOrder(order[i - 1], order[i]);
}

/// All of the box's text is selected when it gets the focus, by whatever way.
void SelectAllOnFocus(QLineEdit* box);

inline bool IsReturn(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

/// A box with the arrows that step its number beside it. The arrows' name is `udnName`.
inline QWidget* WithArrows(QLineEdit* box, const char* udnName,
                           std::function<std::string(std::string_view text, int direction)> step) {
  box->setMinimumWidth(box->fontMetrics().horizontalAdvance("00000000"));
  auto* both = new QWidget;
  auto* layout = new QHBoxLayout(both);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  layout->addWidget(box);
  layout->addWidget(Named(new UpDown(box, std::move(step)), udnName));
  return both;
}

}  // namespace hyetex
