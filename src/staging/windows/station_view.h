// The tree of core parties, agencies and stations.
#pragma once

#include <QTreeWidget>
#include <vector>

#include "staging/lists/lists.h"
#include "staging/lists/station_tree.h"
#include "staging/manager/list_editing.h"

namespace hyetex {

class StationView : public QTreeWidget {
  Q_OBJECT

 public:
  explicit StationView(QWidget* parent = nullptr);

  /// Builds the tree anew; what was open stays open.
  void Show(const ReferenceLists& lists);
  /// Makes an entry's node visible and the current one.
  void Select(ListPlace place);
  /// The entry of the current node; null when there is none.
  const TreeNode* Current() const;

 private:
  std::vector<TreeNode> tree_;
  std::vector<QTreeWidgetItem*> items_;  // by the node's position
};

}  // namespace hyetex
