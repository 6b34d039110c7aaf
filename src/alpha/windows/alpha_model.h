// The grid of the alpha window: a model over the charts that are looked over, and a view with a block of rows
// that is selected apart from the active row.
#pragma once

#include <QAbstractTableModel>
#include <QStyledItemDelegate>
#include <QTableView>
#include <optional>

#include "alpha/alpha_review.h"

namespace hyetex {

class AlphaModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  using QAbstractTableModel::QAbstractTableModel;

  void Show(AlphaList list);
  /// Takes a row out of what is worked on, or back in.
  void Flip(int row);
  const AlphaReview& Review() const { return review_; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  AlphaReview review_;
};

/// A click, or an arrow key, makes a row active and selects nothing. A drag over rows, a click with Shift or
/// on a row's number, and the arrow keys with Shift select a block; Space and a double click flip the active
/// row.
class AlphaGrid : public QTableView {
  Q_OBJECT

 public:
  AlphaGrid();

  std::optional<RowBlock> Block() const;

 signals:
  void FlipWanted(int row);

 protected:
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                       const QEvent* event) const override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ExtendTo(const QModelIndex& to);

  int pressedRow_ = -1;
};

/// Excluded rows are seen as such in a selected block too, and the active row without one.
class AlphaCells : public QStyledItemDelegate {
  Q_OBJECT

 public:
  explicit AlphaCells(AlphaGrid* grid) : QStyledItemDelegate(grid), grid_(*grid) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

 private:
  const AlphaGrid& grid_;
};

}  // namespace hyetex
