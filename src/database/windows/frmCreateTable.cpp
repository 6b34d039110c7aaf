#include "database/windows/frmCreateTable.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>
#include <array>
#include <utility>

#include "core/files.h"
#include "database/access/report_error.h"
#include "platform/controls.h"
#include "platform/odbc/connection_text.h"
#include "platform/qt_text.h"
#include "platform/shown_progress.h"
#include "platform/units.h"

namespace hyetex {
namespace {

struct GridColumn {
  const char* Title;
  int Width;  // in the units of places
};
constexpr std::array<GridColumn, 4> Columns{
    {{"Table Name", 2500}, {"Field Name", 2500}, {"Column Type", 1500}, {"Column Size", 1500}}};

}  // namespace

frmCreateTable::frmCreateTable(Desk& desk, Dialogs& dialogs, Settings& settings, HyetexPlotDB& database,
                               StructureServices services, QWidget* parent)
    : FormWindow("frmCreateTable", WindowId::CreateTable, desk, settings, parent),
      dialogs_(dialogs),
      database_(database),
      services_(std::move(services)),
      lblCurrentDB(
          Named(new QLabel(tr("Current Database: ") + ToQt(ShownConnection(database.ConnectionText))),
                "lblCurrentDB")),
      fg(Named(new QTableWidget(0, static_cast<int>(Columns.size())), "fg")),
      prbStructure(Named(new QProgressBar, "prbStructure")),
      cmdStop(Named(new QPushButton(tr("&Stop")), "cmdStop")),
      cmdOutput(Named(new QPushButton(tr("&Output Structure to File")), "cmdOutput")),
      cmdCreate(Named(new QPushButton(tr("&Help Creating Tables")), "cmdCreate")),
      cmdDone(Named(new QPushButton(tr("&Return to Main Menu")), "cmdDone")) {
  setWindowTitle(tr("Create Table Structure"));
  MakeLayout();

  connect(cmdOutput, &QPushButton::clicked, this, &frmCreateTable::Output);
  connect(cmdCreate, &QPushButton::clicked, this, [this] { services_.Help(); });
  connect(cmdDone, &QPushButton::clicked, this, &QWidget::close);
}

void frmCreateTable::MakeLayout() {
  lblCurrentDB->setTextFormat(Qt::PlainText);
  lblCurrentDB->setWordWrap(true);
  fg->setEditTriggers(QAbstractItemView::NoEditTriggers);
  fg->setSelectionBehavior(QAbstractItemView::SelectRows);
  fg->setTabKeyNavigation(false);
  int width = 0;
  for (int i = 0; i < fg->columnCount(); ++i) {
    const GridColumn& column = Columns[static_cast<std::size_t>(i)];
    auto* title = new QTableWidgetItem(tr(column.Title));
    title->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    fg->setHorizontalHeaderItem(i, title);
    // The design's own font has letters of 6 pixels.
    const int wide = column.Width / UnitsPerPixel * fontMetrics().averageCharWidth() / 6;
    fg->setColumnWidth(i, wide);
    width += wide;
  }
  fg->horizontalHeader()->setStretchLastSection(true);
  fg->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  fg->verticalHeader()->setDefaultAlignment(Qt::AlignCenter);
  fg->setMinimumSize(width + 8 * fontMetrics().averageCharWidth(), 24 * fontMetrics().lineSpacing());

  prbStructure->hide();
  cmdStop->hide();
  auto* progress = new QHBoxLayout;
  progress->addWidget(prbStructure, 1);
  progress->addWidget(cmdStop);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdOutput);
  buttons->addWidget(cmdCreate);
  buttons->addStretch();
  buttons->addWidget(cmdDone);
  auto* all = new QVBoxLayout(this);
  all->addWidget(lblCurrentDB);
  all->addWidget(fg, 1);
  all->addLayout(progress);
  all->addLayout(buttons);
  SetKeyButtons(cmdDone, cmdDone);
}

void frmCreateTable::showEvent(QShowEvent* event) {
  FormWindow::showEvent(event);
  // Once the window stands there.
  if (!std::exchange(shown_, true))
    QMetaObject::invokeMethod(this, &frmCreateTable::Show, Qt::QueuedConnection);
}

std::optional<std::vector<TableStructure>> frmCreateTable::Show() {
  const std::string source = "ShowStructure";
  if (const auto opened = database_.OpenDatabase(); !opened) {
    ReportError(dialogs_, settings_.Folder(), opened.error(), source);
    return std::nullopt;
  }
  bool stopped = false;
  const auto tables = [&] {
    ShownProgress progress(*prbStructure, *cmdStop);
    connect(cmdStop, &QPushButton::clicked, &progress, [&] { stopped = true; });
    return ShowStructure(database_.DatabaseConnection, progress);
  }();
  database_.Close();
  if (!tables) {
    ReportError(dialogs_, settings_.Folder(), tables.error(), source);
    return std::nullopt;
  }
  FillGrid(*tables);
  if (stopped) return std::nullopt;
  return *tables;
}

void frmCreateTable::FillGrid(const std::vector<TableStructure>& tables) {
  int rows = 0;
  for (const TableStructure& table : tables) rows += static_cast<int>(table.Columns.size());
  fg->setRowCount(rows);
  int row = 0;
  for (const TableStructure& table : tables)
    for (const CatalogColumn& column : table.Columns) {
      fg->setItem(row, 0, new QTableWidgetItem(ToQt(table.Name)));
      fg->setItem(row, 1, new QTableWidgetItem(ToQt(column.Name)));
      fg->setItem(row, 2, new QTableWidgetItem(QString::number(static_cast<int>(column.Type))));
      fg->setItem(row, 3, new QTableWidgetItem(QString::number(column.Size)));
      ++row;
    }
}

void frmCreateTable::Output() {
  const auto tables = Show();
  if (!tables) return;
  const std::string path = JoinPath(settings_.Folder(), ScriptFileName);
  const std::string script = StructureScript(*tables);
  if (const auto written = WriteWholeFile(path, script); !written)
    dialogs_.MessageBox(FromQt(windowTitle()), written.error(), BoxButtons::Ok, BoxIcon::Warning);
  else if (!services_.OpenText(path))
    desk_.OpenLargeView(path, script);  // the system has no editor
}

}  // namespace hyetex
