// The controls of the save window and where they stand.
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "chartfiles/windows/frmSave.h"
#include "platform/controls.h"
#include "platform/qt_dates.h"
#include "platform/qt_text.h"

namespace hyetex {

void frmSave::MakeLayout() {
  txtPrompt = Named(new QPlainTextEdit, "txtPrompt");
  txtPrompt->setAccessibleName("Chart report");
  txtPrompt->setReadOnly(true);
  txtPrompt->setTabChangesFocus(true);
  // As wide as the widest line but the attention line, which wraps.
  const int wide = fontMetrics().horizontalAdvance("User defined Begining Time and Date: 00/00/00 00:00");
  txtPrompt->setMinimumSize(wide + fontMetrics().lineSpacing() * 3, fontMetrics().lineSpacing() * 8);

  auto* report = new QVBoxLayout;
  report->addWidget(txtPrompt, 1);
  for (std::size_t i = 0; i < labPrompt.size(); ++i) {
    labPrompt[i] = new QLabel;
    labPrompt[i]->setObjectName("labPrompt" + QString::number(i));
    report->addWidget(labPrompt[i]);
  }

  auto* details = new QGridLayout;
  AddDetails(*details);
  details->setRowMinimumHeight(details->rowCount(), fontMetrics().lineSpacing());
  AddChoices(*details);
  details->setRowStretch(details->rowCount(), 1);

  auto* both = new QHBoxLayout;
  both->addLayout(report, 1);
  both->addLayout(details);

  txtComment = Named(new QLineEdit, "txtComment");
  SelectAllOnFocus(txtComment);
  auto* comment = new QHBoxLayout;
  comment->addWidget(LabelOf("Digiti&zer Comment:", txtComment));
  comment->addWidget(txtComment);

  labFile = Named(new QLabel, "labFile");
  labFile->setTextFormat(Qt::PlainText);
  labFile->setTextInteractionFlags(Qt::TextSelectableByMouse);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(both, 1);
  layout->addLayout(comment);
  layout->addWidget(labFile);
  layout->addWidget(MakeButtons());
  SetKeyButtons(cmdSave, cmdCancel);
  SetTabOrder();
}

QWidget* frmSave::MakeStepped(QLineEdit*& box, const char* name, double step, std::optional<double> lowest) {
  box = Named(new EntryBox(lowest ? DepthEntry : NumberEntry{}), QByteArray("txt").append(name).constData());
  QWidget* both = WithArrows(
      box, QByteArray("udn").append(name).constData(),
      [step, lowest](std::string_view text, int way) { return StepNumber(text, step * way, lowest); });
  if (lowest) both->layout()->addWidget(new QLabel("mm"));
  return both;
}

void frmSave::AddRow(QGridLayout& layout, const char* caption, QWidget* buddy, QWidget* shown) {
  const int row = layout.rowCount();
  layout.addWidget(LabelOf(caption, buddy), row, 0);
  layout.addWidget(shown != nullptr ? shown : buddy, row, 1);
}

void frmSave::AddDetails(QGridLayout& layout) {
  const auto dates = [&](DateBox*& date, const char* dateName, const char* dateCaption, QTimeEdit*& time,
                         const char* timeName, const char* timeCaption) {
    date = Named(new DateBox, dateName);
    connect(date, &DateBox::dateChanged, this, &frmSave::MarkPendingDetails);
    AddRow(layout, dateCaption, date);
    time = Named(new QTimeEdit, timeName);
    time->setDisplayFormat(TimeBoxForm);
    connect(time, &QTimeEdit::timeChanged, this, &frmSave::MarkPendingDetails);
    AddRow(layout, timeCaption, time);
  };
  dates(dtpBeginDate, "dtpBeginDate", "St&art Date:", dtpBeginTime, "dtpBeginTime", "S&tart Time:");
  dates(dtpEndDate, "dtpEndDate", "E&nd Date:", dtpEndTime, "dtpEndTime", "End T&ime:");

  QWidget* eyed = MakeStepped(txtEyed, "Eyed", 0.1, 0);
  AddRow(layout, "&Eyed Chart Depth:", txtEyed, eyed);
  QWidget* manual = MakeStepped(txtManual, "Manual", 0.1, 0);
  AddRow(layout, "&Manual Gage Depth:", txtManual, manual);
  for (QLineEdit* box : {txtEyed, txtManual})
    connect(box, &QLineEdit::textChanged, this, &frmSave::MarkPendingDetails);

  cmdDefiine = Named(new QPushButton("Reset &Definitions"), "cmdDefiine");
  cmdDefiine->setToolTip("Takes the times and depths above, and makes the report anew");
  connect(cmdDefiine, &QPushButton::clicked, this, &frmSave::ResetDefinitions);
  labPending = Named(new QLabel, "labPending");
  labPending->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  const int row = layout.rowCount();
  layout.addWidget(labPending, row, 0);
  layout.addWidget(cmdDefiine, row, 1);
}

// Boxes that nothing is taken from look so, and the Tab key passes them over.
void frmSave::ShowOnly(QLineEdit* box) {
  box->setReadOnly(true);
  box->setFocusPolicy(Qt::ClickFocus);
  ShadeShownOnly();
}

void frmSave::ShadeShownOnly() {
  QPalette colours;
  colours.setColor(QPalette::Base, palette().color(QPalette::Window));
  for (QLineEdit* box : {txtRain, txtAlpha})
    if (box != nullptr) box->setPalette(colours);
}

void frmSave::changeEvent(QEvent* event) {
  FormWindow::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) ShadeShownOnly();
}

void frmSave::AddChoices(QGridLayout& layout) {
  const QString shownOnly =
      "For comparing only: the file carries the digitized depth, and the editor sets the "
      "chart's selected depth and alpha.";
  auto* heading = Named(new QLabel("Shown for comparing, not saved:"), "labShownOnly");
  QFont italic = heading->font();
  italic.setItalic(true);
  heading->setFont(italic);
  layout.addWidget(heading, layout.rowCount(), 0, 1, 2);
  comRain = Named(new QComboBox, "comRain");
  comRain->addItems({"Eyed Chart Depth", "Digitizd Depth", "Average", "Manual Gage", "Other"});
  comRain->setToolTip(shownOnly);
  QWidget* rain = MakeStepped(txtRain, "Rain", 0.1, 0);
  txtRain->setAccessibleName("Selected Rain Depth");
  txtRain->setToolTip(shownOnly);
  ShowOnly(txtRain);
  AddRow(layout, "Selected Rain De&pth:", comRain);
  layout.addWidget(rain, layout.rowCount(), 1);
  connect(comRain, &QComboBox::currentIndexChanged, this, &frmSave::ShowChosenDepth);
  // A depth of the operator's own is no longer the one of the list.
  connect(rain->findChild<UpDown*>("udnRain"), &UpDown::Stepped, this,
          [this] { comRain->setCurrentIndex(static_cast<int>(DepthChoice::Other)); });

  comChart = Named(new QComboBox, "comChart");
  for (const int reliability : {1, 2, 3, 0})
    comChart->addItem(ToQt(ReliabilityText(reliability)), reliability);
  comChart->setToolTip("Shown only: the file takes the reliability that the chart was staged with.");
  comChart->setEnabled(false);
  AddRow(layout, "Chart Reliability:", comChart);

  QWidget* alpha = MakeStepped(txtAlpha, "Alpha", 0.01, std::nullopt);
  txtAlpha->setToolTip(shownOnly);
  ShowOnly(txtAlpha);
  AddRow(layout, "Selected A&lpha:", txtAlpha, alpha);
}

QWidget* frmSave::MakeButtons() {
  auto* buttons = new QWidget;
  auto* layout = new QHBoxLayout(buttons);
  layout->setContentsMargins(0, 0, 0, 0);
  const auto add = [&](QPushButton*& button, const char* name, const char* caption, auto pressed) {
    button = Named(new QPushButton(caption), name);
    connect(button, &QPushButton::clicked, this, pressed);
    layout->addWidget(button);
  };
  add(cmdRedigitize, "cmdRedigitize", "&Redigitize", [this] { Redigitize(); });
  layout->addStretch();
  // The details stand in this window: there is no step before or behind it.
  add(cmdBack, "cmdBack", "< Back", [] {});
  add(cmdNext, "cmdNext", "Next >", [] {});
  cmdBack->hide();
  cmdNext->hide();
  add(cmdSave, "cmdSave", "&Save Digitization", [this] { Save(); });
  add(cmdCancel, "cmdCancel", "&Cancel", [this] { Leave(); });
  return buttons;
}

void frmSave::SetTabOrder() {
  LinkTabs({cmdSave, cmdCancel, cmdRedigitize, txtPrompt, dtpBeginDate, dtpBeginTime, dtpEndDate, dtpEndTime,
            txtEyed, txtManual, cmdDefiine, comRain, txtComment});
}

}  // namespace hyetex
