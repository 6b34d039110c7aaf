// A window of the shell with boxes and buttons. It remembers its place and size, has one button for Return
// and one for Escape, and tells the desk when it closes.
#pragma once

#include <QPushButton>
#include <QWidget>

#include "core/desk.h"
#include "core/settings.h"

namespace hyetex {

class FormWindow : public QWidget {
  Q_OBJECT

 public:
  /// `name` is the window's name: its objectName, and what its place is remembered under.
  FormWindow(const char* name, WindowId id, Desk& desk, Settings& settings, QWidget* parent = nullptr);

 protected:
  /// Return, where no other control wants it, presses `accept`, which may be null; Escape presses `cancel`.
  void SetKeyButtons(QPushButton* accept, QPushButton* cancel);
  /// Whether the window may close: where something was entered and not taken it asks. Not asked on the way
  /// out by Leave().
  virtual bool MayLeave() { return true; }
  /// Closes without a question: what was entered is taken, or given up by the button that says so.
  void Leave();
  /// Whether its size is remembered as its place is; not where something else decides it.
  virtual bool RemembersSize() const { return true; }
  /// Runs once, when the window closes, by whatever way, before the desk hears of it.
  virtual void Closing() {}

  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

  Desk& desk_;
  Settings& settings_;

 private:
  WindowId id_;
  QPushButton* accept_ = nullptr;
  QPushButton* cancel_ = nullptr;
  bool placed_ = false, leaves_ = false, closed_ = false;
};

}  // namespace hyetex
