// What every way that a chart's times can come in by refuses.
#pragma once

#include <cmath>

#include "core/records.h"

namespace hyetex {

/// Whether the chart ends behind its begin, by a second at least: on one of no length no trace has a time.
inline bool HasLength(const ChartRecord& chart) {
  return std::llround((chart.EndTime - chart.StartTime) * 86400) > 0;
}
inline constexpr const char* NoLengthRefusal =
    "The beginning time and date must be less than the ending time and date";

}  // namespace hyetex
