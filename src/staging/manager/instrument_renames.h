// New instrument codes on their way into the staged charts. They go into the task list at once, before the
// lists themselves are saved, and come out again when the lists never are.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/result.h"

namespace hyetex {

class InstrumentRenames {
 public:
  using Follower = std::function<void(const std::string& oldCode, const std::string& newCode)>;

  /// `follow` hears of each code, for charts that are held in memory; it may be empty.
  InstrumentRenames(std::string programFolder, Follower follow);

  /// How many charts of the task list have the new code now. Fails with nothing changed.
  Result<int> Rename(const std::string& oldCode, const std::string& newCode);
  /// The lists are saved: the codes stay.
  void Keep();
  /// Puts the task list back as it was. Fails, with the new codes left in it, when something else has
  /// changed it since.
  Result<void> Undo();

 private:
  std::string path_, programFolder_;
  Follower follow_;
  std::vector<std::pair<std::string, std::string>> renamed_;
  std::optional<std::string> before_;  // the task list's bytes before the first new code
  std::string after_;
};

}  // namespace hyetex
