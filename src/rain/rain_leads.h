// From rain back to what it was made from, and to the rain that an operator most likely wants to see.
#pragma once

#include <optional>
#include <string>

#include "database/access/plot_db.h"
#include "rain/rain_time.h"

namespace hyetex {

struct LastConversion {
  std::string Instrument;  ///< as CHART_CONVERSION spells it
  double GmtHours = 0;     ///< that local time was ahead of GMT
  RainTime First = 0, Last = 0;
};
/// What was converted last, of one instrument or (an empty code) of all; nothing where nobody wrote that
/// down.
DbResult<std::optional<LastConversion>> FindLastConversion(HyetexPlotDB& database,
                                                           const std::string& instrument = {});

/// The start, as stored, of the chart that the rain of a time was converted from; of several the one that has
/// most of the time. By CHART_CONVERSION; of a chart that does not stand there, by the starts of the stored
/// charts: the last one before the time's end, if it is no more than `MostChartDays` away. Nothing where
/// there is none.
DbResult<std::optional<Date>> FindChartOfRain(HyetexPlotDB& database, const std::string& instrument,
                                              RainTime from, RainTime to, const RainClock& clock);
inline constexpr double MostChartDays = 40;

}  // namespace hyetex
