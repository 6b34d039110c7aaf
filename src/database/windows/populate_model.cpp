#include "database/windows/populate_model.h"

#include <algorithm>

#include "database/conversion/populate_choice.h"
#include "platform/marked_cells.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr int SelectedDepthColumn = PopulateColumns - 1, GmtColumn = PopulateColumns + 2;

}  // namespace

void PopulateModel::SetRows(std::vector<PopulateRow> rows) {
  beginResetModel();
  rows_ = std::move(rows);
  hasBook_ = std::ranges::any_of(rows_, [](const PopulateRow& row) { return row.Written.has_value(); });
  endResetModel();
}

void PopulateModel::Toggle(int row) {
  ToggleSelectedDepth(rows_[static_cast<std::size_t>(row)]);
  const QModelIndex cell = index(row, SelectedDepthColumn);
  emit dataChanged(cell, cell);
}

int PopulateModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int PopulateModel::columnCount(const QModelIndex& parent) const {
  if (parent.isValid()) return 0;
  return PopulateColumns + (hasBook_ ? BookColumns : 0);
}

QVariant PopulateModel::data(const QModelIndex& index, int role) const {
  const PopulateRow& row = Row(index.row());
  const int column = index.column();
  const bool marked = column == 0 && row.Overlaps;
  switch (role) {
    case Qt::DisplayRole:
      return ToQt(CellText(row, column));
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(
          Qt::AlignVCenter |
          ((column >= 2 && column <= 4) || column == GmtColumn ? Qt::AlignRight : Qt::AlignLeft));
    case Qt::BackgroundRole:
    case Qt::ForegroundRole:
      return marked ? MarkOf(role) : QVariant();
    case Qt::ToolTipRole:
    case Qt::AccessibleDescriptionRole:
      return marked ? QVariant(tr("Starts before the chart before it has ended")) : QVariant();
    default:
      return {};
  }
}

QVariant PopulateModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return section + 1;
  return QString::fromLatin1(section < PopulateColumns
                                 ? PopulateTitles[static_cast<std::size_t>(section)]
                                 : BookTitles[static_cast<std::size_t>(section - PopulateColumns)]);
}

bool PopulateOrder::lessThan(const QModelIndex& left, const QModelIndex& right) const {
  return StandsBefore(model_.Row(left.row()), model_.Row(right.row()), left.column());
}

}  // namespace hyetex
