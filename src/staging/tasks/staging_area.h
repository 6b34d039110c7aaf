// The staged charts of a program folder while the task window works on them. They come from its task list and
// go back there as a whole.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/records.h"
#include "core/result.h"
#include "staging/tasks/tasks.h"

namespace hyetex {

class StagingArea {
 public:
  const std::vector<ChartRecord>& Tasks() const { return tasks_; }

  /// Reads the task list. A list that cannot be read gives no charts. What the operator must know of it, a
  /// line each; nothing if all was in order.
  std::vector<std::string> Load(const std::string& programFolder, const std::vector<StationRecord>& stations);

  /// Rewrites the task list. Where something in it was not understood, a copy of the old one is kept first,
  /// once; without one nothing is written over it.
  Result<void> Save();

  /// Puts a chart behind the others. Says why it cannot.
  std::optional<std::string> Add(ChartRecord task);
  /// `index` is a chart's; the later ones move up.
  void Change(int index, ChartRecord task);
  void Delete(int index);

  bool Holds(int index) const { return index >= 0 && index < static_cast<int>(tasks_.size()); }

 private:
  std::string programFolder_;
  std::vector<ChartRecord> tasks_;
  bool keepOld_ = false;  // the file holds what `tasks_` does not
};

}  // namespace hyetex
