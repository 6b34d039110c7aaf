#include "editor/windows/frmEditor.h"

#include <QKeyEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <algorithm>
#include <utility>

#include "core/comments.h"
#include "core/numbers.h"
#include "editor/chart_summary.h"
#include "platform/controls.h"
#include "platform/qt_dates.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr const char* SaveTitle = "Saving the file";
constexpr const char* SummaryTitle = "File Summary";
constexpr std::size_t MostLinesTold = 10;

std::string Lines(const std::vector<std::string>& lines, std::size_t most) {
  return std::string(Trim(FirstLines(lines, most)));
}

}  // namespace

frmEditor::frmEditor(Desk& desk, Dialogs& dialogs, Settings& settings, EditorParts parts, QWidget* parent)
    : FormWindow("frmEditor", WindowId::Editor, desk, settings, parent),
      dialogs_(dialogs),
      stations_(parts.Stations),
      chartTypes_(parts.ChartTypes),
      minimalLapse_(parts.MinimalLapse),
      openComment_(std::move(parts.OpenComment)),
      first_(std::move(parts.First)),
      folder_(TargetFolder(settings), parts.Stations),
      stored_(std::move(parts.Stored)),
      source_(stored_ ? *stored_ : folder_),
      firstFolder_(folder_.Folder()) {
  setWindowTitle(tr("Quality Control of Digitized Charts"));
  MakeLayout();
  FillChoices();
  Connect();
  MakeKeys();
  Take(std::nullopt);
  ChangeTab();
}

void frmEditor::showEvent(QShowEvent* event) {
  // All of it in view, also in a small shell.
  if (auto* frame = qobject_cast<QMdiSubWindow*>(parentWidget()); frame != nullptr && !wasListed_)
    frame->resize(frame->size().boundedTo(frame->mdiArea()->viewport()->size()));
  FormWindow::showEvent(event);
  // Behind the first drawing, since it may take a while.
  if (std::exchange(wasListed_, true)) return;
  QMetaObject::invokeMethod(
      this,
      [this] {
        ListFirst();
        lstAscii->setFocus();
      },
      Qt::QueuedConnection);
}

bool frmEditor::MayLeave() {
  return isEnabled() && MayLeaveChart();  // else it waits for the comment window
}

void frmEditor::keyPressEvent(QKeyEvent* event) {
  // In the folder's controls Return means the folder.
  if (IsReturn(*event) && dirFolder_->TakesReturn()) return;
  if (event->key() == Qt::Key_Delete && lstComment->hasFocus()) return DeleteComment();
  if (event->key() == Qt::Key_Delete && lstAscii->hasFocus()) return DeleteFiles();
  FormWindow::keyPressEvent(event);
}

void frmEditor::Closing() {
  // What cannot be kept is not worth a message.
  (void)settings_.Set(setting::EditorChart, comChart->currentIndex());
  if (folder_.Folder() != firstFolder_) (void)settings_.Set(setting::TargetFolder, folder_.Folder());
}

// ---- The views

// Files details have all the room; what is drawn stands beside them.
void frmEditor::ChangeTab() {
  const bool draws = tbsFileView->currentIndex() < 2;
  frmViews_->setVisible(draws);
  const bool isSeries = tbsFileView->currentIndex() == 1;
  comHyetograph->setEnabled(isSeries);
  if (!draws) return;
  cmdSelect->setChecked(false);
  ChartViewOptions options = picPreview->Options();
  options.Kind = isSeries ? ChartViewKind::TimeDepth : ChartViewKind::Digitization;
  options.Zoom.reset();
  picPreview->SetOptions(options);
  ShowOptions();
}

void frmEditor::ShowOptions() {
  ChartViewOptions options = picPreview->Options();
  options.Grid = chkGrid->isChecked();
  options.FontPoints =
      std::clamp(TypedOrLeading(FromQt(txtFontSize->text())), LeastFontPoints, MostFontPoints);
  options.HyetographMinutes = comHyetograph->currentData().toDouble();
  picPreview->SetOptions(options);
}

void frmEditor::ToggleZoom(bool zooms) { picPreview->SetSelecting(zooms); }

QPageLayout::Orientation frmEditor::Orientation() const {
  return optPage[0]->isChecked() ? QPageLayout::Portrait : QPageLayout::Landscape;
}

// ---- The chart

ReadingOptions frmEditor::Reading() const {
  return {.UseAlpha = chkAlpha->isChecked(), .MinimalLapse = minimalLapse_, .Stations = stations_};
}

void frmEditor::OpenFile(int index) {
  if (index < 0 || index >= lines_.rowCount()) return;
  const ChartFileInfo file = lines_.Files()[static_cast<std::size_t>(index)];
  if (!MayLeaveChart()) return SelectOpen();
  auto chart = source_.Open(file, Reading());
  if (!chart) return Take(std::nullopt, chart.error());
  Take(*std::move(chart));
  SelectOpen();  // a save may have changed the list
}

void frmEditor::Take(std::optional<OpenedChart> chart, const std::string& why) {
  open_ = std::move(chart);
  editRecord_ = open_ ? open_->Reading->Chart : ChartRecord();
  picPreview->Show(open_ ? open_->Reading : nullptr);
  cmdSelect->setChecked(false);
  UpdateLabels();
  ShowLacks(why);
  frmDetails->setTitle(open_ ? ToQt(open_->File.FileName) : tr("No chart is open"));
}

void frmEditor::ShowLacks(const std::string& why) {
  std::vector<std::string> lacks;
  if (!why.empty()) lacks.push_back(why);
  if (open_) lacks = WhatChartLacks(*open_->Reading);
  for (std::string& line : lacks) line = ShownText(line);
  labLacks->setText(ToQt(Lines(lacks, 4)));
  labLacks->setVisible(!lacks.empty());
}

// With the pen's skew or without it; what was edited stays.
void frmEditor::ReadAgain() {
  if (!open_) return;
  auto reading = std::make_shared<ChartReading>();
  ReadChartText(open_->Bytes, open_->Reading->Chart.FileName, Reading(), *reading);
  open_->Reading = std::move(reading);
  picPreview->Show(open_->Reading);
  ShowOptions();
}

void frmEditor::UpdateLabels() {
  const bool isOpen = open_.has_value();
  for (QWidget* each :
       {static_cast<QWidget*>(comReliability), static_cast<QWidget*>(txtRain),
        static_cast<QWidget*>(txtManual), static_cast<QWidget*>(dtpBeginDate),
        static_cast<QWidget*>(dtpBeginTime), static_cast<QWidget*>(dtpEndDate),
        static_cast<QWidget*>(dtpEndTime), static_cast<QWidget*>(lstComment), static_cast<QWidget*>(cmdAdd),
        static_cast<QWidget*>(cmdSave), static_cast<QWidget*>(cmdPrint)})
    each->setEnabled(isOpen);
  const auto captions = DetailCaptions(editRecord_);
  for (std::size_t i = 0; i < captions.size(); ++i)
    labCaption[i]->setText(isOpen ? ToQt(captions[i]) : QString());
  labDigitizer->setText(isOpen ? ToQt("Digitizer Comment: " + editRecord_.DigitizerComment) : QString());
  labDigitizer->setToolTip(ToQt(editRecord_.DigitizerComment));

  const EditorEntries entries = EntriesOf(editRecord_);
  {
    const QSignalBlocker quiet[] = {QSignalBlocker(comReliability), QSignalBlocker(txtRain),
                                    QSignalBlocker(txtManual),      QSignalBlocker(dtpBeginDate),
                                    QSignalBlocker(dtpBeginTime),   QSignalBlocker(dtpEndDate),
                                    QSignalBlocker(dtpEndTime)};
    comReliability->setCurrentIndex(isOpen ? entries.Reliability : -1);
    txtRain->setText(isOpen ? ToQt(entries.SelectedDepth) : QString());
    txtManual->setText(isOpen ? ToQt(entries.ManualDepth) : QString());
    dtpBeginDate->setDate(ToQDate(editRecord_.StartTime));
    dtpBeginTime->setTime(ToQTime(editRecord_.StartTime));
    dtpEndDate->setDate(ToQDate(editRecord_.EndTime));
    dtpEndTime->setTime(ToQTime(editRecord_.EndTime));
  }
  UpdateCommentsList();
  UpdateFactor();
}

EditorEntries frmEditor::Entries() const {
  return {.BeginDate = FromQDate(dtpBeginDate->date()),
          .BeginTime = FromQTime(dtpBeginTime->time()),
          .EndDate = FromQDate(dtpEndDate->date()),
          .EndTime = FromQTime(dtpEndTime->time()),
          .SelectedDepth = FromQt(txtRain->text()),
          .ManualDepth = FromQt(txtManual->text()),
          .Reliability = std::max(0, comReliability->currentIndex())};
}

void frmEditor::UpdateFactor() {
  const auto factors = FactorsOf(Entries(), editRecord_);
  for (std::size_t i = 0; i < factors.size(); ++i) {
    labFactor[i]->setText(open_ ? ToQt(factors[i].Caption) : QString());
    QPalette colours;  // of the details, where there is no alert
    const bool alert = open_ && factors[i].Alert;
    if (alert) colours.setColor(QPalette::WindowText, Qt::red);
    labFactor[i]->setPalette(colours);
    QFont font = this->font();
    font.setBold(alert);  // red alone does not tell everybody
    labFactor[i]->setFont(font);
  }
  labUnsaved->setText(IsChanged() ? tr("Not saved yet") : QString());
  labTrace->setText(open_ && comChart->currentIndex() >= 0
                        ? ToQt(TraceByPaper(*open_->Reading,
                                            chartTypes_[static_cast<std::size_t>(comChart->currentIndex())]))
                        : QString());
}

void frmEditor::UpdateCommentsList() {
  lstComment->clear();
  for (const std::string& entry : CommentEntries(editRecord_.GeneralComment))
    lstComment->addItem(ToQt(entry));
  cmdDeleteComment->setEnabled(lstComment->count() > 0);
}

void frmEditor::AskForComment() {
  if (open_ && openComment_) openComment_();
}

std::optional<std::string> frmEditor::AddComment(std::string_view code, std::string_view text) {
  AddTypedEntry(editRecord_.GeneralComment, MakeComment(code, text));
  UpdateCommentsList();
  lstComment->setCurrentRow(lstComment->count() - 1);
  UpdateFactor();
  return std::nullopt;
}

void frmEditor::DeleteComment() {
  const int row = lstComment->currentRow();
  if (row < 0) return;
  DeleteEntry(editRecord_.GeneralComment, static_cast<std::size_t>(row));
  UpdateCommentsList();
  lstComment->setCurrentRow(std::min(row, lstComment->count() - 1));
  lstComment->setFocus();
  UpdateFactor();
}

bool frmEditor::IsChanged() const {
  if (!open_) return false;
  const ChartRecord& chart = open_->Reading->Chart;
  return editRecord_.GeneralComment != chart.GeneralComment || EntriesDiffer(Entries(), chart);
}

bool frmEditor::MayLeaveChart() {
  if (!IsChanged()) return true;
  const BoxAnswer answer = dialogs_.MessageBox(
      SaveTitle, ShownText(open_->File.FileName) + " has been changed. Do you want to save the changes ?",
      BoxButtons::YesNoCancel, BoxIcon::Question);
  if (answer == BoxAnswer::Yes) return SaveChart();
  if (answer == BoxAnswer::Cancel) return false;
  editRecord_ = open_->Reading->Chart;
  UpdateLabels();
  return true;
}

bool frmEditor::SaveChart() {
  if (!open_ || isBusy_ || RefusesEntries(*this, dialogs_, SaveTitle)) return false;
  ChartRecord edited = editRecord_;
  const auto refuse = [&](const std::string& why) {
    dialogs_.MessageBox(SaveTitle, why, BoxButtons::Ok, BoxIcon::Warning);
    return false;
  };
  if (const auto why = TakeEntries(Entries(), edited)) return refuse(*why);
  const auto asks = [&](BoxButtons buttons) {
    return [this, buttons](const std::string& question) {
      return dialogs_.MessageBox(SaveTitle, question, buttons, BoxIcon::Warning) == BoxAnswer::Ok;
    };
  };
  isBusy_ = true;
  const auto saved = [&] {
    const auto progress = Shown();
    return source_.Save(*open_, edited,
                        {.OtherName = asks(BoxButtons::OkCancel),
                         .Overwrite = asks(BoxButtons::CancelUnlessOk),
                         .Newer = asks(BoxButtons::CancelUnlessOk)},
                        *progress);
  }();
  isBusy_ = false;
  if (!saved) return refuse(saved.error());
  if (!*saved) return false;

  const bool isRenamed = (*saved)->File.FileName != open_->File.FileName;
  auto chart = source_.Open((*saved)->File, Reading());
  if (chart)
    Take(*std::move(chart));
  else
    Take(std::nullopt, chart.error());
  if (isRenamed) UpdateList();
  labUnsaved->setText(tr("Saved"));
  if (!(*saved)->Notes.empty())
    dialogs_.MessageBox(SaveTitle, Lines((*saved)->Notes, MostLinesTold), BoxButtons::Ok,
                        BoxIcon::Information);
  return true;
}

// First from where the charts are listed, then, of the database's charts, the files of their names.
void frmEditor::DeleteFiles() {
  const std::vector<ChartFileInfo> files = Selected();
  if (files.empty() || isBusy_) return;
  const int row = lstAscii->currentIndex().row();
  std::vector<std::string> refused;
  bool isDeleted = false;
  const auto ask = [&](ChartSource& place, const std::vector<ChartFileInfo>& named) {
    if (named.empty()) return;
    const ChartSource::Question question = place.DeletionQuestion();
    if (dialogs_.MessageBox(question.Title, question.Text, BoxButtons::NoUnlessYes, BoxIcon::Warning) !=
        BoxAnswer::Yes)
      return;
    isBusy_ = true;
    DeletedCharts deleted;
    {
      const auto progress = Shown();
      deleted = place.Delete(named, *progress);
    }
    isBusy_ = false;
    isDeleted = true;
    refused.insert(refused.end(), deleted.Refused.begin(), deleted.Refused.end());
  };
  ask(source_, files);
  if (stored_ != nullptr) {
    std::vector<ChartFileInfo> held;
    std::ranges::copy_if(files, std::back_inserter(held),
                         [this](const ChartFileInfo& file) { return folder_.Holds(file); });
    ask(folder_, held);
  }
  if (!refused.empty())
    dialogs_.MessageBox(source_.DeletionQuestion().Title, Lines(refused, MostLinesTold), BoxButtons::Ok,
                        BoxIcon::Warning);
  if (!isDeleted) return;
  UpdateList();
  if (open_ && lines_.RowOf(open_->File.FileName) < 0 &&
      std::ranges::find(files, open_->File.FileName, &ChartFileInfo::FileName) != files.end()) {
    Take(std::nullopt);
    if (lines_.rowCount() > 0) SelectRow(std::clamp(row, 0, lines_.rowCount() - 1));
  }
}

void frmEditor::SumUp() {
  const std::vector<ChartFileInfo> files = Selected();
  if (files.empty() || isBusy_) return;
  ChartSummary summary;
  std::vector<std::string> notes;
  std::size_t done = 0;
  isBusy_ = true;
  {
    const auto progress = Shown();
    for (; done < files.size(); ++done) {
      if (!progress->Step(static_cast<std::int64_t>(done), static_cast<std::int64_t>(files.size()),
                          files[done].FileName)) {
        notes.emplace_back("The summary was stopped before its end.");
        break;
      }
      const auto chart = source_.Open(files[done], Reading());
      if (!chart) {
        notes.push_back(chart.error());
      } else if (!summary.Add(chart->Reading->Chart)) {
        notes.push_back(LeftOutOfSummary(files.size() - done));
        break;
      }
    }
  }
  isBusy_ = false;
  std::string text = summary.Text();
  for (const std::string& note : notes) text += "\n" + ShownText(note);
  desk_.OpenLargeView(SummaryTitle, text);
}

}  // namespace hyetex
