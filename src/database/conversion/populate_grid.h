// What the populate window shows: an instrument's stored charts, one row each.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "core/progress.h"
#include "database/access/plot_db.h"
#include "database/conversion/computation.h"
#include "database/conversion/conversion_book.h"
#include "staging/lists/lists.h"

namespace hyetex {

inline constexpr int PopulateColumns = 7;
inline constexpr std::array<const char*, PopulateColumns> PopulateTitles{
    "Start Date (dd/mm/yy)", "End Date (dd/mm/yy)", "Digitized Depth", "Manual Depth", "Alpha",
    "Reliability",           "Selected Depth"};

/// Further columns, which tell how a chart was converted before.
inline constexpr std::array<const char*, 4> BookTitles{"Converted On", "Converted By", "Hours to GMT",
                                                       "How Converted"};
inline constexpr int BookColumns = static_cast<int>(BookTitles.size());

struct PopulateRow {
  Date ChartDate = 0;  ///< as stored: with the instrument it tells the chart
  Date Start = 0, End = 0;
  std::array<std::string, PopulateColumns> Cells;
  bool Overlaps = false;  ///< it starts on the day on which the chart before it ends, before that end
  bool Manual = false;  ///< converted to the manual gage's depth, not the digitized one; the last cell tells
  /// How it was converted last; nothing where it was not, or the database has no table CHART_CONVERSION.
  std::optional<WrittenConversion> Written = {};
};

/// The instrument's charts that are not yet converted, or all of them, sorted by their start. Overlaps are
/// told in the table's order.
DbResult<std::vector<PopulateRow>> LoadGrid(HyetexPlotDB& database, const std::string& instrumentCode,
                                            bool showAll, const ComputationVariables& variables,
                                            const ReferenceLists& lists, Progress& progress);

/// What a cell reads, of the chart's columns and behind them of the further ones.
std::string CellText(const PopulateRow& row, int column);

/// Takes the other depth; the last cell then reads "Manual" or "Digitized".
void ToggleSelectedDepth(PopulateRow& row);

/// Writes the stored text of a chart to temp_rfs.txt in the folder, and gives its path.
Result<std::string> WriteStoredText(HyetexPlotDB& database, const std::string& instrumentCode, Date chartDate,
                                    const std::string& folder);

}  // namespace hyetex
