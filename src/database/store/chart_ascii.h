// Stored charts in CHART_ASCII: one record a chart, found by its instrument and its start.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/odbc/recordset.h"

namespace hyetex {

/// The records of one chart: one, but for a table that holds it twice.
Selection ChartAsciiOf(std::string_view instrumentCode, Date chartDate);
/// All records of an instrument.
Selection ChartAsciiOf(std::string_view instrumentCode);

/// Whether the table marks what was converted.
DbResult<bool> HasLoadedMark(Connection& connection);
/// The mark of the current record; without the column every chart counts as not converted.
DbResult<bool> IsLoaded(Recordset& table);

/// The chart's text in the current record; empty where there is none. Ends soon after `mostBytes`.
DbResult<std::string> ChartAsciiText(Recordset& table, std::size_t mostBytes);

}  // namespace hyetex
