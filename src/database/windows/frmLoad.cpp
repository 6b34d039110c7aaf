#include "database/windows/frmLoad.h"

#include <QApplication>
#include <QKeyEvent>
#include <algorithm>
#include <utility>

#include "chartfiles/saving.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
#include "database/stations/unmapped.h"
#include "database/store/extracting.h"
#include "database/store/instruments.h"
#include "database/store/loading.h"
#include "platform/controls.h"
#include "platform/qt_dates.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr const char* LoadTitle = "Loading Files into Database";
constexpr const char* ExtractTitle = "Extract Files";
constexpr std::size_t MostNotesShown = 4;

// What a node of the tree stands for.
enum NodeRole { StationRole = Qt::UserRole, CodeRole };

std::string StoredFolder(const Settings& settings, const TextKey& key, std::string missing) {
  std::string stored = settings.Get(key);
  return stored.empty() ? std::move(missing) : stored;
}

}  // namespace

void FileLines::Show(std::vector<std::size_t> rows) {
  beginResetModel();
  rows_ = std::move(rows);
  endResetModel();
}

int FileLines::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant FileLines::data(const QModelIndex& index, int role) const {
  const FileSummary& file = FileAt(index.row());
  if (role == Qt::DisplayRole) return ToQt(LineOf(file, stations_));
  if (role == Qt::ToolTipRole)
    return ToQt(file.Chart.InstrumentCode + "\n" + GeneralDateText(file.Chart.StartTime) + " to " +
                GeneralDateText(file.Chart.EndTime) +
                "\nDigitized depth: " + ShortText(file.Chart.DigitizedDepth) + " mm" +
                (file.Loaded == 1 ? "\nConverted to time and depth" : ""));
  return {};
}

frmLoad::frmLoad(Desk& desk, Dialogs& dialogs, Settings& settings, ReferenceLists& lists,
                 HyetexPlotDB& database, QWidget* parent)
    : FormWindow("frmLoad", WindowId::Load, desk, settings, parent),
      dialogs_(dialogs),
      lists_(lists),
      database_(database),
      source_(StoredFolder(settings, setting::LoadSource, TargetFolder(settings))),
      target_(StoredFolder(settings, setting::LoadTarget, JoinPath(settings.Folder(), "Data"))),
      lines_(files_.Files, lists.Stations) {
  setWindowTitle(tr("Load (or \"Extract\") Ascii Files to (or from) Database"));
  MakeControls();
  MakeLayout();
  chkTarget->setChecked(settings.Get(setting::LoadMoves));
  ShowTarget();

  connect(tspLR, &QTabBar::currentChanged, this, &frmLoad::ChangeTab);
  connect(dirFolder_, &FolderBox::FolderChosen, this, &frmLoad::ChangeFolder);
  connect(cmdSetTarget, &QPushButton::clicked, this, [this] {
    target_ = source_;
    ShowTarget();
  });
  connect(tvwStations, &QTreeWidget::currentItemChanged, this, &frmLoad::ShowFiles);
  connect(lstFile->selectionModel(), &QItemSelectionModel::selectionChanged, this, &frmLoad::ShowSelected);
  connect(&lines_, &QAbstractItemModel::modelReset, this, &frmLoad::ShowSelected);
  connect(cmdAll, &QPushButton::clicked, lstFile, &QListView::selectAll);
  connect(chkDate, &QCheckBox::toggled, this, [this](bool limited) {
    dtpBegin->setEnabled(limited);
    dtpEnd->setEnabled(limited);
    RefillLists();
  });
  for (DateBox* box : {dtpBegin, dtpEnd})
    connect(box, &DateBox::dateChanged, this, [this] {
      if (chkDate->isChecked()) RefillLists();
    });
  connect(cmdLoad, &QPushButton::clicked, this, [this] {
    if (RefusesEntries(*this, dialogs_, FromQt(windowTitle()))) return;
    Loads() ? Load() : Extract();
  });
  connect(cmdClose, &QPushButton::clicked, this, &QWidget::close);
  ShowFolder();
  ShowSelected();
}

void frmLoad::showEvent(QShowEvent* event) {
  FormWindow::showEvent(event);
  // Behind the first drawing, since it may take a while.
  if (!std::exchange(wasRead_, true))
    QMetaObject::invokeMethod(this, &frmLoad::ReadFiles, Qt::QueuedConnection);
}

// In the folder's controls Return means the folder.
void frmLoad::keyPressEvent(QKeyEvent* event) {
  if (IsReturn(*event) && dirFolder_->TakesReturn()) return;
  FormWindow::keyPressEvent(event);
}

void frmLoad::Closing() {
  // What cannot be kept is not worth a message.
  (void)settings_.Set(setting::LoadSource, source_);
  (void)settings_.Set(setting::LoadTarget, target_);
  (void)settings_.Set(setting::LoadMoves, chkTarget->isChecked());
}

// ---- The folder

void frmLoad::ChangeTab() {
  ShowFolder();
  ReadFiles();
}

void frmLoad::ChangeFolder() {
  (Loads() ? source_ : target_) = dirFolder_->Folder();
  ShowTarget();
  if (Loads()) ReadFiles();
}

void frmLoad::ShowFolder() {
  frmFolder->setTitle(Loads() ? tr("Source Folder") : tr("Target Folder"));
  cmdLoad->setText(Loads() ? tr("&Load Files to Database") : tr("&Extract Files"));
  moving_->setVisible(Loads());
  dirFolder_->SetTitle(FromQt(frmFolder->title()));
  dirFolder_->ShowFolder(Loads() ? source_ : target_);
}

void frmLoad::ShowTarget() { labTarget->setText(ToQt(target_)); }

// ---- The files

std::unique_ptr<ShownProgress> frmLoad::Shown() {
  return std::make_unique<ShownProgress>(*prgFiles, *cmdStop,
                                         [this](const std::string& what) { labDoing->setText(ToQt(what)); });
}

bool frmLoad::OpenDatabase() {
  const auto opened = database_.OpenDatabase();
  if (!opened) database_.Show(opened.error());
  return opened.has_value();
}

void frmLoad::ReadFiles() {
  FileList read;
  if (Loads()) {
    const auto progress = Shown();
    auto list = ReadFolder(source_, lists_.Stations, *progress);
    if (list)
      read = *std::move(list);
    else
      read.Notes = {list.error()};
  } else if (OpenDatabase()) {
    const auto progress = Shown();
    auto list = ReadDatabaseList(database_, lists_.Stations, *progress);
    if (list)
      read = *std::move(list);
    else
      database_.Show(list.error());
  }
  labDoing->clear();
  lines_.Show({});
  files_ = std::move(read);

  if (!chkDate->isChecked() && !files_.Files.empty()) {
    const auto [first, last] = std::minmax_element(
        files_.Files.begin(), files_.Files.end(),
        [](const auto& a, const auto& b) { return a.Chart.StartTime < b.Chart.StartTime; });
    dtpBegin->setDate(ToQDate(first->Chart.StartTime));
    dtpEnd->setDate(ToQDate(last->Chart.StartTime));
  }
  std::vector<std::string> notes = files_.Notes;
  for (std::string& note : notes) note = ShownText(note);
  labNotes->setText(ToQt(Trim(FirstLines(notes, MostNotesShown))));
  labNotes->setVisible(!notes.empty());
  UpdateList();
}

// Not found out on a database that does not open: of that the operator hears when it is wanted.
void frmLoad::ShowWarnings() {
  const auto codes = ReadInstrumentCodes(database_);
  QStringList warnings;
  for (const std::string& warning : FindUnMappedCodes(
           Loads() ? std::span<const FileSummary>(files_.Files) : std::span<const FileSummary>(), lists_,
           codes ? &*codes : nullptr))
    warnings << ToQt(warning);
  labError->setText(warnings.join('\n'));
  labError->setVisible(!warnings.isEmpty());
}

void frmLoad::ReadUnMappedStations() {
  // Those of the database are the business of whoever puts list and database in line.
  if (Loads() && hyetex::ReadUnMappedStations(files_.Files, lists_, settings_.Folder(), dialogs_))
    UpdateList();
}

void frmLoad::UpdateList() {
  lines_.Show({});
  FindStations(files_.Files, lists_.Stations);
  ShowWarnings();
  RefillLists();
}

void frmLoad::RefillLists() {
  RefillTree();
  ShowFiles();
}

FileFilter frmLoad::Filter() const {
  FileFilter filter;
  if (chkDate->isChecked()) filter.Days = {FromQDate(dtpBegin->date()), FromQDate(dtpEnd->date())};
  const auto value = [&](int role) -> std::optional<std::string> {
    const QTreeWidgetItem* node = tvwStations->currentItem();
    const QVariant kept = node ? node->data(0, role) : QVariant();
    if (!kept.isValid()) return std::nullopt;
    return kept.toByteArray().toStdString();  // bytes, as the lists have them
  };
  filter.Station = value(StationRole);
  filter.Code = value(CodeRole);
  return filter;
}

// The node that was chosen stays chosen if it is still there.
void frmLoad::RefillTree() {
  const FileFilter chosen = Filter();
  const QSignalBlocker quiet(tvwStations);
  tvwStations->clear();
  auto* all = new QTreeWidgetItem(tvwStations, {tr("All stations")});
  QTreeWidgetItem* current = all;
  for (const StationNode& node : StationsOf(files_.Files, lists_.Stations, chosen)) {
    auto* station = new QTreeWidgetItem(all, {ToQt(node.Station)});
    station->setData(0, StationRole, QByteArray::fromStdString(node.Station));
    if (chosen.Station == node.Station) current = station;
    for (const std::string& code : node.Codes) {
      auto* instrument = new QTreeWidgetItem(station, {ToQt(code)});
      instrument->setData(0, StationRole, QByteArray::fromStdString(node.Station));
      instrument->setData(0, CodeRole, QByteArray::fromStdString(code));
      if (chosen.Station == node.Station && chosen.Code == code) current = instrument;
    }
  }
  tvwStations->expandAll();
  tvwStations->setCurrentItem(current);
}

void frmLoad::ShowFiles() { lines_.Show(FilesShown(files_.Files, lists_.Stations, Filter())); }

void frmLoad::ShowSelected() {
  const auto selected = lstFile->selectionModel()->selectedRows().size();
  labCount->setText(tr("%1 of %2 selected").arg(selected).arg(lines_.rowCount()));
  cmdLoad->setEnabled(selected > 0);
  cmdAll->setEnabled(lines_.rowCount() > 0);
}

std::vector<const FileSummary*> frmLoad::Selected() const {
  QModelIndexList rows = lstFile->selectionModel()->selectedRows();
  std::sort(rows.begin(), rows.end());
  std::vector<const FileSummary*> files;
  for (const QModelIndex& row : rows) files.push_back(&lines_.FileAt(row.row()));
  return files;
}

// ---- The work

void frmLoad::Load() {
  const std::vector<const FileSummary*> files = Selected();
  if (files.empty() || !OpenDatabase()) return;
  const auto codes = ReadInstrumentCodes(database_);
  if (!codes) return database_.Show(codes.error());
  if (!std::all_of(files.begin(), files.end(), [&](const FileSummary* file) {
        return codes->contains(ComparedCode(file->Chart.InstrumentCode));
      })) {
    dialogs_.MessageBox(
        LoadTitle,
        "The database does not contain all instruments listed here. Click 'Syncronize Stations "
        "Lists' in order to fix this.",
        BoxButtons::Ok, BoxIcon::Warning);
    return;
  }
  std::vector<std::string> paths;
  for (const FileSummary* file : files) paths.push_back(file->Chart.FileName);
  LoadResult result;
  Result<void> moved;
  {
    const auto progress = Shown();
    result = LoadFiles(database_, lists_, paths, *progress);
    if (chkTarget->isChecked() && !result.Loaded.empty())
      moved = MoveFilesAfterLoading(result.Loaded, target_, *progress);
  }
  labDoing->clear();
  if (!moved) dialogs_.MessageBox(LoadTitle, moved.error(), BoxButtons::Ok, BoxIcon::Warning);
  dialogs_.MessageBox(LoadTitle, LoadMessage(result), BoxButtons::Ok,
                      result.Report.IsClean() ? BoxIcon::Information : BoxIcon::Warning);
  if (chkTarget->isChecked()) ReadFiles();
}

void frmLoad::Extract() {
  std::vector<FileSummary> rows;
  for (const FileSummary* file : Selected()) rows.push_back(*file);
  if (rows.empty() || !OpenDatabase()) return;
  ExtractResult result;
  {
    const auto progress = Shown();
    result = ExtractFiles(database_, rows, target_, *progress);
  }
  labDoing->clear();
  dialogs_.MessageBox(ExtractTitle, ExtractMessage(result, target_), BoxButtons::Ok,
                      result.Report.IsClean() ? BoxIcon::Information : BoxIcon::Warning);
}

}  // namespace hyetex
