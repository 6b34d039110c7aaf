// What the task window's grid shows: the charts that wait at one station, by their begin.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "core/records.h"
#include "staging/lists/station_tree.h"

namespace hyetex {

inline constexpr std::size_t TaskColumns = 4, FirstDepthColumn = 2;
/// The blanks keep room for the cells below.
inline constexpr std::array<std::string_view, TaskColumns> TaskHeadings{"Start Time   ", "End Time     ",
                                                                        "Eyed Depth   ", "Manual Depth "};

struct TaskRow {
  int Task = 0;  ///< index of the staged chart
  std::array<std::string, TaskColumns> Cells;
};

/// The charts with exactly this instrument code in ascending begin; charts that begin together keep their
/// order. A chart marked as extremely defective shows that in the place of its eyed depth.
std::vector<TaskRow> TaskRows(const std::vector<ChartRecord>& tasks, std::string_view instrumentCode);

/// The setting frmTasks-Station: a station's tree text from its first "-" on.
std::string StationSetting(std::string_view treeText);
/// The node that the setting means, by its position; -1 if there is none. A node whose text ends with it goes
/// before one that merely holds it ("RG1" is no "RG12"), and of several the last one counts.
int FindStationSetting(const std::vector<TreeNode>& tree, std::string_view setting);

}  // namespace hyetex
