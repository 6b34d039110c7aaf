#include "alpha/windows/frmAlpha.h"

#include <algorithm>
#include <utility>

#include "alpha/alpha_graph.h"
#include "alpha/alpha_writing.h"
#include "core/numbers.h"
#include "platform/entry_box.h"
#include "platform/qt_text.h"
#include "platform/shown_progress.h"

namespace hyetex {
namespace {

constexpr const char* WriteTitle = "Write Alpha to DB";

}  // namespace

frmAlpha::frmAlpha(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database, QWidget* parent)
    : FormWindow("frmAlpha", WindowId::Alpha, desk, settings, parent),
      dialogs_(dialogs),
      database_(database) {
  setWindowTitle(tr("Select Alpha for Use"));
  MakeLayout();
  FillInstruments();
  formatSS();

  connect(cboSelection, &QComboBox::currentIndexChanged, this, [this] {
    txtAlpha->clear();  // it was another instrument's
    LoadSS();
  });
  connect(ss, &AlphaGrid::FlipWanted, this, &frmAlpha::Flip);
  connect(ss->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
    if (!isBusy_) DrawGraph();
  });
  connect(chkGrid, &QCheckBox::toggled, this, &frmAlpha::DrawGraph);
  connect(txtFontSize, &QLineEdit::textChanged, this, &frmAlpha::DrawGraph);
  connect(txtAlpha, &QLineEdit::textChanged, this, &frmAlpha::ShowState);
}

void frmAlpha::formatSS() {
  charts_->Show({});
  DrawGraph();
}

void frmAlpha::FillInstruments() {
  auto instruments = AlphaInstruments(database_);
  if (!instruments) return database_.Show(instruments.error());
  instruments_ = *std::move(instruments);
  for (const std::string& code : instruments_) cboSelection->addItem(ToQt(code));
  cboSelection->setCurrentIndex(-1);
}

void frmAlpha::LoadSS() {
  if (cboSelection->currentIndex() < 0 || isBusy_) return;
  const std::string& code = instruments_[static_cast<std::size_t>(cboSelection->currentIndex())];
  // Nobody shall take the charts of one instrument for those of another.
  charts_->Show({.InstrumentCode = code});
  picGraph->Show({});
  labRows->setText(tr("Reading the charts"));
  isBusy_ = true;
  auto list = [&] {
    ShownProgress progress(*prgCharts, *cmdStop);
    return ReadAlphaList(database_, code, progress);
  }();
  isBusy_ = false;
  if (list) {
    std::vector<std::string> notes = list->Notes;
    labNotes->setText(ToQt(Trim(FirstLines(notes, notes.size()))));
    charts_->Show(*std::move(list));
    if (charts_->rowCount() > 0)
      ss->selectionModel()->setCurrentIndex(charts_->index(0, 0), QItemSelectionModel::NoUpdate);
    ss->scrollToTop();
  } else {
    labNotes->clear();
    database_.Show(list.error());
  }
  labNotes->setVisible(!labNotes->text().isEmpty());
  DrawGraph();
}

void frmAlpha::DrawGraph() {
  const double font = TypedOrLeading(FromQt(txtFontSize->text()));
  if (cboSelection->currentIndex() < 0)
    picGraph->Show({});
  else
    picGraph->Show(MakeAlphaGraph(Review(), Review().Drawn(ss->Block()),
                                  {.Grid = chkGrid->isChecked(), .FontPoints = font}));
  ShowState();
}

void frmAlpha::ShowState() {
  const bool any = charts_->rowCount() > 0;
  labRows->setText(cboSelection->currentIndex() < 0 ? QString() : ToQt(Review().Summary(ss->Block())));
  cmdUseAverage->setEnabled(any);
  cmdWriteToDB->setEnabled(any && !txtAlpha->text().trimmed().isEmpty());
  for (QPushButton* button : {cmdPrint, cmdDialog, cmdPdf}) button->setEnabled(any);
}

void frmAlpha::Flip(int row) {
  charts_->Flip(row);
  DrawGraph();
}

void frmAlpha::UseAverage() {
  txtAlpha->setText(ToQt(Review().Average(Review().WorkedOn(ss->Block()))));
  if (txtAlpha->text().isEmpty()) labRows->setText(tr("The charts worked on have no alpha values"));
}

void frmAlpha::WriteToDB() {
  if (isBusy_ || charts_->rowCount() == 0 || txtAlpha->text().trimmed().isEmpty() ||
      RefusesEntries(*this, dialogs_, WriteTitle))
    return;
  const auto alpha = ReadSelectedAlpha(FromQt(txtAlpha->text()));
  if (!alpha) {
    dialogs_.MessageBox(WriteTitle, alpha.error(), BoxButtons::Ok, BoxIcon::Warning);
    return;
  }
  const RowBlock rows = Review().WorkedOn(ss->Block());
  if (dialogs_.MessageBox(WriteTitle, Review().WriteQuestion(rows, *alpha), BoxButtons::NoUnlessYes,
                          BoxIcon::Warning) != BoxAnswer::Yes)
    return;
  isBusy_ = true;
  AlphaWriting result;
  {
    ShownProgress progress(*prgCharts, *cmdStop);
    result =
        WriteSelectedAlpha(database_, Review().InstrumentCode(), Review().ChartsOf(rows), *alpha, progress);
  }
  isBusy_ = false;
  dialogs_.MessageBox(WriteTitle, AlphaMessage(result, *alpha), BoxButtons::Ok,
                      result.Report.IsClean() ? BoxIcon::Information : BoxIcon::Warning);
  // What was left out of the charts stays marked where nothing was written.
  if (result.IsDone()) LoadSS();
}

QPageLayout::Orientation frmAlpha::Orientation() const {
  return optPage[0]->isChecked() ? QPageLayout::Landscape : QPageLayout::Portrait;
}

PageToPrint frmAlpha::Page() const {
  return {"the graph", "alpha.pdf", [this](Surface& surface) { picGraph->DrawOn(surface); }};
}

void frmAlpha::Print() { PrintPage(*this, Page(), Orientation(), dialogs_); }
void frmAlpha::Preview() { PreviewPage(*this, Page(), Orientation(), dialogs_); }
void frmAlpha::SaveAsPdf() { SavePageAsPdf(Page(), Orientation(), dialogs_); }

}  // namespace hyetex
