// What a folder holds, cut into the parts that a fault may leave old or new, but never torn.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace hyetex::test {

struct FolderState {
  /// The content of each part by its name: a file by its path below the folder; of a database each chart (its
  /// rows in all tables, with its mark), each other row, and each column.
  std::map<std::string, std::string> Parts;
  /// Files of a write that did not come to its end.
  std::vector<std::string> Temporaries;

  bool operator==(const FolderState& other) const { return Parts == other.Parts; }
};

/// Reads a folder. Databases (".sqlite") are read in a copy, so that a journal that stands beside one is
/// still there for the program that comes next.
FolderState ReadFolder(const std::string& folder, const std::string& scratch);

/// The names of the parts whose contents differ.
std::vector<std::string> Differences(const FolderState& one, const FolderState& other);

}  // namespace hyetex::test
