// Writing the selected alpha into the stored texts of an instrument's charts.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "alpha/alpha_list.h"
#include "alpha/selected_alpha.h"
#include "core/progress.h"
#include "database/access/plot_db.h"
#include "database/store/run_report.h"

namespace hyetex {

struct AlphaWriting {
  std::size_t Written = 0;  ///< charts whose text has changed
  std::size_t Had = 0;      ///< charts whose text said the value before, which stay as they are
  RunReport Report;         ///< Refused: charts that are left out; stopped or cancelled: nothing was written

  bool IsDone() const { return !Report.Stopped && !Report.Cancelled; }
};

/// Writes into these charts of a list, all in one transaction: after an error, or where the operator stops
/// it, every record is as it was. A chart that somebody has changed or removed since it was listed is left
/// out and named, and so is one whose text does not take the value. A changed chart counts as not converted.
AlphaWriting WriteSelectedAlpha(HyetexPlotDB& database, const std::string& instrumentCode,
                                std::span<const AlphaChart> charts, const SelectedAlpha& alpha,
                                Progress& progress);

/// What came of it.
std::string AlphaMessage(const AlphaWriting& result, const SelectedAlpha& alpha);

}  // namespace hyetex
