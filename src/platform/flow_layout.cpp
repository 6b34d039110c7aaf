#include "platform/flow_layout.h"

#include <QWidget>
#include <algorithm>

namespace hyetex {
namespace {

constexpr int Across = 10, Down = 4;  // between controls, and between lines

}  // namespace

QSize FlowLayout::minimumSize() const {
  QSize least;
  for (const QLayoutItem* item : items_)
    if (!item->isEmpty()) least = least.expandedTo(item->minimumSize());
  return least;
}

void FlowLayout::setGeometry(const QRect& area) {
  QLayout::setGeometry(area);
  Place(area, true);
}

int FlowLayout::Place(const QRect& area, bool moves) const {
  int x = area.left(), y = area.top();
  QList<std::pair<QLayoutItem*, QRect>> line;
  int high = 0;
  const auto endLine = [&] {
    for (const auto& [item, place] : line)  // in the middle of the line
      if (moves) item->setGeometry(place.translated(0, (high - place.height()) / 2));
    y += high + (line.isEmpty() ? 0 : Down);
    x = area.left();
    high = 0;
    line.clear();
  };
  for (QLayoutItem* item : items_) {
    if (item->isEmpty()) continue;
    const QSize size = item->sizeHint();
    if (!line.isEmpty() && x + size.width() > area.right() + 1) endLine();
    line.append({item, QRect(QPoint(x, y), size)});
    x += size.width() + Across;
    high = std::max(high, size.height());
  }
  endLine();
  return std::max(0, y - Down - area.top());
}

}  // namespace hyetex
