// A box of scans: all staged charts with what has become of their scans, traced one after the other while the
// operator goes through those that are to be reviewed. What is traced stands; the rest waits for the next
// time.
#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTableWidget>
#include <functional>
#include <string>

#include "platform/dialogs.h"
#include "platform/form_window.h"
#include "scan/box/trace_queue.h"
#include "scan/windows/trace_runner.h"

namespace hyetex {

/// What the window needs of the rest of the program.
struct TraceServices {
  std::string Program;  ///< the command line's, which traces one chart
  std::string User;     ///< who answers for what is written
  int ChartType = 0;
  std::string ChartTypeName;
  /// Opens a chart at the desk, with what was traced of it; false if it cannot, which the operator has been
  /// told.
  std::function<bool(const TraceQueue::Row& row)> Open;
};

class frmTraceScans : public FormWindow {
  Q_OBJECT

 public:
  /// All references must outlive the window.
  frmTraceScans(Desk& desk, Dialogs& dialogs, Settings& settings, TraceQueue queue, TraceServices services,
                QWidget* parent = nullptr);

  /// The chart that was opened at the desk is closed: the next one to review is selected if it was saved.
  void ComeBack();
  QSize sizeHint() const override;
  const TraceQueue& Queue() const { return queue_; }

 protected:
  bool MayLeave() override;
  void Closing() override;

 private:
  void MakeLayout();
  QPushButton* MakeButton(const char* name, const char* caption, void (frmTraceScans::*run)());
  void FillRow(std::size_t row);
  void ShowRows();
  void FitColumns();
  void ShowState();
  void ShowWords();
  int SelectedRow() const;  ///< -1 when there is none
  void Select(std::optional<std::size_t> row);

  void Start();
  void Cancel();
  void Open();
  void TraceAgain();
  void Fill();
  void Ended(std::size_t row, const TracedChart& traced);
  bool IsRunning() const { return running_; }

  Dialogs& dialogs_;
  TraceQueue queue_;
  const TraceServices services_;
  TraceRunner runner_{this};
  QElapsedTimer since_;
  bool running_ = false;
  int done_ = 0;     // of the run
  int opened_ = -1;  // the row of the chart that is at the desk

  QLabel *labFacts, *labProgress;
  QTableWidget* fgdScans;
  QPlainTextEdit* txtWords;
  QProgressBar* prbTrace;
  QPushButton *cmdStart, *cmdCancel, *cmdAgain, *cmdOpen, *cmdExit;
};

}  // namespace hyetex
