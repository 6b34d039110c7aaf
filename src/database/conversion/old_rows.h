// The rows that CHART already holds where a chart's new rows are to go: those that an operator is asked
// about, and those that make way.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "database/access/plot_db.h"
#include "database/conversion/chart_rows.h"
#include "database/conversion/conversion_book.h"

namespace hyetex {

/// The steps of one instrument within a chart's time. Times count to the second, as databases hold them.
///
/// An operator is asked about rows between the chart's start and end; rows up to a second outside go with
/// them. A row that touches the chart's time alone is its neighbour's. What an earlier conversion wrote
/// elsewhere goes as well: where CHART_CONVERSION tells its time, all rows in it but those of charts that
/// were converted later; else what earlier versions wrote out there, which is the row that began with the
/// chart's rounded start, and rows just like those that they would write today.
class OldRows {
 public:
  struct Chart {
    Date ChartDate = 0;
    const ChartRows* Rows = nullptr;
  };
  /// For each of some charts of one instrument. One statement finds them all, and reads what lies between the
  /// charts as well. With `hasBook` it is looked up what CHART_CONVERSION says of them.
  static DbResult<std::vector<OldRows>> Find(HyetexPlotDB& database, const std::string& instrumentCode,
                                             std::span<const Chart> charts, bool hasBook);

  bool WantQuestion() const { return wantQuestion_; }
  /// Start and end of each row that makes way.
  const std::vector<ChartRow>& Rows() const { return rows_; }
  /// Whether just the rows of the other make way, and the same question is asked.
  bool SameRows(const OldRows& other) const;
  /// Whether this chart's old rows cannot be told before the other chart is stored, since that writes or
  /// deletes rows where this one looks.
  bool DependsOn(const OldRows& other) const;
  /// Deletes just those rows. Fails where one of them is no longer there.
  DbResult<void> Delete(Connection& connection) const;

 private:
  struct Span {
    std::int64_t Start = 0, End = 0;
    auto operator<=>(const Span&) const = default;  // NOLINT(modernize-use-nullptr)
  };
  // Whose rows all go: those within `Outer` that reach into `Inner`.
  struct Range {
    Span Outer, Inner;
    bool Has(const Span& row) const;
  };
  static Span SpanOf(Date start, Date end);
  static bool Holds(const Span& outer, const Span& inner);

  OldRows(std::string instrumentCode, const ChartRows& chart);
  void LookAt(const Span& span);
  /// Takes the time of an earlier conversion, and the later ones that reach into it.
  void TakeEarlier(const ConvertedSpan& earlier, std::span<const ConvertedSpan> all);
  bool IsEarlier(const Span& row) const;
  bool IsFormer(const Span& row, double depth) const;
  /// Takes the table's current row if it is one of the chart's old ones.
  DbResult<void> Look(const ChartRow& row, Recordset& table);

  struct Earlier {
    Range Whole;
    std::vector<Span> Later;
  };
  struct FormerRow {
    Span Time;
    double Depth = 0;
  };

  std::string instrumentCode_;
  std::vector<Range> ranges_;  // whose rows all go; the first is the chart's own time
  Span asked_, looked_;
  std::vector<Span> written_;
  std::vector<Earlier> earlier_;   // times of which others have taken a part since
  std::vector<FormerRow> former_;  // none where the earlier conversion is written down
  bool wantQuestion_ = false;
  std::vector<ChartRow> rows_;
  std::vector<RowPlace> places_;  // of them
};

}  // namespace hyetex
