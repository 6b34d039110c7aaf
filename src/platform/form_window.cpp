#include "platform/form_window.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <utility>

#include "platform/controls.h"
#include "platform/places.h"

namespace hyetex {

FormWindow::FormWindow(const char* name, WindowId id, Desk& desk, Settings& settings, QWidget* parent)
    : QWidget(parent), desk_(desk), settings_(settings), id_(id) {
  setObjectName(QString::fromLatin1(name));
}

void FormWindow::SetKeyButtons(QPushButton* accept, QPushButton* cancel) {
  // Return on a button that has the focus presses that one.
  for (QPushButton* button : findChildren<QPushButton*>()) button->setAutoDefault(true);
  if (accept != nullptr) accept->setDefault(true);
  accept_ = accept;
  cancel_ = cancel;
}

void FormWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  // Only now does the window stand in the shell, inside which its place counts.
  if (std::exchange(placed_, true)) return;
  if (RemembersSize()) RestoreSize(*this, settings_);
  RestorePlace(*this, settings_);
}

void FormWindow::Leave() {
  leaves_ = true;
  close();
}

void FormWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  if (!closed_ && !leaves_ && !MayLeave()) return event->ignore();
  if (std::exchange(closed_, true)) return;
  StorePlace(*this, settings_);
  if (RemembersSize()) StoreSize(*this, settings_);
  Closing();
  desk_.Closed(id_);
}

void FormWindow::keyPressEvent(QKeyEvent* event) {
  QPushButton* button = nullptr;
  if (IsReturn(*event)) button = accept_;
  if (event->key() == Qt::Key_Escape) button = cancel_;
  if (button == nullptr) return QWidget::keyPressEvent(event);
  button->click();
}

}  // namespace hyetex
