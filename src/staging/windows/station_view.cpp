#include "staging/windows/station_view.h"

#include <QHeaderView>
#include <QSignalBlocker>
#include <QStyle>
#include <array>
#include <set>

#include "platform/qt_text.h"

namespace hyetex {
namespace {

constexpr int PositionRole = Qt::UserRole;
constexpr std::array<QStyle::StandardPixmap, 3> Icons{QStyle::SP_DirIcon, QStyle::SP_DirOpenIcon,
                                                      QStyle::SP_FileIcon};

}  // namespace

StationView::StationView(QWidget* parent) : QTreeWidget(parent) {
  setHeaderHidden(true);
  setUniformRowHeights(true);
  // A long name or code is scrolled to, not cut.
  header()->setStretchLastSection(false);
  header()->setSectionResizeMode(QHeaderView::ResizeToContents);
}

void StationView::Show(const ReferenceLists& lists) {
  std::vector<TreeNode> tree = StationTree(lists);
  // A new name gives a node and all below it new keys, but leaves the places.
  const bool isSameShape = tree.size() == tree_.size();
  std::set<std::string> open;
  for (std::size_t i = 0; i < items_.size(); ++i)
    if (items_[i]->isExpanded()) open.insert(isSameShape ? tree[i].Key : tree_[i].Key);

  const QSignalBlocker quiet(this);
  clear();
  items_.clear();
  tree_ = std::move(tree);
  std::array<QTreeWidgetItem*, 3> at{};
  QList<QTreeWidgetItem*> roots;
  for (const TreeNode& node : tree_) {
    const auto depth = static_cast<std::size_t>(node.Depth);
    auto* item = new QTreeWidgetItem(QStringList(ToQt(node.Text)));
    item->setToolTip(0, item->text(0));
    item->setIcon(0, style()->standardIcon(Icons[depth]));
    item->setData(0, PositionRole, static_cast<int>(items_.size()));
    if (depth == 0)
      roots.append(item);
    else
      at[depth - 1]->addChild(item);
    at[depth] = item;
    items_.push_back(item);
  }
  addTopLevelItems(roots);
  for (std::size_t i = 0; i < items_.size(); ++i)
    if (open.contains(tree_[i].Key)) items_[i]->setExpanded(true);
}

void StationView::Select(ListPlace place) {
  const int position = CurrentListIndex(tree_, place.Kind, place.Index);
  if (position < 0) return;
  QTreeWidgetItem* item = items_[static_cast<std::size_t>(position)];
  setCurrentItem(item);
  scrollToItem(item);
}

const TreeNode* StationView::Current() const {
  const QTreeWidgetItem* item = currentItem();
  return item ? GetObjectFromIndex(tree_, item->data(0, PositionRole).toInt()) : nullptr;
}

}  // namespace hyetex
