#include "staging/windows/frmSettingsText.h"

#include <QCloseEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <utility>

#include "core/definitions.h"
#include "core/files.h"
#include "platform/controls.h"
#include "platform/qt_text.h"

namespace hyetex {

frmSettingsText::frmSettingsText(Desk& desk, Dialogs& dialogs, Settings& settings, std::string text,
                                 QWidget* parent)
    : FormWindow("frmSettingsText", WindowId::Definitions, desk, settings, parent),
      dialogs_(dialogs),
      read_(std::move(text)),
      txtDefinitions(Named(new QPlainTextEdit(ToQt(ShownDefinitions(read_))), "txtDefinitions")),
      cmdSave(Named(new QPushButton(tr("&Save")), "cmdSave")),
      cmdClose(Named(new QPushButton(tr("&Close")), "cmdClose")) {
  setWindowTitle(ToQt(DefinitionsFileName));
  txtDefinitions->setAccessibleName(windowTitle());
  txtDefinitions->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  txtDefinitions->setLineWrapMode(QPlainTextEdit::NoWrap);
  txtDefinitions->setTabChangesFocus(true);

  auto* labHelp =
      Named(new QLabel(tr("Each line is a key, a colon, a blank and the value. Restart the program "
                          "for changes to take effect.")),
            "labHelp");
  labHelp->setWordWrap(true);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cmdSave);
  buttons->addWidget(cmdClose);
  auto* all = new QVBoxLayout(this);
  all->addWidget(txtDefinitions, 1);
  all->addWidget(labHelp);
  all->addLayout(buttons);
  SetKeyButtons(nullptr, cmdClose);

  connect(cmdSave, &QPushButton::clicked, this, [this] {
    if (Save()) close();
  });
  connect(cmdClose, &QPushButton::clicked, this, &QWidget::close);
}

QSize frmSettingsText::sizeHint() const {
  const QFontMetrics metrics(txtDefinitions->font());
  return {metrics.horizontalAdvance('0') * 90, metrics.lineSpacing() * 30};
}

bool frmSettingsText::Save() {
  const auto saved = SaveEditedDefinitions(settings_.Folder(), read_, FromQt(txtDefinitions->toPlainText()));
  if (!saved) {
    dialogs_.MessageBox(FromQt(windowTitle()), saved.error(), BoxButtons::Ok, BoxIcon::Warning);
    return false;
  }
  txtDefinitions->document()->setModified(false);
  return true;
}

void frmSettingsText::closeEvent(QCloseEvent* event) {
  if (txtDefinitions->document()->isModified()) {
    const BoxAnswer answer =
        dialogs_.MessageBox(FromQt(windowTitle()), "Would you like to save the definitions before you exit?",
                            BoxButtons::YesNoCancel, BoxIcon::Question);
    if (answer == BoxAnswer::Cancel || (answer == BoxAnswer::Yes && !Save())) return event->ignore();
    txtDefinitions->document()->setModified(false);
  }
  FormWindow::closeEvent(event);
}

}  // namespace hyetex
