// Cells of a grid that are marked, since something about them wants a look.
#pragma once

#include <QStyledItemDelegate>
#include <QVariant>

namespace hyetex {

/// What a model gives for a marked cell: black on a light red. `role` is Qt::BackgroundRole or
/// Qt::ForegroundRole.
QVariant MarkOf(int role);

/// Draws a marked cell in its mark's colour also where its row is selected.
class MarkedCells : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using QStyledItemDelegate::QStyledItemDelegate;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

}  // namespace hyetex
