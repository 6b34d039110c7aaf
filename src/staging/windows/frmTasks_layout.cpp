// The controls of the task window and where they stand.
#include <QButtonGroup>
#include <QGridLayout>
#include <QHeaderView>
#include <QRadioButton>
#include <QVBoxLayout>

#include "platform/controls.h"
#include "platform/menu_key.h"
#include "platform/qt_text.h"
#include "staging/windows/frmTasks.h"

namespace hyetex {
namespace {

QGroupBox* Group(const char* title, QLayout* layout) {
  auto* group = new QGroupBox(QObject::tr(title));
  group->setLayout(layout);
  return group;
}

}  // namespace

void frmTasks::MakeLayout() {
  tvwStations = Named(new StationView, "tvwStations");
  tvwStations->setAccessibleName(tr("Stations"));
  tvwStations->setMinimumWidth(fontMetrics().averageCharWidth() * 52);

  auto* upper = new QHBoxLayout;
  upper->addWidget(tvwStations, 2);
  upper->addWidget(MakeStaging(), 3);

  auto* lower = new QHBoxLayout;
  lower->addWidget(MakeTablet());
  lower->addWidget(MakeChartTypes(), 1);
  lower->addWidget(MakeTarget(), 2);

  cmdSave = MakeButton("cmdSave", "&Save Charts List on Hard Drive", &frmTasks::Save);
  cmdTrace = MakeButton("cmdTrace", "&Trace Scans...", &frmTasks::TraceScans);
  cmdTrace->setToolTip(tr("The program traces the scans of all staged charts by itself"));
  cmdExit = Named(new QPushButton(tr("&Return To Main  Menu")), "cmdExit");
  connect(cmdExit, &QPushButton::clicked, this, [this] { close(); });
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdSave);
  buttons->addWidget(cmdTrace);
  buttons->addStretch();
  buttons->addWidget(cmdExit);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(upper, 1);
  layout->addLayout(lower);
  layout->addLayout(buttons);
  SetKeyButtons(cmdActivate, cmdExit);
  SetTabOrder();
}

QPushButton* frmTasks::MakeButton(const char* name, const char* caption, void (frmTasks::*run)()) {
  auto* button = Named(new QPushButton(tr(caption)), name);
  connect(button, &QPushButton::clicked, this, run);
  return button;
}

QWidget* frmTasks::MakeStaging() {
  fgdTasks = Named(new QTableWidget(0, static_cast<int>(TaskColumns)), "fgdTasks");
  fgdTasks->setAccessibleName(tr("Charts of the station"));
  QStringList headings;
  for (const std::string_view heading : TaskHeadings) headings << ToQt(heading);
  fgdTasks->setHorizontalHeaderLabels(headings);
  fgdTasks->horizontalHeader()->setHighlightSections(false);
  fgdTasks->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  fgdTasks->verticalHeader()->hide();
  fgdTasks->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
  fgdTasks->setSelectionBehavior(QAbstractItemView::SelectRows);
  fgdTasks->setSelectionMode(QAbstractItemView::SingleSelection);
  fgdTasks->setEditTriggers(QAbstractItemView::NoEditTriggers);
  fgdTasks->setTabKeyNavigation(false);
  fgdTasks->setContextMenuPolicy(Qt::CustomContextMenu);
  AddMenuKey(fgdTasks);
  fgdTasks->setMinimumWidth(fontMetrics().horizontalAdvance("00/00/0000 00:00:00") * 5);
  fgdTasks->setMinimumHeight(fontMetrics().height() * 10);

  cmdAdd = MakeButton("cmdAdd", "&Add New Chart to Staging Area", &frmTasks::Add);
  cmdChange = MakeButton("cmdChange", "&Edit Chart Details Stored in Staging Area", &frmTasks::Change);
  cmdDelete = MakeButton("cmdDelete", "De&lete Chart from Staging Area", &frmTasks::AskToDelete);
  cmdActivate = MakeButton("cmdActivate", "&DIGITIZE THE SELECTED CHART", &frmTasks::Activate);
  auto* buttons = new QGridLayout;
  buttons->addWidget(cmdAdd, 0, 0);
  buttons->addWidget(cmdChange, 0, 1);
  buttons->addWidget(cmdDelete, 1, 0);
  buttons->addWidget(cmdActivate, 1, 1);

  auto* layout = new QVBoxLayout;
  layout->addWidget(fgdTasks);
  layout->addLayout(buttons);
  frmTask = Named(Group("Temporary Staging Area for Charts", layout), "frmTask");
  return frmTask;
}

QWidget* frmTasks::MakeTablet() {
  auto* layout = new QGridLayout;
  optDig = new QButtonGroup(this);
  for (int i = 0; i < TabletTypeCount; ++i) {
    auto* option = new QRadioButton(ToQt(TabletTypes()[static_cast<std::size_t>(i)].Name));
    option->setObjectName("optDig" + QString::number(i));
    option->setChecked(source_ == TraceSource::Tablet && i == finder_.Type());
    optDig->addButton(option, i);
    layout->addWidget(option, i, 0);
  }
  for (const auto& [source, caption] : {std::pair{TraceSource::Scan, "Scanned chart"},
                                        std::pair{TraceSource::EmptyPage, "Mouse on an empty page"}}) {
    const int id = TabletTypeCount + static_cast<int>(source) - 1;
    auto* option = new QRadioButton(tr(caption));
    option->setObjectName("optDig" + QString::number(id));
    option->setChecked(source == source_);
    optDig->addButton(option, id);
    layout->addWidget(option, id, 0, 1, 2);
  }
  optCom = new QButtonGroup(this);
  for (int port = FirstSerialPort; port <= LastSerialPort; ++port) {
    auto* option = new QRadioButton(tr("COM%1").arg(port));
    option->setObjectName("optCom" + QString::number(port - FirstSerialPort));
    // They show which port is being listened to; the search goes through its ports by itself.
    option->setFocusPolicy(Qt::NoFocus);
    option->setAttribute(Qt::WA_TransparentForMouseEvents);
    option->setEnabled(port >= FirstSearchedPort && port <= LastSearchedPort);
    optCom->addButton(option, port);
    layout->addWidget(option, port - FirstSerialPort, 1);
  }
  labDetect = Named(new QLabel, "labDetect");
  QFont bold = labDetect->font();
  bold.setBold(true);
  labDetect->setFont(bold);
  labDetect->setMinimumWidth(QFontMetrics(bold).horizontalAdvance("Digitizer Detected On COM1 "));
  constexpr int options = TabletTypeCount + TraceSourceCount - 1;
  // What is known of a scan may take some lines; the window keeps its size.
  labDetect->setTextFormat(Qt::PlainText);
  labDetect->setWordWrap(true);
  labDetect->setAlignment(Qt::AlignTop);
  labDetect->setFixedHeight(3 * QFontMetrics(bold).lineSpacing());
  cmdScan = MakeButton("cmdScan", "Choose Sca&n...", &frmTasks::ChooseScan);
  cmdScans = MakeButton("cmdScans", "F&older of Scans...", &frmTasks::ChooseScanFolder);
  layout->addWidget(labDetect, options, 0, 1, 2);
  layout->addWidget(Together({cmdScan, cmdScans}), options + 1, 0, 1, 2);
  layout->setRowStretch(options + 2, 1);
  auto* group = Group("Digitizer", layout);
  group->setToolTip(
      tr("The digitizer is looked for on COM1 and COM2 in turn. Definitions, Program Defaults names their "
         "devices."));
  return group;
}

QWidget* frmTasks::MakeChartTypes() {
  lstChartType = Named(new QListWidget, "lstChartType");
  lstChartType->setAccessibleName(tr("Default Chart Type"));
  lstChartType->setMinimumWidth(fontMetrics().averageCharWidth() * 24);
  auto* layout = new QVBoxLayout;
  layout->addWidget(lstChartType);
  auto* group = Group("Default Chart Type", layout);
  lstChartType->setMinimumHeight(fontMetrics().height() * 4);
  lstChartType->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Ignored);
  return group;
}

QWidget* frmTasks::MakeTarget() {
  dirTarget = Named(new QLineEdit(ToQt(targetFolder_)), "dirTarget");
  dirTarget->setAccessibleName(tr("Target Folder For Ascii Files:"));
  dirTarget->setReadOnly(true);
  dirTarget->setMinimumWidth(fontMetrics().averageCharWidth() * 30);
  drvTarget = MakeButton("drvTarget", "&Browse...", &frmTasks::BrowseTarget);
  auto* layout = new QGridLayout;
  layout->addWidget(dirTarget, 0, 0, 1, 2);
  layout->addWidget(drvTarget, 1, 1);
  layout->setColumnStretch(0, 1);
  layout->setRowStretch(2, 1);
  return Group("Target Folder For Ascii Files:", layout);
}

void frmTasks::SetTabOrder() {
  QList<QWidget*> order{tvwStations, fgdTasks, cmdAdd, cmdChange, cmdDelete, cmdActivate};
  for (QAbstractButton* option : optDig->buttons()) order << option;
  order << cmdScan << cmdScans << lstChartType << dirTarget << drvTarget << cmdSave << cmdTrace << cmdExit;
  LinkTabs(order);
}

}  // namespace hyetex
