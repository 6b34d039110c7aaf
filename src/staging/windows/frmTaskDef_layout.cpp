// The controls of a chart's details and where they stand.
#include <QGridLayout>
#include <QGroupBox>
#include <QVBoxLayout>

#include "core/numbers.h"
#include "platform/controls.h"
#include "platform/qt_dates.h"
#include "platform/qt_text.h"
#include "staging/windows/frmTaskDef.h"

namespace hyetex {

void frmTaskDef::MakeLayout() {
  auto* station = Named(new QLabel(ToQt(job_.Station)), "labStation");
  station->setTextFormat(Qt::PlainText);
  station->setWordWrap(true);

  auto* details = new QGridLayout;
  AddDates(*details);
  AddDepths(*details);
  details->setColumnStretch(1, 1);
  details->setRowStretch(details->rowCount(), 1);

  auto* both = new QHBoxLayout;
  both->addLayout(details);
  both->addWidget(MakeComments(), 1);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(station);
  layout->addLayout(both, 1);
  layout->addWidget(MakeButtons());
  SetKeyButtons(cmdOK, cmdCancel);
  SetTabOrder();
}

void frmTaskDef::AddDates(QGridLayout& layout) {
  const auto add = [&](auto*& box, const char* name, const char* caption) {
    box = Named(new std::remove_reference_t<decltype(*box)>, name);
    box->installEventFilter(this);
    const int row = layout.rowCount();
    layout.addWidget(LabelOf(caption, box), row, 0);
    layout.addWidget(box, row, 1);
  };
  add(dtpBeginDate, "dtpBeginDate", "&Start Date:");
  add(dtpBeginTime, "dtpBeginTime", "Start &Time:");
  add(dtpEndDate, "dtpEndDate", "&End Date:");
  add(dtpEndTime, "dtpEndTime", "End T&ime:");
  for (QTimeEdit* time : {dtpBeginTime, dtpEndTime}) time->setDisplayFormat(TimeBoxForm);
}

void frmTaskDef::AddDepths(QGridLayout& layout) {
  const auto step = [](std::string_view text, int way) { return StepNumber(text, 0.1 * way); };
  const auto add = [&](QLineEdit*& box, const char* name, const char* udnName, const char* caption) {
    box = Named(new EntryBox(CheckTaskDepth), name);
    box->installEventFilter(this);
    const int row = layout.rowCount();
    layout.addWidget(LabelOf(caption, box), row, 0);
    layout.addWidget(WithArrows(box, udnName, step), row, 1);
    layout.addWidget(new QLabel(tr("mm")), row, 2);
  };
  add(txtEyed, "txtEyed", "udnEyed", "Eyed C&hart Depth:");
  add(txtManual, "txtManual", "udnManual", "&Manual Gage Depth:");
  txtManual->setPlaceholderText(tr("unknown"));

  comChart = Named(new QComboBox, "comChart");
  comChart->addItems({tr("Unknown"), tr("Acceptable"), tr("Marginal"), tr("Unreliable")});
  const int row = layout.rowCount();
  layout.addWidget(LabelOf("&Reliability:", comChart), row, 0);
  layout.addWidget(comChart, row, 1);
}

QWidget* frmTaskDef::MakeComments() {
  chkNot = Named(new QCheckBox(tr("Extremely Defecti&ve Chart")), "chkNot");
  connect(chkNot, &QCheckBox::clicked, this, &frmTaskDef::MarkDefective);
  lstComment = Named(new QListWidget, "lstComment");
  lstComment->setMinimumWidth(fontMetrics().averageCharWidth() * 36);
  cmdAdd = Named(new QPushButton(tr("&Add...")), "cmdAdd");
  connect(cmdAdd, &QPushButton::clicked, this, [this] { openComment_(); });
  cmdDelete = Named(new QPushButton(tr("&Delete")), "cmdDelete");
  connect(cmdDelete, &QPushButton::clicked, this, &frmTaskDef::DeleteComment);

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdAdd);
  buttons->addWidget(cmdDelete);
  buttons->addStretch();
  auto* all = new QWidget;
  auto* layout = new QVBoxLayout(all);
  layout->setContentsMargins(fontMetrics().averageCharWidth() * 2, 0, 0, 0);
  layout->addWidget(chkNot);
  layout->addWidget(LabelOf("Digitization &Comments:", lstComment));
  layout->addWidget(lstComment, 1);
  layout->addLayout(buttons);
  return all;
}

QWidget* frmTaskDef::MakeButtons() {
  cmdOK = Named(new QPushButton(tr("&OK")), "cmdOK");
  connect(cmdOK, &QPushButton::clicked, this, &frmTaskDef::Confirm);
  cmdCancel = Named(new QPushButton(tr("Cance&l")), "cmdCancel");
  connect(cmdCancel, &QPushButton::clicked, this, [this] { Leave(); });
  auto* buttons = new QWidget;
  auto* layout = new QHBoxLayout(buttons);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addStretch();
  layout->addWidget(cmdOK);
  layout->addWidget(cmdCancel);
  return buttons;
}

void frmTaskDef::SetTabOrder() {
  LinkTabs({dtpBeginDate, dtpBeginTime, dtpEndDate, dtpEndTime, txtEyed, txtManual, comChart, chkNot,
            lstComment, cmdAdd, cmdDelete, cmdOK, cmdCancel});
}

}  // namespace hyetex
