#include "app/app_desk.h"

#include <QApplication>
#include <QScreen>
#include <algorithm>
#include <filesystem>

#include "app/session_comments.h"
#include "chartfiles/saving.h"
#include "chartfiles/windows/frmComment.h"
#include "chartfiles/windows/frmLargeView.h"
#include "chartfiles/windows/frmSave.h"
#include "core/dates.h"
#include "core/files.h"
#include "digitizing/resume.h"
#include "platform/entry_box.h"
#include "platform/qt_text.h"
#include "platform/serial_devices.h"
#include "platform/shell.h"
#include "staging/tasks/activation.h"
#include "staging/windows/frmInit.h"
#include "staging/windows/frmMessageBox.h"

namespace hyetex {
namespace {

constexpr const char* ProgramTitle = "Hyetex";

}  // namespace

// In the order in which those that may ask are closed when the program ends: one that waits for another comes
// behind it.
const AppDesk::WindowKind AppDesk::Windows[] = {
    // id, is main, may ask, how it is made
    {WindowId::Comment, false, true, &AppDesk::MakeComment},
    {WindowId::TaskDef, false, true, &AppDesk::MakeTaskDef},
    {WindowId::Save, false, true, &AppDesk::MakeSave},
    {WindowId::TraceScans, true, true, &AppDesk::MakeTraceScans},
    {WindowId::Digitizing, true, true, &AppDesk::MakeDigitizing},
    {WindowId::Tasks, true, true, &AppDesk::MakeTasks},
    {WindowId::Lists, true, true, &AppDesk::MakeLists},
    {WindowId::Editor, true, true, &AppDesk::MakeEditor},
    {WindowId::Definitions, false, true, &AppDesk::MakeDefinitions},
    {WindowId::ProgramDefaults, false, true, &AppDesk::MakeProgramDefaults},
    {WindowId::Connection, false, true, &AppDesk::MakeConnection},
    {WindowId::Logon, false, true, &AppDesk::MakeLogon},
    {WindowId::TableEditor, true, true, &AppDesk::MakeTableEditor},
    {WindowId::SelectTable, true, false, &AppDesk::MakeSelectTable},
    {WindowId::Load, true, false, &AppDesk::MakeLoad},
    {WindowId::Alpha, true, false, &AppDesk::MakeAlpha},
    {WindowId::PrePop, true, false, &AppDesk::MakePrePop},
    {WindowId::Populate, true, false, &AppDesk::MakePopulate},
    {WindowId::Rainfall, true, false, &AppDesk::MakeRainfall},
    {WindowId::MainMenu, false, false, &AppDesk::MakeMainMenu},
    {WindowId::LargeView, false, false, &AppDesk::MakeLargeView},
    {WindowId::CreateTable, false, false, &AppDesk::MakeCreateTable},
    {WindowId::Exchange, false, false, &AppDesk::MakeExchange},
    {WindowId::TableExchange, false, false, &AppDesk::MakeTableExchange},
};

const AppDesk::WindowKind* AppDesk::Find(WindowId id) {
  const auto* found = std::ranges::find(Windows, id, &WindowKind::Id);
  return found == std::end(Windows) ? nullptr : found;
}

AppDesk::AppDesk(StartWords words, Dialogs& dialogs)
    : words_(std::move(words)), dialogs_(dialogs), program_(words_.Folder, dialogs) {}

AppDesk::~AppDesk() {
  ending_ = true;
  delete login_;
}

void AppDesk::Start() {
  login_ = new frmLogin(*this, dialogs_, program_.Settings, program_.Lists, program_.CurrentUser);
  login_->setAttribute(Qt::WA_DeleteOnClose);
  login_->adjustSize();
  login_->move(login_->screen()->availableGeometry().center() - login_->rect().center());
  login_->show();
}

void AppDesk::LoggedIn() {
  MakeShell();
  AddSynchronising();
  EnsureDataFolder();
  if (words_.Task && Activate(*words_.Task))
    Open(WindowId::Digitizing);
  else
    Open(WindowId::MainMenu);
}

void AppDesk::MakeShell() {
  shell_ = std::make_unique<mdiHyetex>();
  QObject::connect(shell_.get(), &mdiHyetex::ExitChosen, [this] { EndProgram(); });
  QObject::connect(shell_.get(), &mdiHyetex::HelpChosen, [this] { ShowHelp(); });
  QObject::connect(shell_.get(), &mdiHyetex::DefaultsChosen, [this] { Open(WindowId::ProgramDefaults); });
  shell_->OfferDefaults();
  if (!ShellSize.isEmpty()) {
    shell_->resize(ShellSize);
    shell_->show();
    return;
  }
  // The windows inside are placed before a window manager has made the frame as large as it will be.
  shell_->setGeometry(QGuiApplication::primaryScreen()->availableGeometry());
  shell_->showMaximized();
}

void AppDesk::EnsureDataFolder() {
  const std::string folder = JoinPath(program_.Settings.Folder(), "Data");
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) Tell("The folder " + folder + " cannot be made: " + error.message());
}

QWidget* AppDesk::Window(WindowId id) {
  const auto frame = frames_.find(id);
  return frame == frames_.end() || !frame->second ? nullptr : frame->second->widget();
}

void AppDesk::Open(WindowId id) {
  if (QWidget* open = Window(id)) {
    open->show();
    shell_->Area().setActiveSubWindow(frames_[id]);
    return;
  }
  const WindowKind* kind = Find(id);
  QWidget* window = kind == nullptr ? nullptr : (this->*kind->Make)();
  if (window == nullptr) return;
  QMdiSubWindow* frame = shell_->Area().addSubWindow(window);
  frame->setWindowIcon(QApplication::windowIcon());
  frames_[id] = frame;
  Flags.SetOpen(id, true);
  frame->show();
  if (auto* digitizing = qobject_cast<frmHyetex*>(window)) digitizing->StartSession();
}

void AppDesk::Closed(WindowId id) {
  Flags.SetOpen(id, false);
  QMdiSubWindow* before = nullptr;
  if (const QPointer<QMdiSubWindow> frame = frames_[id]) {
    if (!ending_) before = FrameBefore(frame);
    frame->hide();
    frame->deleteLater();
  }
  frames_.erase(id);
  if (id == WindowId::Digitizing) shell_->ShowChart("");
  if (ending_) return;

  const auto isMain = [](const auto& entry) { return entry.second && Find(entry.first)->IsMain; };
  const bool mainIsOpen = std::any_of(frames_.begin(), frames_.end(), isMain);
  auto* scans = qobject_cast<frmTraceScans*>(Window(WindowId::TraceScans));
  if (id == WindowId::Digitizing && scans != nullptr) {
    Open(WindowId::TraceScans);
    scans->ComeBack();
  } else if ((id == WindowId::Digitizing ||
              (id == WindowId::TraceScans && Window(WindowId::Digitizing) == nullptr)) &&
             std::exchange(backToTasks_, false))
    Open(WindowId::Tasks);
  else if (!mainIsOpen && (before == nullptr || Window(WindowId::MainMenu) == nullptr))
    Open(WindowId::MainMenu);
  else if (before != nullptr)
    shell_->Area().setActiveSubWindow(before);
}

QMdiSubWindow* AppDesk::FrameBefore(const QMdiSubWindow* closing) const {
  const auto frames = shell_->Area().subWindowList(QMdiArea::ActivationHistoryOrder);
  const auto found = std::find_if(frames.rbegin(), frames.rend(), [&](const QMdiSubWindow* frame) {
    return frame != closing && frame->isVisible();
  });
  return found == frames.rend() ? nullptr : *found;
}

void AppDesk::OpenLargeView(const std::string& caption, const std::string& text) {
  if (QWidget* open = Window(WindowId::LargeView)) open->close();
  largeCaption_ = caption;
  largeText_ = text;
  Open(WindowId::LargeView);
}

void AppDesk::CloseLargeView(const std::string& caption) {
  QWidget* open = Window(WindowId::LargeView);
  if (open && open->windowTitle() == ToQt(caption)) open->close();
}

// What the operator would rather not lose keeps the program open.
void AppDesk::EndProgram() {
  ending_ = true;
  for (const WindowKind& kind : Windows) {
    if (!kind.MayAsk || Window(kind.Id) == nullptr) continue;
    frames_[kind.Id]->close();
    if (Window(kind.Id) == nullptr) continue;
    ending_ = false;
    return Open(kind.Id);
  }
  if (QWidget* menu = Window(WindowId::MainMenu)) menu->close();
  QApplication::quit();
}

bool AppDesk::Activate(int task) {
  auto chart = ActivateChart(program_.Settings, program_.Lists, task);
  if (!chart) return Tell(chart.error()), false;
  if (words_.Tablet) chart->Tablet = *words_.Tablet;
  return BeginChart(*chart,
                    words_.Port.empty() ? SerialDevice(program_.Settings, FirstSerialPort) : words_.Port);
}

bool AppDesk::BeginChart(const ActivatedChart& chart, std::string device) {
  if (const auto refusal = CheckTraceable(chart.Task)) return Tell(*refusal), false;
  auto origin = OriginOfChart(program_.Lists, chart.Task, program_.User().Name);
  if (!origin) return Tell(origin.error()), false;

  Session session(TabletTypes()[static_cast<std::size_t>(chart.Tablet)].Extents, chart.ChartType, chart.Task);
  if (const auto refusal = CheckChartScales(session.Line.Scales())) return Tell(*refusal), false;
  program_.Active = std::make_shared<ActiveChart>(
      ActiveChart{std::move(session), *std::move(origin), chart.Tablet, std::move(device)});
  return true;
}

QWidget* AppDesk::MakeMainMenu() {
  return new frmInit(
      *this, dialogs_, program_.Settings, program_.Database.ConnectionText,
      {.Level = [this] { return program_.User().Level; },
       .DatabaseOpens = [this] { return program_.Database.Opens(); },
       .AskForSource = [this] { return frmMessageBox(dialogs_, program_.User().Level, shell_.get()).Ask(); },
       .SetSource = [this](ChartSourceKind source) { program_.EditorSource = source; },
       .Help = [this] { ShowHelp(); },
       .OpenText = OpenTextFile});
}

QWidget* AppDesk::MakeDigitizing() {
  if (!program_.Active) return nullptr;
  auto chart = program_.Active;
  auto* window = new frmHyetex(*this, *shell_, dialogs_, program_.Settings, chart->Session, chart->Tablet,
                               chart->Device);
  window->UseScan(chart->Scan);
  window->UseTrace(TraceOf(*chart));
  shell_->ShowChart(ChartName(chart->Session.Chart));
  // The window is gone some time after it has closed, perhaps when the next chart is there already.
  QObject::connect(window, &QObject::destroyed, [chart] {});
  return window;
}

QWidget* AppDesk::MakeSave() {
  frmHyetex* digitizing = Digitizing();
  if (digitizing == nullptr) return nullptr;
  return new frmSave(*this, dialogs_, program_.Settings, program_.Active->Session, program_.Active->Origin,
                     {.EnableDesk = [digitizing] { digitizing->EnableDesk(true); },
                      .NewFile = [digitizing] { digitizing->NewFile(); },
                      .Redigitize = [digitizing] { return digitizing->Redigitize(); },
                      .Comment = program_.Active->Comment,
                      .KeepComment = [chart = program_.Active](
                                         std::string comment) { chart->Comment = std::move(comment); }});
}

QWidget* AppDesk::MakeComment() {
  std::unique_ptr<CommentTarget> target = std::move(commentTarget_);
  if (frmHyetex* digitizing = Digitizing(); target == nullptr && digitizing != nullptr)
    target = std::make_unique<SessionComments>(digitizing->Machine());
  if (target == nullptr) return nullptr;
  return new frmComment(*this, dialogs_, program_.Settings, program_.Lists.Comments, std::move(target));
}

void AppDesk::OpenComment(std::unique_ptr<CommentTarget> target) {
  commentTarget_ = std::move(target);
  Open(WindowId::Comment);
  commentTarget_.reset();
}

QWidget* AppDesk::MakeLargeView() {
  return new frmLargeView(*this, dialogs_, program_.Settings, largeCaption_, largeText_);
}

void AppDesk::Tell(const std::string& text, BoxIcon icon) {
  dialogs_.MessageBox(ProgramTitle, text, BoxButtons::Ok, icon);
}

}  // namespace hyetex
