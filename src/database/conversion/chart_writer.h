// Writes the rows of charts to CHART, many in one statement, with texts cut to the widths of its columns.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>

#include "database/conversion/chart_rows.h"
#include "platform/odbc/recordset.h"

namespace hyetex {

class ChartWriter {
 public:
  using Tell = std::function<void(const std::string& line)>;

  static DbResult<ChartWriter> Open(Connection& connection);

  /// Why no row of this station can be stored: a code that is cut would be another instrument's.
  std::optional<std::string> CheckStation(const StationRecord& station) const;

  /// Writes all rows of a chart; `tell` hears of each text that was cut, once a text. The last of them travel
  /// with the next chart's, or with Finish().
  DbResult<void> Write(const ChartRows& chart, const StationRecord& station, int reliability,
                       const Tell& tell);
  DbResult<void> Finish();

 private:
  explicit ChartWriter(RowWriter rows) : rows_(std::move(rows)) {}
  std::string Fitted(int column, std::string_view text, const Tell& tell);

  RowWriter rows_;
  std::set<std::string> cut_;
};

}  // namespace hyetex
