#include "database/windows/frmSelectTable.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <utility>

#include "database/tables/edited_tables.h"
#include "platform/controls.h"
#include "platform/qt_text.h"

namespace hyetex {

frmSelectTable::frmSelectTable(Desk& desk, Dialogs& /*dialogs*/, Settings& settings, std::size_t chosen,
                               std::function<bool(std::size_t entry)> edit, QWidget* parent)
    : FormWindow("frmSelectTable", WindowId::SelectTable, desk, settings, parent),
      edit_(std::move(edit)),
      cboTables(Named(new QComboBox, "cboTables")),
      cmdEdit(Named(new QPushButton(tr("Edit &Table")), "cmdEdit")),
      cmdDone(Named(new QPushButton(tr("&Return to Main Menu")), "cmdDone")) {
  setWindowTitle(tr("Select Table to Edit"));
  for (const EditedTable& table : EditedTables()) cboTables->addItem(ToQt(table.Entry));
  cboTables->setCurrentIndex(static_cast<int>(chosen));
  cboTables->setMaxVisibleItems(cboTables->count());

  auto* words =
      new QLabel(tr("Select a table and click the Edit Table button to bring up a data editor. The data "
                    "editor will allow you to Add, Edit, Modify, and Delete individual records."));
  words->setWordWrap(true);
  words->setMinimumWidth(fontMetrics().averageCharWidth() * 56);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cmdEdit);
  buttons->addWidget(cmdDone);
  auto* all = new QVBoxLayout(this);
  all->addWidget(words);
  all->addWidget(LabelOf("Ta&bles:", cboTables));
  all->addWidget(cboTables);
  all->addStretch();
  all->addSpacing(fontMetrics().lineSpacing());
  all->addLayout(buttons);
  SetKeyButtons(cmdEdit, cmdDone);
  cboTables->setFocus();

  // The editor takes this window's place, and brings it back.
  connect(cmdEdit, &QPushButton::clicked, this, [this] {
    if (edit_(static_cast<std::size_t>(cboTables->currentIndex()))) close();
  });
  connect(cmdDone, &QPushButton::clicked, this, &QWidget::close);
}

}  // namespace hyetex
