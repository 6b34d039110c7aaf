// The charts of the populate window's grid, and the order in which they are shown.
#pragma once

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>
#include <vector>

#include "database/conversion/populate_grid.h"

namespace hyetex {

class PopulateModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  using QAbstractTableModel::QAbstractTableModel;

  void SetRows(std::vector<PopulateRow> rows);
  const PopulateRow& Row(int row) const { return rows_[static_cast<std::size_t>(row)]; }
  /// Changes which depth of a chart counts.
  void Toggle(int row);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  std::vector<PopulateRow> rows_;
  bool hasBook_ = false;  // the further columns have something to tell
};

/// Sorts by what the cells mean, not by their texts.
class PopulateOrder : public QSortFilterProxyModel {
  Q_OBJECT

 public:
  PopulateOrder(const PopulateModel& model, QObject* parent) : QSortFilterProxyModel(parent), model_(model) {}

 protected:
  bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

 private:
  const PopulateModel& model_;
};

}  // namespace hyetex
