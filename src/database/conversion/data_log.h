// The data log: what a conversion did, line by line, in datalog.txt. Each line is on disk before the next, so
// that the log tells how far a run came that did not end well.
#pragma once

#include <string>
#include <string_view>

#include "core/result.h"

namespace hyetex {

inline constexpr std::string_view DataLogName = "datalog.txt";

class DataLog {
 public:
  /// The log of a folder; one that is not kept takes lines and writes none.
  DataLog(const std::string& folder, bool kept);

  bool IsKept() const { return kept_; }
  /// Begins the log anew, all or nothing.
  void StartLog();
  /// Opens the log for appending, writes a line and closes it again. The first line that cannot be written
  /// ends the log.
  void LogLine(std::string_view text);
  /// Why the log ended too early; empty while it has not.
  const std::string& Trouble() const { return trouble_; }
  const std::string& Path() const { return path_; }

 private:
  void Keep(const Result<void>& written);

  std::string path_, trouble_;
  bool kept_;
};

}  // namespace hyetex
