#include "database/windows/frmPrePop.h"

#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <utility>

#include "core/numbers.h"
#include "database/conversion/populate_choice.h"
#include "platform/controls.h"
#include "platform/entry_box.h"
#include "platform/qt_text.h"

namespace hyetex {
frmPrePop::frmPrePop(Desk& desk, Dialogs& dialogs, Settings& settings, ComputationVariables& variables,
                     std::function<void()> help, QWidget* parent)
    : FormWindow("frmPrePop", WindowId::PrePop, desk, settings, parent),
      dialogs_(dialogs),
      variables_(variables),
      help_(std::move(help)) {
  setWindowTitle(tr("Set Computation Variables"));
  MakeLayout();
  connect(cmdContinue, &QPushButton::clicked, this, &frmPrePop::Continue);
  connect(cmdExit, &QPushButton::clicked, this, &QWidget::close);
  connect(cmdHelp, &QPushButton::clicked, this, [this] { help_(); });

  txtGMT->setText(ToQt(settings_.Get(setting::GmtHours)));
  txtLapse->setText("0");
  chkAlpha->setChecked(settings_.Get(setting::UseAlpha));
  optDepth[0]->setChecked(true);
}

void frmPrePop::MakeLayout() {
  chkAlpha = Named(new QCheckBox(tr("&Use Alpha in Computations?")), "chkAlpha");
  chkAlpha->setToolTip(tr("Takes the skew of the pen out of each chart that has an alpha value"));

  auto* numbers = new QGridLayout;
  numbers->setColumnStretch(0, 1);
  const auto addNumber = [&](QLineEdit*& box, const char* txtName, const char* udnName, const char* caption,
                             const QString& toolTip, const NumberEntry& entry) {
    box = Named(new EntryBox(entry), txtName);
    box->setToolTip(toolTip);
    const int row = numbers->rowCount();
    numbers->addWidget(LabelOf(caption, box), row, 0);
    numbers->addWidget(
        WithArrows(box, udnName, [](std::string_view text, int way) { return StepNumber(text, way, {}); }),
        row, 1);
  };
  addNumber(txtLapse, "txtLapse", "udnLapse", "&Minimal time lapse between two points (minutes) :",
            tr("Shorter steps of a chart are joined into the next; 0 keeps all"), LapseEntry);
  addNumber(txtGMT, "txtGMT", "udnGMT", "Hours &reduced (from local time to GMT) :",
            tr("Taken off the charts' local times; below 0 where local time is behind GMT"), GmtEntry);

  auto* depth = new QGroupBox(tr("Default Depth for computations:"));
  auto* choices = new QHBoxLayout(depth);
  optDepth = {Named(new QRadioButton(tr("Di&gitized Depth")), "optDepth0"),
              Named(new QRadioButton(tr("Manua&l Depth")), "optDepth1")};
  for (QRadioButton* choice : optDepth) choices->addWidget(choice);
  choices->addStretch();

  cmdHelp = Named(new QPushButton(tr("&Help")), "cmdHelp");
  cmdExit = Named(new QPushButton(tr("Return to Main Me&nu")), "cmdExit");
  cmdContinue = Named(new QPushButton(tr("&Continue >>")), "cmdContinue");
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdHelp);
  buttons->addStretch();
  buttons->addWidget(cmdExit);
  buttons->addWidget(cmdContinue);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(chkAlpha, 0, Qt::AlignLeft);
  layout->addLayout(numbers);
  layout->addWidget(depth);
  layout->addStretch();
  layout->addSpacing(fontMetrics().lineSpacing());
  layout->addLayout(buttons);
  SetKeyButtons(cmdContinue, cmdExit);
}

void frmPrePop::Continue() {
  if (RefusesEntries(*this, dialogs_, FromQt(windowTitle()))) return;
  variables_ = ReadComputation(chkAlpha->isChecked(), FromQt(txtLapse->text()), FromQt(txtGMT->text()),
                               optDepth[1]->isChecked());
  desk_.Open(WindowId::Populate);
  close();
}

void frmPrePop::Closing() {
  // A choice that cannot be kept is not worth a message.
  if (!CheckNumber(FromQt(txtGMT->text()), GmtEntry))
    (void)settings_.Set(setting::GmtHours, FromQt(txtGMT->text()));
  (void)settings_.Set(setting::UseAlpha, chkAlpha->isChecked());
}

}  // namespace hyetex
