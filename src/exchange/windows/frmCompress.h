// The whole database out to a folder of XML files, and in again.
#pragma once

#include <QTableWidget>
#include <functional>
#include <string>
#include <vector>

#include "exchange/import_xml.h"
#include "exchange/windows/exchange_form.h"

namespace hyetex {

struct ExchangeServices {
  std::function<bool()> MayImport;  ///< tells the operator where not
  std::function<void()> Help;
};

class frmCompress : public ExchangeForm {
  Q_OBJECT

 public:
  frmCompress(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database,
              ExchangeServices services);

 private:
  void MakeLayout();
  void ExportAll();
  void ImportAll();
  void SetTitles(const char* count, const char* file, const char* notes);
  void AddRow(const std::string& table, std::int64_t count, const std::string& path,
              const std::string& notes);

  ExchangeServices services_;
  QTableWidget* fgdResult;
  QPushButton *cmdCompress, *cmdRead, *cmdAdvanced, *cmdExit, *cmdHelp;
};

}  // namespace hyetex
