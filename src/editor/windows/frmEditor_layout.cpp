// The controls of the editor and where they stand: the charts on the left, what is drawn of the one that is
// open in the middle, its details on the right.
#include <QButtonGroup>
#include <QMenu>
#include <QScrollArea>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>

#include "chartfiles/chart_text.h"
#include "core/files.h"
#include "core/numbers.h"
#include "editor/windows/frmEditor.h"
#include "platform/controls.h"
#include "platform/flow_layout.h"
#include "platform/qt_dates.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr NumberEntry FontSizeEntry{.What = "A font size", .Least = LeastFontPoints, .Most = MostFontPoints};

QLabel* PlainLabel(const QString& name, bool wraps = false) {
  auto* label = new QLabel;
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(wraps);
  label->setMinimumWidth(1);  // a long text must not make the window wider
  return label;
}

}  // namespace

QPushButton* frmEditor::MakeButton(const char* name, const char* caption, void (frmEditor::*pressed)()) {
  auto* button = Named(new QPushButton(tr(caption)), name);
  if (pressed != nullptr) connect(button, &QPushButton::clicked, this, pressed);
  return button;
}

void frmEditor::MakeLayout() {
  QWidget* files = MakeFiles();
  QWidget* details = MakeDetails();
  frmViews_ = MakeViews();
  tbsFileView = Named(new QTabBar, "tbsFileView");
  for (const QString& tab : {tr("Digitization &View"), tr("Time Depth Vie&w"), tr("Files Details")})
    tbsFileView->addTab(tab);
  for (int i = 0; i < 3; ++i) tbsFileView->setTabToolTip(i, tr("Ctrl+%1").arg(i + 1));
  tbsFileView->setExpanding(false);
  tbsFileView->setDrawBase(true);

  auto* chart = new QWidget;
  auto* chartLayout = new QVBoxLayout(chart);
  chartLayout->setContentsMargins(0, 0, 0, 0);
  chartLayout->addWidget(tbsFileView);
  auto* both = new QHBoxLayout;
  both->addWidget(frmViews_, 3);
  both->addWidget(details, 1);
  chartLayout->addLayout(both, 1);

  auto* columns = new QSplitter;
  columns->setChildrenCollapsible(false);
  columns->addWidget(files);
  columns->addWidget(chart);
  columns->setStretchFactor(1, 1);
  const int list = fontMetrics().averageCharWidth() * 48;  // a name and its day
  columns->setSizes({list, sizeHint().width() - list});
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(columns);

  SetKeyButtons(nullptr, cmdExit);
  QList<QWidget*> order{lstAscii,      cmdOpen,    cmdLargeView,   cmdDelete,  tbsFileView, cmdPrint,
                        cmdSelect,     chkGrid,    chkAlpha,       optPage[0], optPage[1],  txtFontSize,
                        comHyetograph, comChart,   comReliability, txtRain,    txtManual,   dtpBeginDate,
                        dtpBeginTime,  dtpEndDate, dtpEndTime,     lstComment, cmdAdd,      cmdDeleteComment,
                        cmdSave,       cmdExit};
  for (QWidget* each : dirFolder_->Controls()) order << each;
  LinkTabs(order << comStation << comYear);
}

QWidget* frmEditor::MakeFiles() {
  dirFolder_ = new FolderBox(dialogs_, "drvEditor", "dirEditor", "Location of Ascii Files");
  dirFolder_->ShowFolder(folder_.Folder());
  dirFolder_->findChild<QTreeView*>("dirEditor")->setMinimumHeight(fontMetrics().lineSpacing() * 3);
  auto* location = new QGroupBox(tr("Location of Ascii Files"));
  (new QVBoxLayout(location))->addWidget(dirFolder_);

  comStation = Named(new QComboBox, "comStation");
  comYear = Named(new QComboBox, "comYear");
  comYear->setAccessibleName(tr("Year"));
  for (QComboBox* box : {comStation, comYear}) {
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(8);
  }
  auto* choice = new QHBoxLayout;
  choice->addWidget(comStation, 3);
  choice->addWidget(comYear, 2);

  lstAscii = Named(new QListView, "lstAscii");
  lstAscii->setSelectionMode(QAbstractItemView::ExtendedSelection);
  lstAscii->setUniformItemSizes(true);
  lstAscii->setEditTriggers(QAbstractItemView::NoEditTriggers);
  lstAscii->setModel(&lines_);
  lstAscii->setMinimumHeight(fontMetrics().lineSpacing() * 5);
  labCount = PlainLabel("labCount");
  labListNotes = PlainLabel("labListNotes", true);
  labListNotes->hide();
  prgFiles = Named(new QProgressBar, "prgFiles");
  prgFiles->setAccessibleName(tr("How far the work has come"));
  cmdStop = MakeButton("cmdStop", "Stop", nullptr);
  prgFiles->hide();
  cmdStop->hide();
  cmdOpen = MakeButton("cmdOpen", " Display digitization", nullptr);
  cmdLargeView = MakeButton("cmdLargeView", "Digitization Su&mmary", &frmEditor::SumUp);
  cmdDelete = MakeButton("cmdDelete", "&Delete", &frmEditor::DeleteFiles);

  auto* charts = new QWidget;
  auto* layout = new QVBoxLayout(charts);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(LabelOf("Selected Stat&ion", comStation));
  layout->addLayout(choice);
  layout->addWidget(LabelOf("As&cii Files", lstAscii));
  layout->addWidget(lstAscii, 1);
  layout->addWidget(labListNotes);
  auto* count = new QHBoxLayout;
  count->addWidget(labCount, 1);
  count->addWidget(prgFiles, 1);
  count->addWidget(cmdStop);
  layout->addLayout(count);
  layout->addWidget(cmdOpen);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdLargeView, 1);
  buttons->addWidget(cmdDelete);
  layout->addLayout(buttons);

  auto* column = new QSplitter(Qt::Vertical);
  column->setChildrenCollapsible(false);
  column->addWidget(location);
  column->addWidget(charts);
  column->setStretchFactor(0, 1);
  column->setStretchFactor(1, 4);
  column->setMinimumWidth(fontMetrics().averageCharWidth() * 36);
  return column;
}

QWidget* frmEditor::MakeViews() {
  picPreview = new ChartView;
  labReadOut = PlainLabel("labReadOut");
  labReadOut->setToolTip(tr("What is under the pointer"));
  auto* views = new QWidget;
  auto* layout = new QVBoxLayout(views);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(MakeToolBox());
  layout->addWidget(picPreview, 1);
  layout->addWidget(labReadOut);
  return views;
}

PageToPrint frmEditor::Page() const {
  const std::string name = open_ ? open_->File.FileName : "chart";
  return {"the chart", JoinPath(folder_.Folder(), name.substr(0, name.rfind('.')) + ".pdf"),
          [this](Surface& surface) { picPreview->DrawOn(surface); }};
}

QWidget* frmEditor::MakeToolBox() {
  cmdPrint = MakeButton("cmdPrint", "&Print", nullptr);
  auto* menu = new QMenu(cmdPrint);
  const auto entry = [&](const char* name, const QString& caption, auto run) {
    QAction* action = Named(menu->addAction(caption), name);
    connect(action, &QAction::triggered, this, run);
  };
  entry("mnuPrint", tr("&Print..."), [this] { PrintPage(*this, Page(), Orientation(), dialogs_); });
  entry("mnuPreview", tr("Pre&view..."), [this] { PreviewPage(*this, Page(), Orientation(), dialogs_); });
  entry("mnuPdf", tr("Save as P&DF..."), [this] { SavePageAsPdf(Page(), Orientation(), dialogs_); });
  cmdPrint->setMenu(menu);
  cmdSelect = MakeButton("cmdSelect", "&Zoom In", nullptr);
  cmdSelect->setCheckable(true);
  cmdSelect->setToolTip(
      tr("Drag a rectangle over the part to see. The wheel zooms too, the right button moves "
         "the part in view, a double click shows all."));
  chkGrid = Named(new QCheckBox(tr("&Grid")), "chkGrid");
  chkGrid->setChecked(true);
  chkAlpha = Named(new QCheckBox(tr("Use Alpha Computations")), "chkAlpha");
  chkAlpha->setToolTip(tr("Takes the pen's skew out with the chart's selected alpha"));

  optPage = {Named(new QRadioButton(tr("P&ortrait")), "optPage0"),
             Named(new QRadioButton(tr("Landscape")), "optPage1")};
  optPage[1]->setChecked(true);
  QWidget* page = Together({optPage[0], optPage[1]});
  page->setToolTip(tr("The page that is printed"));

  txtFontSize = Named(new EntryBox(FontSizeEntry), "txtFontSize");
  txtFontSize->setText("9");
  QWidget* size = WithArrows(txtFontSize, "udnFont", [](std::string_view text, int way) {
    const double next = LeadingNumber(StepNumber(text, way, LeastFontPoints));
    return ShortText(std::min(next, MostFontPoints));
  });
  txtFontSize->setMinimumWidth(fontMetrics().horizontalAdvance("000000"));
  txtFontSize->setMaximumWidth(txtFontSize->minimumWidth());

  comHyetograph = Named(new QComboBox, "comHyetograph");
  comHyetograph->setToolTip(tr("The step of the bars of intensity"));
  comChart = Named(new QComboBox, "comChart");
  comChart->setAccessibleName(tr("Chart paper"));
  comChart->setToolTip(tr("The paper by whose scales the details tell the trace's depth and time"));
  comChart->setSizeAdjustPolicy(QComboBox::AdjustToContents);

  frmToolBox = Named(new QWidget, "frmToolBox");
  auto* tools = new FlowLayout(frmToolBox);
  for (QWidget* each : {static_cast<QWidget*>(cmdPrint), page, static_cast<QWidget*>(cmdSelect),
                        static_cast<QWidget*>(chkGrid), Together({LabelOf("Fo&nt Size:", txtFontSize), size}),
                        Together({LabelOf("Hyetog&raph:", comHyetograph), comHyetograph}),
                        static_cast<QWidget*>(chkAlpha), static_cast<QWidget*>(comChart)})
    tools->addWidget(each);
  return frmToolBox;
}

QWidget* frmEditor::MakeDetails() {
  auto* inside = new QWidget;
  auto* layout = new QVBoxLayout(inside);
  layout->setContentsMargins(0, 0, 0, 0);
  labLacks = PlainLabel("labLacks", true);
  labLacks->setFrameShape(QFrame::StyledPanel);
  labLacks->setMargin(4);
  labLacks->setAutoFillBackground(true);
  labLacks->setBackgroundRole(QPalette::ToolTipBase);
  labLacks->setForegroundRole(QPalette::ToolTipText);
  labLacks->hide();
  layout->addWidget(labLacks);
  layout->addLayout(MakeCaptions());
  layout->addWidget(MakeBoxes());
  lstComment = Named(new QListWidget, "lstComment");
  lstComment->setMinimumHeight(fontMetrics().lineSpacing() * 3);
  lstComment->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);  // what is left over
  lstComment->setWordWrap(true);
  layout->addWidget(LabelOf("Digitization Comments:", lstComment));
  layout->addWidget(lstComment, 1);
  cmdAdd = MakeButton("cmdAdd", "&Add...", &frmEditor::AskForComment);
  cmdDeleteComment = MakeButton("cmdDeleteComment", "Delete", &frmEditor::DeleteComment);
  auto* comments = new QHBoxLayout;
  comments->addWidget(cmdAdd);
  comments->addWidget(cmdDeleteComment);
  comments->addStretch();
  layout->addLayout(comments);

  // On a small screen the details of a faulty chart may be higher than there is room.
  auto* scroll = new QScrollArea;
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidgetResizable(true);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll->setFocusPolicy(Qt::NoFocus);
  scroll->setWidget(inside);
  scroll->setMinimumWidth(inside->minimumSizeHint().width() +
                          style()->pixelMetric(QStyle::PM_ScrollBarExtent));

  labUnsaved = PlainLabel("labUnsaved");
  labUnsaved->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  cmdSave = MakeButton("cmdSave", "&Save Changes", &frmEditor::Save);
  cmdExit = MakeButton("cmdExit", "Return to Main Men&u", nullptr);
  connect(cmdExit, &QPushButton::clicked, this, &QWidget::close);
  frmDetails = Named(new QGroupBox, "frmDetails");
  auto* all = new QVBoxLayout(frmDetails);
  all->addWidget(scroll, 1);
  all->addWidget(labUnsaved);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdSave);
  buttons->addWidget(cmdExit);
  buttons->addStretch();
  all->addLayout(buttons);
  return frmDetails;
}

QLayout* frmEditor::MakeCaptions() {
  auto* captions = new QGridLayout;
  captions->setVerticalSpacing(2);
  captions->setHorizontalSpacing(2 * fontMetrics().averageCharWidth());
  captions->setColumnStretch(2, 1);
  int row = 0;
  for (std::size_t i = 0; i < labCaption.size(); ++i) {
    labCaption[i] = PlainLabel("labCaption" + QString::number(i));
    if (i < 4)
      captions->addWidget(labCaption[i], static_cast<int>(i) / 2, static_cast<int>(i) % 2);
    else
      captions->addWidget(labCaption[i], static_cast<int>(i) - 2, 0, 1, 3);
  }
  row = captions->rowCount();
  labTrace = PlainLabel("labTrace");
  labTrace->setToolTip(tr("By the scales of the paper chosen above the chart"));
  labDigitizer = PlainLabel("labDigitizer", true);
  captions->addWidget(labTrace, row++, 0, 1, 3);
  captions->addWidget(labDigitizer, row++, 0, 1, 3);
  for (std::size_t i = 0; i < labFactor.size(); ++i) {
    labFactor[i] = PlainLabel("labFactor" + QString::number(i));
    labFactor[i]->setToolTip(tr("Percent; red and bold beyond its tolerance"));
    captions->addWidget(labFactor[i], row++, 0, 1, 3);
  }
  return captions;
}

QWidget* frmEditor::MakeBoxes() {
  auto* all = new QWidget;
  all->setMaximumWidth(fontMetrics().averageCharWidth() * 52);
  auto* boxes = new QGridLayout(all);
  boxes->setContentsMargins(0, 0, 0, 0);
  boxes->setColumnStretch(1, 1);
  const auto add = [&](const char* caption, QWidget* buddy, QWidget* shown) {
    const int row = boxes->rowCount();
    boxes->addWidget(LabelOf(caption, buddy), row, 0);
    boxes->addWidget(shown, row, 1);
  };
  comReliability = Named(new QComboBox, "comReliability");
  for (int reliability = 0; reliability < 4; ++reliability)
    comReliability->addItem(ToQt(ReliabilityText(reliability)));
  comReliability->setToolTip(tr("Alt+0 to Alt+3"));
  add("Chart Reliability:", comReliability, comReliability);
  const auto depth = [&](const char* caption, QLineEdit*& box, const char* txtName, const char* udnName) {
    box = Named(new EntryBox(DepthEntry), txtName);
    box->setToolTip(tr("mm; -1 is a depth that is not known"));
    QWidget* stepped =
        WithArrows(box, udnName, [](std::string_view text, int way) { return StepNumber(text, 0.1 * way); });
    stepped->layout()->addWidget(new QLabel(tr("mm")));
    add(caption, box, stepped);
  };
  depth("Selected Dept&h:", txtRain, "txtRain", "udnRain");
  depth("Manua&l Depth:", txtManual, "txtManual", "udnManual");
  const auto moment = [&](const char* caption, DateBox*& date, const char* dateName, QTimeEdit*& time,
                          const char* timeName) {
    date = Named(new DateBox, dateName);
    time = Named(new QTimeEdit, timeName);
    time->setDisplayFormat(TimeBoxForm);
    QWidget* both = Together({date, time});
    both->layout()->setSpacing(2);
    add(caption, date, both);
  };
  moment("S&tart:", dtpBeginDate, "dtpBeginDate", dtpBeginTime, "dtpBeginTime");
  moment("&End:", dtpEndDate, "dtpEndDate", dtpEndTime, "dtpEndTime");
  dtpBeginTime->setAccessibleName(tr("Start time"));
  dtpEndTime->setAccessibleName(tr("End time"));
  return all;
}

void frmEditor::FillChoices() {
  comStation->addItem(tr("All Stations"), -1);
  for (std::size_t i = 0; i < stations_.size(); ++i)
    if (!stations_[i].Name.empty() || !stations_[i].InstrumentCode.empty())
      comStation->addItem(ToQt(stations_[i].Name + " - " + stations_[i].InstrumentCode), static_cast<int>(i));
  comYear->addItem(tr("All Years"), 0);
  for (const ChartTypeRecord& type : chartTypes_) comChart->addItem(ToQt(type.Name));
  const int chosen = settings_.Get(setting::EditorChart);
  comChart->setCurrentIndex(chosen >= 0 && chosen < comChart->count() ? chosen : 0);
  comHyetograph->addItem(tr("None"), 0);
  for (const int minutes : {5, 10, 15, 30}) comHyetograph->addItem(tr("%1 min").arg(minutes), minutes);
  for (const int hours : {1, 3, 6}) comHyetograph->addItem(tr("%1 h").arg(hours), hours * 60);
}

void frmEditor::Connect() {
  connect(dirFolder_, &FolderBox::FolderChosen, this, &frmEditor::ChangeFolder);
  for (QComboBox* box : {comStation, comYear})
    connect(box, &QComboBox::currentIndexChanged, this, &frmEditor::UpdateList);
  // Behind the key or click that brought it about, and once for many.
  connect(lstAscii->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] {
    if (!std::exchange(opens_, true))
      QMetaObject::invokeMethod(this, &frmEditor::OpenCurrent, Qt::QueuedConnection);
  });
  const auto open = [this] { OpenFile(lstAscii->currentIndex().row()); };
  connect(lstAscii, &QListView::activated, this, open);
  connect(cmdOpen, &QPushButton::clicked, this, open);

  connect(tbsFileView, &QTabBar::currentChanged, this, &frmEditor::ChangeTab);
  connect(cmdSelect, &QPushButton::toggled, this, &frmEditor::ToggleZoom);
  connect(picPreview, &ChartView::ReadOutChanged, labReadOut, &QLabel::setText);
  connect(chkGrid, &QCheckBox::toggled, this, &frmEditor::ShowOptions);
  connect(comHyetograph, &QComboBox::currentIndexChanged, this, &frmEditor::ShowOptions);
  connect(txtFontSize, &QLineEdit::textChanged, this, &frmEditor::ShowOptions);
  connect(chkAlpha, &QCheckBox::toggled, this, &frmEditor::ReadAgain);
  connect(comChart, &QComboBox::currentIndexChanged, this, &frmEditor::UpdateFactor);

  connect(comReliability, &QComboBox::currentIndexChanged, this, &frmEditor::UpdateFactor);
  for (QLineEdit* box : {txtRain, txtManual})
    connect(box, &QLineEdit::textChanged, this, &frmEditor::UpdateFactor);
  for (DateBox* box : {dtpBeginDate, dtpEndDate})
    connect(box, &DateBox::dateChanged, this, &frmEditor::UpdateFactor);
  for (QTimeEdit* box : {dtpBeginTime, dtpEndTime})
    connect(box, &QTimeEdit::timeChanged, this, &frmEditor::UpdateFactor);
}

// What works from everywhere in the window, so that a hand may stay on the keys.
void frmEditor::MakeKeys() {
  const auto key = [this](const QKeySequence& keys, auto run) {
    auto* shortcut = new QShortcut(keys, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, run);
  };
  key(Qt::Key_PageUp, [this] { GoTo(-1); });
  key(Qt::Key_PageDown, [this] { GoTo(1); });
  for (int i = 0; i < 4; ++i)
    key(Qt::ALT | static_cast<Qt::Key>(Qt::Key_0 + i), [this, i] {
      if (open_) comReliability->setCurrentIndex(i);
    });
  for (int i = 0; i < 3; ++i)
    key(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + i), [this, i] { tbsFileView->setCurrentIndex(i); });
  key(QKeySequence::Save, [this] { Save(); });
  key(QKeySequence::Print, [this] { PrintPage(*this, Page(), Orientation(), dialogs_); });
  key(QKeySequence::Refresh, [this] { UpdateList(); });
}

// As large as the shell of a usual screen.
QSize frmEditor::sizeHint() const {
  return {fontMetrics().averageCharWidth() * 170, fontMetrics().lineSpacing() * 42};
}

}  // namespace hyetex
