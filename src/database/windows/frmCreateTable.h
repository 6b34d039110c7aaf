// Shows of which tables and columns the database is made, and writes that out as a script.
#pragma once

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/result.h"
#include "database/access/plot_db.h"
#include "database/access/structure.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"

namespace hyetex {

struct StructureServices {
  std::function<void()> Help;
  std::function<Result<void>(const std::string& path)> OpenText;
};

class frmCreateTable : public FormWindow {
  Q_OBJECT

 public:
  frmCreateTable(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database,
                 StructureServices services, QWidget* parent = nullptr);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void MakeLayout();
  /// Reads the catalog into the grid; nothing when it could not be read, or not to its end.
  std::optional<std::vector<TableStructure>> Show();
  void FillGrid(const std::vector<TableStructure>& tables);
  void Output();

  Dialogs& dialogs_;
  HyetexPlotDB& database_;
  StructureServices services_;
  bool shown_ = false;

  QLabel* lblCurrentDB;
  QTableWidget* fg;
  QProgressBar* prbStructure;
  QPushButton *cmdStop, *cmdOutput, *cmdCreate, *cmdDone;
};

}  // namespace hyetex
