// The controls of the alpha window and where they stand.
#include <QHeaderView>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>

#include "alpha/windows/frmAlpha.h"
#include "core/numbers.h"
#include "core/text.h"
#include "platform/controls.h"
#include "platform/entry_box.h"
#include "platform/flow_layout.h"

namespace hyetex {
namespace {

constexpr NumberEntry FontSizeEntry{.What = "A font size", .Least = LeastAlphaFont, .Most = MostAlphaFont};
constexpr int InstrumentChars = 20;

QLabel* PlainLabel(const char* name) {
  auto* label = Named(new QLabel, name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

}  // namespace

QPushButton* frmAlpha::MakeButton(const char* name, const char* caption, void (frmAlpha::*pressed)()) {
  auto* button = Named(new QPushButton(tr(caption)), name);
  if (pressed != nullptr) connect(button, &QPushButton::clicked, this, pressed);
  return button;
}

void frmAlpha::MakeLayout() {
  cboSelection = Named(new QComboBox, "cboSelection");
  cboSelection->setPlaceholderText(tr("None chosen"));
  cboSelection->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  cboSelection->setMinimumContentsLength(InstrumentChars);
  MakeGrid();
  labRows = PlainLabel("labRows");
  labNotes = PlainLabel("labNotes");
  labNotes->hide();

  auto* choice = new QHBoxLayout;
  choice->addWidget(LabelOf("Select &Instrument for Analysis", cboSelection));
  choice->addWidget(cboSelection);
  choice->addStretch();

  auto* left = new QWidget;
  auto* column = new QVBoxLayout(left);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(ss, 1);
  column->addWidget(labNotes);
  column->addWidget(labRows);
  auto* both = new QSplitter;
  both->setChildrenCollapsible(false);
  both->addWidget(left);
  both->addWidget(MakeGraphSide());
  both->setStretchFactor(0, 1);
  both->setStretchFactor(1, 1);
  const int list = sizeHint().width() / 2;  // the selected alpha is in sight
  both->setSizes({list, sizeHint().width() - list});

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(choice);
  layout->addWidget(both, 1);
  layout->addLayout(MakeButtons());
  SetKeyButtons(cmdWriteToDB, cmdDone);
  cmdStop->setAutoDefault(false);

  LinkTabs({cboSelection, ss, txtAlpha, cmdUseAverage, cmdWriteToDB, chkGrid, txtFontSize, optPage[0],
            optPage[1], cmdPrint, cmdDialog, cmdPdf, cmdDone});
  auto* print = new QShortcut(QKeySequence::Print, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
  connect(print, &QShortcut::activated, cmdPrint, &QPushButton::click);
}

void frmAlpha::MakeGrid() {
  charts_ = new AlphaModel(this);
  ss = Named(new AlphaGrid, "ss");
  ss->setModel(charts_);
  ss->setAccessibleName(tr("Charts of the instrument"));
  ss->setToolTip(
      tr("A double click or Space excludes the active chart, or takes it back.\n"
         "Shift with the arrow keys, or a drag, selects a block of charts to work on."));
  ss->verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() * 3 / 2);
  ss->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);  // no row is measured by itself
  const int width = fontMetrics().averageCharWidth();
  ss->horizontalHeader()->setDefaultSectionSize(fontMetrics().horizontalAdvance("Sel. Alpha 00"));
  ss->horizontalHeader()->setHighlightSections(false);
  connect(charts_, &QAbstractItemModel::modelReset, ss, [this, width] {
    ss->setColumnWidth(0, width * InstrumentChars);
    ss->setColumnWidth(1, fontMetrics().horizontalAdvance("00/00/0000 00:00:00") + 2 * width);
  });
}

QWidget* frmAlpha::MakeGraphSide() {
  picGraph = new AlphaPlot;
  chkGrid = Named(new QCheckBox(tr("&Grid")), "chkGrid");
  chkGrid->setChecked(true);
  optPage = {Named(new QRadioButton(tr("&Landscape")), "optPage0"),
             Named(new QRadioButton(tr("P&ortrait")), "optPage1")};
  optPage[0]->setChecked(true);
  QWidget* page = Together({optPage[0], optPage[1]});
  page->setToolTip(tr("The page that is printed"));
  txtFontSize = Named(new EntryBox(FontSizeEntry), "txtFontSize");
  txtFontSize->setText("9");
  QWidget* size = WithArrows(txtFontSize, "udnFont", [](std::string_view text, int way) {
    return ShortText(std::clamp(TypedOrLeading(text) + way, LeastAlphaFont, MostAlphaFont));
  });
  txtFontSize->setMinimumWidth(fontMetrics().horizontalAdvance("000000"));
  txtFontSize->setMaximumWidth(txtFontSize->minimumWidth());
  cmdPrint = MakeButton("cmdPrint", "&Print", &frmAlpha::Print);
  cmdDialog = MakeButton("cmdDialog", "Pre&view...", &frmAlpha::Preview);
  cmdPdf = MakeButton("cmdPdf", "Save as P&DF...", &frmAlpha::SaveAsPdf);

  auto* side = new QWidget;
  auto* layout = new QVBoxLayout(side);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* tools = new FlowLayout(nullptr);
  for (QWidget* each : {static_cast<QWidget*>(chkGrid), Together({LabelOf("Font &Size", txtFontSize), size}),
                        page, Together({cmdPrint, cmdDialog, cmdPdf})})
    tools->addWidget(each);
  layout->addLayout(tools);
  layout->addWidget(picGraph, 1);
  return side;
}

QLayout* frmAlpha::MakeButtons() {
  txtAlpha = Named(new EntryBox([](std::string_view typed) -> std::optional<std::string> {
                     if (Trim(typed).empty()) return std::nullopt;
                     const auto alpha = ReadSelectedAlpha(typed);
                     return alpha ? std::nullopt : std::optional(alpha.error());
                   }),
                   "txtAlpha");
  txtAlpha->setMaximumWidth(fontMetrics().averageCharWidth() * 16);
  txtAlpha->setToolTip(tr("A number, or None"));
  cmdUseAverage = MakeButton("cmdUseAverage", "Show &Average", &frmAlpha::UseAverage);
  cmdUseAverage->setToolTip(tr("Of all alpha values of the charts worked on, without the excluded ones"));
  cmdWriteToDB = MakeButton("cmdWriteToDB", "&Write Alpha to DB", &frmAlpha::WriteToDB);
  cmdWriteToDB->setToolTip(tr("This writes the field Selected Alpha Value to the DB"));
  cmdDone = MakeButton("cmdDone", "Return To Main Me&nu", nullptr);
  connect(cmdDone, &QPushButton::clicked, this, &QWidget::close);
  prgCharts = Named(new QProgressBar, "prgCharts");
  prgCharts->setAccessibleName(tr("How far the work has come"));
  cmdStop = MakeButton("cmdStop", "Stop", nullptr);
  cmdStop->setFocusPolicy(Qt::NoFocus);  // from the keyboard Escape stops
  prgCharts->hide();
  cmdStop->hide();

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(LabelOf("Selected Alp&ha Value", txtAlpha));
  buttons->addWidget(txtAlpha);
  buttons->addWidget(cmdUseAverage);
  buttons->addWidget(cmdWriteToDB);
  buttons->addStretch();
  buttons->addWidget(prgCharts);
  buttons->addWidget(cmdStop);
  buttons->addWidget(cmdDone);
  return buttons;
}

QSize frmAlpha::sizeHint() const {
  return {fontMetrics().averageCharWidth() * 140, fontMetrics().lineSpacing() * 36};
}

}  // namespace hyetex
