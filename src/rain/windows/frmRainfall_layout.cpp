// The controls of the window of rain and where they stand: what is chosen above, the picture on the left, the
// tables on the right.
#include <QGridLayout>
#include <QMenu>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "core/numbers.h"
#include "platform/controls.h"
#include "platform/entry_box.h"
#include "platform/flow_layout.h"
#include "platform/qt_text.h"
#include "rain/windows/frmRainfall.h"

namespace hyetex {
namespace {

constexpr NumberEntry HoursEntry{
    .What = "The hours from GMT", .Least = -MostHoursFromGmt, .Most = MostHoursFromGmt};
constexpr NumberEntry DryEntry{.What = "A dry spell in hours", .Least = LeastDryHours, .Most = MostDryHours};

QLabel* PlainLabel(const char* name) {
  auto* label = Named(new QLabel, name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setMinimumWidth(1);  // a long text must not make the window wider
  return label;
}

QWidget* Captioned(const char* caption, QWidget* control) {
  return Together({LabelOf(caption, control), control});
}

}  // namespace

void frmRainfall::MakeLayout() {
  QLayout* buttons = MakeButtons();
  auto* both = new QSplitter;
  both->setChildrenCollapsible(false);
  QWidget* choice = MakeChoice();
  both->addWidget(MakePicture());
  both->addWidget(MakeTables());
  both->setStretchFactor(0, 1);
  both->setStretchFactor(1, 1);
  both->setSizes({sizeHint().width() * 11 / 20, sizeHint().width() * 9 / 20});

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(choice);
  layout->addWidget(both, 1);
  layout->addWidget(labState);
  layout->addLayout(buttons);
  MakeMenus();
  SetKeyButtons(nullptr, cmdExit);
  cmdStop->setAutoDefault(false);
  LinkTabs({cboInstrument, comYear,   dtpFrom, dtpTo,      cmdBack,   comStep,  comTime,   txtHours,
            comDayBegins,  txtDry,    picRain, tabTables,  grdDays,   grdGage,  grdMaxima, grdStorms,
            grdYears,      grdCharts, cmdMend, txtRemarks, cmdExport, cmdPrint, cmdFill,   cmdExit});
}

QWidget* frmRainfall::MakeChoice() {
  cboInstrument = Named(new QComboBox, "cboInstrument");
  cboInstrument->setPlaceholderText(tr("None chosen"));
  cboInstrument->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  cboInstrument->setMinimumContentsLength(18);
  comYear = Named(new QComboBox, "comYear");
  comYear->addItem(tr("Chosen days"), 0);
  comYear->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  dtpFrom = Named(new DateBox, "dtpFrom");
  dtpTo = Named(new DateBox, "dtpTo");
  for (DateBox* box : {dtpFrom, dtpTo}) box->setDate(QDate::currentDate());
  cmdBack = Named(new QPushButton(tr("&Back")), "cmdBack");
  cmdBack->setToolTip(tr("To the days that were shown before (Alt+Left)"));
  comStep = Named(new QComboBox, "comStep");
  for (const int minutes : OfferedRainSteps)
    comStep->addItem(minutes == RainDays.Minutes ? tr("Day") : tr("%1 min").arg(minutes), minutes);
  comStep->setCurrentIndex(comStep->count() - 1);
  comTime = Named(new QComboBox, "comTime");
  comTime->addItems({tr("Local time"), tr("GMT")});
  txtHours = Named(new EntryBox(HoursEntry), "txtHours");
  txtHours->setText(ToQt(settings_.Get(setting::GmtHours)));
  txtHours->setToolTip(tr("What local time is ahead of GMT"));
  QWidget* hours = WithArrows(txtHours, "udnHours", [](std::string_view text, int way) {
    return ShortText(std::clamp(TypedOrLeading(text) + way, -MostHoursFromGmt, MostHoursFromGmt));
  });
  comDayBegins = Named(new QComboBox, "comDayBegins");
  for (int hour = 0; hour < 24; ++hour)
    comDayBegins->addItem(QStringLiteral("%1:00").arg(hour, 2, 10, QChar('0')));
  comDayBegins->setCurrentIndex(std::clamp<int>(settings_.Get(setting::RainDayBegins), 0, 23));
  txtDry = Named(new EntryBox(DryEntry), "txtDry");
  txtDry->setText(ToQt(settings_.Get(setting::RainDryHours)));
  txtDry->setToolTip(tr("So many hours without rain end a storm"));
  QWidget* dry = WithArrows(txtDry, "udnDry", [](std::string_view text, int way) {
    return ShortText(std::clamp(TypedOrLeading(text) + way, LeastDryHours, MostDryHours));
  });
  for (QLineEdit* box : {txtHours, txtDry}) {
    box->setMinimumWidth(fontMetrics().horizontalAdvance("0000000"));
    box->setMaximumWidth(box->minimumWidth());
  }

  auto* choice = new QWidget;
  auto* controls = new FlowLayout(choice);
  for (QWidget* each :
       {Captioned("&Instrument", cboInstrument), Captioned("Yea&r", comYear), Captioned("Fro&m", dtpFrom),
        Captioned("throu&gh", dtpTo), static_cast<QWidget*>(cmdBack), Captioned("&Step", comStep),
        Together({comTime, LabelOf("&Hours from GMT", txtHours), hours}),
        Captioned("&Day begins", comDayBegins), Together({LabelOf("Dry spe&ll (hours)", txtDry), dry})})
    controls->addWidget(each);
  comTime->setAccessibleName(tr("Whose time"));
  return choice;
}

QWidget* frmRainfall::MakePicture() {
  picRain = new RainView;
  labReadOut = PlainLabel("labReadOut");
  labReadOut->setText(QStringLiteral(" "));
  auto* side = new QWidget;
  auto* layout = new QVBoxLayout(side);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(picRain, 1);
  layout->addWidget(labReadOut);
  return side;
}

QWidget* frmRainfall::MakeTables() {
  grdDays = new SheetView("grdDays", tr("Days"));
  grdGage = new SheetView("grdGage", tr("Readings of the manual gage"));
  grdMaxima = new SheetView("grdMaxima", tr("Greatest depths"));
  grdStorms = new SheetView("grdStorms", tr("Storms"));
  grdYears = new SheetView("grdYears", tr("Years"));
  grdCharts = new SheetView("grdCharts", tr("What charts lack"));
  txtRemarks = Named(new QPlainTextEdit, "txtRemarks");
  txtRemarks->setReadOnly(true);
  txtRemarks->setTabChangesFocus(true);
  txtRemarks->setAccessibleName(tr("Remarks"));
  cmdMend = Named(new QPushButton(tr(MendingName(MendedIn::Editor))), "cmdMend");
  cmdMend->setEnabled(false);
  labReview = PlainLabel("labReview");
  auto* charts = new QWidget;
  auto* chartsLayout = new QVBoxLayout(charts);
  chartsLayout->setContentsMargins(0, 0, 0, 0);
  chartsLayout->addWidget(grdCharts, 1);
  auto* below = new QHBoxLayout;
  below->addWidget(labReview, 1);
  below->addWidget(cmdMend);
  chartsLayout->addLayout(below);

  charts->setFocusProxy(grdCharts);

  tabTables = Named(new QTabWidget, "tabTables");
  tabTables->addTab(grdDays, tr("Days"));
  tabTables->addTab(grdGage, tr("Gage"));
  tabTables->addTab(grdMaxima, tr("Maxima"));
  tabTables->addTab(grdStorms, tr("Storms"));
  tabTables->addTab(grdYears, tr("Years"));
  tabTables->addTab(charts, tr("Charts"));
  tabTables->addTab(txtRemarks, tr("Remarks"));
  for (int i = 0; i < tabTables->count(); ++i) tabTables->setTabToolTip(i, tr("Ctrl+%1").arg(i + 1));
  tabTables->setMinimumWidth(fontMetrics().averageCharWidth() * 40);
  return tabTables;
}

QLayout* frmRainfall::MakeButtons() {
  labState = PlainLabel("labState");
  cmdExport = Named(new QPushButton(tr("Take A&way")), "cmdExport");
  cmdPrint = Named(new QPushButton(tr("&Print")), "cmdPrint");
  cmdFill = Named(new QPushButton(tr("Fill T&ables of the Database...")), "cmdFill");
  cmdFill->setToolTip(
      tr("Writes the daily depths into DAILy_CHART and the classes of intensity into Intensity_duration"));
  cmdExit = Named(new QPushButton(tr("Return to Main Me&nu")), "cmdExit");
  prgRain = Named(new QProgressBar, "prgRain");
  prgRain->setAccessibleName(tr("How far the work has come"));
  cmdStop = Named(new QPushButton(tr("Stop")), "cmdStop");
  cmdStop->setFocusPolicy(Qt::NoFocus);  // from the keyboard Escape stops
  prgRain->hide();
  cmdStop->hide();
  auto* buttons = new QHBoxLayout;
  for (QPushButton* each : {cmdExport, cmdPrint, cmdFill}) buttons->addWidget(each);
  buttons->addStretch();
  buttons->addWidget(prgRain);
  buttons->addWidget(cmdStop);
  buttons->addWidget(cmdExit);
  return buttons;
}

void frmRainfall::MakeMenus() {
  const auto entry = [this](QMenu* menu, const char* name, const QString& caption, auto run) {
    QAction* action = Named(menu->addAction(caption), name);
    connect(action, &QAction::triggered, this, run);
  };
  auto* files = new QMenu(cmdExport);
  entry(files, "mnuCsv", tr("Steps as &CSV..."), [this] { SaveCsv(); });
  entry(files, "mnuSef", tr("Station Exchange Format (&SEF)..."), [this] { SaveSef(); });
  files->addSeparator();
  entry(files, "mnuPng", tr("Picture as P&NG..."), [this] { SavePicture(".png"); });
  entry(files, "mnuSvg", tr("Picture as S&VG..."), [this] { SavePicture(".svg"); });
  entry(files, "mnuPdf", tr("Picture as P&DF..."), [this] { SavePicture(".pdf"); });
  files->addSeparator();
  entry(files, "mnuReport", tr("&Report of the Year as PDF..."), [this] { SaveReport(); });
  cmdExport->setMenu(files);
  auto* print = new QMenu(cmdPrint);
  entry(print, "mnuPrint", tr("&Print..."),
        [this] { PrintPage(*this, Page(), QPageLayout::Landscape, dialogs_); });
  entry(print, "mnuPreview", tr("Pre&view..."),
        [this] { PreviewPage(*this, Page(), QPageLayout::Landscape, dialogs_); });
  cmdPrint->setMenu(print);
}

void frmRainfall::Connect() {
  connect(cboInstrument, &QComboBox::currentIndexChanged, this, &frmRainfall::ChangeInstrument);
  connect(comYear, &QComboBox::currentIndexChanged, this, &frmRainfall::ChangeYear);
  for (QComboBox* box : {comStep, comTime, comDayBegins})
    connect(box, &QComboBox::currentIndexChanged, this, &frmRainfall::Ask);
  for (DateBox* box : {dtpFrom, dtpTo}) connect(box, &DateBox::dateChanged, this, &frmRainfall::Ask);
  for (QLineEdit* box : {txtHours, txtDry}) connect(box, &QLineEdit::textChanged, this, &frmRainfall::Ask);
  connect(cmdBack, &QPushButton::clicked, this, &frmRainfall::GoBack);
  connect(picRain, &GraphView::ReadOutChanged, labReadOut,
          [this](const QString& text) { labReadOut->setText(text.isEmpty() ? QStringLiteral(" ") : text); });
  // Behind the click that chose it, since another window comes to the front.
  connect(picRain, &RainView::StepChosen, this, &frmRainfall::OpenStep, Qt::QueuedConnection);
  const std::pair<Tab, SheetView*> grids[] = {{Days, grdDays},     {Gage, grdGage},   {Maxima, grdMaxima},
                                              {Storms, grdStorms}, {Years, grdYears}, {Charts, grdCharts}};
  for (const auto& [tab, grid] : grids)
    connect(
        grid, &SheetView::Chosen, this, [this, tab = tab](int row) { Choose(tab, row); },
        Qt::QueuedConnection);
  connect(grdCharts, &SheetView::CurrentChanged, this, &frmRainfall::ShowMending);
  connect(cmdMend, &QPushButton::clicked, this, [this] { Mend(grdCharts->Current()); });
  connect(tabTables, &QTabWidget::currentChanged, this, &frmRainfall::FillTab);
  connect(cmdFill, &QPushButton::clicked, this, &frmRainfall::FillTables);
  connect(cmdExit, &QPushButton::clicked, this, &QWidget::close);

  // What works from everywhere in the window, so that a hand may stay on the keys.
  const auto key = [this](const QKeySequence& keys, auto run) {
    auto* shortcut = new QShortcut(keys, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, run);
  };
  key(Qt::ALT | Qt::Key_Left, [this] { GoBack(); });
  key(QKeySequence::Refresh, [this] { ReadAnew(); });
  key(QKeySequence::Print, [this] {
    if (overview_) PrintPage(*this, Page(), QPageLayout::Landscape, dialogs_);
  });
  for (int i = 0; i < tabTables->count(); ++i)
    key(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + i), [this, i] {
      tabTables->setCurrentIndex(i);
      tabTables->currentWidget()->setFocus();
    });
}

// As large as the shell of a usual screen.
QSize frmRainfall::sizeHint() const {
  return {fontMetrics().averageCharWidth() * 215, fontMetrics().lineSpacing() * 42};
}

}  // namespace hyetex
