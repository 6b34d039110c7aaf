// The controls of the load window and where they stand.
#include <QHBoxLayout>
#include <QHeaderView>
#include <QSplitter>
#include <QVBoxLayout>

#include "database/windows/frmLoad.h"
#include "platform/controls.h"
#include "platform/qt_dates.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

// A text of any length, on as many lines as it needs.
QLabel* WrappedLabel(const char* name) {
  auto* label = Named(new QLabel, name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

}  // namespace

void frmLoad::MakeControls() {
  tspLR = Named(new QTabBar, "tspLR");
  tspLR->addTab(tr("Load Files"));
  tspLR->addTab(tr("Extract Files"));
  tspLR->setDrawBase(true);
  tspLR->setExpanding(false);

  labError = WrappedLabel("labError");
  labError->setFrameShape(QFrame::StyledPanel);
  labError->setMargin(6);
  labError->setAutoFillBackground(true);
  labError->setBackgroundRole(QPalette::ToolTipBase);
  labError->setForegroundRole(QPalette::ToolTipText);
  labNotes = WrappedLabel("labNotes");

  const auto button = [this](const char* name, const QString& caption, void (frmLoad::*pressed)()) {
    auto* made = Named(new QPushButton(caption), name);
    if (pressed != nullptr) connect(made, &QPushButton::clicked, this, pressed);
    return made;
  };
  cmdAll = button("cmdAll", tr("Select &All"), nullptr);
  cmdLoad = button("cmdLoad", {}, nullptr);
  cmdClose = button("cmdClose", tr("&Return to Main Menu"), nullptr);
  cmdStop = button("cmdStop", tr("Sto&p"), nullptr);
  prgFiles = Named(new QProgressBar, "prgFiles");
  prgFiles->setAccessibleName(tr("How far the work has come"));
  labDoing = Named(new QLabel, "labDoing");
  labDoing->setTextFormat(Qt::PlainText);
}

void frmLoad::MakeLayout() {
  auto* columns = new QSplitter;
  columns->setChildrenCollapsible(false);
  columns->addWidget(MakeFolder());
  columns->addWidget(MakeStations());
  columns->addWidget(MakeFiles());
  columns->setStretchFactor(0, 3);
  columns->setStretchFactor(1, 2);
  columns->setStretchFactor(2, 4);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(tspLR);
  auto* lists = new QHBoxLayout;
  lists->addWidget(columns);
  // As high as this, but for warnings that come up below.
  lists->addSpacerItem(new QSpacerItem(0, fontMetrics().lineSpacing() * 24, QSizePolicy::Fixed));
  layout->addLayout(lists, 1);
  layout->addWidget(labError);
  layout->addWidget(labNotes);
  layout->addWidget(MakeButtons());
  SetKeyButtons(cmdLoad, cmdClose);
  for (QWidget* hidden : {static_cast<QWidget*>(labError), static_cast<QWidget*>(labNotes),
                          static_cast<QWidget*>(prgFiles), static_cast<QWidget*>(cmdStop)})
    hidden->hide();

  QList<QWidget*> tabs{tspLR};
  tabs << dirFolder_->Controls()
       << QList<QWidget*>{chkTarget, cmdSetTarget, tvwStations, lstFile,  cmdAll, chkDate,
                          dtpBegin,  dtpEnd,       cmdLoad,     cmdClose, cmdStop};
  LinkTabs(tabs);
}

QWidget* frmLoad::MakeFolder() {
  dirFolder_ = new FolderBox(dialogs_, "drvSource", "dirSource", "");
  chkTarget = Named(new QCheckBox(tr("&Move Files ToTarget Folder Afterwards")), "chkTarget");
  cmdSetTarget = Named(new QPushButton(tr("&Set Folder From Directory Tree Above")), "cmdSetTarget");
  labTarget = WrappedLabel("labTarget");
  moving_ = new QWidget;
  auto* moving = new QVBoxLayout(moving_);
  moving->setContentsMargins(0, 0, 0, 0);
  moving->addWidget(chkTarget);
  moving->addWidget(cmdSetTarget);
  moving->addWidget(labTarget);

  frmFolder = Named(new QGroupBox, "frmFolder");
  auto* layout = new QVBoxLayout(frmFolder);
  layout->addWidget(dirFolder_, 1);
  layout->addWidget(moving_);
  return frmFolder;
}

QWidget* frmLoad::MakeStations() {
  tvwStations = Named(new QTreeWidget, "tvwStations");
  tvwStations->setAccessibleName(tr("Stations and Instruments"));
  tvwStations->setHeaderHidden(true);
  tvwStations->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  tvwStations->header()->setStretchLastSection(false);
  tvwStations->setMinimumWidth(fontMetrics().averageCharWidth() * 28);
  auto* group = new QGroupBox(tr("Stations and Instruments"));
  (new QVBoxLayout(group))->addWidget(tvwStations);
  return group;
}

QWidget* frmLoad::MakeFiles() {
  lstFile = Named(new QListView, "lstFile");
  lstFile->setAccessibleName(tr("Files"));
  lstFile->setSelectionMode(QAbstractItemView::ExtendedSelection);
  lstFile->setUniformItemSizes(true);
  lstFile->setModel(&lines_);
  lstFile->setMinimumSize(fontMetrics().averageCharWidth() * 40, fontMetrics().lineSpacing() * 3);
  labCount = Named(new QLabel, "labCount");

  chkDate = Named(new QCheckBox(tr("&Use Date Limits")), "chkDate");
  dtpBegin = Named(new DateBox, "dtpBegin");
  dtpEnd = Named(new DateBox, "dtpEnd");
  for (DateBox* box : {dtpBegin, dtpEnd}) box->setEnabled(false);
  auto* dates = new QGridLayout;
  dates->addWidget(chkDate, 0, 0);
  dates->addWidget(LabelOf("Fr&om:", dtpBegin), 0, 1);
  dates->addWidget(dtpBegin, 0, 2);
  dates->addWidget(LabelOf("&To:", dtpEnd), 0, 3);
  dates->addWidget(dtpEnd, 0, 4);
  dates->setColumnStretch(5, 1);

  auto* group = new QGroupBox(tr("Files"));
  auto* layout = new QVBoxLayout(group);
  layout->addLayout(dates);
  layout->addWidget(lstFile, 1);
  auto* below = new QHBoxLayout;
  below->addWidget(labCount, 1);
  below->addWidget(cmdAll);
  layout->addLayout(below);
  return group;
}

QWidget* frmLoad::MakeButtons() {
  auto* buttons = new QWidget;
  auto* layout = new QHBoxLayout(buttons);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(prgFiles);
  layout->addWidget(cmdStop);
  layout->addWidget(labDoing, 1);
  layout->addWidget(cmdLoad);
  layout->addWidget(cmdClose);
  // As high with the bar as without it.
  labDoing->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  return buttons;
}

}  // namespace hyetex
