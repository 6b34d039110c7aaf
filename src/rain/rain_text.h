// Rain as lines of CSV: times are ISO 8601 with their zone, depths mm; what nothing is known of has an empty
// depth and covered 0.
#pragma once

#include <string>

#include "rain/rain_maxima.h"
#include "rain/rain_steps.h"
#include "rain/rain_storms.h"

namespace hyetex {

inline constexpr const char *StepsHeading = "start,end,depth_mm,covered\n",
                            *MaximaHeading = "minutes,depth_mm,start,covered\n",
                            *StormsHeading = "start,end,depth_mm,peak_mm_per_hour\n";

/// Each with its line's end. Depths are exact, covered has at most four decimals.
std::string StepLine(const RainStep& step, const RainClock& clock);
std::string MaximumLine(const RainMaximum& maximum, const RainClock& clock);
std::string StormLine(const RainStorm& storm, const RainClock& clock);

/// A depth as its digits are: at most nine decimals, no more than it has.
std::string DepthText(double mm);

}  // namespace hyetex
