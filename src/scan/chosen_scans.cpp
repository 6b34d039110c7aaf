#include "scan/chosen_scans.h"

#include <utility>
#include <vector>

#include "digitizing/resume.h"
#include "scan/find_scans.h"

namespace hyetex {

void ChosenScans::Choose(const ChartRecord& chart, ScanPick pick) {
  picked_[ChartName(chart)] = std::move(pick);
}

Result<void> ChosenScans::LookIn(const std::string& folder, std::span<const ChartRecord> charts) {
  found_.clear();
  std::vector<WantedScan> wanted;
  wanted.reserve(charts.size());
  for (const ChartRecord& chart : charts) wanted.push_back({chart.InstrumentCode, chart.StartTime});
  auto found = FindScans(folder, wanted);
  if (!found) return Failure(found.error());
  for (std::size_t i = 0; i < charts.size(); ++i)
    found_.insert_or_assign(ChartName(charts[i]), std::move((*found)[i]));
  return {};
}

Result<ScanPick> ChosenScans::Of(const ChartRecord& chart) const {
  const std::string name = ChartName(chart);
  if (const auto picked = picked_.find(name); picked != picked_.end()) return picked->second;
  const auto found = found_.find(name);
  if (found == found_.end()) return Failure("Choose the chart's scan, or a folder with scans");
  if (!found->second) return Failure(found->second.error());
  return ScanPick{*found->second, 0};
}

}  // namespace hyetex
