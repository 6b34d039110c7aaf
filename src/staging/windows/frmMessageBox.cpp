#include "staging/windows/frmMessageBox.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace hyetex {

frmMessageBox::frmMessageBox(Dialogs& dialogs, std::int16_t level, QWidget* parent)
    : QDialog(parent),
      dialogs_(dialogs),
      level_(level),
      cmdAnswer{new QPushButton(tr("&Hard Drive")), new QPushButton(tr("&Database"))} {
  setObjectName("frmMessageBox");
  setWindowTitle(tr("Selecting Data Source"));

  auto* question = new QLabel(tr("Are your raw ascii files located on your HARD DRIVE or your DATABASE ?"));
  question->setObjectName("labQuestion");
  question->setWordWrap(true);
  question->setMinimumWidth(320);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  for (int i = 0; i < 2; ++i) {
    QPushButton* button = cmdAnswer[static_cast<std::size_t>(i)];
    button->setObjectName(QStringLiteral("cmdAnswer%1").arg(i));
    buttons->addWidget(button);
    connect(button, &QPushButton::clicked, this, [this, i] { Answer(static_cast<ChartSourceKind>(i)); });
  }
  buttons->addStretch();
  cmdAnswer[0]->setDefault(true);
  auto* all = new QVBoxLayout(this);
  all->addWidget(question);
  all->addSpacing(12);
  all->addLayout(buttons);
}

std::optional<ChartSourceKind> frmMessageBox::Ask() {
  answer_.reset();
  if (QWidget* shell = parentWidget())
    move(shell->mapToGlobal(QPoint(shell->width() / 3, shell->height() / 3)));
  exec();
  return answer_;
}

void frmMessageBox::Answer(ChartSourceKind source) {
  if (source == ChartSourceKind::Database) {
    if (const auto refusal = CheckRight(Right::Database, level_)) {
      dialogs_.MessageBox(std::string(refusal->Title), std::string(refusal->Text), BoxButtons::Ok,
                          BoxIcon::Warning);
      return;
    }
  }
  answer_ = source;
  accept();
}

}  // namespace hyetex
