// The editor's list of charts: which ones it holds, and which of them is open or selected.
#include <algorithm>
#include <utility>

#include "core/comments.h"
#include "core/text.h"
#include "editor/windows/frmEditor.h"
#include "platform/qt_text.h"

namespace hyetex {

void ChartLines::Show(std::vector<ChartFileInfo> files) {
  beginResetModel();
  files_ = std::move(files);
  endResetModel();
}

int ChartLines::RowOf(const std::string& fileName) const {
  const auto found = std::ranges::find(files_, fileName, &ChartFileInfo::FileName);
  return found == files_.end() ? -1 : static_cast<int>(found - files_.begin());
}

int ChartLines::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(files_.size());
}

QVariant ChartLines::data(const QModelIndex& index, int role) const {
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  return ToQt(EntryText(files_[static_cast<std::size_t>(index.row())]));
}

std::unique_ptr<ShownProgress> frmEditor::Shown() {
  return std::make_unique<ShownProgress>(*prgFiles, *cmdStop);
}

ChartFilter frmEditor::Filter() const {
  ChartFilter filter;
  if (const int station = comStation->currentData().toInt(); station >= 0)
    filter.InstrumentCode = stations_[static_cast<std::size_t>(station)].InstrumentCode;
  if (const int year = comYear->currentData().toInt(); year > 0) filter.Year = year;
  return filter;
}

void frmEditor::UpdateList() {
  if (std::exchange(isBusy_, true)) return;
  const auto list = [&] {
    const auto progress = Shown();
    return source_.List(Filter(), *progress);
  }();
  isBusy_ = false;
  if (list)
    ShowListing(*list);
  else
    ShowListing({.Files = {}, .Years = {}, .Notes = {list.error()}});
}

void frmEditor::ShowListing(ChartListing list) {
  const auto year = Filter().Year;
  ShowYears(list.Years);
  if (year && Filter().Year != year) return UpdateList();  // it had its last chart
  lines_.Show(std::move(list.Files));
  const int count = lines_.rowCount();
  labCount->setText(count == 1 ? tr("1 chart") : tr("%1 charts").arg(count));
  for (std::string& note : list.Notes) note = ShownText(note);
  labListNotes->setText(ToQt(std::string(Trim(FirstLines(list.Notes, 3)))));
  labListNotes->setVisible(!list.Notes.empty());
  SelectOpen();
  if (!open_ && count > 0) SelectRow(0);
  if (!open_ && count == 0) Take(std::nullopt);
}

void frmEditor::ShowYears(const std::vector<int>& years) {
  const QSignalBlocker quiet(comYear);
  const QVariant chosen = comYear->currentData();
  comYear->clear();
  comYear->addItem(tr("All Years"), 0);
  for (const int year : years) comYear->addItem(QString::number(year), year);
  comYear->setCurrentIndex(std::max(0, comYear->findData(chosen)));
}

void frmEditor::SelectRow(int row) {
  lstAscii->setCurrentIndex(lines_.index(row));
  lstAscii->scrollTo(lines_.index(row));
}

// The list shows which chart is open, if it holds it.
void frmEditor::SelectOpen() {
  const int row = open_ ? lines_.RowOf(open_->File.FileName) : -1;
  if (row < 0)
    lstAscii->selectionModel()->clear();
  else if (lstAscii->currentIndex().row() != row)
    SelectRow(row);
}

void frmEditor::GoTo(int step) {
  const int row = lstAscii->currentIndex().isValid() ? lstAscii->currentIndex().row() + step : 0;
  if (row >= 0 && row < lines_.rowCount()) SelectRow(row);
}

void frmEditor::OpenCurrent() {
  opens_ = false;
  const QModelIndex current = lstAscii->currentIndex();
  if (isBusy_ || !current.isValid()) return;
  const std::string& name = lines_.Files()[static_cast<std::size_t>(current.row())].FileName;
  if (!open_ || open_->File.FileName != name) OpenFile(current.row());
}

// The chart that is open belongs to the folder that is left.
void frmEditor::ChangeFolder() {
  if (stored_ == nullptr) {
    if (!MayLeaveChart()) return dirFolder_->ShowFolder(folder_.Folder());
    Take(std::nullopt);
  }
  folder_.SetFolder(dirFolder_->Folder());
  if (stored_ == nullptr) UpdateList();
}

// All charts, or those of the instrument of which one is to be opened.
void frmEditor::ListFirst() {
  if (first_) {
    const QSignalBlocker quiet(comStation);
    const auto station = std::ranges::find_if(stations_, [this](const StationRecord& one) {
      return EqualIgnoringCase(one.InstrumentCode, Trim(first_->InstrumentCode));
    });
    if (station != stations_.end())
      comStation->setCurrentIndex(
          std::max(0, comStation->findData(static_cast<int>(station - stations_.begin()))));
  }
  UpdateList();
  if (!first_) return;
  const std::string name = ChartFileName(std::string(Trim(first_->InstrumentCode)), first_->ChartDate);
  for (int row = 0; row < lines_.rowCount(); ++row)
    if (EqualIgnoringCase(lines_.Files()[static_cast<std::size_t>(row)].FileName, name))
      return SelectRow(row);
  labListNotes->setText(ToQt("The chart " + ShownText(name) + " is no longer in the database."));
  labListNotes->show();
}

std::vector<ChartFileInfo> frmEditor::Selected() const {
  QModelIndexList rows = lstAscii->selectionModel()->selectedRows();
  std::sort(rows.begin(), rows.end());
  std::vector<ChartFileInfo> files;
  for (const QModelIndex& row : rows) files.push_back(lines_.Files()[static_cast<std::size_t>(row.row())]);
  return files;
}

}  // namespace hyetex
