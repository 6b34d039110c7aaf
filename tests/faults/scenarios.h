// The commands that write, each on a small folder that is prepared for it.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace hyetex::test {

struct Scenario {
  std::string Name;
  /// Fills an empty folder. It will always stand at this path.
  std::function<void(const std::string& folder)> Prepare;
  /// The program and its words.
  std::function<std::vector<std::string>(const std::string& folder)> Command;
  /// Once its work is there, or half of a journal, it refuses to do it again, and changes nothing.
  bool Refuses = false;
  /// A file that grows line by line, so that a part of its lines is no torn file.
  std::string Grows = {};
};

std::vector<Scenario> AllScenarios();

/// Does in this process what no command of the command line does: "tasks", "lists", ... on the folder.
int DoTask(const std::string& name, const std::string& folder);

}  // namespace hyetex::test
