// A staged chart becomes the chart of a digitizing session.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/records.h"
#include "core/result.h"
#include "core/settings.h"
#include "staging/lists/lists.h"

namespace hyetex {

struct ActivatedChart {
  ChartRecord Task;
  ChartTypeRecord ChartType;
  int Tablet = 0;                  ///< index of TabletTypes(), as the settings have it
  std::vector<std::string> Notes;  ///< what was odd in the task list, one line each
};

/// A staged chart on a chart type. Fails, with one line, where there is no such type.
Result<ActivatedChart> PrepareChart(const ReferenceLists& lists, ChartRecord task, int chartType);

/// The chart that stands at index `task` in the staging area, on `chartType` or else the current one of the
/// settings. Fails, with one line, where there is no such chart or type.
Result<ActivatedChart> ActivateChart(const Settings& settings, const ReferenceLists& lists, int task,
                                     std::optional<int> chartType = {});

/// What a chart is traced on. The digitizer type of the settings is a tablet's whatever it is.
enum class TraceSource { Tablet, Scan, EmptyPage };
inline constexpr int TraceSourceCount = 3;
/// The one of the settings; the tablet where they have none.
TraceSource StoredTraceSource(const Settings& settings);

/// The tablet type of the settings, an index of TabletTypes(); 0 where they have none.
int StoredTabletType(const Settings& settings);

/// Why a staged chart is not traced: it is marked as too defective, or has no length. Nothing if it is.
std::optional<std::string> CheckTraceable(const ChartRecord& task);

/// Why a folder takes no chart file; nothing if it does. It is better known before a chart is traced.
std::optional<std::string> CheckTargetTakesFiles(const std::string& folder);

}  // namespace hyetex
