#include "exchange/windows/frmCompress.h"

#include <QHeaderView>
#include <QVBoxLayout>

#include "core/files.h"
#include "core/text.h"
#include "database/access/report_error.h"
#include "exchange/table_list.h"
#include "platform/controls.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr const char* ExportTitle = "Database to xML Export";
constexpr const char* ImportTitle = "xML to Database Import";
constexpr const char* NothingAdded = "Nothing of it was added. ";

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "; ") + line;
  return text;
}

}  // namespace

frmCompress::frmCompress(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database,
                         ExchangeServices services)
    : ExchangeForm("frmCompress", WindowId::Exchange, desk, dialogs, settings, database),
      services_(std::move(services)),
      fgdResult(Named(new QTableWidget(0, 4), "fgdResult")),
      cmdCompress(Named(new QPushButton(tr("Export &Current Database to XML")), "cmdCompress")),
      cmdRead(Named(new QPushButton(tr("&Import XML to Current Database")), "cmdRead")),
      cmdAdvanced(Named(new QPushButton(tr("By &Table Export")), "cmdAdvanced")),
      cmdExit(Named(new QPushButton(tr("E&xit")), "cmdExit")),
      cmdHelp(Named(new QPushButton(tr("Hel&p")), "cmdHelp")) {
  setWindowTitle(tr("Export Database to file."));
  MakeLayout();
  connect(cmdCompress, &QPushButton::clicked, this, &frmCompress::ExportAll);
  connect(cmdRead, &QPushButton::clicked, this, [this] {
    if (services_.MayImport()) ImportAll();
  });
  connect(cmdAdvanced, &QPushButton::clicked, this, [this] { desk_.Open(WindowId::TableExchange); });
  connect(cmdHelp, &QPushButton::clicked, this, [this] { services_.Help(); });
  connect(cmdExit, &QPushButton::clicked, this, &QWidget::close);
}

void frmCompress::MakeLayout() {
  auto* about = Named(
      new QLabel(tr("The Export Utility will create an XML file for each table in the database.  These files "
                    "will have an .xml file extension (corresponding to table names). The look-up tables and "
                    "others are exported one by one with the By Table Export button.")),
      "labAbout");
  about->setWordWrap(true);
  fgdResult->setEditTriggers(QAbstractItemView::NoEditTriggers);
  fgdResult->setSelectionBehavior(QAbstractItemView::SelectRows);
  fgdResult->setTabKeyNavigation(false);
  fgdResult->verticalHeader()->hide();
  const int rowHeight = fontMetrics().height() + 6;
  fgdResult->verticalHeader()->setDefaultSectionSize(rowHeight);
  fgdResult->setWordWrap(false);
  fgdResult->setTextElideMode(Qt::ElideMiddle);  // a path's end tells more
  const int letter = fontMetrics().averageCharWidth();
  for (const auto& [column, letters] :
       {std::pair(0, 27), std::pair(1, 20), std::pair(2, 44), std::pair(3, 36)})
    fgdResult->setColumnWidth(column, letters * letter);
  fgdResult->horizontalHeader()->setStretchLastSection(true);
  fgdResult->setMinimumSize(130 * letter, (static_cast<int>(WholeDatabase.size()) + 2) * rowHeight);
  SetTitles("Records Exported", "Location of xML file", "Notes");

  auto* buttons = new QHBoxLayout;
  for (QPushButton* button : {cmdCompress, cmdRead, cmdAdvanced}) buttons->addWidget(button);
  buttons->addStretch();
  buttons->addWidget(cmdHelp);
  buttons->addWidget(cmdExit);
  auto* all = new QVBoxLayout(this);
  all->addWidget(about);
  all->addLayout(FolderRow());
  all->addWidget(fgdResult, 1);
  all->addLayout(ProgressRow());
  all->addLayout(buttons);
  LinkTabs({txtFolder, cmdFolder, fgdResult, cmdCompress, cmdRead, cmdAdvanced, cmdHelp, cmdExit});
  SetKeyButtons(cmdCompress, cmdExit);
  cmdCompress->setFocus();
}

void frmCompress::SetTitles(const char* count, const char* file, const char* notes) {
  fgdResult->setRowCount(0);
  const char* titles[] = {"Table Name", count, file, notes};
  for (int i = 0; i < fgdResult->columnCount(); ++i) {
    auto* title = new QTableWidgetItem(tr(titles[i]));
    title->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    fgdResult->setHorizontalHeaderItem(i, title);
  }
}

void frmCompress::AddRow(const std::string& table, std::int64_t count, const std::string& path,
                         const std::string& notes) {
  const int row = fgdResult->rowCount();
  fgdResult->insertRow(row);
  const QString cells[] = {ToQt(LowerAscii(table)), QString::number(count), ToQt(path), ToQt(OneLine(notes))};
  for (int i = 0; i < fgdResult->columnCount(); ++i) {
    auto* item = new QTableWidgetItem(cells[i]);
    item->setToolTip(cells[i]);
    fgdResult->setItem(row, i, item);
  }
  fgdResult->scrollToBottom();
}

void frmCompress::ExportAll() {
  const std::string folder = Folder();
  if (dialogs_.MessageBox(
          ExportTitle,
          "you will be able to export the current database to xML files.\nThese xML files will "
          "be saved in the following directory:\n" +
              folder,
          BoxButtons::OkCancel, BoxIcon::Information) != BoxAnswer::Ok ||
      !OpenDatabase("ExportAll"))
    return;
  SetTitles("Records Exported", "Location of xML file", "Notes");
  Markup markup = Markup::Escaped;
  const ExportResult result = [&] {
    const auto progress = Shown();
    const auto choose = [&](const std::vector<const ExportedTable*>& marked) {
      const auto chosen = AskMarkup(ExportTitle, marked);
      markup = chosen.value_or(markup);
      return chosen;
    };
    return ExportTables(database_, {WholeDatabase.begin(), WholeDatabase.end()}, folder, choose, *progress);
  }();
  labDoing->clear();
  for (const ExportedTable& table : result.Tables)
    AddRow(table.Table, table.Rows, table.Path, Joined(NotesOf(table, markup)));
  for (const ExportResult::Failure& failure : result.Failed)
    AddRow(failure.Table, 0, "", failure.Error.Description);
  if (result.Cancelled)
    dialogs_.MessageBox(ExportTitle, "The export was stopped. No file has changed.", BoxButtons::Ok,
                        BoxIcon::Information);
  else if (!result.Failed.empty())
    ReportError(dialogs_, settings_.Folder(), result.Failed.front().Error, "ExportAll");
}

void frmCompress::ImportAll() {
  if (dialogs_.MessageBox(ImportTitle,
                          "you will be able to select the location of the xML files for import. Selecting "
                          "any one file from the "
                          "directory will import all xML files that are in that directory. The database will "
                          "be populated with "
                          "any records that do not duplicate existing records.",
                          BoxButtons::OkCancel, BoxIcon::Information) != BoxAnswer::Ok ||
      !ChooseXml(ImportTitle) || !OpenDatabase("ImportAll"))
    return;
  database_.Close();
  SetTitles("Records Imported", "xML file imported", "Refused and Notes");
  std::size_t failed = 0, refused = 0;
  for (const char* table : WholeDatabase) {
    const std::string path = FindXmlFile(Folder(), table);
    if (path.empty()) continue;
    const ImportResult result = [&] {
      const auto progress = Shown();
      return ImportFile(database_, Folder(), path, *progress);
    }();
    AddRow(table, result.Added, path,
           result.Failed.empty() ? RefusedText(result) : NothingAdded + result.Failed);
    failed += result.Failed.empty() ? 0 : 1;
    refused += result.Refused > 0 ? 1 : 0;
    if (result.Error) ReportError(dialogs_, settings_.Folder(), *result.Error, "ImportXml");
    if (result.Cancelled || (result.Error && result.Error->Number == db_error::GeneralFailure)) break;
  }
  labDoing->clear();
  std::string told;
  if (fgdResult->rowCount() == 0)
    told = "There is no file of the database's tables in " + Folder() + ".";
  else if (failed > 0)
    told = "Nothing of " + std::to_string(failed) + (failed == 1 ? " file" : " files") +
           " was added. The last column tells why.";
  else if (refused > 0)
    told = std::to_string(refused) + (refused == 1 ? " file has" : " files have") +
           " records that were refused. The last column tells how many, and why the first of them.";
  if (!told.empty()) dialogs_.MessageBox(ImportTitle, told, BoxButtons::Ok, BoxIcon::Warning);
}

}  // namespace hyetex
