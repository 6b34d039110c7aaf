#include "chartfiles/windows/frmLargeView.h"

#include <QFontMetrics>
#include <QGridLayout>
#include <QPageLayout>
#include <QShortcut>
#include <algorithm>

#include "chartfiles/windows/text_printing.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr int WideLine = 80;  // what is wider wants a page on its side

QFont ViewFont() {
  QFont font("Courier");
  font.setStyleHint(QFont::TypeWriter);
  font.setFixedPitch(true);
  font.setPointSize(10);
  return font;
}

int WidestLine(const QString& text) {
  qsizetype widest = 0;
  for (const QString& line : text.split('\n')) widest = std::max(widest, line.size());
  return static_cast<int>(widest);
}

}  // namespace

frmLargeView::frmLargeView(Desk& desk, Dialogs& dialogs, Settings& settings, const std::string& caption,
                           const std::string& text, QWidget* parent)
    : FormWindow("frmLargeView", WindowId::LargeView, desk, settings, parent), dialogs_(dialogs) {
  setWindowTitle(caption.empty() ? "Large View" : ToQt(caption));

  txtView = new QPlainTextEdit(ToQt(text));
  txtView->setObjectName("txtView");
  txtView->setAccessibleName(windowTitle());
  txtView->setReadOnly(true);
  txtView->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  txtView->setTabChangesFocus(true);
  txtView->setLineWrapMode(QPlainTextEdit::NoWrap);
  txtView->setFont(ViewFont());

  optPrint = {new QRadioButton("&Landscape"), new QRadioButton("P&ortrait")};
  optPrint[0]->setObjectName("optPrint0");
  optPrint[1]->setObjectName("optPrint1");
  optPrint[WidestLine(txtView->toPlainText()) > WideLine ? 0 : 1]->setChecked(true);

  cmdPrint = new QPushButton("&Print");
  cmdPrint->setObjectName("cmdPrint");
  Command1 = new QPushButton("&Close");
  Command1->setObjectName("Command1");
  connect(cmdPrint, &QPushButton::clicked, this, [this] {
    QPrinter printer;
    PrintOn(printer);
  });
  connect(Command1, &QPushButton::clicked, this, &QWidget::close);
  auto* printKey = new QShortcut(QKeySequence::Print, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
  connect(printKey, &QShortcut::activated, cmdPrint, &QPushButton::click);

  auto* layout = new QGridLayout(this);
  layout->addWidget(txtView, 0, 0, 1, 5);
  layout->addWidget(optPrint[0], 1, 0);
  layout->addWidget(optPrint[1], 1, 1);
  layout->addWidget(cmdPrint, 1, 3);
  layout->addWidget(Command1, 1, 4);
  layout->setColumnStretch(2, 1);
  layout->setRowStretch(0, 1);
  SetKeyButtons(Command1, Command1);

  txtView->setMinimumHeight(QFontMetrics(txtView->font()).lineSpacing() * 6);
  desk_.Flags.SetOpen(WindowId::LargeView, true);
}

QSize frmLargeView::sizeHint() const {
  const QFontMetrics metrics(txtView->font());
  const int across = std::clamp(WidestLine(txtView->toPlainText()) + 8, 60, 110);
  const int down = std::clamp(txtView->blockCount() + 6, 15, 30);
  return {metrics.horizontalAdvance('0') * across, metrics.lineSpacing() * down};
}

void frmLargeView::PrintOn(QPrinter& printer) {
  const auto orientation = optPrint[0]->isChecked() ? QPageLayout::Landscape : QPageLayout::Portrait;
  if (!PrintText(printer, txtView->toPlainText(), txtView->font(), orientation))
    dialogs_.MessageBox("Printing Text", "An error has occured while the computer attempted to print");
}

}  // namespace hyetex
