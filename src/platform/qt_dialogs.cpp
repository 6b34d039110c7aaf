#include "platform/qt_dialogs.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QVBoxLayout>

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
    case BoxButtons::CancelUnlessOk:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case BoxButtons::YesNo:
    case BoxButtons::NoUnlessYes:
      return QMessageBox::Yes | QMessageBox::No;
    case BoxButtons::YesNoCancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
  }
  return QMessageBox::Ok;
}

QMessageBox::StandardButton DefaultOf(BoxButtons buttons) {
  switch (buttons) {
    case BoxButtons::Ok:
    case BoxButtons::OkCancel:
      return QMessageBox::Ok;
    case BoxButtons::YesNo:
    case BoxButtons::YesNoCancel:
      return QMessageBox::Yes;
    case BoxButtons::NoUnlessYes:
      return QMessageBox::No;
    case BoxButtons::CancelUnlessOk:
      return QMessageBox::Cancel;
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
  box.setDefaultButton(DefaultOf(buttons));
  // Without a Cancel it is No that leaves things as they are.
  if (box.button(QMessageBox::Cancel) == nullptr && box.button(QMessageBox::No) != nullptr)
    box.setEscapeButton(QMessageBox::No);
  // As wide as its title, with what a frame puts around that.
  if (auto* layout = qobject_cast<QGridLayout*>(box.layout())) {
    const int width = box.fontMetrics().horizontalAdvance(box.windowTitle()) + 8 * box.fontMetrics().height();
    layout->addItem(new QSpacerItem(width, 0), layout->rowCount(), 0, 1, layout->columnCount());
  }
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

std::optional<std::string> QtDialogs::PasswordBox(const std::string& title, const std::string& prompt,
                                                  const std::string& initial) {
  QDialog box(QApplication::activeWindow());
  box.setWindowTitle(ToQt(title));
  auto* label = new QLabel(ToQt(prompt));
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  auto* typed = new QLineEdit(ToQt(initial));
  label->setBuddy(typed);
  typed->setEchoMode(QLineEdit::Password);
  typed->selectAll();
  // What one types oneself may be looked at; what is stored may not.
  auto* show = new QCheckBox(QObject::tr("&Show what is typed"));
  show->setEnabled(initial.empty());
  QObject::connect(typed, &QLineEdit::textEdited, show, [=](const QString& text) {
    if (show->isEnabled() || text.size() > 1) return;
    show->setEnabled(true);
    typed->setText(text);  // and no way back to what was stored
  });
  QObject::connect(show, &QCheckBox::toggled, typed,
                   [=](bool shown) { typed->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password); });
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  QObject::connect(buttons, &QDialogButtonBox::accepted, &box, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &box, &QDialog::reject);
  auto* all = new QVBoxLayout(&box);
  for (QWidget* part : {static_cast<QWidget*>(label), static_cast<QWidget*>(typed),
                        static_cast<QWidget*>(show), static_cast<QWidget*>(buttons)})
    all->addWidget(part);
  typed->setFocus();
  box.resize(qMax(420, box.sizeHint().width()), box.sizeHint().height());
  if (box.exec() != QDialog::Accepted) return std::nullopt;
  return FromQt(typed->text());
}

std::optional<std::string> QtDialogs::ChooseFolder(const std::string& title, const std::string& start) {
  return Chosen(QFileDialog::getExistingDirectory(QApplication::activeWindow(), ToQt(title), ToQt(start)));
}

std::optional<std::string> QtDialogs::ChooseFileToSave(const std::string& title, const std::string& start) {
  return Chosen(QFileDialog::getSaveFileName(QApplication::activeWindow(), ToQt(title), ToQt(start)));
}

std::optional<std::string> QtDialogs::ChooseFile(const std::string& title, const std::string& start,
                                                 const std::string& filter) {
  return Chosen(
      QFileDialog::getOpenFileName(QApplication::activeWindow(), ToQt(title), ToQt(start), ToQt(filter)));
}

}  // namespace hyetex
