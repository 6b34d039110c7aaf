#include "staging/windows/frmTasks.h"

#include <QButtonGroup>
#include <QCloseEvent>
#include <utility>

#include "core/files.h"
#include "core/numbers.h"
#include "core/text.h"
#include "platform/outlined_style.h"
#include "platform/qt_text.h"
#include "staging/lists/station_tree.h"

namespace hyetex {
namespace {

QString Joined(const std::vector<std::string>& lines) {
  QStringList shown;
  for (const std::string& line : lines) shown << ToQt(line);
  return shown.join('\n');
}

// Titles of boxes show a single "&" as the mark of a letter.
QString AsTitle(const std::string& text) { return ToQt(text).replace("&", "&&"); }

}  // namespace

frmTasks::frmTasks(Desk& desk, Dialogs& dialogs, Settings& settings, const ReferenceLists& lists,
                   StagingArea& staging, std::int16_t& currentChart, PopupMenu& popup, TaskServices services,
                   std::optional<int> tablet, QWidget* parent)
    : FormWindow("frmTasks", WindowId::Tasks, desk, settings, parent),
      dialogs_(dialogs),
      lists_(lists),
      staging_(staging),
      currentChart_(currentChart),
      popup_(popup),
      services_(std::move(services)),
      finder_(tablet.value_or(StoredTabletType(settings)), services_.Device, this),
      targetFolder_(TargetFolder(settings)),
      source_(tablet ? TraceSource::Tablet : StoredTraceSource(settings)) {
  setWindowTitle("Prepare Charts and Digitizer ");
  MakeLayout();
  tvwStations->Show(lists_);
  tvwStations->expandAll();
  LoadTasks();
  RestoreSelection();
  currentChart_ = settings.Get(setting::CurrentChart);
  FillChartTypes();

  connect(tvwStations, &QTreeWidget::currentItemChanged, this, [this] {
    fgdTasks->clearSelection();  // the row was another station's
    UpdateList();
  });
  connect(fgdTasks, &QTableWidget::cellDoubleClicked, this, &frmTasks::Change);
  connect(fgdTasks, &QTableWidget::customContextMenuRequested, this, &frmTasks::ShowPopup);
  connect(lstChartType, &QListWidget::currentRowChanged, this, [this](int row) {
    if (row >= 0) currentChart_ = static_cast<std::int16_t>(row);
  });
  connect(optDig, &QButtonGroup::idClicked, this, &frmTasks::ChooseSource);
  connect(&finder_, &TabletFinder::Moved, this, &frmTasks::ShowDetection);
  connect(&finder_, &TabletFinder::Detected, this, [this] {
    detection_ = Detection::Found;
    ShowDetection();
  });
  connect(&finder_, &TabletFinder::NotDetected, this, [this] {
    detection_ = Detection::Missing;
    ShowDetection();
  });
  if (source_ == TraceSource::Tablet) finder_.Start();
  LookForScans();
  ShowDetection();
  connect(fgdTasks, &QTableWidget::itemSelectionChanged, this, &frmTasks::ShowDetection);
}

// A tablet, or what takes its place: then none is looked for.
void frmTasks::ChooseSource(int option) {
  const TraceSource before = source_;
  source_ =
      option < TabletTypeCount ? TraceSource::Tablet : static_cast<TraceSource>(option - TabletTypeCount + 1);
  if (source_ == TraceSource::Tablet) {
    finder_.SetType(option);
    if (before != source_) finder_.Start();
  } else {
    finder_.Stop();
  }
  LookForScans();
  ShowDetection();
}

// ---- What it shows

void frmTasks::FillChartTypes() {
  for (const ChartTypeRecord& type : lists_.ChartTypes) lstChartType->addItem(ToQt(type.Name));
  if (currentChart_ < 0 || currentChart_ >= lstChartType->count()) currentChart_ = 0;
  ShowChartType();
}

void frmTasks::ShowChartType() { lstChartType->setCurrentRow(currentChart_); }

void frmTasks::RestoreSelection() {
  const std::vector<TreeNode> tree = StationTree(lists_);
  const int node = FindStationSetting(tree, settings_.Get(setting::TaskStation));
  if (const TreeNode* found = GetObjectFromIndex(tree, node))
    tvwStations->Select({found->Kind, found->Index});
  UpdateList();
  SelectRow(settings_.Get(setting::TaskRow) - 1);
}

void frmTasks::LoadTasks() {
  const std::vector<std::string> notes = staging_.Load(settings_.Folder(), lists_.Stations);
  if (notes.empty()) return;
  Tell("The list of staged charts is not in order:\n\n" + FromQt(Joined(notes)) +
       "\n\nBefore it is written anew, a copy of " + std::string(TasksFileName) +
       " as it is now is kept beside it.");
}

bool frmTasks::SaveTasks() {
  const auto saved = staging_.Save();
  if (!saved) Tell(saved.error());
  return saved.has_value();
}

void frmTasks::UpdateList(std::optional<int> task) {
  const int row = SelectedRow();
  const TreeNode* station = SelectedStation();
  tvwStations->setToolTip(station ? ToQt(station->Text) : QString());
  for (QPushButton* button : {cmdAdd, cmdChange, cmdDelete, cmdActivate})
    button->setEnabled(station != nullptr);
  rows_.clear();
  if (TreeSelected()) frmTask->setTitle(station ? AsTitle(station->Text) : tr("Not a Station"));
  if (station)
    rows_ =
        TaskRows(staging_.Tasks(), lists_.Stations[static_cast<std::size_t>(station->Index)].InstrumentCode);

  fgdTasks->clearSelection();
  fgdTasks->setRowCount(static_cast<int>(rows_.size()));
  for (int r = 0; r < fgdTasks->rowCount(); ++r) FillRow(r);
  int next = row;
  for (int r = 0; task && r < fgdTasks->rowCount(); ++r)
    if (rows_[static_cast<std::size_t>(r)].Task == *task) next = r;
  SelectRow(next);
}

void frmTasks::FillRow(int row) {
  const TaskRow& shown = rows_[static_cast<std::size_t>(row)];
  for (std::size_t c = 0; c < TaskColumns; ++c) {
    auto* item = new QTableWidgetItem(ToQt(shown.Cells[c]));
    if (c >= FirstDepthColumn) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    fgdTasks->setItem(row, static_cast<int>(c), item);
  }
  const ChartRecord& task = staging_.Tasks()[static_cast<std::size_t>(shown.Task)];
  const std::string file = services_.ChartFile ? services_.ChartFile(task, targetFolder_) : "";
  if (file.empty()) return;
  QTableWidgetItem* first = fgdTasks->item(row, 0);
  first->setIcon(style()->standardIcon(QStyle::SP_DialogApplyButton));
  const QString done = tr("Digitized: %1").arg(ToQt(file));
  first->setData(Qt::AccessibleTextRole, first->text() + ", " + done);
  for (std::size_t c = 0; c < TaskColumns; ++c) fgdTasks->item(row, static_cast<int>(c))->setToolTip(done);
}

void frmTasks::ShowDetection() {
  bool ready = source_ != TraceSource::Tablet || detection_ == Detection::Found;
  labDetect->setToolTip({});
  for (QPushButton* button : {cmdScan, cmdScans, cmdTrace}) button->setEnabled(source_ == TraceSource::Scan);
  if (source_ == TraceSource::EmptyPage) {
    labDetect->setText(tr("The mouse is the cursor"));
  } else if (source_ == TraceSource::Scan) {
    ready = ShowScan();
  } else if (ready) {
    labDetect->setText(tr("Digitizer Detected On COM%1").arg(finder_.DetectedPort()));
  } else {
    labDetect->setText(detection_ == Detection::Missing ? tr("Digitizer Not Detected")
                                                        : tr("Digtizer Not Detcted"));
  }
  const bool dark = IsDark(palette());
  const QColor blue = dark ? QColor(130, 180, 255) : QColor(0, 60, 200),
               red = dark ? QColor(255, 130, 120) : QColor(190, 0, 0);
  QPalette colours = labDetect->palette();
  colours.setColor(QPalette::WindowText, ready ? blue : red);
  labDetect->setPalette(colours);
  if (QAbstractButton* port = optCom->button(finder_.TestPort())) port->setChecked(true);
}

void frmTasks::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange && labDetect != nullptr) ShowDetection();
  FormWindow::changeEvent(event);
}

// ---- The selection

const TreeNode* frmTasks::SelectedStation() const {
  const TreeNode* node = tvwStations->Current();
  return node && node->Kind == ListKind::Station ? node : nullptr;
}

int frmTasks::SelectedRow() const {
  return fgdTasks->selectionModel()->hasSelection() ? fgdTasks->currentRow() : -1;
}

std::optional<int> frmTasks::SelectedTask() const {
  const int row = SelectedRow();
  if (row < 0) return std::nullopt;
  return rows_[static_cast<std::size_t>(row)].Task;
}

// A row behind the last one is none: there is no next chart.
void frmTasks::SelectRow(int row) {
  fgdTasks->clearSelection();
  if (row < 0 || row >= fgdTasks->rowCount()) return;
  fgdTasks->setCurrentCell(row, 0);
  fgdTasks->selectRow(row);
  fgdTasks->scrollToItem(fgdTasks->item(row, 0));
}

// ---- Closing

void frmTasks::EnableStaging(bool enabled) {
  setEnabled(enabled);
  if (enabled) fgdTasks->setFocus();
}

void frmTasks::Save() { SaveTasks(); }

void frmTasks::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (isEnabled() && (leaving_ || MayClose())) FormWindow::closeEvent(event);  // else its details are open
}

bool frmTasks::MayClose() {
  const auto saved = staging_.Save();
  return saved || dialogs_.MessageBox(FromQt(windowTitle()),
                                      ShownText(saved.error()) +
                                          "\n\nWhat has been changed will be lost. Do you want to close the "
                                          "window all the same ?",
                                      BoxButtons::NoUnlessYes, BoxIcon::Warning) == BoxAnswer::Yes;
}

void frmTasks::Closing() {
  finder_.Stop();
  // What cannot be kept is not worth a message.
  const auto keep = [this](const auto& key, const auto& value) { (void)settings_.Set(key, value); };
  keep(setting::DigitizerType, finder_.Type());
  keep(setting::TraceSource, static_cast<int>(source_));
  keep(setting::ComPort, finder_.DetectedPort());
  // A folder that is only away for now is not forgotten.
  const std::string stored = settings_.Get(setting::TargetFolder);
  if (targetChosen_ || stored.empty() || FolderExists(stored)) keep(setting::TargetFolder, targetFolder_);
  keep(setting::TaskRow, SelectedRow() + 1);
  keep(setting::CurrentChart, currentChart_);
  if (const TreeNode* station = SelectedStation()) keep(setting::TaskStation, StationSetting(station->Text));
}

}  // namespace hyetex
