// The staging area: a station's charts that wait for digitizing. From here they are defined, digitized, or,
// if too defective, turned into empty files. Meanwhile the tablet is looked for.
#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTableWidget>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "digitizing/tablets.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"
#include "platform/popup_menu.h"
#include "scan/chosen_scans.h"
#include "scan/scan_image.h"
#include "staging/tasks/activation.h"
#include "staging/tasks/staging_area.h"
#include "staging/tasks/task_rows.h"
#include "staging/windows/station_view.h"
#include "staging/windows/tablet_finder.h"

class QButtonGroup;

namespace hyetex {

/// What the task window needs of the rest of the program.
struct TaskServices {
  /// The device of a numbered serial port.
  std::function<std::string(int port)> Device;
  /// Opens the details of a chart for the operator; `store` takes what was entered, or says why it cannot.
  std::function<void(const ChartRecord& task, bool isNew, const std::string& station,
                     std::function<std::optional<std::string>(ChartRecord)> store)>
      Define;
  /// Opens the digitizing session; false if it cannot, which the operator has been told. Without a device the
  /// mouse is the tablet's cursor, on a scan or, where that is null, on an empty page.
  std::function<bool(ActivatedChart chart, const std::string& device, std::shared_ptr<const ScanImage> scan)>
      Digitize;
  /// Writes a chart's empty file into the folder and tells its path; nothing if `mayOverwrite` says no.
  std::function<Result<std::optional<std::string>>(
      const ActivatedChart& chart, const std::string& folder,
      const std::function<bool(const std::string& question)>& mayOverwrite)>
      WriteEmptyForm;
  ChosenScans* Scans;
  /// The name of a chart's file, where the folder has it; else empty.
  std::function<std::string(const ChartRecord& task, const std::string& folder)> ChartFile = {};
  /// Opens the window in which all scans are traced, their files for this folder; false if it cannot.
  std::function<bool(const std::string& target)> TraceScans = {};
};

class frmTasks : public FormWindow {
  Q_OBJECT

 public:
  /// `currentChart` is the default chart type, `tablet` stands instead of the settings' tablet type. All
  /// references must outlive the window.
  frmTasks(Desk& desk, Dialogs& dialogs, Settings& settings, const ReferenceLists& lists,
           StagingArea& staging, std::int16_t& currentChart, PopupMenu& popup, TaskServices services,
           std::optional<int> tablet = {}, QWidget* parent = nullptr);

  /// Reads the task list, and tells what was odd in it.
  void LoadTasks();
  /// Writes the task list; tells and returns false when it cannot be written.
  bool SaveTasks();
  /// Shows the charts of the selected station; the row stays, or moves to a chart's if one is named.
  void UpdateList(std::optional<int> task = {});
  void FillRow(int row);
  /// Deletes the selected chart.
  void DeleteCurrentTask();
  /// Whether a node of the tree is selected.
  bool TreeSelected() const { return tvwStations->Current() != nullptr; }

  /// Selects the default chart type, which has changed elsewhere.
  void ShowChartType();

  /// While a chart's details are open, this window waits behind them.
  void EnableStaging(bool enabled);

 protected:
  void closeEvent(QCloseEvent* event) override;
  void Closing() override;
  void changeEvent(QEvent* event) override;

 private:
  // The window
  void MakeLayout();
  QWidget* MakeStaging();
  QWidget* MakeTablet();
  QWidget* MakeChartTypes();
  QWidget* MakeTarget();
  QPushButton* MakeButton(const char* name, const char* caption, void (frmTasks::*run)());
  void SetTabOrder();
  void FillChartTypes();
  void RestoreSelection();
  void ChooseSource(int option);
  void ShowDetection();
  void ShowPopup(const QPoint& at);

  // The selection
  const TreeNode* SelectedStation() const;
  int SelectedRow() const;  ///< -1 when there is none
  std::optional<int> SelectedTask() const;
  void SelectRow(int row);

  // The commands
  void Add();
  void Change();
  void AskToDelete();
  void Activate();
  void Save();
  void BrowseTarget();
  /// Whether the target folder takes files, perhaps after another has been chosen.
  bool HasTarget();
  Result<ActivatedChart> Prepared(const ChartRecord& task) const;
  void Digitize(const ChartRecord& task);
  /// Saves; when that fails, asks.
  bool MayClose();
  void OpenDesk(ActivatedChart chart, const std::string& device, std::shared_ptr<const ScanImage> scan = {});
  void MakeEmptyFile(const ChartRecord& task);
  void Tell(std::string_view title, const std::string& text, BoxIcon icon = BoxIcon::Warning);
  void Tell(const std::string& text);  // under the window's own title

  // The scans: frmTasks_scans.cpp
  const ChartRecord* SelectedChart() const;
  void LookForScans();
  /// What is known of the selected chart's scan, and whether it can be traced.
  struct ScanText {
    std::string Name = {}, Facts = {};
    bool Ready = false;
  };
  ScanText ScanOfSelected() const;
  bool ShowScan();
  std::string ScanStart() const;
  void ChooseScan();
  std::optional<int> ChoosePage(int pages);
  void ChooseScanFolder();
  void TraceScans();
  /// Null where it cannot be opened, which the operator has been told.
  std::shared_ptr<const ScanImage> OpenScan(const ChartRecord& task);

  Dialogs& dialogs_;
  const ReferenceLists& lists_;
  StagingArea& staging_;
  std::int16_t& currentChart_;
  PopupMenu& popup_;
  TaskServices services_;
  TabletFinder finder_;
  std::vector<TaskRow> rows_;
  std::string targetFolder_;
  bool targetChosen_ = false;
  bool leaving_ = false;  // for a session: all is saved
  TraceSource source_;
  enum class Detection { Unknown, Found, Missing } detection_ = Detection::Unknown;

  StationView* tvwStations;
  QGroupBox* frmTask;
  QTableWidget* fgdTasks;
  QPushButton *cmdAdd, *cmdChange, *cmdDelete, *cmdActivate, *cmdSave, *cmdExit, *drvTarget, *cmdScan,
      *cmdScans, *cmdTrace;
  QButtonGroup *optCom, *optDig;
  QLabel* labDetect = nullptr;
  QListWidget* lstChartType;
  QLineEdit* dirTarget;
};

}  // namespace hyetex
