// The desk of the desktop program: makes each window when it is first asked for, puts it into the shell, and
// brings the Main Menu back when the last main window has closed.
#pragma once

#include <QMdiSubWindow>
#include <QPointer>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "app/program.h"
#include "core/desk.h"
#include "digitizing/windows/frmHyetex.h"
#include "digitizing/windows/mdiHyetex.h"
#include "platform/dialogs.h"
#include "staging/windows/frmLogin.h"

namespace hyetex {

class AppDesk : public Desk {
 public:
  AppDesk(StartWords words, Dialogs& dialogs);
  ~AppDesk() override;

  /// Of the shell; empty: as large as the screen.
  QSize ShellSize;

  /// Opens the login.
  void Start();

  bool Has(WindowId id) const override { return factories_.contains(id); }
  void Open(WindowId id) override;
  void Closed(WindowId id) override;
  void OpenLargeView(const std::string& caption, const std::string& text) override;
  void CloseLargeView(const std::string& caption) override;
  void LoggedIn() override;
  void EndProgram() override;

  // What the tests and the pictures look at; null while it is not open.
  frmLogin* Login() { return login_; }
  mdiHyetex* ShellWindow() { return shell_.get(); }
  QWidget* Window(WindowId id);

 private:
  using Factory = std::function<QWidget*()>;

  QWidget* MakeMainMenu();
  QWidget* MakeDigitizing();
  QWidget* MakeSave();
  QWidget* MakeComment();
  QWidget* MakeLargeView();

  void MakeShell();
  void EnsureDataFolder();
  /// Makes a staged chart the one to digitize; tells the operator why it cannot be.
  bool Activate(int task);
  void CloseShell();
  void ShowHelp();
  void Tell(const std::string& text, BoxIcon icon = BoxIcon::Warning);
  frmHyetex* Digitizing() { return qobject_cast<frmHyetex*>(Window(WindowId::Digitizing)); }

  const StartWords words_;
  Dialogs& dialogs_;
  Program program_;
  std::map<WindowId, Factory> factories_;
  std::string largeCaption_, largeText_;  // of the large view that is about to open
  bool ending_ = false;

  QPointer<frmLogin> login_;
  std::unique_ptr<mdiHyetex> shell_;
  std::map<WindowId, QPointer<QMdiSubWindow>> frames_;
};

}  // namespace hyetex
