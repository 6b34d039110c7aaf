// The desk of the desktop program: makes each window when it is first asked for, puts it into the shell, and
// brings the Main Menu back when the last main window has closed.
#pragma once

#include <QMdiSubWindow>
#include <QPointer>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "app/program.h"
#include "chartfiles/comment_target.h"
#include "core/desk.h"
#include "digitizing/windows/frmHyetex.h"
#include "digitizing/windows/mdiHyetex.h"
#include "editor/windows/frmEditor.h"
#include "platform/dialogs.h"
#include "rain/windows/frmRainfall.h"
#include "scan/windows/frmTraceScans.h"
#include "staging/tasks/activation.h"
#include "staging/windows/frmLogin.h"
#include "staging/windows/frmTaskDef.h"

namespace hyetex {

class LogonForm;

class AppDesk : public Desk {
 public:
  AppDesk(StartWords words, Dialogs& dialogs);
  ~AppDesk() override;

  /// The program that traces a box of scans; the command line's, beside this one.
  std::string TraceProgram;
  /// Of the shell; empty: as large as the screen.
  QSize ShellSize;

  /// Opens the login.
  void Start();

  bool Has(WindowId id) const override { return Find(id) != nullptr; }
  void Open(WindowId id) override;
  void Closed(WindowId id) override;
  void OpenLargeView(const std::string& caption, const std::string& text) override;
  void CloseLargeView(const std::string& caption) override;
  void LoggedIn() override;
  void EndProgram() override;
  bool IsEnding() const override { return ending_; }

  // What the tests and the picture maker look at; null while it is not open.
  frmLogin* Login() { return login_; }
  mdiHyetex* ShellWindow() { return shell_.get(); }
  QWidget* Window(WindowId id);

 private:
  /// What the desk knows of one window.
  struct WindowKind {
    WindowId Id;
    bool IsMain;                  ///< takes the Main Menu's place; the others stand beside it
    bool MayAsk;                  ///< before it closes, and stay open
    QWidget* (AppDesk::*Make)();  ///< null if it cannot open now
  };
  static const WindowKind Windows[];
  static const WindowKind* Find(WindowId id);

  // How each room's windows are made; what they need of one another is wired there.
  QWidget* MakeMainMenu();
  QWidget* MakeDigitizing();
  QWidget* MakeSave();
  QWidget* MakeComment();
  QWidget* MakeLargeView();
  QWidget* MakeTasks();  // task_windows.cpp
  QWidget* MakeTaskDef();
  QWidget* MakeTraceScans();  // trace_windows.cpp
  bool OpenTraced(const TraceQueue::Row& row, int chartType);
  EarlierTrace TraceOf(const ActiveChart& chart);
  QWidget* MakeLists();  // list_windows.cpp
  QWidget* MakeProgramDefaults();
  QWidget* MakeDefinitions();
  QWidget* MakeConnection();  // connection_windows.cpp
  QWidget* MakeLogon();
  QWidget* Announced(LogonForm* window, const char* before);
  QWidget* MakeCreateTable();
  QWidget* MakeLoad();    // load_windows.cpp
  QWidget* MakePrePop();  // populate_windows.cpp
  QWidget* MakePopulate();
  QWidget* MakeEditor();       // editor_windows.cpp
  QWidget* MakeAlpha();        // alpha_windows.cpp
  QWidget* MakeSelectTable();  // table_windows.cpp
  QWidget* MakeTableEditor();
  bool EditTable(std::size_t entry);
  QWidget* MakeRainfall();  // rain_windows.cpp
  void ShowRain(RainTarget target);
  void OpenStoredChart(const std::string& instrument, Date chartDate);
  void StageChart(const std::string& instrument, Date from, Date to);
  void ConvertCharts(const std::string& instrument);
  /// Whether the operator has the right; tells if not.
  bool HasRight(Right right);
  QWidget* MakeExchange();  // exchange_windows.cpp
  QWidget* MakeTableExchange();
  bool MayImport();

  // The menu entry that does without a window: synchronising.cpp.
  void AddSynchronising();
  void SynchroniseStations();
  /// Why that cannot be done now; empty if it can.
  std::string WhyNotSynchronise();

  /// The one that comes to the front when a window closes.
  QMdiSubWindow* FrameBefore(const QMdiSubWindow* closing) const;
  void MakeShell();
  void EnsureDataFolder();
  /// Makes a staged chart the one to digitize; tells the operator why it cannot be.
  bool Activate(int task);
  bool BeginChart(const ActivatedChart& chart, std::string device);
  /// Opens the comment window for something other than a digitizing session.
  void OpenComment(std::unique_ptr<CommentTarget> target);
  void ShowHelp();  // help.cpp
  std::string_view HelpPlaceOfFront() const;
  void Tell(const std::string& text, BoxIcon icon = BoxIcon::Warning);
  frmHyetex* Digitizing() { return qobject_cast<frmHyetex*>(Window(WindowId::Digitizing)); }

  const StartWords words_;
  Dialogs& dialogs_;
  Program program_;
  const std::unique_ptr<QObject> wheel_ = KeepWheelFromBoxes();
  std::string largeCaption_, largeText_;          // of the large view that is about to open
  std::unique_ptr<CommentTarget> commentTarget_;  // of the comment window that is about to open
  TaskJob taskJob_;                               // of the task definition that is about to open
  std::size_t editedTable_ = 0;                   // of the list of tables
  std::string traceTarget_;                       // of the window of scans that is about to open
  std::string populateInstrument_;                // of the populate window that is about to open
  std::optional<RainTarget> rainTarget_;          // of the window of rain that is about to open
  std::optional<EditorStart> editorStart_;        // of the editor that is about to open
  bool backToTasks_ = false;                      // once the digitizing window, or that of the scans, closes
  bool ending_ = false;

  QPointer<frmLogin> login_;
  std::unique_ptr<mdiHyetex> shell_;
  std::map<WindowId, QPointer<QMdiSubWindow>> frames_;
};

}  // namespace hyetex
