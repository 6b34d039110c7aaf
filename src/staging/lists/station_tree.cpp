#include "staging/lists/station_tree.h"

#include <algorithm>

namespace hyetex {

std::vector<TreeNode> StationTree(const ReferenceLists& lists) {
  std::vector<TreeNode> tree;
  const auto add = [&](ListKind kind, std::size_t index, std::string key, std::string text) {
    tree.push_back(
        {kind, static_cast<std::int16_t>(index), std::move(key), std::move(text), static_cast<int>(kind)});
  };
  for (std::size_t c = 0; c < lists.Cores.size(); ++c) {
    const std::string& core = lists.Cores[c];
    add(ListKind::Core, c, core, core);
    for (std::size_t a = 0; a < lists.Agencies.size(); ++a) {
      const AgencyRecord& agency = lists.Agencies[a];
      if (agency.Core != static_cast<int>(c)) continue;
      const std::string agencyKey = core + "\\" + agency.Name;
      add(ListKind::Agency, a, agencyKey, agency.Name);
      for (std::size_t s = 0; s < lists.Stations.size(); ++s) {
        const StationRecord& station = lists.Stations[s];
        if (station.Agency != static_cast<int>(a)) continue;
        add(ListKind::Station, s, agencyKey + "\\" + station.Name + "-" + station.InstrumentCode,
            station.Name + " - " + station.InstrumentCode);
      }
    }
  }
  return tree;
}

const TreeNode* GetObjectFromIndex(const std::vector<TreeNode>& tree, int position) {
  return position >= 0 && position < static_cast<int>(tree.size()) ? &tree[static_cast<std::size_t>(position)]
                                                                   : nullptr;
}

int CurrentListIndex(const std::vector<TreeNode>& tree, ListKind kind, int index) {
  const auto node =
      std::find_if(tree.begin(), tree.end(), [&](const TreeNode& each) { return each.IsEntry(kind, index); });
  return node == tree.end() ? -1 : static_cast<int>(node - tree.begin());
}

}  // namespace hyetex
