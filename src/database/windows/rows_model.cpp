#include "database/windows/rows_model.h"

#include "platform/qt_text.h"

namespace hyetex {

RowsModel::RowsModel(TableEditor& editor, QObject* parent) : QAbstractTableModel(parent), editor_(editor) {}

bool RowsModel::Refresh() {
  if (version_ == editor_.Rows().Version()) return false;
  beginResetModel();
  version_ = editor_.Rows().Version();
  rows_ = static_cast<int>(editor_.Rows().LoadedRows());
  endResetModel();
  return true;
}

int RowsModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows_; }

int RowsModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(editor_.Fields().size());
}

QVariant RowsModel::data(const QModelIndex& index, int role) const {
  const Field& field = editor_.Fields()[static_cast<std::size_t>(index.column())];
  const bool isNumber = field.Kind == FieldKind::Whole || field.Kind == FieldKind::Number;
  if (role == Qt::TextAlignmentRole)
    return QVariant::fromValue(Qt::AlignVCenter | (isNumber ? Qt::AlignRight : Qt::AlignLeft));
  if (role != Qt::DisplayRole || index.row() >= editor_.Rows().LoadedRows()) return {};
  return ToQt(
      ShownValue(field, editor_.Rows().LoadedValues(index.row())[static_cast<std::size_t>(index.column())]));
}

QVariant RowsModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return static_cast<qlonglong>(editor_.Rows().FirstLoaded() + section);
  return ToQt(editor_.Fields()[static_cast<std::size_t>(section)].Label);
}

}  // namespace hyetex
