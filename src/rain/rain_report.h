// The report of a station-year: a page for each month with its hyetograph and its days, and one of the
// maxima.
#pragma once

#include <string>
#include <vector>

#include "platform/surface.h"
#include "rain/manual_gage.h"
#include "rain/rain_maxima.h"
#include "rain/rain_reading.h"
#include "rain/rain_site.h"
#include "rain/rain_steps.h"
#include "rain/rain_storms.h"

namespace hyetex {

struct RainReport {
  RainSite Site;
  RainClock Clock;
  int Year = 0;
  std::vector<RainStep> Hours, Days;
  std::vector<RainPeriod> Months, Years;
  std::vector<RainMaximum> Maxima;
  std::vector<RainStorm> Storms;  ///< the greatest ten, by depth
  GageReadings Gage;
  RainRemarks Remarks;

  int PageCount() const { return 13; }
};

/// Reads a year by the clock, from its first day's begin to the next one's.
DbResult<RainReport> ReadRainReport(HyetexPlotDB& database, const std::string& instrument, int year,
                                    const RainClock& clock, double dryHours, Progress& progress);
/// Draws a page, from 0, on a surface of points, as of A4 upright.
void DrawRainPage(const RainReport& report, int page, Surface& surface);

}  // namespace hyetex
