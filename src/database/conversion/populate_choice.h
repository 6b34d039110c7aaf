// What an operator chooses before a conversion: the values that govern it, and the charts that it takes.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "core/number_entry.h"
#include "database/conversion/populate_grid.h"
#include "database/conversion/population.h"
#include "platform/dialogs.h"

namespace hyetex {

/// What the boxes for these take from an operator; empty ones are 0.
inline constexpr NumberEntry LapseEntry{.What = "The time lapse"};
inline constexpr NumberEntry GmtEntry{.What = "The hours to GMT", .Least = -14, .Most = 14};

/// The lapse in minutes and the hours to GMT as typed; text that is no number counts as 0.
ComputationVariables ReadComputation(bool useAlpha, std::string_view lapse, std::string_view gmtHours,
                                     bool depthManual);

/// Whether `a` stands before `b` when the grid is sorted by one of its columns: dates as dates, depths and
/// alphas as numbers (a chart without alpha before all that have one), the rest as text.
bool StandsBefore(const PopulateRow& a, const PopulateRow& b, int column);

/// The rows that an operator has chosen in the grid. One selected row is no block, only the active row.
struct ChosenRows {
  std::vector<int> Block;     ///< in the order of the grid
  std::optional<int> Active;  ///< the row of the cursor
};
/// The block, or the active row where there is none.
std::vector<int> BlockOrActive(const ChosenRows& chosen);
/// The block; without one the operator is asked whether all rows are meant or only the active one. Nothing
/// when the command ends here.
std::optional<std::vector<int>> RowsToConvert(const ChosenRows& chosen, int rowCount, Dialogs& dialogs);

}  // namespace hyetex
