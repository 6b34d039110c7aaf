// The rows that CHART already holds where a chart's new rows are to go: those that an operator is asked
// about, and those that make way.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "database/access/plot_db.h"
#include "database/conversion/chart_rows.h"

namespace hyetex {

/// The steps of one instrument within a chart's time. Times count to the second, as databases hold them.
///
/// An operator is asked about rows between the chart's start and end; rows up to a second outside go with
/// them. The first and last steps can lie further out: times are rounded by up to 5 seconds, and a moment
/// that did not ascend was moved on. A row out there is an earlier conversion's when it begins where this
/// chart's first row begins, or spans just what one of its rows spans. Any other belongs to the chart before
/// or after.
class OldRows {
 public:
  static DbResult<OldRows> Find(HyetexPlotDB& database, const std::string& instrumentCode,
                                const ChartRows& chart);

  bool WantQuestion() const { return wantQuestion_; }
  /// Start and end of each row that makes way.
  const std::vector<ChartRow>& Rows() const { return rows_; }
  /// Gives the number of rows deleted.
  DbResult<std::int64_t> Delete(Connection& connection) const;

 private:
  std::string instrumentCode_;
  Date from_ = 0, to_ = 0;  // of the statement that deletes most rows
  bool wantQuestion_ = false;
  std::vector<ChartRow> rows_, outside_;
};

}  // namespace hyetex
