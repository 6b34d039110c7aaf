// The project's pages as the tests read them: fenced blocks, and names in backticks.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "paths.h"
#include "support.h"

namespace hyetex::test {

inline std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// What stands between two fences.
struct Block {
  std::string Kind;  ///< the words behind the first fence
  int Line = 0;      ///< of the first fence
  std::vector<std::string> Lines;
};

struct Document {
  std::string Name;  ///< from the project's folder
  std::vector<Block> Blocks;
  std::string Prose;  ///< all else

  explicit Document(std::string name) : Name(std::move(name)) {
    int number = 0;
    bool inside = false;
    for (const std::string& line : LinesOf(ReadFile(Sources() + "/" + Name))) {
      ++number;
      if (line.starts_with("```")) {
        inside = !inside;
        if (inside) Blocks.push_back({line.substr(3), number, {}});
      } else if (inside) {
        Blocks.back().Lines.push_back(line);
      } else {
        Prose += line + "\n";
      }
    }
    EXPECT_FALSE(inside) << Name << ": a fence is open";
  }

  /// All that stands in backticks.
  std::set<std::string> Names() const {
    static const std::regex form("`([^`\n]+)`");
    std::set<std::string> names;
    for (std::sregex_iterator at(Prose.begin(), Prose.end(), form); at != std::sregex_iterator(); ++at)
      names.insert((*at)[1]);
    return names;
  }
};

/// README.md and the pages in docs.
inline std::vector<Document> AllDocuments() {
  std::set<std::string> names{"README.md"};
  for (const auto& file : std::filesystem::directory_iterator(Sources() + "/docs"))
    if (file.path().extension() == ".md") names.insert("docs/" + file.path().filename().string());
  return {names.begin(), names.end()};
}

}  // namespace hyetex::test
