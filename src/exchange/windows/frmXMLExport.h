// One table at a time out to an XML file and in again, and a look at such files.
#pragma once

#include <QAbstractTableModel>
#include <QComboBox>
#include <QStatusBar>
#include <QTableView>
#include <functional>
#include <string>

#include "core/result.h"
#include "exchange/preview.h"
#include "exchange/windows/exchange_form.h"

namespace hyetex {

struct TableExchangeServices {
  std::function<bool()> MayImport;                               ///< tells the operator where not
  std::function<Result<void>(const std::string& path)> OpenXml;  ///< in the system's own application
};

/// The rows of a file, with their numbers in the first column.
class XmlTableModel : public QAbstractTableModel {
 public:
  void Show(XmlPreview preview);
  const XmlPreview& Shown() const { return preview_; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  XmlPreview preview_;
};

class frmXMLExport : public ExchangeForm {
  Q_OBJECT

 public:
  frmXMLExport(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database,
               TableExchangeServices services);

 private:
  void MakeLayout();
  void Export();
  void Import();
  void ViewInGrid();
  void OpenInBrowser();
  void TellCell(const QModelIndex& cell);
  void Tell(const std::string& text, bool isClean);

  TableExchangeServices services_;
  XmlTableModel rows_;
  QComboBox* cboTableName;
  QPushButton *cmdExport, *cmdImport, *cmdViewXML, *cmdViewBrowser, *cmdExit;
  QTableView* MSFlexGrid1;
  QStatusBar* StatusBar1;
};

}  // namespace hyetex
