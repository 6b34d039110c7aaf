// A chart file on its way into CHART_ASCII: the record that is made of it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/result.h"
#include "database/store/stored_text.h"
#include "platform/odbc/connection.h"
#include "staging/lists/lists.h"

namespace hyetex {

/// The columns that loading writes; `autokey` and `loaded` are the database's.
namespace chart_column {
enum : std::size_t { Station, Code, Date, Text, Reliability, Comments };
}  // namespace chart_column
/// Their names, in that order.
const std::vector<std::string>& ChartColumns();

struct ChartToStore {
  std::string Path;
  ChartKey Key;
  std::vector<DbValue> Row;        ///< a value a column
  std::size_t Bytes = 0;           ///< of the file
  std::vector<std::string> Notes;  ///< what was cut, a line each
};

/// The name of a file as messages show it.
std::string ShownName(const std::string& path);

/// Reads a file and makes its record, with all texts cut to the columns, which the catalog gives. Fails, with
/// the reason alone, on a file that cannot be read or that changes meanwhile, is no chart, has no start, or
/// is of an instrument that the list lacks.
Result<ChartToStore> MakeChartToStore(const std::string& path, const std::vector<StationRecord>& stations,
                                      const std::vector<CatalogColumn>& columns);

}  // namespace hyetex
