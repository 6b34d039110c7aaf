#include "alpha/windows/alpha_model.h"

#include <QFont>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <utility>

#include "platform/qt_surface.h"
#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr int SelectedColumn = 2;

}  // namespace

void AlphaModel::Show(AlphaList list) {
  beginResetModel();
  review_.Show(std::move(list));
  endResetModel();
}

void AlphaModel::Flip(int row) {
  review_.Flip(row);
  emit dataChanged(index(row, 0), index(row, columnCount() - 1));
}

int AlphaModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : review_.RowCount();
}

int AlphaModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : review_.ColumnCount();
}

QVariant AlphaModel::data(const QModelIndex& index, int role) const {
  const bool excluded = review_.IsExcluded(index.row());
  switch (role) {
    case Qt::DisplayRole:
      return ToQt(review_.Cell(index.row(), index.column()));
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(Qt::AlignVCenter |
                                 (index.column() >= SelectedColumn ? Qt::AlignRight : Qt::AlignLeft));
    case Qt::BackgroundRole:
      return excluded ? QVariant(ToQt(ExcludedColour)) : QVariant();
    case Qt::ForegroundRole:
      return excluded ? QVariant(QColor(Qt::white)) : QVariant();
    case Qt::FontRole: {
      QFont font;
      font.setStrikeOut(true);  // grey alone does not tell everybody
      return excluded ? QVariant(font) : QVariant();
    }
    case Qt::ToolTipRole:
    case Qt::AccessibleDescriptionRole:
      return excluded ? QVariant(tr("Excluded")) : QVariant();
    default:
      return {};
  }
}

QVariant AlphaModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return section + 1;
  return ToQt(AlphaReview::Title(section));
}

AlphaGrid::AlphaGrid() {
  setSelectionBehavior(SelectRows);
  setSelectionMode(ContiguousSelection);
  setEditTriggers(NoEditTriggers);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setItemDelegate(new AlphaCells(this));
}

std::optional<RowBlock> AlphaGrid::Block() const {
  if (selectionModel() == nullptr || !selectionModel()->hasSelection()) return std::nullopt;
  RowBlock block{model()->rowCount(), -1};
  for (const QItemSelectionRange& range : selectionModel()->selection()) {
    block.First = std::min(block.First, range.top());
    block.Last = std::max(block.Last, range.bottom());
  }
  return block;
}

QItemSelectionModel::SelectionFlags AlphaGrid::selectionCommand(const QModelIndex& index,
                                                                const QEvent* event) const {
  using Model = QItemSelectionModel;
  if (event == nullptr) return QTableView::selectionCommand(index, event);  // a row's number
  switch (event->type()) {
    case QEvent::MouseMove:
      // Within a row it is a click with an unsteady hand.
      return index.row() == pressedRow_ && !selectionModel()->hasSelection()
                 ? Model::NoUpdate
                 : Model::ClearAndSelect | Model::Rows;
    case QEvent::MouseButtonPress:
    case QEvent::KeyPress:
      return Model::Clear;
    default:
      return Model::NoUpdate;
  }
}

// The block's other end stays; without a block the active row is one end.
void AlphaGrid::ExtendTo(const QModelIndex& to) {
  if (!to.isValid() || !currentIndex().isValid()) return;
  const auto block = Block();
  int end = currentIndex().row();
  if (block) end = end == block->First ? block->Last : block->First;
  const auto [first, last] = std::minmax({end, to.row()});
  selectionModel()->setCurrentIndex(to, QItemSelectionModel::NoUpdate);
  selectionModel()->select({model()->index(first, 0), model()->index(last, model()->columnCount() - 1)},
                           QItemSelectionModel::ClearAndSelect);
}

void AlphaGrid::mousePressEvent(QMouseEvent* event) {
  const QModelIndex at = indexAt(event->position().toPoint());
  pressedRow_ = at.row();
  if (event->button() == Qt::LeftButton && event->modifiers() & Qt::ShiftModifier)
    ExtendTo(at);
  else
    QTableView::mousePressEvent(event);
}

// A click makes the selected alpha of its row the current cell.
void AlphaGrid::mouseReleaseEvent(QMouseEvent* event) {
  QTableView::mouseReleaseEvent(event);
  if (currentIndex().isValid())
    selectionModel()->setCurrentIndex(currentIndex().siblingAtColumn(SelectedColumn),
                                      QItemSelectionModel::NoUpdate);
}

void AlphaGrid::mouseDoubleClickEvent(QMouseEvent* event) {
  if (const QModelIndex at = indexAt(event->position().toPoint());
      at.isValid() && event->button() == Qt::LeftButton)
    emit FlipWanted(at.row());
}

void AlphaGrid::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Space && currentIndex().isValid()) {
    emit FlipWanted(currentIndex().row());
    return;
  }
  // All rows are worked on without a block.
  if (event->matches(QKeySequence::SelectAll)) return clearSelection();
  constexpr std::pair<int, CursorAction> steps[] = {
      {Qt::Key_Up, MoveUp},         {Qt::Key_Down, MoveDown},
      {Qt::Key_PageUp, MovePageUp}, {Qt::Key_PageDown, MovePageDown},
      {Qt::Key_Home, MoveHome},     {Qt::Key_End, MoveEnd}};
  if (event->modifiers() & Qt::ShiftModifier)
    for (const auto& [key, step] : steps)
      if (event->key() == key) return ExtendTo(moveCursor(step, event->modifiers() & Qt::ControlModifier));
  QTableView::keyPressEvent(event);
}

void AlphaCells::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
  QStyledItemDelegate::initStyleOption(option, index);
  if (option->backgroundBrush.style() == Qt::NoBrush || !(option->state & QStyle::State_Selected)) return;
  const QColor grey = option->backgroundBrush.color();
  const QColor chosen = option->palette.color(QPalette::Highlight);
  option->palette.setColor(QPalette::Highlight,
                           QColor((grey.red() + chosen.red()) / 2, (grey.green() + chosen.green()) / 2,
                                  (grey.blue() + chosen.blue()) / 2));
}

void AlphaCells::paint(QPainter* painter, const QStyleOptionViewItem& option,
                       const QModelIndex& index) const {
  QStyledItemDelegate::paint(painter, option, index);
  if (index.row() != grid_.currentIndex().row()) return;
  painter->save();
  painter->setPen(QPen(option.palette.color(QPalette::Highlight), 2));
  const QRect cell = option.rect;
  painter->drawLine(cell.left(), cell.top() + 1, cell.right() + 1, cell.top() + 1);
  painter->drawLine(cell.left(), cell.bottom(), cell.right() + 1, cell.bottom());
  painter->restore();
}

}  // namespace hyetex
