// The rows of CHART of one instrument, in the order of time. What is read does not grow with the rows of
// other instruments, and memory not with those of this one.
#pragma once

#include <string>
#include <vector>

#include "core/progress.h"
#include "database/access/plot_db.h"
#include "rain/rain_rows.h"

namespace hyetex {

struct RainChoice {
  std::string Instrument;  ///< the code, found without regard to case
  RainSpan Span = {};
  bool WithTrust = false;  ///< the rows' ratings too, which cost a column
};

/// Streams the rows of an instrument and span to the sinks. Rows that reach over an end of the span count
/// with their share. An instrument without rows gives no piece. Fails where the database does, and with
/// db_error::Cancelled where `progress`, asked every few thousand rows, wants no more. `database` is opened
/// where it is closed and stays open.
DbResult<RainRemarks> ReadRain(HyetexPlotDB& database, const RainChoice& choice,
                               const std::vector<RainSink*>& sinks, Progress& progress);

/// Start of the first row and of the last one of an instrument, without reading those between; nothing where
/// it has none.
struct RainExtent {
  RainTime First = 0, Last = 0;
};
DbResult<std::optional<RainExtent>> FindRainExtent(HyetexPlotDB& database, const std::string& instrument);

}  // namespace hyetex
