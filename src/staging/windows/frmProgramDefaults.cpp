#include "staging/windows/frmProgramDefaults.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QVBoxLayout>
#include <algorithm>
#include <filesystem>

#include "core/numbers.h"
#include "platform/controls.h"
#include "platform/qt_text.h"
#include "platform/serial_devices.h"
#include "staging/manager/chart_type_editing.h"

namespace hyetex {
namespace {

struct PortTexts {
  const char *Name, *Caption;
};
constexpr std::array<PortTexts, LastSearchedPort - FirstSearchedPort + 1> Ports{
    {{"cboPort1", "&Port of the Digitizer, COM1:"}, {"cboPort2", "Second Po&rt, COM2:"}}};

std::string PortNumber(std::size_t port) { return ShortText(FirstSearchedPort + static_cast<int>(port)); }

}  // namespace

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
  all->addSpacing(12);
  for (std::size_t i = 0; i < Ports.size(); ++i) {
    cboPort[i] = Named(new QComboBox, Ports[i].Name);
    all->addWidget(LabelOf(Ports[i].Caption, cboPort[i]));
    all->addWidget(cboPort[i]);
  }
  FillPorts();
  all->addStretch();
  all->addSpacing(12);
  all->addLayout(buttons);
  SetKeyButtons(cmdDone, cmdCancel);

  connect(comChartType, &QComboBox::currentIndexChanged, this, &frmProgramDefaults::ShowChartType);
  connect(cmdDone, &QPushButton::clicked, this, [this] {
    if (Take()) Leave();
  });
  connect(cmdCancel, &QPushButton::clicked, this, &frmProgramDefaults::Leave);
  const int last = static_cast<int>(lists_.ChartTypes.size()) - 1;
  comChartType->setCurrentIndex(std::clamp(static_cast<int>(currentChart_), 0, last));
  ShowChartType(comChartType->currentIndex());
  opened_ = Shown();
}

QStringList frmProgramDefaults::Shown() const {
  QStringList shown(QString::number(comChartType->currentIndex()));
  for (const QComboBox* port : cboPort) shown << port->currentText();
  return shown;
}

bool frmProgramDefaults::MayLeave() {
  return Shown() == opened_ ||
         MayCloseAfter(
             dialogs_, FromQt(windowTitle()),
             "The program defaults that have been changed are not yet kept. Do you want to keep them ?",
             [this] { return Take(); });
}

void frmProgramDefaults::FillPorts() {
  const std::vector<std::string> devices = SerialDevices();
  for (std::size_t i = 0; i < cboPort.size(); ++i) {
    cboPort[i]->setEditable(true);
    cboPort[i]->setInsertPolicy(QComboBox::NoInsert);
    cboPort[i]->setMinimumContentsLength(30);
    for (const std::string& device : devices) cboPort[i]->addItem(ToQt(device));
    const QString own = i < devices.size() ? ToQt(devices[i]) : tr("none");
    cboPort[i]->lineEdit()->setPlaceholderText(tr("The machine's serial device %1: %2").arg(i + 1).arg(own));
    cboPort[i]->setToolTip(
        tr("Choose a serial device, or type its path. Empty: the machine's serial device %1.").arg(i + 1));
    cboPort[i]->setCurrentText(ToQt(settings_.Get(setting::SerialPort, PortNumber(i))));
  }
}

bool frmProgramDefaults::KeepPorts() {
  const std::string title = FromQt(windowTitle());
  for (std::size_t i = 0; i < cboPort.size(); ++i) {
    const std::string device = FromQt(cboPort[i]->currentText().trimmed());
    if (device == settings_.Get(setting::SerialPort, PortNumber(i))) continue;
    std::error_code error;
    // A device may be plugged in later; what is no path is a name that only the system knows.
    if (device.starts_with('/') && !std::filesystem::exists(device, error) &&
        dialogs_.MessageBox(title,
                            "There is no device " + device + " at present. Would you like to keep it ?",
                            BoxButtons::YesNo, BoxIcon::Question) != BoxAnswer::Yes) {
      cboPort[i]->setFocus();
      return false;
    }
    if (const auto kept = settings_.Set(setting::SerialPort, PortNumber(i), device); !kept) {
      dialogs_.MessageBox(title, kept.error(), BoxButtons::Ok, BoxIcon::Warning);
      return false;
    }
  }
  return true;
}

void frmProgramDefaults::ShowChartType(int index) {
  // The lists may have been changed while this window is open.
  if (index < 0 || index >= static_cast<int>(lists_.ChartTypes.size())) return;
  const DefaultsTexts texts = DefaultsTextsOf(lists_.ChartTypes[static_cast<std::size_t>(index)]);
  labHeightScale->setText(ToQt(texts.TimeScale));
  labDepthScale->setText(ToQt(texts.DepthScale));
  labHeight->setText(ToQt(texts.Height));
}

bool frmProgramDefaults::Take() {
  const int index = comChartType->currentIndex();
  if (index < 0 || index >= static_cast<int>(lists_.ChartTypes.size()) || !KeepPorts()) return false;
  currentChart_ = static_cast<std::int16_t>(index);
  for (const Int16Key& key : {setting::DefaultsChart, setting::CurrentChart})
    if (const auto kept = settings_.Set(key, index); !kept) {
      dialogs_.MessageBox(FromQt(windowTitle()), kept.error(), BoxButtons::Ok, BoxIcon::Warning);
      return false;
    }
  if (chosen_) chosen_();
  return true;
}

}  // namespace hyetex
