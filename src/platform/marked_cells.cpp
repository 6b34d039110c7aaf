#include "platform/marked_cells.h"

#include <QColor>

namespace hyetex {

QVariant MarkOf(int role) {
  return role == Qt::BackgroundRole ? QColor(0xFF, 0x80, 0x80) : QColor(Qt::black);
}

void MarkedCells::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
  QStyledItemDelegate::initStyleOption(option, index);
  if (option->backgroundBrush.style() != Qt::NoBrush) option->state &= ~QStyle::State_Selected;
}

}  // namespace hyetex
