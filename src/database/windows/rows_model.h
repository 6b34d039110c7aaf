// The rows around the current one, as a grid shows them.
#pragma once

#include <QAbstractTableModel>

#include "database/tables/table_editor.h"

namespace hyetex {

class RowsModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit RowsModel(TableEditor& editor, QObject* parent = nullptr);

  /// To be called after anything has been done with the rows; whether they are others now.
  bool Refresh();

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  TableEditor& editor_;
  std::int64_t version_ = -1;
  int rows_ = 0;
};

}  // namespace hyetex
