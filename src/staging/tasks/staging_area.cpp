#include "staging/tasks/staging_area.h"

#include <utility>

#include "core/files.h"
#include "core/program_files.h"

namespace hyetex {

std::vector<std::string> StagingArea::Load(const std::string& programFolder,
                                           const std::vector<StationRecord>& stations) {
  programFolder_ = programFolder;
  tasks_.clear();
  auto table = LoadTasks(programFolder, stations);
  keepOld_ = !table || !table->Notes.empty();
  if (!table) return {table.error()};
  tasks_ = std::move(table->Tasks);
  return std::move(table->Notes);
}

Result<void> StagingArea::Save() {
  const std::string path = JoinPath(programFolder_, TasksFileName);
  if (keepOld_ && FileExists(path))
    if (const auto copy = KeepCopy(path); !copy) return Failure(copy.error());
  keepOld_ = false;
  return SaveTasks(programFolder_, tasks_);
}

std::optional<std::string> StagingArea::Add(ChartRecord task) {
  if (auto refusal = CheckTaskRoom(tasks_)) return refusal;
  tasks_.push_back(std::move(task));
  return std::nullopt;
}

void StagingArea::Change(int index, ChartRecord task) {
  if (Holds(index)) tasks_[static_cast<std::size_t>(index)] = std::move(task);
}

void StagingArea::Delete(int index) {
  if (Holds(index)) tasks_.erase(tasks_.begin() + index);
}

}  // namespace hyetex
