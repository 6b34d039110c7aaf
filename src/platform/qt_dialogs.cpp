#include "platform/qt_dialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>

#include "platform/qt_text.h"

namespace hyetex {
namespace {

QMessageBox::Icon IconOf(BoxIcon icon) {
  switch (icon) {
    case BoxIcon::None:
      return QMessageBox::NoIcon;
    case BoxIcon::Information:
      return QMessageBox::Information;
    case BoxIcon::Question:
      return QMessageBox::Question;
    case BoxIcon::Warning:
      return QMessageBox::Warning;
    case BoxIcon::Critical:
      return QMessageBox::Critical;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons ButtonsOf(BoxButtons buttons) {
  switch (buttons) {
    case BoxButtons::Ok:
      return QMessageBox::Ok;
    case BoxButtons::OkCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case BoxButtons::YesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case BoxButtons::YesNoCancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
  }
  return QMessageBox::Ok;
}

std::optional<std::string> Chosen(const QString& path) {
  if (path.isEmpty()) return std::nullopt;
  return FromQt(QDir::toNativeSeparators(path));
}

}  // namespace

BoxAnswer QtDialogs::MessageBox(const std::string& title, const std::string& text, BoxButtons buttons,
                                BoxIcon icon) {
  QMessageBox box(IconOf(icon), ToQt(title), ToQt(text), ButtonsOf(buttons), QApplication::activeWindow());
  box.setTextFormat(Qt::PlainText);
  switch (box.exec()) {
    case QMessageBox::Yes:
      return BoxAnswer::Yes;
    case QMessageBox::No:
      return BoxAnswer::No;
    case QMessageBox::Cancel:
      return BoxAnswer::Cancel;
    default:
      return BoxAnswer::Ok;
  }
}

std::optional<std::string> QtDialogs::InputBox(const std::string& title, const std::string& prompt,
                                               const std::string& initial) {
  QInputDialog box(QApplication::activeWindow());
  box.setWindowTitle(ToQt(title));
  box.setLabelText(ToQt(prompt));
  box.setTextValue(ToQt(initial));
  for (QLabel* label : box.findChildren<QLabel*>()) {
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
  }
  box.resize(qMax(420, box.sizeHint().width()), box.sizeHint().height());
  if (box.exec() != QDialog::Accepted) return std::nullopt;
  return FromQt(box.textValue());
}

std::optional<std::string> QtDialogs::ChooseFolder(const std::string& title, const std::string& start) {
  return Chosen(QFileDialog::getExistingDirectory(QApplication::activeWindow(), ToQt(title), ToQt(start)));
}

std::optional<std::string> QtDialogs::ChooseFileToSave(const std::string& title, const std::string& start) {
  return Chosen(QFileDialog::getSaveFileName(QApplication::activeWindow(), ToQt(title), ToQt(start)));
}

}  // namespace hyetex
