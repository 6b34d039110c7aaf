#include "rain/windows/sheet_view.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QSortFilterProxyModel>
#include <algorithm>
#include <utility>

#include "platform/controls.h"
#include "platform/marked_cells.h"
#include "platform/qt_text.h"

namespace hyetex {

void SheetModel::Show(Sheet sheet) {
  beginResetModel();
  sheet_ = std::move(sheet);
  endResetModel();
}

int SheetModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(sheet_.Rows.size());
}

int SheetModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(sheet_.Columns.size());
}

QVariant SheetModel::data(const QModelIndex& index, int role) const {
  const auto column = static_cast<std::size_t>(index.column());
  const SheetCell& cell = sheet_.Rows[static_cast<std::size_t>(index.row())][column];
  switch (role) {
    case Qt::DisplayRole:
      return ToQt(cell.Text);
    case SortRole:
      return cell.Number ? QVariant(*cell.Number) : QVariant(ToQt(cell.Text));
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(Qt::AlignVCenter |
                                 (sheet_.Columns[column].IsNumber ? Qt::AlignRight : Qt::AlignLeft));
    case Qt::BackgroundRole:
    case Qt::ForegroundRole:
      return cell.Alert ? MarkOf(role) : QVariant();
    case Qt::ToolTipRole:
      if (!cell.Alert) return ToQt(cell.Text);  // it may be wider than its column
      [[fallthrough]];
    case Qt::AccessibleDescriptionRole:
      return cell.Alert ? QVariant(tr("The charts and the manual gage differ by more than 5%")) : QVariant();
    default:
      return {};
  }
}

QVariant SheetModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return section + 1;
  return ToQt(sheet_.Columns[static_cast<std::size_t>(section)].Title);
}

SheetView::SheetView(const char* name, const QString& accessibleName)
    : model_(new SheetModel(this)), order_(new QSortFilterProxyModel(this)) {
  Named(this, name);
  setAccessibleName(accessibleName);
  order_->setSourceModel(model_);
  order_->setSortRole(SheetModel::SortRole);
  setModel(order_);
  setItemDelegate(new MarkedCells(this));
  setSelectionBehavior(SelectRows);
  setSelectionMode(SingleSelection);
  setEditTriggers(NoEditTriggers);
  setTabKeyNavigation(false);
  setWordWrap(false);
  verticalHeader()->hide();
  verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() * 3 / 2);
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);  // no row is measured by itself
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setStretchLastSection(true);
  setSortingEnabled(true);
  horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);  // as the sheet has them
  connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          [this] { emit CurrentChanged(Current()); });
  connect(this, &QTableView::doubleClicked, this, [this] {
    if (Current() >= 0) emit Chosen(Current());
  });
}

void SheetView::Show(Sheet sheet) {
  const int row = currentIndex().row();
  model_->Show(std::move(sheet));
  resizeColumnsToContents();
  if (order_->rowCount() > 0) selectRow(std::clamp(row, 0, order_->rowCount() - 1));
  emit CurrentChanged(Current());
}

int SheetView::Current() const { return order_->mapToSource(currentIndex()).row(); }

void SheetView::keyPressEvent(QKeyEvent* event) {
  if (IsReturn(*event) && Current() >= 0)
    emit Chosen(Current());
  else
    QTableView::keyPressEvent(event);
}

}  // namespace hyetex
