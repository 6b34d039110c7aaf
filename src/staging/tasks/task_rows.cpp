#include "staging/tasks/task_rows.h"

#include <algorithm>

#include "core/comments.h"
#include "core/dates.h"
#include "core/numbers.h"

namespace hyetex {
namespace {

std::string EyedCell(const ChartRecord& task) {
  if (HasCode(task.GeneralComment, CodeDefective)) return "Defective";
  return task.EyedDepth == NoDepth ? "   " : ShortText(task.EyedDepth);
}

std::string ManualCell(const ChartRecord& task) {
  return task.ManualDepth == NoDepth ? "unknown" : ShortText(task.ManualDepth);
}

}  // namespace

std::vector<TaskRow> TaskRows(const std::vector<ChartRecord>& tasks, std::string_view instrumentCode) {
  std::vector<TaskRow> rows;
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    const ChartRecord& task = tasks[i];
    if (task.InstrumentCode != instrumentCode) continue;
    rows.push_back(
        {static_cast<int>(i),
         {GeneralDateText(task.StartTime), GeneralDateText(task.EndTime), EyedCell(task), ManualCell(task)}});
  }
  std::stable_sort(rows.begin(), rows.end(), [&](const TaskRow& a, const TaskRow& b) {
    return tasks[static_cast<std::size_t>(a.Task)].StartTime <
           tasks[static_cast<std::size_t>(b.Task)].StartTime;
  });
  return rows;
}

std::string StationSetting(std::string_view treeText) {
  const std::size_t dash = treeText.find('-');
  return std::string(dash == std::string_view::npos ? std::string_view() : treeText.substr(dash));
}

int FindStationSetting(const std::vector<TreeNode>& tree, std::string_view setting) {
  if (setting.empty()) return -1;
  int holds = -1, ends = -1;
  for (std::size_t i = 0; i < tree.size(); ++i) {
    if (tree[i].Text.find(setting) != std::string::npos) holds = static_cast<int>(i);
    if (tree[i].Text.ends_with(setting)) ends = static_cast<int>(i);
  }
  return ends >= 0 ? ends : holds;
}

}  // namespace hyetex
