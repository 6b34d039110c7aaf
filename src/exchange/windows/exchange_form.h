// What both windows of the exchange have: the working folder, the progress of long work, and what an operator
// is asked and told.
#pragma once

#include <QBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <memory>
#include <optional>
#include <string>

#include "database/access/plot_db.h"
#include "exchange/export_table.h"
#include "platform/dialogs.h"
#include "platform/form_window.h"
#include "platform/shown_progress.h"

namespace hyetex {

class ExchangeForm : public FormWindow {
  Q_OBJECT

 protected:
  ExchangeForm(const char* name, WindowId id, Desk& desk, Dialogs& dialogs, Settings& settings,
               HyetexPlotDB& database);

  QLayout* FolderRow();
  QLayout* ProgressRow();
  /// The folder that files are written to and looked for in first; it is remembered.
  std::string Folder() const;
  void SetFolder(const std::string& folder);
  /// A file that the operator chooses, whose folder becomes the working folder.
  std::optional<std::string> ChooseXml(const std::string& title);

  bool OpenDatabase(const std::string& source);
  /// The bar and the button for a piece of work, until it goes.
  std::unique_ptr<ShownProgress> Shown();
  /// Asks how values with marks are to stand in their files, where there are such values.
  std::optional<Markup> AskMarkup(const std::string& title, const std::vector<const ExportedTable*>& marked);
  void keyPressEvent(QKeyEvent* event) override;
  void Closing() override;

  Dialogs& dialogs_;
  HyetexPlotDB& database_;
  QLineEdit* txtFolder;
  QPushButton *cmdFolder, *cmdStop;
  QProgressBar* prbExchange;
  QLabel* labDoing;
};

}  // namespace hyetex
