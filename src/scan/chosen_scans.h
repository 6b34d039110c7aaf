// Which scan belongs to which staged chart: one that the operator has picked, or else one that was found by
// its name in the folder of the scans.
#pragma once

#include <map>
#include <span>
#include <string>

#include "core/records.h"
#include "core/result.h"

namespace hyetex {

struct ScanPick {
  std::string Path;
  int Page = 0;  ///< of the file, from 0

  bool operator==(const ScanPick&) const = default;
};

class ChosenScans {
 public:
  void Choose(const ChartRecord& chart, ScanPick pick);
  /// Looks for the scans of all charts in a folder. Fails on one that cannot be read; then only what was
  /// picked is known.
  Result<void> LookIn(const std::string& folder, std::span<const ChartRecord> charts);

  /// Fails, in words for the operator, where a chart has no scan.
  Result<ScanPick> Of(const ChartRecord& chart) const;

 private:
  std::map<std::string, ScanPick> picked_;            // by the chart's name
  std::map<std::string, Result<std::string>> found_;  // the path, or why there is none
};

}  // namespace hyetex
