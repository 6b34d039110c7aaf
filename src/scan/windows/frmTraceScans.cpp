#include "scan/windows/frmTraceScans.h"

#include <QFileInfo>
#include <QHeaderView>
#include <QThread>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "core/numbers.h"
#include "core/text.h"
#include "platform/controls.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr std::string_view Title = "Tracing scans";
constexpr int WordLines = 4;

using State = TraceQueue::State;

}  // namespace

frmTraceScans::frmTraceScans(Desk& desk, Dialogs& dialogs, Settings& settings, TraceQueue queue,
                             TraceServices services, QWidget* parent)
    : FormWindow("frmTraceScans", WindowId::TraceScans, desk, settings, parent),
      dialogs_(dialogs),
      queue_(std::move(queue)),
      services_(std::move(services)) {
  setWindowTitle(tr("Trace Scans"));
  MakeLayout();
  connect(fgdScans, &QTableWidget::itemSelectionChanged, this, &frmTraceScans::ShowWords);
  connect(fgdScans, &QTableWidget::cellDoubleClicked, this, &frmTraceScans::Open);
  connect(&runner_, &TraceRunner::Ended, this, &frmTraceScans::Ended);
  ShowRows();
  ShowState();
  const auto next = queue_.NextToReview();
  Select(next || queue_.Rows().empty() ? next : std::optional<std::size_t>(0));
}

void frmTraceScans::MakeLayout() {
  labFacts = Named(new QLabel, "labFacts");
  labFacts->setTextFormat(Qt::PlainText);
  labFacts->setWordWrap(true);
  labFacts->setText(
      tr("Traced as %1, into %2").arg(ToQt(services_.ChartTypeName), ToQt(ShownText(queue_.Target()))));

  fgdScans = Named(new QTableWidget(0, static_cast<int>(QueueHeadings.size())), "fgdScans");
  fgdScans->setAccessibleName(tr("Staged charts and their scans"));
  QStringList headings;
  for (const std::string_view heading : QueueHeadings) headings << ToQt(heading);
  fgdScans->setHorizontalHeaderLabels(headings);
  fgdScans->horizontalHeader()->setHighlightSections(false);
  fgdScans->horizontalHeader()->setStretchLastSection(true);
  fgdScans->verticalHeader()->hide();
  fgdScans->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
  fgdScans->setSelectionBehavior(QAbstractItemView::SelectRows);
  fgdScans->setSelectionMode(QAbstractItemView::SingleSelection);
  fgdScans->setEditTriggers(QAbstractItemView::NoEditTriggers);
  fgdScans->setTabKeyNavigation(false);
  fgdScans->setTextElideMode(Qt::ElideMiddle);
  fgdScans->setWordWrap(false);
  fgdScans->setMinimumHeight(fontMetrics().height() * 10);
  fgdScans->setMinimumWidth(fontMetrics().averageCharWidth() * 100);

  txtWords = Named(new QPlainTextEdit, "txtWords");
  txtWords->setAccessibleName(tr("About the selected chart"));
  txtWords->setReadOnly(true);
  txtWords->setTabChangesFocus(true);
  txtWords->setFixedHeight(WordLines * fontMetrics().lineSpacing() + 12);

  labProgress = Named(new QLabel, "labProgress");
  labProgress->setTextFormat(Qt::PlainText);
  labProgress->setWordWrap(true);
  prbTrace = Named(new QProgressBar, "prbTrace");
  prbTrace->setAccessibleName(tr("Charts traced"));
  prbTrace->hide();

  cmdStart = MakeButton("cmdStart", "&Start Tracing", &frmTraceScans::Start);
  cmdCancel = MakeButton("cmdCancel", "&Cancel Tracing", &frmTraceScans::Cancel);
  cmdAgain = MakeButton("cmdAgain", "Trace A&gain", &frmTraceScans::TraceAgain);
  cmdOpen = MakeButton("cmdOpen", "&Open Selected Chart", &frmTraceScans::Open);
  cmdExit = Named(new QPushButton(tr("&Return To Staging Area")), "cmdExit");
  connect(cmdExit, &QPushButton::clicked, this, [this] { close(); });
  cmdOpen->setToolTip(tr("At the desk, with its doubts to work off (Return, or a double click)"));
  cmdAgain->setToolTip(tr("The selected chart, which could not be traced"));
  auto* buttons = new QHBoxLayout;
  for (QPushButton* button : {cmdStart, cmdCancel, cmdAgain, cmdOpen}) buttons->addWidget(button);
  buttons->addStretch();
  buttons->addWidget(cmdExit);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(labFacts);
  layout->addWidget(fgdScans, 1);
  layout->addWidget(txtWords);
  layout->addWidget(prbTrace);
  layout->addWidget(labProgress);
  layout->addLayout(buttons);
  LinkTabs({fgdScans, txtWords, cmdStart, cmdCancel, cmdAgain, cmdOpen, cmdExit});
}

// All columns, and as many charts as there is room for on a small screen.
QSize frmTraceScans::sizeHint() const {
  constexpr int Characters = 138, Lines = 34;
  return QSize(Characters * fontMetrics().averageCharWidth(), Lines * fontMetrics().height())
      .expandedTo(FormWindow::sizeHint());
}

QPushButton* frmTraceScans::MakeButton(const char* name, const char* caption, void (frmTraceScans::*run)()) {
  auto* button = Named(new QPushButton(tr(caption)), name);
  connect(button, &QPushButton::clicked, this, run);
  return button;
}

// ---- What it shows

void frmTraceScans::ShowRows() {
  fgdScans->setRowCount(static_cast<int>(queue_.Rows().size()));
  for (std::size_t row = 0; row < queue_.Rows().size(); ++row) FillRow(row);
  FitColumns();
}

// The scan's name takes what is over. A state has room for the longest, since it changes while one looks.
void frmTraceScans::FitColumns() {
  constexpr int state = static_cast<int>(QueueStateColumn), beside = 16;
  fgdScans->resizeColumnsToContents();
  const QString longest = ToQt(StateText(State::Digitized));
  fgdScans->setColumnWidth(state, std::max(fgdScans->columnWidth(state),
                                           fgdScans->fontMetrics().horizontalAdvance(longest) + beside));
  fgdScans->setColumnWidth(fgdScans->columnCount() - 1, 0);
}

void frmTraceScans::FillRow(std::size_t row) {
  const TraceQueue::Row& chart = queue_.Rows()[row];
  const auto cells = QueueCells(chart);
  QFont bold = fgdScans->font();
  bold.setBold(true);
  for (std::size_t c = 0; c < cells.size(); ++c) {
    const int line = static_cast<int>(row), column = static_cast<int>(c);
    QTableWidgetItem* item = fgdScans->item(line, column);
    if (item == nullptr) fgdScans->setItem(line, column, item = new QTableWidgetItem);
    item->setText(ToQt(ShownText(cells[c])));
    if (c >= FirstQueueNumber && c <= LastQueueNumber)
      item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    if (c == QueueStateColumn)
      item->setFont(chart.Is == State::ToReview || chart.Is == State::Failed ? bold : fgdScans->font());
    item->setToolTip(c + 1 == cells.size() ? ToQt(ShownText(chart.Scan.Path)) : QString());
  }
}

void frmTraceScans::ShowState() {
  const int waiting = queue_.Count(State::Waiting);
  const bool hadFocus = cmdStart->hasFocus() || cmdCancel->hasFocus();
  cmdStart->setEnabled(!IsRunning() && waiting > 0);
  cmdCancel->setEnabled(IsRunning());
  prbTrace->setVisible(IsRunning());
  std::string text = queue_.Summary();
  if (IsRunning()) {
    const int all = done_ + waiting + queue_.Count(State::BeingTraced);
    prbTrace->setRange(0, all);
    prbTrace->setValue(done_);
    text = QueueProgress(done_, all, static_cast<double>(since_.elapsed()) / 1000) + ": " + text;
  }
  labProgress->setText(ToQt(text));
  // Escape stops the work while there is any.
  SetKeyButtons(cmdOpen, IsRunning() ? cmdCancel : cmdExit);
  if (hadFocus && !cmdStart->hasFocus() && !cmdCancel->hasFocus()) fgdScans->setFocus();
  ShowWords();
}

void frmTraceScans::ShowWords() {
  const int row = SelectedRow();
  const TraceQueue::Row* chart = row < 0 ? nullptr : &queue_.Rows()[static_cast<std::size_t>(row)];
  const QString words = chart == nullptr ? QString() : ToQt(ShownText(chart->Why));
  if (txtWords->toPlainText() != words) txtWords->setPlainText(words);
  cmdOpen->setEnabled(chart != nullptr && TraceQueue::CanOpen(*chart));
  cmdAgain->setEnabled(chart != nullptr && (chart->Is == State::NotTraced || chart->Is == State::Failed));
}

int frmTraceScans::SelectedRow() const {
  return fgdScans->selectionModel()->hasSelection() ? fgdScans->currentRow() : -1;
}

void frmTraceScans::Select(std::optional<std::size_t> row) {
  if (!row) return;
  const int line = static_cast<int>(*row);
  fgdScans->setCurrentCell(line, 0);
  fgdScans->selectRow(line);
  fgdScans->scrollToItem(fgdScans->item(line, 0));
}

// ---- Tracing

void frmTraceScans::Start() {
  if (IsRunning()) return;
  if (!QFileInfo(ToQt(services_.Program)).isExecutable()) {
    dialogs_.MessageBox(std::string(Title),
                        "The program that traces the scans is not there: " + ShownText(services_.Program) +
                            ".\n\nIt belongs beside the one that is running. Install Hyetex anew.",
                        BoxButtons::Ok, BoxIcon::Warning);
    return;
  }
  running_ = true;
  done_ = 0;
  since_.start();
  Fill();
}

// As many at once as there are processors.
void frmTraceScans::Fill() {
  const auto most = static_cast<std::size_t>(std::max(1, QThread::idealThreadCount()));
  while (runner_.Running() < most) {
    const auto next = queue_.Begin([this](std::size_t changed) { FillRow(changed); });
    if (!next) break;
    const TraceQueue::Row& row = queue_.Rows()[*next];
    QStringList words{"autotrace"};
    for (const auto& [option, value] :
         {std::pair("--folder", settings_.Folder()), std::pair("--user", services_.User),
          std::pair("--target", queue_.Target()), std::pair("--chart-type", ShortText(services_.ChartType)),
          std::pair("--chart", row.Name), std::pair("--scan", row.Scan.Path),
          std::pair("--page", ShortText(row.Scan.Page)), std::pair("--jobs", std::string("1"))})
      words << option << ToQt(value);
    runner_.Begin(*next, ToQt(services_.Program), words, row.Name, row.Scan.Path);
  }
  running_ = queue_.Count(State::BeingTraced) > 0;
  ShowState();
}

void frmTraceScans::Ended(std::size_t row, const TracedChart& traced) {
  queue_.End(row, traced);
  FillRow(row);
  ++done_;
  if (!IsRunning()) return ShowState();
  Fill();
  if (IsRunning()) return;
  // The work goes on with those that want a person, unless one is being looked at.
  const int selected = SelectedRow();
  if (selected < 0 || !TraceQueue::CanOpen(queue_.Rows()[static_cast<std::size_t>(selected)]))
    Select(queue_.NextToReview());
  FitColumns();
}

void frmTraceScans::Cancel() {
  if (!IsRunning()) return;
  running_ = false;
  runner_.CancelAll();
  for (std::size_t row = 0; row < queue_.Rows().size(); ++row) {
    if (queue_.Rows()[row].Is != State::BeingTraced) continue;
    queue_.GiveUp(row);
    FillRow(row);
  }
  ShowState();
}

void frmTraceScans::TraceAgain() {
  const int row = SelectedRow();
  if (row < 0 || !queue_.WaitAgain(static_cast<std::size_t>(row))) return;
  FillRow(static_cast<std::size_t>(row));
  IsRunning() ? Fill() : Start();
  ShowState();
}

// ---- Looking at charts

void frmTraceScans::Open() {
  if (SelectedRow() < 0) return;
  const auto row = static_cast<std::size_t>(SelectedRow());
  const TraceQueue::Row& chart = queue_.Rows()[row];
  if (!TraceQueue::CanOpen(chart) || !services_.Open(chart)) return;
  opened_ = SelectedRow();
  queue_.TakeToTheDesk(row);
  FillRow(row);
  ShowState();
}

void frmTraceScans::ComeBack() {
  queue_.LookAgain();
  for (std::size_t row = 0; row < queue_.Rows().size(); ++row) FillRow(row);
  if (const int row = std::exchange(opened_, -1); row >= 0) {
    const auto at = static_cast<std::size_t>(row);
    const bool saved = queue_.Rows()[at].Is == State::Digitized;
    Select(saved ? queue_.NextToReview(at).value_or(at) : at);
  }
  ShowState();
  fgdScans->setFocus();
}

// ---- Closing

bool frmTraceScans::MayLeave() {
  return !IsRunning() ||
         dialogs_.MessageBox(
             std::string(Title),
             "Charts are being traced. Do you want to end that ?\n\nWhat is traced stands, and "
             "the others wait for the next time.",
             BoxButtons::NoUnlessYes, BoxIcon::Question) == BoxAnswer::Yes;
}

void frmTraceScans::Closing() {
  running_ = false;
  runner_.CancelAll();
}

}  // namespace hyetex
