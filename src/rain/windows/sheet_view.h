// A table of rain: a model over a sheet, and a view that sorts it and hands on the row that is chosen.
#pragma once

#include <QAbstractTableModel>
#include <QTableView>

#include "rain/rain_sheets.h"

class QSortFilterProxyModel;

namespace hyetex {

class SheetModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  using QAbstractTableModel::QAbstractTableModel;

  void Show(Sheet sheet);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  /// Of the role SortRole, what a cell is sorted by.
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  static constexpr int SortRole = Qt::UserRole;

 private:
  Sheet sheet_;
};

/// Rows keep the numbers that they have in the sheet, however they are sorted. Return and a double click
/// choose one.
class SheetView : public QTableView {
  Q_OBJECT

 public:
  SheetView(const char* name, const QString& accessibleName);

  void Show(Sheet sheet);
  /// Of the active row in the sheet; -1 for none.
  int Current() const;

 signals:
  void Chosen(int row);
  void CurrentChanged(int row);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  SheetModel* model_;
  QSortFilterProxyModel* order_;
};

}  // namespace hyetex
