// Many charts summed up in one text: a line a chart in columns of fixed width, under a heading of two lines.
#pragma once

#include <string>
#include <vector>

#include "core/records.h"

namespace hyetex {

inline constexpr std::size_t MostSummaryRows = 1000;

class ChartSummary {
 public:
  /// Takes a chart as it was read; false once the summary is full.
  bool Add(const ChartRecord& chart);
  bool IsEmpty() const { return rows_.empty(); }
  /// UTF-8; lines end in line feeds. Depths are mm, times hours, factors percent: of the manual and digitized
  /// depth against the eyed one, and of the chart's time against the digitized one. Comments are cut where
  /// they would make a line endless.
  std::string Text() const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

/// What is told of charts that the summary leaves out; empty for none.
std::string LeftOutOfSummary(std::size_t charts);

}  // namespace hyetex
