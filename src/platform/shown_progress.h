// Progress on the screen: a bar, and a button that stops the work. Events are handled between the steps, so
// windows are drawn and the button can be pressed; all other input is held off until the work is over.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QProgressBar>
#include <QPushButton>
#include <functional>
#include <string>

#include "core/progress.h"

namespace hyetex {

class ShownProgress : public QObject, public Progress {
 public:
  /// Shows both for as long as this lives, with the pointer of busy windows. `tell` gets what each step is
  /// about, as UTF-8. Escape stops the work too. So does the frame's way out, by its button or the action of
  /// the role Quit: the button says so, and the frame closes once the routine that does the work has ended
  /// and all of its boxes are answered.
  ShownProgress(QProgressBar& bar, QPushButton& cancel, std::function<void(const std::string&)> tell = {});
  ~ShownProgress() override;

  bool Step(std::int64_t done, std::int64_t total, std::string_view what) override;
  /// Whether the operator wanted no more.
  bool IsCancelled() const { return cancelled_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void StopAndClose(QWidget& frame);

  QProgressBar& bar_;
  QPushButton& cancel_;
  const QString caption_;
  QObject* closing_ = nullptr;  ///< once the frame is to close behind it
  std::function<void(const std::string&)> tell_;
  QElapsedTimer sinceEvents_;
  bool cancelled_ = false;
};

}  // namespace hyetex
