// The controls of the populate window and where they stand.
#include <QHBoxLayout>
#include <QHeaderView>
#include <QScrollBar>
#include <QVBoxLayout>

#include "database/windows/frmPopulate.h"
#include "platform/controls.h"
#include "platform/marked_cells.h"
#include "platform/menu_key.h"

namespace hyetex {
void frmPopulate::MakeControls() {
  cboSelection = Named(new QComboBox, "cboSelection");
  cboSelection->setPlaceholderText(tr("None chosen"));
  cboSelection->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  cboSelection->setMinimumContentsLength(20);

  chkShowAll = Named(new QCheckBox(tr("Show &All Records for Instrument")), "chkShowAll");
  chkShowAll->setToolTip(tr("By default program only shows records not yet loaded to database"));
  chkDataLog = Named(new QCheckBox(tr("Write to &Log")), "chkDataLog");
  chkDataLog->setToolTip(tr("The program will write a text file datalog.txt with results of the conversion"));
  chkOverwrite = Named(new QCheckBox(tr("&Overwrite Existing Records Without Prompting")), "chkOverwrite");
  chkOverwrite->setToolTip(tr("Replaces what CHART already has for the time of a chart without a question"));

  MakeGrid();
  labConverted = Named(new QLabel, "labConverted");
  labConverted->setTextFormat(Qt::PlainText);
  labConverted->setWordWrap(true);
  labConverted->hide();

  cmdWrite =
      Named(new QPushButton(tr("&Convert Ascii Files to Time-Depth Data and Populate Database")), "cmdWrite");
  cmdWrite->setToolTip(tr("Converts the selected block of charts; without a block, asks which"));
  cmdRain = Named(new QPushButton(tr("Show Converted &Rain")), "cmdRain");
  cmdRain->setToolTip(tr("Shows as a picture what the last conversion has given"));
  cmdBack = Named(new QPushButton(tr("<< &Back")), "cmdBack");
  cmdExit = Named(new QPushButton(tr("Return to Main Me&nu")), "cmdExit");
  cmdCancel = Named(new QPushButton(tr("Canc&el")), "cmdCancel");
  cmdCancel->setToolTip(tr("Stops behind the present chart (Esc)"));
  cmdCancel->setFocusPolicy(Qt::NoFocus);  // from the keyboard Escape stops
  barProgress = Named(new QProgressBar, "barProgress");
  StatusBar1 = Named(new QStatusBar, "StatusBar1");
  StatusBar1->setSizeGripEnabled(false);
  StatusBar1->addPermanentWidget(barProgress);
  StatusBar1->addPermanentWidget(cmdCancel);
  barProgress->hide();
  cmdCancel->hide();
}

void frmPopulate::MakeGrid() {
  charts_ = new PopulateModel(this);
  order_ = new PopulateOrder(*charts_, this);
  order_->setSourceModel(charts_);
  order_->setDynamicSortFilter(false);  // a row stays in its place while its depth is changed

  spFiles = Named(new QTableView, "spFiles");
  spFiles->setAccessibleName(tr("Charts of the instrument"));
  spFiles->setModel(order_);
  spFiles->setItemDelegate(new MarkedCells(spFiles));
  spFiles->setSelectionBehavior(QAbstractItemView::SelectRows);
  spFiles->setSelectionMode(QAbstractItemView::ExtendedSelection);
  spFiles->setEditTriggers(QAbstractItemView::NoEditTriggers);
  spFiles->setTabKeyNavigation(false);
  spFiles->setWordWrap(false);
  spFiles->verticalHeader()->hide();
  spFiles->verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() * 3 / 2);
  spFiles->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);  // no row is measured by itself
  spFiles->setSortingEnabled(true);
  spFiles->sortByColumn(0, Qt::AscendingOrder);
  QHeaderView* header = spFiles->horizontalHeader();
  header->setHighlightSections(false);
  header->setStretchLastSection(true);
  const int room = fontMetrics().horizontalAdvance("00000");  // for the arrow of the order, on both sides
  for (int column = 0; column < PopulateColumns; ++column)
    spFiles->setColumnWidth(
        column, fontMetrics().horizontalAdvance(PopulateTitles[static_cast<std::size_t>(column)]) + room);

  // Those that tell how charts were converted come and go with the charts that were.
  connect(charts_, &QAbstractItemModel::modelReset, spFiles, [this] {
    for (int column = PopulateColumns; column < charts_->columnCount(); ++column)
      spFiles->resizeColumnToContents(column);
  });

  // The menu of the right button and of the menu key.
  const auto add = [&](QAction*& action, const char* name, const QString& caption, const QKeySequence& keys) {
    action = Named(new QAction(caption, spFiles), name);
    action->setShortcut(keys);
    action->setShortcutContext(Qt::WidgetShortcut);
    spFiles->addAction(action);
  };
  add(mnuChangeSelectedDepth, "mnuChangeSelectedDepth", tr("Change Selected &Depth (Manual or Digitized)"),
      QKeySequence(tr("Ctrl+D")));
  add(mnuPopulateViewSelected, "mnuPopulateViewSelected", tr("&View Ascii File of the Current Chart"),
      QKeySequence(tr("Ctrl+T")));
  spFiles->setContextMenuPolicy(Qt::ActionsContextMenu);
  AddMenuKey(spFiles);
}

void frmPopulate::MakeLayout() {
  auto* intro = Named(
      new QLabel(tr(
          "Raw ascii files in the CHART_ASCII  table of the database will be converted to time-depth data "
          "and "
          "loaded into the CHART table, one row for each step, in GMT. Choose an instrument, and select the "
          "charts to convert. The menu of the right mouse button changes which depth counts for a chart. A "
          "start on light red lies before the end of the chart before it.")),
      "labIntroduction");
  intro->setWordWrap(true);

  auto* choice = new QHBoxLayout;
  choice->addWidget(LabelOf("Select &Instrument for Analysis", cboSelection));
  choice->addWidget(cboSelection);
  choice->addStretch();
  choice->addWidget(chkShowAll);

  auto* options = new QHBoxLayout;
  options->addWidget(chkDataLog);
  options->addSpacing(2 * fontMetrics().averageCharWidth());
  options->addWidget(chkOverwrite);
  options->addStretch();

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdBack);
  buttons->addWidget(cmdExit);
  buttons->addStretch();
  buttons->addWidget(cmdRain);
  if (!parts_.ShowRain) cmdRain->hide();
  buttons->addWidget(cmdWrite);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(intro);
  layout->addLayout(choice);
  layout->addWidget(spFiles, 1);
  layout->addWidget(labConverted);
  layout->addLayout(options);
  layout->addLayout(buttons);
  layout->addWidget(StatusBar1);
  SetKeyButtons(cmdWrite, cmdExit);

  LinkTabs(
      {cboSelection, chkShowAll, spFiles, chkDataLog, chkOverwrite, cmdWrite, cmdRain, cmdBack, cmdExit});
}

// All columns, and about a dozen and a half of charts.
QSize frmPopulate::sizeHint() const {
  const int wide = spFiles->horizontalHeader()->length() + spFiles->verticalScrollBar()->sizeHint().width() +
                   4 * fontMetrics().averageCharWidth();
  const QSize least = FormWindow::sizeHint();
  return {qMax(wide, least.width()), qMax(least.height(), fontMetrics().lineSpacing() * 34)};
}

}  // namespace hyetex
