// Data sources of a test's own: those of the user who runs it are neither read nor written.
#pragma once

#include <cstdlib>
#include <string>

#include "support.h"

namespace hyetex::test {

class OwnDataSources {
 public:
  OwnDataSources() {
    if (const char* set = std::getenv(Variable)) before_ = set;
    Point(folder_ / "odbc.ini");
  }
  ~OwnDataSources() {
    if (before_.empty())
      ::unsetenv(Variable);
    else
      Point(before_);
  }
  OwnDataSources(const OwnDataSources&) = delete;
  OwnDataSources& operator=(const OwnDataSources&) = delete;

  std::string Path() const { return folder_ / "odbc.ini"; }
  void Write(const std::string& text) { WriteFile(Path(), text); }
  std::string Text() const { return std::filesystem::exists(Path()) ? ReadFile(Path()) : ""; }

 private:
  static constexpr const char* Variable = "ODBCINI";
  static void Point(const std::string& path) { ::setenv(Variable, path.c_str(), 1); }

  TempFolder folder_;
  std::string before_;
};

}  // namespace hyetex::test
