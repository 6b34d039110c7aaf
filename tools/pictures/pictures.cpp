#include "pictures/pictures.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QListView>
#include <QPixmap>
#include <QStyleFactory>
#include <QTabBar>
#include <QTabWidget>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QThread>
#include <QTreeView>
#include <QTreeWidget>
#include <filesystem>

#include "app/app_desk.h"
#include "core/files.h"
#include "core/folder_lock.h"
#include "core/settings.h"
#include "digitizing/resume.h"
#include "digitizing/view.h"
#include "pictures/picture_database.h"
#include "platform/outlined_style.h"
#include "platform/qt_text.h"
#include "scan/box/chart_tracing.h"
#include "scans/drawn_scan.h"
#include "scans/scan_damage.h"
#include "scans/scan_file.h"
#include "staging/lists/lists.h"
#include "staging/tasks/activation.h"
#include "staging/windows/frmMessageBox.h"
#include "tracing/rain.h"

namespace hyetex {
namespace {

namespace fs = std::filesystem;

constexpr QSize ShellSize(1280, 900);

QPalette DarkPalette() {
  QPalette dark(QColor(45, 48, 52), QColor(45, 48, 52));
  const QColor window(45, 48, 52), base(30, 32, 35), text(230, 232, 235), grey(128, 132, 138);
  for (const auto role : {QPalette::Window, QPalette::Button, QPalette::AlternateBase, QPalette::ToolTipBase})
    dark.setColor(role, window);
  dark.setColor(QPalette::Base, base);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
    dark.setColor(role, text);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    dark.setColor(QPalette::Disabled, role, grey);
  dark.setColor(QPalette::PlaceholderText, grey);
  dark.setColor(QPalette::Highlight, QColor(64, 128, 200));
  dark.setColor(QPalette::HighlightedText, Qt::white);
  return dark;
}

class PictureDialogs : public UnattendedDialogs {
 public:
  std::optional<std::string> Chosen;  ///< the file that is opened
  std::optional<std::string> ChooseFile(const std::string&, const std::string&, const std::string&) override {
    return Chosen;
  }
};

class Camera {
 public:
  explicit Camera(std::string folder) : folder_(std::move(folder)), light_(QApplication::palette()) {}

  void Take(QWidget* window, const std::string& name) {
    if (window == nullptr) return Miss("There is no window " + name);
    for (const bool dark : {false, true}) {
      QApplication::setPalette(dark ? DarkPalette() : light_);
      for (int i = 0; i < 4; ++i) QApplication::processEvents();
      const std::string file = folder_ + "/" + name + (dark ? "-dark.png" : ".png");
      if (!window->grab().save(ToQt(file))) Miss("The picture " + file + " cannot be written");
    }
    QApplication::setPalette(light_);
    QApplication::processEvents();
  }
  /// A control of a window, by its name.
  template <typename Control>
  Control* Find(QWidget* window, const char* name) {
    auto* found = window == nullptr ? nullptr : window->findChild<Control*>(name);
    if (found == nullptr) Miss(std::string("There is no control ") + name);
    return found;
  }
  Result<void> Outcome() const { return trouble_.empty() ? Result<void>{} : Failure(trouble_); }

 private:
  void Miss(std::string why) {
    if (trouble_.empty()) trouble_ = std::move(why);
  }

  const std::string folder_;
  const QPalette light_;
  std::string trouble_;
};

// The staging area with the first chart of its first station.
QWidget* TakeStagedChart(AppDesk& desk, Camera& camera, const char* name) {
  desk.Open(WindowId::Tasks);
  QWidget* tasks = desk.Window(WindowId::Tasks);
  if (auto* tree = camera.Find<QTreeWidget>(tasks, "tvwStations"))
    for (QTreeWidgetItemIterator item(tree); *item != nullptr; ++item)
      if ((*item)->text(0).contains(" - NM-Hill Farm")) tree->setCurrentItem(*item);
  if (auto* grid = camera.Find<QTableWidget>(tasks, "fgdTasks")) grid->selectRow(0);
  camera.Take(tasks, name);
  return tasks;
}

void TakeStaging(AppDesk& desk, Camera& camera) {
  QWidget* tasks = TakeStagedChart(desk, camera, "frmTasks");
  if (auto* change = camera.Find<QPushButton>(tasks, "cmdChange")) change->click();
  camera.Take(desk.Window(WindowId::TaskDef), "frmTaskDef");
  for (const WindowId id : {WindowId::TaskDef, WindowId::Tasks})
    if (QWidget* window = desk.Window(id)) window->close();
}

void TakeLists(AppDesk& desk, Camera& camera) {
  desk.Open(WindowId::Lists);
  QWidget* lists = desk.Window(WindowId::Lists);
  if (auto* tree = camera.Find<QTreeWidget>(lists, "tvwStations")) {
    tree->expandAll();
    camera.Take(lists, "frmLists");
    emit tree->customContextMenuRequested(tree->visualItemRect(tree->currentItem()).center());
    camera.Take(&desk.ShellWindow()->Popup(), "mnuPop");
    desk.ShellWindow()->Popup().close();
  }
  desk.Open(WindowId::ProgramDefaults);
  camera.Take(desk.Window(WindowId::ProgramDefaults), "frmProgramDefaults");
  desk.Open(WindowId::Definitions);
  camera.Take(desk.Window(WindowId::Definitions), "frmSettingsText");
  for (const WindowId id : {WindowId::Definitions, WindowId::ProgramDefaults, WindowId::Lists})
    if (QWidget* window = desk.Window(id)) window->close();
}

void TakeSession(AppDesk& desk, Camera& camera) {
  auto* digitizing = qobject_cast<frmHyetex*>(desk.Window(WindowId::Digitizing));
  camera.Take(digitizing, "frmHyetex");
  camera.Take(desk.ShellWindow(), "mdiHyetex-digitizing");
  if (digitizing == nullptr) return;

  desk.Open(WindowId::Save);
  camera.Take(desk.Window(WindowId::Save), "frmSave");
  if (QWidget* save = desk.Window(WindowId::Save)) save->close();

  // The end of a data gap, a little behind the last point, asks for its reason.
  ActionMachine& machine = digitizing->Machine();
  const Trace& line = machine.CurrentSession().Line;
  if (line.LastPoint() < 0) return;
  const DigitizedPoint& last = line.Points().back();
  machine.RunTool(tool::Gap);
  machine.PressAt(last.TrueX() + 20, last.Y);
  camera.Take(desk.Window(WindowId::Comment), "frmComment");
  if (QWidget* comment = desk.Window(WindowId::Comment)) {
    if (auto* list = camera.Find<QPushButton>(comment, "cmdList")) list->click();
    camera.Take(desk.Window(WindowId::LargeView), "frmLargeView");
    comment->close();
  }
}

// A box of scans for the staged charts of the sample folder: some as clean as they come, one with gaps in its
// line, one that is no chart.
Result<void> MakeBoxOfScans(const std::string& programFolder, const std::string& scans) {
  const auto lists = ReadLists(programFolder);
  if (!lists) return Failure(lists.error());
  const struct {
    const char *Stem, *Damage;
    double Mm;
  } charts[] = {{"NM-Hill Farm-01-19980305-0700", "gaps=1", 9.2},
                {"NM-Hill Farm-01-19980306-0700", "", 4.2},
                {"NM-Hill Farm-01-19980307-0700", "", 8.5}};
  std::error_code error;
  fs::create_directories(scans, error);
  for (const auto& [stem, damage, mm] : charts) {
    RainChart chart;
    chart.Paper = lists->ChartTypes[0];
    const std::vector<RainPoint> rain{{0, 0}, {6, 0}, {9, mm / 2}, {12, mm / 2}, {17, mm}, {24, mm}};
    const auto line = DrawRain(rain, chart);
    if (!line) return Failure(line.error());
    ScanStyle style;
    style.Dpi = 150;
    if (*damage != 0)
      if (const auto damaged = Damage(style, damage, 7); !damaged) return damaged;
    const auto drawn = DrawScan(*line, style, 7);
    if (!drawn) return Failure(drawn.error());
    const std::string name = std::string(stem) + ".png";
    const auto bytes = EncodeScan(drawn->Image, name, style.Dpi);
    if (!bytes) return Failure(bytes.error());
    if (const auto written = WriteWholeFile(JoinPath(scans, name), *bytes); !written) return written;
  }
  return WriteWholeFile(JoinPath(scans, "NM-Mill Pond-01-19251120-0700.png"), "no image");
}

// While it is traced, when all is done, and the desk with one of the doubts.
void TakeBox(AppDesk& desk, Camera& camera) {
  desk.Open(WindowId::Tasks);
  if (auto* trace = camera.Find<QPushButton>(desk.Window(WindowId::Tasks), "cmdTrace")) trace->click();
  QWidget* box = desk.Window(WindowId::TraceScans);
  auto* cancel = camera.Find<QPushButton>(box, "cmdCancel");
  auto* start = camera.Find<QPushButton>(box, "cmdStart");
  if (cancel == nullptr || start == nullptr) return;
  start->click();
  camera.Take(box, "frmTraceScans-tracing");
  while (cancel->isEnabled()) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
  camera.Take(box, "frmTraceScans");
  if (auto* open = camera.Find<QPushButton>(box, "cmdOpen")) open->click();
  for (int i = 0; i < 4; ++i) QApplication::processEvents();
  auto* digitizing = qobject_cast<frmHyetex*>(desk.Window(WindowId::Digitizing));
  for (int i = 0; digitizing != nullptr && i < 5; ++i) {
    QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
    digitizing->setFocus();
    QApplication::sendEvent(digitizing, &tab);
  }
  camera.Take(desk.ShellWindow(), "mdiHyetex-doubt");
}

// A scan of a day's chart, drawn for the folder of the scans, under the name of the first staged chart.
Result<DrawnScan> MakeScan(const std::string& programFolder, const std::string& scans) {
  const auto lists = ReadLists(programFolder);
  if (!lists) return Failure(lists.error());
  std::vector<RainPoint> rain{{0, 0}};
  for (int i = 1; i <= 60; ++i) rain.push_back({3 + i * 0.3, rain.back().Rain + 0.02 * (i * i % 37)});
  RainChart chart;
  chart.Paper = lists->ChartTypes[0];
  const auto line = DrawRain(rain, chart);
  if (!line) return Failure(line.error());
  ScanStyle style;
  style.Dpi = 200;
  style.Shape.TiltDegrees = 0.4;
  auto drawn = DrawScan(*line, style, 7);
  if (!drawn) return drawn;
  const std::string name = "NM-Hill Farm-01_19980305.png";
  const auto bytes = EncodeScan(drawn->Image, name, style.Dpi);
  if (!bytes) return Failure(bytes.error());
  std::error_code error;
  fs::create_directories(scans, error);
  if (const auto written = WriteWholeFile(JoinPath(scans, name), *bytes); !written)
    return Failure(written.error());
  return drawn;
}

// The desk on the scan that was found for the first chart: as it opens, and with a trace that is corrected.
void TakeScan(AppDesk& desk, Camera& camera, const DrawnScan& drawn) {
  QWidget* tasks = TakeStagedChart(desk, camera, "frmTasks-scan");
  if (auto* activate = camera.Find<QPushButton>(tasks, "cmdActivate")) activate->click();
  for (int i = 0; i < 4; ++i) QApplication::processEvents();
  auto* digitizing = qobject_cast<frmHyetex*>(desk.Window(WindowId::Digitizing));
  camera.Take(desk.ShellWindow(), "mdiHyetex-scan");
  auto* scan = digitizing == nullptr ? nullptr : digitizing->findChild<DeskScan*>();
  if (scan == nullptr) return;

  ActionMachine& machine = digitizing->Machine();
  auto steps = MouseSteps(drawn, scan->Placement());
  steps.resize(steps.size() * 3 / 5);  // the last ones are still to come
  for (const JournalEvent& step : steps)
    for (const int button : {-1, 0, -1})
      if (step.What == JournalEvent::Kind::Press) machine.Point(step.X, step.Y, button);
  digitizing->ToggleOverlay();
  ZoomAround(machine.Layout, machine.CurrentSession().Line.Scales().Tablet, 2,
             machine.Layout.ScaleWidth * 0.3, machine.Layout.ScaleHeight * 0.6);
  digitizing->DrawGraph();
  camera.Take(desk.ShellWindow(), "mdiHyetex-scan-traced");
  digitizing->ToggleCorrecting();
  machine.State().SelectedPoint = machine.CurrentSession().Line.LastPoint() / 2;
  digitizing->DrawGraph();
  camera.Take(digitizing, "frmHyetex-correcting");
}

void TakeConnections(AppDesk& desk, Camera& camera) {
  const std::pair<WindowId, const char*> windows[] = {{WindowId::Connection, "frmODBCLogon"},
                                                      {WindowId::Logon, "frmODBCLogon1"},
                                                      {WindowId::CreateTable, "frmCreateTable"}};
  for (const auto& [id, name] : windows) {
    desk.Open(id);
    camera.Take(desk.Window(id), name);
    if (QWidget* window = desk.Window(id)) window->close();
  }
}

void TakeLoading(AppDesk& desk, Camera& camera) {
  desk.Open(WindowId::Load);
  QWidget* load = desk.Window(WindowId::Load);
  auto* tabs = camera.Find<QTabBar>(load, "tspLR");
  // Folders are read in the background, until the chosen one comes into sight.
  auto* folders = camera.Find<QTreeView>(load, "dirSource");
  for (int i = 0; folders && i < 300; ++i) {
    QThread::msleep(10);
    QApplication::processEvents();
    if (i > 10 && folders->viewport()->rect().intersects(folders->visualRect(folders->currentIndex()))) break;
  }
  if (auto* all = camera.Find<QPushButton>(load, "cmdAll")) all->click();
  camera.Take(load, "frmLoad");
  if (tabs) tabs->setCurrentIndex(1);
  camera.Take(load, "frmLoad-extract");
  if (load) load->close();
}

void TakePopulating(AppDesk& desk, Camera& camera) {
  desk.Open(WindowId::PrePop);
  camera.Take(desk.Window(WindowId::PrePop), "frmPrePop");
  if (auto* next = camera.Find<QPushButton>(desk.Window(WindowId::PrePop), "cmdContinue")) next->click();
  QWidget* populate = desk.Window(WindowId::Populate);
  if (auto* instruments = camera.Find<QComboBox>(populate, "cboSelection")) instruments->setCurrentIndex(0);
  if (auto* all = camera.Find<QPushButton>(populate, "cmdWrite")) all->click();
  if (auto* all = camera.Find<QCheckBox>(populate, "chkShowAll")) all->setChecked(true);
  camera.Take(populate, "frmPopulate");
  for (const WindowId id : {WindowId::Populate, WindowId::PrePop})
    if (QWidget* window = desk.Window(id)) window->close();
}

// Of the charts that the database begins with in CHART.
void TakeRain(AppDesk& desk, Camera& camera) {
  desk.Open(WindowId::Rainfall);
  QWidget* rain = desk.Window(WindowId::Rainfall);
  const auto settle = [] {
    for (int i = 0; i < 40; ++i) {
      QThread::msleep(10);
      QApplication::processEvents();
    }
  };
  settle();
  auto* tabs = camera.Find<QTabWidget>(rain, "tabTables");
  auto* years = camera.Find<QComboBox>(rain, "comYear");
  if (tabs == nullptr || years == nullptr) return;
  tabs->setCurrentIndex(2);
  camera.Take(rain, "frmRainfall");
  years->setCurrentIndex(years->findText("1998"));
  tabs->setCurrentIndex(3);
  settle();
  camera.Take(rain, "frmRainfall-year");
  tabs->setCurrentIndex(5);
  settle();
  camera.Take(rain, "frmRainfall-charts");
  camera.Take(desk.ShellWindow(), "mdiHyetex-rain");
  if (rain) rain->close();
}

void TakeAlpha(AppDesk& desk, Camera& camera) {
  desk.Open(WindowId::Alpha);
  QWidget* alpha = desk.Window(WindowId::Alpha);
  if (auto* instruments = camera.Find<QComboBox>(alpha, "cboSelection")) instruments->setCurrentIndex(0);
  if (auto* grid = camera.Find<QTableView>(alpha, "ss")) {
    const auto key = [grid](int code, Qt::KeyboardModifiers modifiers = {}) {
      QKeyEvent press(QEvent::KeyPress, code, modifiers);
      QApplication::sendEvent(grid, &press);
    };
    for (int i = 0; i < 3; ++i) key(Qt::Key_Down);
    key(Qt::Key_Space);
    key(Qt::Key_Up);
    key(Qt::Key_Up);
    for (int i = 0; i < 4; ++i) key(Qt::Key_Down, Qt::ShiftModifier);
  }
  if (auto* average = camera.Find<QPushButton>(alpha, "cmdUseAverage")) average->click();
  camera.Take(alpha, "frmAlpha");
  if (alpha) alpha->close();
}

// The boxes agree to the export; the grid shows a table's file that it has written.
void TakeExchange(AppDesk& desk, Camera& camera) {
  desk.Open(WindowId::Exchange);
  QWidget* whole = desk.Window(WindowId::Exchange);
  if (auto* all = camera.Find<QPushButton>(whole, "cmdCompress")) all->click();
  camera.Take(whole, "frmCompress");
  if (whole) whole->close();
  desk.Open(WindowId::TableExchange);
  QWidget* single = desk.Window(WindowId::TableExchange);
  if (auto* tables = camera.Find<QComboBox>(single, "cboTableName")) tables->setCurrentIndex(0);
  if (auto* view = camera.Find<QPushButton>(single, "cmdViewXML")) view->click();
  camera.Take(single, "frmXMLExport");
  if (single) single->close();
}

// On the charts of the demonstration, where they stand in "charts" of the program folder.
void TakeEditor(AppDesk& desk, Camera& camera) {
  desk.Open(WindowId::Editor);
  QWidget* editor = desk.Window(WindowId::Editor);
  auto* list = camera.Find<QListView>(editor, "lstAscii");
  auto* tabs = camera.Find<QTabBar>(editor, "tbsFileView");
  if (list == nullptr || tabs == nullptr) return;
  const auto open = [&](int row) {
    for (int i = 0; i < 40; ++i) {
      QThread::msleep(10);
      QApplication::processEvents();
    }
    list->setCurrentIndex(list->model()->index(std::min(row, list->model()->rowCount() - 1), 0));
  };
  open(3);
  camera.Take(editor, "frmEditor");
  tabs->setCurrentIndex(1);
  if (auto* steps = camera.Find<QComboBox>(editor, "comHyetograph")) steps->setCurrentIndex(4);
  open(1);
  camera.Take(editor, "frmEditor-series");
  tabs->setCurrentIndex(2);
  open(6);
  camera.Take(editor, "frmEditor-details");
  tabs->setCurrentIndex(0);
  list->selectAll();
  if (auto* summary = camera.Find<QPushButton>(editor, "cmdLargeView");
      summary && list->model()->rowCount() > 0) {
    summary->click();
    camera.Take(desk.Window(WindowId::LargeView), "frmLargeView-summary");
  }
  for (const WindowId id : {WindowId::LargeView, WindowId::Editor})
    if (QWidget* window = desk.Window(id)) window->close();
}

// Records of the demonstration's database.
void TakeTables(AppDesk& desk, Camera& camera) {
  for (const auto& [entry, name] :
       {std::pair{1, "frmEditInstrument"}, std::pair{2, "frmManualGageMD"},
        std::pair{5, "frmEdit_AreaDescription"}, std::pair{12, "frmEdit_JordanCharts"}}) {
    desk.Open(WindowId::SelectTable);
    QWidget* select = desk.Window(WindowId::SelectTable);
    if (auto* tables = camera.Find<QComboBox>(select, "cboTables")) tables->setCurrentIndex(entry);
    if (entry == 1) camera.Take(select, "frmSelectTable");
    if (auto* edit = camera.Find<QPushButton>(select, "cmdEdit")) edit->click();
    QWidget* editor = desk.Window(WindowId::TableEditor);
    for (int i = 0; i < 30; ++i) {  // a picture is read a while after its record
      QThread::msleep(10);
      QApplication::processEvents();
    }
    camera.Take(editor, name);
    if (auto* change = camera.Find<QPushButton>(editor, "cmdEdit"); change && entry == 5) {
      change->click();
      camera.Take(editor, std::string(name) + "-edit");
    }
    if (editor) editor->close();
  }
  if (QWidget* select = desk.Window(WindowId::SelectTable)) select->close();
}

}  // namespace

Result<void> TakePictures(const std::string& programFolder, const std::string& pictures) {
  std::error_code error;
  fs::create_directories(pictures, error);
  const QTemporaryDir place;
  if (error || !place.isValid()) return Failure("There is no room for pictures in " + pictures);
  const std::string copy = FromQt(place.path());
  fs::copy(programFolder, copy, fs::copy_options::recursive, error);
  if (error) return Failure("The program folder " + programFolder + " cannot be copied: " + error.message());

  QApplication::setStyle(QStyleFactory::create("Fusion"));
  OutlinedStyle::Install();
  QApplication::setFont(QFont("DejaVu Sans", 10));
  PictureDialogs dialogs;
  dialogs.Agrees = true;  // an unfinished chart is resumed
  Settings settings(copy);
  if (auto made = MakePictureDatabase(settings, dialogs); !made) return made;
  // The search for the tablet leaves the machine's own ports alone.
  for (const char* port : {"1", "2"}) (void)settings.Set(setting::SerialPort, port, "none");
  (void)settings.Set(setting::LoadSource, JoinPath(copy, "Data"));
  if (const std::string charts = JoinPath(copy, "charts"); FolderExists(charts))
    (void)settings.Set(setting::TargetFolder, charts);
  Camera camera(pictures);
  StartWords words;
  words.Folder = copy;
  {
    AppDesk desk(words, dialogs);
    desk.ShellSize = ShellSize;
    desk.Start();
    camera.Take(desk.Login(), "frmLogin");
    desk.LoggedIn();
    camera.Take(desk.Window(WindowId::MainMenu), "frmInit");
    camera.Take(desk.ShellWindow(), "mdiHyetex");
    frmMessageBox question(dialogs, 1, desk.ShellWindow());
    question.show();
    camera.Take(&question, "frmMessageBox");
    question.close();
    TakeLists(desk, camera);
    TakeStaging(desk, camera);
    TakeConnections(desk, camera);
    TakeLoading(desk, camera);
    TakePopulating(desk, camera);
    TakeRain(desk, camera);
    TakeAlpha(desk, camera);
    TakeEditor(desk, camera);
    TakeTables(desk, camera);
    dialogs.Chosen = JoinPath(JoinPath(copy, "Data"), "instrument.xml");
    TakeExchange(desk, camera);
  }
  words.Task = 0;
  {
    AppDesk desk(words, dialogs);
    desk.ShellSize = ShellSize;
    desk.Start();
    desk.LoggedIn();
    TakeSession(desk, camera);
  }
  words.Task.reset();
  const std::string scans = JoinPath(copy, "scans");
  const auto drawn = MakeScan(copy, scans);
  if (!drawn) return Failure(drawn.error());
  (void)settings.Set(setting::TraceSource, static_cast<int>(TraceSource::Scan));
  {
    fs::remove(JoinPath(copy, JournalFileName), error);  // a chart that was begun is not the program's
    const auto lock = FolderLock::Take(copy);
    const std::string box = JoinPath(copy, "box");
    if (const auto made = MakeBoxOfScans(copy, box); !made) return made;
    (void)settings.Set(setting::ScanFolder, box);
    AppDesk desk(words, dialogs);
    desk.ShellSize = ShellSize;
    desk.Start();
    desk.LoggedIn();
    TakeBox(desk, camera);
  }
  // What the box has left would be gone on with on the next scan.
  fs::remove(JoinPath(copy, JournalFileName), error);
  if (const auto target = ReadTargetFolder(settings))
    fs::remove(TraceJournalPath(*target, "NM-Hill Farm-01-19980305-0700.dat"), error);
  (void)settings.Set(setting::ScanFolder, scans);
  AppDesk desk(words, dialogs);
  desk.ShellSize = ShellSize;
  desk.Start();
  desk.LoggedIn();
  TakeScan(desk, camera, *drawn);
  return camera.Outcome();
}

}  // namespace hyetex
