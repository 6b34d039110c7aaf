#include "exchange/windows/frmXMLExport.h"

#include <QHeaderView>
#include <QVBoxLayout>

#include "core/files.h"
#include "core/text.h"
#include "database/access/report_error.h"
#include "exchange/import_xml.h"
#include "exchange/table_list.h"
#include "platform/controls.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr const char* Title = "Export/Import Contents of Table as XML";

}  // namespace

void XmlTableModel::Show(XmlPreview preview) {
  beginResetModel();
  preview_ = std::move(preview);
  endResetModel();
}

int XmlTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(preview_.Cells.size());
}

int XmlTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() || preview_.Titles.empty() ? 0 : static_cast<int>(preview_.Titles.size()) + 1;
}

QVariant XmlTableModel::data(const QModelIndex& index, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (index.column() == 0) return index.row() + 1;
  const auto& cells = preview_.Cells[static_cast<std::size_t>(index.row())];
  const auto at = static_cast<std::size_t>(index.column() - 1);
  return at < cells.size() ? ToQt(OneLine(cells[at])) : QString();
}

QVariant XmlTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
  return section == 0 ? tr("Row") : ToQt(preview_.Titles[static_cast<std::size_t>(section - 1)]);
}

frmXMLExport::frmXMLExport(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database,
                           TableExchangeServices services)
    : ExchangeForm("frmXMLExport", WindowId::TableExchange, desk, dialogs, settings, database),
      services_(std::move(services)),
      cboTableName(Named(new QComboBox, "cboTableName")),
      cmdExport(Named(new QPushButton(tr("Export Table &as XML")), "cmdExport")),
      cmdImport(Named(new QPushButton(tr("&Import XML to Table")), "cmdImport")),
      cmdViewXML(Named(new QPushButton(tr("View XML in &Grid")), "cmdViewXML")),
      cmdViewBrowser(Named(new QPushButton(tr("View XML in Bro&wser")), "cmdViewBrowser")),
      cmdExit(Named(new QPushButton(tr("E&xit")), "cmdExit")),
      MSFlexGrid1(Named(new QTableView, "MSFlexGrid1")),
      StatusBar1(Named(new QStatusBar, "StatusBar1")) {
  setWindowTitle(tr(Title));
  MakeLayout();
  connect(cmdExport, &QPushButton::clicked, this, &frmXMLExport::Export);
  connect(cmdImport, &QPushButton::clicked, this, [this] {
    if (services_.MayImport()) Import();
  });
  connect(cmdViewXML, &QPushButton::clicked, this, &frmXMLExport::ViewInGrid);
  connect(cmdViewBrowser, &QPushButton::clicked, this, &frmXMLExport::OpenInBrowser);
  connect(cmdExit, &QPushButton::clicked, this, &QWidget::close);
  connect(MSFlexGrid1, &QTableView::clicked, this, &frmXMLExport::TellCell);
  connect(MSFlexGrid1->selectionModel(), &QItemSelectionModel::currentChanged, this, &frmXMLExport::TellCell);
}

void frmXMLExport::MakeLayout() {
  for (const char* table : SingleTables) cboTableName->addItem(QString::fromLatin1(table));
  cboTableName->setCurrentIndex(-1);
  MSFlexGrid1->setModel(&rows_);
  MSFlexGrid1->setTabKeyNavigation(false);
  MSFlexGrid1->verticalHeader()->hide();
  MSFlexGrid1->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  MSFlexGrid1->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  MSFlexGrid1->setMinimumSize(100 * fontMetrics().averageCharWidth(), 16 * fontMetrics().lineSpacing());
  StatusBar1->setSizeGripEnabled(false);

  auto* table = new QHBoxLayout;
  table->addWidget(LabelOf("Table &Name:", cboTableName));
  table->addWidget(cboTableName, 1);
  for (QPushButton* button : {cmdExport, cmdImport}) table->addWidget(button);
  auto* view = new QHBoxLayout;
  for (QPushButton* button : {cmdViewXML, cmdViewBrowser}) view->addWidget(button);
  view->addStretch();
  view->addWidget(cmdExit);
  auto* all = new QVBoxLayout(this);
  all->addLayout(table);
  all->addLayout(FolderRow());
  all->addWidget(MSFlexGrid1, 1);
  all->addLayout(ProgressRow());
  all->addLayout(view);
  all->addWidget(StatusBar1);
  LinkTabs({cboTableName, cmdExport, cmdImport, txtFolder, cmdFolder, MSFlexGrid1, cmdViewXML, cmdViewBrowser,
            cmdExit});
  SetKeyButtons(cmdExport, cmdExit);
  cboTableName->setFocus();
}

void frmXMLExport::Tell(const std::string& text, bool isClean) {
  dialogs_.MessageBox(Title, text, BoxButtons::Ok, isClean ? BoxIcon::Information : BoxIcon::Warning);
}

void frmXMLExport::Export() {
  const std::string table = FromQt(cboTableName->currentText());
  if (table.empty()) return Tell("you must select a table to export from the list", false);
  if (!OpenDatabase("ExportTable")) return;
  Markup markup = Markup::Escaped;
  const ExportResult result = [&] {
    const auto progress = Shown();
    const auto choose = [&](const std::vector<const ExportedTable*>& marked) {
      const auto chosen = AskMarkup(Title, marked);
      markup = chosen.value_or(markup);
      return chosen;
    };
    return ExportTable(database_, table, Folder(), choose, *progress);
  }();
  labDoing->clear();
  if (result.Cancelled) return Tell("The export was stopped. No file has changed.", true);
  if (!result.Failed.empty())
    return ReportError(dialogs_, settings_.Folder(), result.Failed.front().Error, "ExportTable");
  const ExportedTable& exported = result.Tables.front();
  const std::vector<std::string> notes = NotesOf(exported, markup);
  Tell(std::to_string(exported.Rows) + " records from " + table + " have been saved to " + table +
           ".xml\nin the folder " + Folder() + FirstLines(notes, notes.size()),
       notes.empty());
}

void frmXMLExport::Import() {
  const auto file = ChooseXml(Title);
  if (!file || !OpenDatabase("ImportXml")) return;
  database_.Close();
  const ImportResult result = [&] {
    const auto progress = Shown();
    return ImportFile(database_, Folder(), *file, *progress);
  }();
  labDoing->clear();
  if (result.Error) return ReportError(dialogs_, settings_.Folder(), *result.Error, "ImportXml");
  if (!result.Failed.empty()) return Tell(result.Failed + "\n\nNothing of the file was added.", false);
  const std::string rest = RefusedText(result);
  Tell(std::to_string(result.Added) + " Records imported from " + *file + " into current database." +
           (rest.empty() ? "" : "\n\n" + rest),
       result.IsClean());
}

void frmXMLExport::ViewInGrid() {
  const auto file = ChooseXml(Title);
  if (!file) return;
  auto preview = [&] {
    const auto progress = Shown();
    return PreviewXml(*file, *progress);
  }();
  labDoing->clear();
  if (!preview) return Tell(preview.error(), false);
  rows_.Show(*std::move(preview));
  const int letter = fontMetrics().averageCharWidth();
  for (int i = 0; i < rows_.columnCount(); ++i) {
    const int title = MSFlexGrid1->horizontalHeader()->sectionSizeHint(i);
    MSFlexGrid1->setColumnWidth(i, i == 0 ? 8 * letter : std::max(title, 18 * letter));
  }
  StatusBar1->showMessage(ToQt(std::string(BaseName(*file)) + ": " + CountText(rows_.Shown())));
}

void frmXMLExport::TellCell(const QModelIndex& cell) {
  if (!cell.isValid()) return;
  const QString title = rows_.headerData(cell.column(), Qt::Horizontal, Qt::DisplayRole).toString();
  StatusBar1->showMessage(title + " = " + cell.data().toString() + " : " + QString::number(cell.row() + 1));
}

void frmXMLExport::OpenInBrowser() {
  const auto file = ChooseXml(Title);
  if (file && !services_.OpenXml(*file)) Tell("Could not find file or URL " + *file, false);
}

}  // namespace hyetex
