// Core parties, their agencies and their stations as the one tree that operators pick from. A window shows
// its nodes in this order, so that a position in the tree and an entry of the lists lead to each other.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "staging/lists/lists.h"

namespace hyetex {

/// What an entry is that an operator points at.
enum class ListKind : std::int16_t {
  Core = 0,
  Agency = 1,
  Station = 2,
  User = 3,
  ChartType = 4,
  Task = 5,
  Comment = 6
};

struct TreeNode {
  ListKind Kind = ListKind::Core;
  std::int16_t Index = 0;  ///< in the list of its kind
  std::string Key;         ///< the names on the way to it; of a station with its instrument code
  std::string Text;        ///< a station's is its name, " - " and its instrument code
  int Depth = 0;           ///< 0 core, 1 agency, 2 station

  bool IsEntry(ListKind kind, int index) const { return Kind == kind && Index == index; }
};

/// Each core, behind it its agencies, behind each agency its stations. Agencies and stations whose index
/// points at nothing are not in it.
std::vector<TreeNode> StationTree(const ReferenceLists& lists);

/// The node at a position; null when there is none.
const TreeNode* GetObjectFromIndex(const std::vector<TreeNode>& tree, int position);
/// The position of an entry; -1 when it is not in the tree.
int CurrentListIndex(const std::vector<TreeNode>& tree, ListKind kind, int index);

}  // namespace hyetex
