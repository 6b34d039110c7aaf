// The rows that CHART already holds where a chart's new rows are to go: those that an operator is asked
// about, and those that make way.
#pragma once

#include <cstdint>
#include <span>
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
  /// For each of some charts of one instrument. One statement finds them all, and reads what lies between the
  /// charts as well.
  static DbResult<std::vector<OldRows>> Find(HyetexPlotDB& database, const std::string& instrumentCode,
                                             std::span<const ChartRows* const> charts);

  bool WantQuestion() const { return wantQuestion_; }
  /// Start and end of each row that makes way.
  const std::vector<ChartRow>& Rows() const { return rows_; }
  /// Whether just the rows of the other make way, and the same question is asked.
  bool SameRows(const OldRows& other) const;
  /// Whether this chart's old rows cannot be told before the other chart is stored, since that writes or
  /// deletes rows where this one looks.
  bool DependsOn(const OldRows& other) const;
  /// Gives the number of rows deleted.
  DbResult<std::int64_t> Delete(Connection& connection) const;

 private:
  struct Span {
    std::int64_t Start = 0, End = 0;
    auto operator<=>(const Span&) const = default;
  };
  static Span SpanOf(Date start, Date end);
  static bool Holds(const Span& outer, const Span& inner);

  OldRows(std::string instrumentCode, const ChartRows& chart);
  /// Takes a row of the table if it is one of the chart's old ones.
  void Look(const ChartRow& row);

  std::string instrumentCode_;
  Date from_ = 0, to_ = 0;  // of the statement that deletes most rows
  Date lookFrom_ = 0, lookTo_ = 0;
  Span asked_, deleted_, looked_;
  std::int64_t begin_ = 0;
  std::vector<Span> written_;  // sorted
  bool wantQuestion_ = false;
  std::vector<ChartRow> rows_, outside_;
};

}  // namespace hyetex
