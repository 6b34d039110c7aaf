// A staged chart becomes the chart of a digitizing session.
#pragma once

#include <string>

#include "core/records.h"
#include "core/result.h"
#include "staging/lists.h"

namespace hyetex {

struct ActivatedChart {
  ChartRecord Task;
  ChartTypeRecord ChartType;
  int Tablet = 0;  ///< index of TabletTypes(), as the settings have it
};

/// The chart that stands at index `task` in the staging area, on the current chart type. Fails, with one
/// line, where there is no such chart or type, and on a chart that is marked as too defective to be traced.
Result<ActivatedChart> ActivateChart(const std::string& programFolder, const ReferenceLists& lists, int task);

}  // namespace hyetex
