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
  /// about, as UTF-8. Escape stops the work too.
  ShownProgress(QProgressBar& bar, QPushButton& cancel, std::function<void(const std::string&)> tell = {});
  ~ShownProgress() override;

  bool Step(std::int64_t done, std::int64_t total, std::string_view what) override;
  /// Whether the operator wanted no more.
  bool IsCancelled() const { return cancelled_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QProgressBar& bar_;
  QPushButton& cancel_;
  std::function<void(const std::string&)> tell_;
  QElapsedTimer sinceEvents_;
  bool cancelled_ = false;
};

}  // namespace hyetex
