// The editor: charts of a folder or of the database are looked at one after the other, corrected, saved,
// printed and summed up.
#pragma once

#include <QAbstractListModel>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QListView>
#include <QListWidget>
#include <QPageLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTimeEdit>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "editor/edit_record.h"
#include "editor/folder_charts.h"
#include "editor/windows/chart_view.h"
#include "platform/date_box.h"
#include "platform/dialogs.h"
#include "platform/folder_box.h"
#include "platform/form_window.h"
#include "platform/page_printing.h"
#include "platform/shown_progress.h"

namespace hyetex {

/// A stored chart.
struct EditorStart {
  std::string InstrumentCode;
  Date ChartDate = 0;
};

/// What the editor works on. The lists must outlive it.
struct EditorParts {
  const std::vector<StationRecord>& Stations;
  const std::vector<ChartTypeRecord>& ChartTypes;
  std::unique_ptr<ChartSource> Stored = {};  ///< the charts of the database; null for those of the folder
  std::optional<EditorStart> First = {};     ///< of the database: is opened first
  float MinimalLapse = 0;                    ///< minutes, of the series
  std::function<void()> OpenComment = {};    ///< asks for a comment on the chart that is open
};

/// The lines of lstAscii, made when they come into view: there may be thousands.
class ChartLines : public QAbstractListModel {
 public:
  void Show(std::vector<ChartFileInfo> files);
  const std::vector<ChartFileInfo>& Files() const { return files_; }
  /// The row of a file; -1 where it is not listed.
  int RowOf(const std::string& fileName) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  std::vector<ChartFileInfo> files_;
};

class frmEditor : public FormWindow {
  Q_OBJECT

 public:
  frmEditor(Desk& desk, Dialogs& dialogs, Settings& settings, EditorParts parts, QWidget* parent = nullptr);

  /// Lists the charts anew; the one that is open stays open.
  void UpdateList();
  void OpenFile(int index);
  void UpdateLabels();
  void UpdateFactor();
  void UpdateCommentsList();

  QSize sizeHint() const override;

  /// While the comment window is open.
  void EnableEditing(bool enabled) { setEnabled(enabled); }
  /// Says why the comment cannot be taken.
  std::optional<std::string> AddComment(std::string_view code, std::string_view text);

 protected:
  void showEvent(QShowEvent* event) override;
  bool MayLeave() override;
  void keyPressEvent(QKeyEvent* event) override;
  void Closing() override;

 private:
  // frmEditor_layout.cpp
  void MakeLayout();
  QWidget* MakeFiles();
  QWidget* MakeViews();
  QWidget* MakeToolBox();
  QWidget* MakeDetails();
  QLayout* MakeCaptions();
  QWidget* MakeBoxes();
  QPushButton* MakeButton(const char* name, const char* caption, void (frmEditor::*pressed)());
  void MakeKeys();
  void FillChoices();
  void Connect();

  // The list
  ChartFilter Filter() const;
  void ShowListing(ChartListing list);
  void ShowYears(const std::vector<int>& years);
  void SelectRow(int row);
  void SelectOpen();
  void GoTo(int step);
  void OpenCurrent();
  void ListFirst();
  void ChangeFolder();
  std::vector<ChartFileInfo> Selected() const;
  std::unique_ptr<ShownProgress> Shown();

  // The chart
  void Take(std::optional<OpenedChart> chart, const std::string& why = {});
  void ShowChart();
  void ShowLacks(const std::string& why);
  EditorEntries Entries() const;
  ReadingOptions Reading() const;
  void ReadAgain();
  bool IsChanged() const;
  /// Whether the chart may be left: nothing is unsaved, or the operator has decided on it.
  bool MayLeaveChart();
  bool SaveChart();
  void Save() { (void)SaveChart(); }
  void AskForComment();
  void DeleteComment();
  void DeleteFiles();
  void SumUp();

  // The views
  void ChangeTab();
  void ShowOptions();
  void ToggleZoom(bool zooms);
  QPageLayout::Orientation Orientation() const;
  PageToPrint Page() const;

  Dialogs& dialogs_;
  const std::vector<StationRecord>& stations_;
  const std::vector<ChartTypeRecord>& chartTypes_;
  const float minimalLapse_;
  const std::function<void()> openComment_;
  const std::optional<EditorStart> first_;
  FolderCharts folder_;
  const std::unique_ptr<ChartSource> stored_;
  ChartSource& source_;
  std::string firstFolder_;
  ChartLines lines_;
  std::optional<OpenedChart> open_;
  ChartRecord editRecord_;
  bool wasListed_ = false, isBusy_ = false, opens_ = false;

  FolderBox* dirFolder_;
  QComboBox *comStation, *comYear;
  QListView* lstAscii;
  QLabel *labCount, *labListNotes;
  QPushButton *cmdOpen, *cmdLargeView, *cmdDelete, *cmdStop;
  QProgressBar* prgFiles;

  QTabBar* tbsFileView;
  QWidget *frmViews_, *frmToolBox;
  ChartView* picPreview;
  QLabel* labReadOut;
  QPushButton *cmdPrint, *cmdSelect;
  QCheckBox *chkGrid, *chkAlpha;
  std::array<QRadioButton*, 2> optPage;  // portrait, landscape
  QLineEdit* txtFontSize;
  QComboBox *comChart, *comHyetograph;

  QGroupBox* frmDetails;
  std::array<QLabel*, 7> labCaption;
  std::array<QLabel*, 3> labFactor;
  QLabel *labDigitizer, *labTrace, *labLacks, *labUnsaved;
  QComboBox* comReliability;
  QLineEdit *txtRain, *txtManual;
  DateBox *dtpBeginDate, *dtpEndDate;
  QTimeEdit *dtpBeginTime, *dtpEndTime;
  QListWidget* lstComment;
  QPushButton *cmdAdd, *cmdDeleteComment, *cmdSave, *cmdExit;
};

}  // namespace hyetex
