// The load window: finished chart files go from a folder into the database, and out of it into a folder.
#pragma once

#include <QAbstractListModel>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QListView>
#include <QProgressBar>
#include <QPushButton>
#include <QTabBar>
#include <QTreeWidget>
#include <memory>
#include <string>
#include <vector>

#include "database/access/plot_db.h"
#include "database/store/file_list.h"
#include "platform/date_box.h"
#include "platform/dialogs.h"
#include "platform/folder_box.h"
#include "platform/form_window.h"
#include "platform/shown_progress.h"
#include "staging/lists/lists.h"

namespace hyetex {

/// The lines of lstFile, made when they come into view: there may be thousands.
class FileLines : public QAbstractListModel {
 public:
  FileLines(const std::vector<FileSummary>& files, const std::vector<StationRecord>& stations)
      : files_(files), stations_(stations) {}

  void Show(std::vector<std::size_t> rows);
  const FileSummary& FileAt(int row) const { return files_[rows_[static_cast<std::size_t>(row)]]; }

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  const std::vector<FileSummary>& files_;
  const std::vector<StationRecord>& stations_;
  std::vector<std::size_t> rows_;  // positions in the files
};

class frmLoad : public FormWindow {
  Q_OBJECT

 public:
  frmLoad(Desk& desk, Dialogs& dialogs, Settings& settings, ReferenceLists& lists, HyetexPlotDB& database,
          QWidget* parent = nullptr);

  /// Offers to add the instruments of the files that the list lacks.
  void ReadUnMappedStations();
  /// Refills the tree and the files after the list of stations has changed.
  void UpdateList();

 protected:
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void Closing() override;

 private:
  // frmLoad_layout.cpp
  void MakeControls();
  void MakeLayout();
  QWidget* MakeFolder();
  QWidget* MakeStations();
  QWidget* MakeFiles();
  QWidget* MakeButtons();

  bool Loads() const { return tspLR->currentIndex() == 0; }
  void ChangeTab();
  void ChangeFolder();
  void ShowFolder();
  void ShowTarget();

  /// The files of the folder or of the database, into the lists.
  void ReadFiles();
  void ShowWarnings();
  FileFilter Filter() const;
  void RefillLists();
  void RefillTree();
  void ShowFiles();
  void ShowSelected();
  std::vector<const FileSummary*> Selected() const;

  bool OpenDatabase();
  /// The bar and the button for a piece of work, until it goes.
  std::unique_ptr<ShownProgress> Shown();
  void Load();
  void Extract();

  Dialogs& dialogs_;
  ReferenceLists& lists_;
  HyetexPlotDB& database_;
  std::string source_, target_;
  FileList files_;
  FileLines lines_;
  bool wasRead_ = false;

  QTabBar* tspLR;
  QGroupBox* frmFolder;
  FolderBox* dirFolder_;
  QWidget* moving_;  ///< what is about moving files, shown on Load only
  QCheckBox *chkTarget, *chkDate;
  QPushButton *cmdSetTarget, *cmdAll, *cmdLoad, *cmdClose, *cmdStop;
  QLabel *labTarget, *labError, *labNotes, *labCount, *labDoing;
  QTreeWidget* tvwStations;
  QListView* lstFile;
  DateBox *dtpBegin, *dtpEnd;
  QProgressBar* prgFiles;
};

}  // namespace hyetex
