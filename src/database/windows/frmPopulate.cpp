#include "database/windows/frmPopulate.h"

#include <algorithm>

#include "core/files.h"
#include "core/text.h"
#include "database/conversion/data_log.h"
#include "database/store/instruments.h"
#include "platform/qt_text.h"
#include "platform/shell.h"
#include "platform/shown_progress.h"

namespace hyetex {
namespace {

constexpr const char* Title = "Populating the Database";

// More of them are shown in a window of their own.
constexpr std::size_t MostProblemsInMessage = 5;
// What no application opens is shown in a window of our own, up to this size.
constexpr std::size_t MostBytesShown = 16U << 20;

}  // namespace

frmPopulate::frmPopulate(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database,
                         const ReferenceLists& lists, ComputationVariables& variables, PopulateParts parts,
                         QWidget* parent)
    : FormWindow("frmPopulate", WindowId::Populate, desk, settings, parent),
      dialogs_(dialogs),
      database_(database),
      lists_(lists),
      variables_(variables),
      parts_(std::move(parts)) {
  setWindowTitle(tr("Populate CHART Table in Database with Time-Depth Data "));
  MakeControls();
  MakeLayout();
  FillInstruments();
  EnableCommands();

  connect(cboSelection, &QComboBox::currentIndexChanged, this, &frmPopulate::LoadGrid);
  connect(chkShowAll, &QCheckBox::toggled, this, &frmPopulate::LoadGrid);
  connect(cmdWrite, &QPushButton::clicked, this, &frmPopulate::WriteChartRecords);
  connect(mnuChangeSelectedDepth, &QAction::triggered, this, &frmPopulate::ChangeSelectedDepth);
  connect(mnuPopulateViewSelected, &QAction::triggered, this, &frmPopulate::ViewSelected);
  connect(cmdExit, &QPushButton::clicked, this, &QWidget::close);
  connect(spFiles->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          &frmPopulate::ShowConversion);
  connect(cmdRain, &QPushButton::clicked, this, &frmPopulate::ShowConvertedRain);
  connect(cmdBack, &QPushButton::clicked, this, [this] {
    desk_.Open(WindowId::PrePop);
    close();
  });
  // Behind the first drawing, since it may take a while.
  if (!parts_.Instrument.empty())
    QMetaObject::invokeMethod(
        this, [this] { ChooseInstrument(parts_.Instrument); }, Qt::QueuedConnection);
}

void frmPopulate::ChooseInstrument(const std::string& code) {
  const auto found = std::ranges::find_if(
      instruments_, [&](const std::string& one) { return EqualIgnoringCase(Trim(one), Trim(code)); });
  if (found != instruments_.end())
    cboSelection->setCurrentIndex(static_cast<int>(found - instruments_.begin()));
}

void frmPopulate::Closing() { variables_ = {}; }

void frmPopulate::FillInstruments() {
  auto instruments = ListInstruments(database_);
  if (!instruments) return database_.Show(instruments.error());
  instruments_ = *std::move(instruments);
  for (const std::string& code : instruments_) cboSelection->addItem(ToQt(code));
  cboSelection->setCurrentIndex(-1);
}

void frmPopulate::EnableCommands() {
  const bool any = charts_->rowCount() > 0;
  for (QAction* action : {mnuChangeSelectedDepth, mnuPopulateViewSelected}) action->setEnabled(any);
  cmdWrite->setEnabled(any);
  cmdRain->setEnabled(converted_.has_value());
}

void frmPopulate::LoadGrid() {
  if (cboSelection->currentIndex() < 0) return;
  const int active = spFiles->currentIndex().row();
  // Nobody shall take the charts of one instrument for those of another.
  charts_->SetRows({});
  DbResult<std::vector<PopulateRow>> rows;
  bool stopped = false;
  {
    ShownProgress progress(*barProgress, *cmdCancel, [this](const std::string& what) {
      StatusBar1->showMessage(tr("Reading record %1").arg(QString::fromStdString(what)));
    });
    rows = hyetex::LoadGrid(database_, instruments_[static_cast<std::size_t>(cboSelection->currentIndex())],
                            chkShowAll->isChecked(), variables_, lists_, progress);
    stopped = progress.IsCancelled();
  }
  if (!rows) {
    StatusBar1->clearMessage();
    database_.Show(rows.error());
  } else {
    const QString loaded = tr("Records loaded from CHART_ASCII Table (%1 records )").arg(rows->size());
    StatusBar1->showMessage(stopped ? loaded + tr(", stopped before the last") : loaded);
    charts_->SetRows(*std::move(rows));
    // Where the charts above have gone into the database the next one takes their place.
    spFiles->selectRow(std::clamp(active, 0, std::max(charts_->rowCount() - 1, 0)));
  }
  EnableCommands();
}

ChosenRows frmPopulate::Chosen() const {
  ChosenRows chosen;
  for (const QModelIndex& row : spFiles->selectionModel()->selectedRows()) chosen.Block.push_back(row.row());
  std::sort(chosen.Block.begin(), chosen.Block.end());
  if (spFiles->currentIndex().isValid()) chosen.Active = spFiles->currentIndex().row();
  return chosen;
}

int frmPopulate::SourceRow(int shownRow) const {
  return order_->mapToSource(order_->index(shownRow, 0)).row();
}

void frmPopulate::ChangeSelectedDepth() {
  for (const int row : BlockOrActive(Chosen())) charts_->Toggle(SourceRow(row));
}

void frmPopulate::ViewSelected() {
  const auto active = Chosen().Active;
  if (!active) return;
  const auto path =
      WriteStoredText(database_, instruments_[static_cast<std::size_t>(cboSelection->currentIndex())],
                      charts_->Row(SourceRow(*active)).ChartDate, settings_.Folder());
  if (path)
    ShowText(*path);
  else
    dialogs_.MessageBox(Title, ShownText(path.error()), BoxButtons::Ok, BoxIcon::Warning);
}

void frmPopulate::WriteChartRecords() {
  const auto rows = RowsToConvert(Chosen(), order_->rowCount(), dialogs_);
  if (!rows) return;
  std::vector<ChartToConvert> charts;
  Converted span{instruments_[static_cast<std::size_t>(cboSelection->currentIndex())]};
  for (const int row : *rows) {
    const PopulateRow& chart = charts_->Row(SourceRow(row));
    charts.push_back({.ChartDate = chart.ChartDate, .Manual = chart.Manual});
    span.From = charts.size() == 1 ? chart.Start : std::min(span.From, chart.Start);
    span.To = std::max(span.To, chart.End);
  }
  const ConversionOptions options{.Variables = variables_,
                                  .Overwrite = chkOverwrite->isChecked(),
                                  .Log = chkDataLog->isChecked(),
                                  .LogFolder = settings_.Folder(),
                                  .User = parts_.User};
  ConversionResult result;
  {
    ShownProgress progress(*barProgress, *cmdCancel, [this](const std::string& what) {
      StatusBar1->showMessage(QString::fromStdString(what));
    });
    result =
        hyetex::WriteChartRecords(database_, lists_, span.Instrument, charts, options, dialogs_, progress);
  }
  if (result.RowsWritten > 0 && parts_.ShowRain) converted_ = std::move(span);
  TellOutcome(result);
  LoadGrid();
}

// The grid has it too, but mostly out of sight.
void frmPopulate::ShowConversion() {
  const int row = spFiles->currentIndex().row();
  const PopulateRow* chart = row < 0 ? nullptr : &charts_->Row(SourceRow(row));
  labConverted->setVisible(chart != nullptr && chart->Written);
  if (chart == nullptr || !chart->Written) return;
  const auto cell = [chart](int column) { return CellText(*chart, PopulateColumns + column); };
  labConverted->setText(ToQt("Converted on " + cell(0) + (cell(1).empty() ? "" : " by " + cell(1)) + ", " +
                             cell(2) + " hours to GMT: " + cell(3)));
}

void frmPopulate::ShowConvertedRain() {
  if (converted_) parts_.ShowRain(converted_->Instrument, converted_->From, converted_->To);
}

void frmPopulate::TellOutcome(const ConversionResult& result) {
  const bool logged = chkDataLog->isChecked();
  std::string problems;
  for (const std::string& problem : result.Problems) problems += problem + "\n";
  const bool inMessage = result.Problems.size() <= MostProblemsInMessage;
  std::string text = ConversionMessage(result, logged);
  if (!inMessage)
    text += "\n\n" + std::to_string(result.Problems.size()) + " remarks on charts follow in a window.";
  else if (!problems.empty())
    text += "\n\n" + problems;
  const BoxIcon icon = !problems.empty() ? BoxIcon::Warning
                       : logged          ? BoxIcon::Question
                                         : BoxIcon::Information;
  const BoxAnswer answer =
      dialogs_.MessageBox(Title, ShownText(text), logged ? BoxButtons::YesNoCancel : BoxButtons::Ok, icon);
  if (logged && answer == BoxAnswer::Yes)
    ShowText(JoinPath(settings_.Folder(), DataLogName));  // it names the problems too
  else if (!inMessage)
    desk_.OpenLargeView(Title, problems);
}

void frmPopulate::ShowText(const std::string& path) {
  const auto opened = OpenTextFile(path);
  if (opened) return;
  if (const auto text = ReadWholeFile(path, MostBytesShown))
    desk_.OpenLargeView(std::string(BaseName(path)), *text);
  else
    dialogs_.MessageBox(Title, ShownText(opened.error()), BoxButtons::Ok, BoxIcon::Warning);
}

}  // namespace hyetex
