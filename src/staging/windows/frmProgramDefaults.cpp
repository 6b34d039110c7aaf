#include "staging/windows/frmProgramDefaults.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <algorithm>

#include "core/numbers.h"
#include "platform/controls.h"
#include "platform/qt_text.h"
#include "staging/manager/chart_type_editing.h"

namespace hyetex {

frmProgramDefaults::frmProgramDefaults(Desk& desk, Dialogs& dialogs, Settings& settings,
                                       const ReferenceLists& lists, std::int16_t& currentChart,
                                       std::function<void()> chosen, QWidget* parent)
    : FormWindow("frmProgramDefaults", WindowId::ProgramDefaults, desk, settings, parent),
      dialogs_(dialogs),
      lists_(lists),
      currentChart_(currentChart),
      chosen_(std::move(chosen)),
      comChartType(Named(new QComboBox, "comChartType")),
      labHeightScale(Named(new QLabel, "labHeightScale")),
      labDepthScale(Named(new QLabel, "labDepthScale")),
      labHeight(Named(new QLabel, "labHeight")),
      cmdDone(Named(new QPushButton(tr("D&one")), "cmdDone")),
      cmdCancel(Named(new QPushButton(tr("&Cancel")), "cmdCancel")) {
  setWindowTitle(tr("Program Defaults"));
  for (const ChartTypeRecord& type : lists_.ChartTypes) comChartType->addItem(ToQt(type.Name));
  comChartType->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  comChartType->setMinimumContentsLength(30);

  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cmdDone);
  buttons->addWidget(cmdCancel);
  auto* all = new QVBoxLayout(this);
  all->addWidget(LabelOf("Default Chart &Type:", comChartType));
  all->addWidget(comChartType);
  for (QLabel* label : {labHeightScale, labDepthScale, labHeight}) all->addWidget(label);
  all->addStretch();
  all->addSpacing(12);
  all->addLayout(buttons);
  SetKeyButtons(cmdDone, cmdCancel);

  connect(comChartType, &QComboBox::currentIndexChanged, this, &frmProgramDefaults::ShowChartType);
  connect(cmdDone, &QPushButton::clicked, this, &frmProgramDefaults::Done);
  connect(cmdCancel, &QPushButton::clicked, this, &QWidget::close);
  const int last = static_cast<int>(lists_.ChartTypes.size()) - 1;
  comChartType->setCurrentIndex(std::clamp(static_cast<int>(currentChart_), 0, last));
  ShowChartType(comChartType->currentIndex());
}

void frmProgramDefaults::ShowChartType(int index) {
  // The lists may have been changed while this window is open.
  if (index < 0 || index >= static_cast<int>(lists_.ChartTypes.size())) return;
  const DefaultsTexts texts = DefaultsTextsOf(lists_.ChartTypes[static_cast<std::size_t>(index)]);
  labHeightScale->setText(ToQt(texts.TimeScale));
  labDepthScale->setText(ToQt(texts.DepthScale));
  labHeight->setText(ToQt(texts.Height));
}

void frmProgramDefaults::Done() {
  const int index = comChartType->currentIndex();
  if (index < 0 || index >= static_cast<int>(lists_.ChartTypes.size())) return;
  currentChart_ = static_cast<std::int16_t>(index);
  for (const Int16Key& key : {setting::DefaultsChart, setting::CurrentChart})
    if (const auto kept = settings_.Set(key, index); !kept)
      return static_cast<void>(
          dialogs_.MessageBox(FromQt(windowTitle()), kept.error(), BoxButtons::Ok, BoxIcon::Warning));
  if (chosen_) chosen_();
  close();
}

}  // namespace hyetex
