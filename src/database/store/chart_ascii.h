// Stored charts in CHART_ASCII: one record a chart, found by its instrument and its start.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "database/access/plot_db.h"

namespace hyetex {

/// The records of one chart: one, but for a table that holds it twice.
Selection ChartAsciiOf(std::string_view instrumentCode, Date chartDate);
/// All records of an instrument.
Selection ChartAsciiOf(std::string_view instrumentCode);

/// How many charts are read or written together: few, so that nobody waits for it and little is in memory,
/// yet so many that what a statement costs does not count.
class ChartGroup {
 public:
  std::size_t Size() const { return size_; }
  /// Sizes the next group by what the last one's texts took.
  void Took(std::size_t textBytes);

 private:
  std::size_t size_ = 1;
};

/// Reads the records of some charts of an instrument by one statement, and by one more over all its records
/// those that have no date or none that can be read. `take` gets the chart's place
/// in `dates`, each of which stands there once, and finds date, code and text in ChartAsciiTable; a chart
/// that the table does not hold is not told. An empty code is that of records without one.
DbResult<void> ForEachRecordOf(HyetexPlotDB& database, std::string_view instrumentCode,
                               std::span<const Date> dates,
                               const std::function<DbResult<void>(std::size_t)>& take);

/// Whether the table marks what was converted.
DbResult<bool> HasLoadedMark(Connection& connection);
/// The mark of the current record; without the column every chart counts as not converted.
DbResult<bool> IsLoaded(Recordset& table);

/// The chart's text in the current record; empty where there is none. Ends soon after `mostBytes`.
DbResult<std::string> ChartAsciiText(Recordset& table, std::size_t mostBytes);
/// A chart's text for the table of these columns: a binary, or a text where a keeper has made the column one.
DbValue AsciiFileValue(std::span<const CatalogColumn> columns, std::string text);

}  // namespace hyetex
