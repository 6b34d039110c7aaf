#include "database/conversion/populate_choice.h"

#include <limits>
#include <numeric>

#include "core/numbers.h"

namespace hyetex {
namespace {

double NumberShown(const std::string& cell) {
  return cell == "None" ? -std::numeric_limits<double>::infinity() : LeadingNumber(cell);
}

}  // namespace

ComputationVariables ReadComputation(bool useAlpha, std::string_view lapse, std::string_view gmtHours,
                                     bool depthManual) {
  return {.UseAlpha = useAlpha,
          .MinimalLapse = static_cast<float>(TypedOrLeading(lapse)),
          .GmtShift = static_cast<float>(TypedOrLeading(gmtHours) / 24),
          .DefaultDepthManual = depthManual};
}

bool StandsBefore(const PopulateRow& a, const PopulateRow& b, int column) {
  if (column >= PopulateColumns) {
    if (!a.Written || !b.Written) return !a.Written && b.Written;
    if (column == PopulateColumns) return a.Written->When < b.Written->When;
    if (column == PopulateColumns + 2) return a.Written->Variables.GmtShift < b.Written->Variables.GmtShift;
    return CellText(a, column) < CellText(b, column);
  }
  const auto& left = a.Cells[static_cast<std::size_t>(column)];
  const auto& right = b.Cells[static_cast<std::size_t>(column)];
  switch (column) {
    case 0:
      return a.Start < b.Start;
    case 1:
      return a.End < b.End;
    case 2:
    case 3:
    case 4:
      return NumberShown(left) < NumberShown(right);
    default:
      return left < right;
  }
}

std::vector<int> BlockOrActive(const ChosenRows& chosen) {
  if (chosen.Block.size() > 1) return chosen.Block;
  return chosen.Active ? std::vector{*chosen.Active} : std::vector<int>{};
}

std::optional<std::vector<int>> RowsToConvert(const ChosenRows& chosen, int rowCount, Dialogs& dialogs) {
  if (chosen.Block.size() > 1) return chosen.Block;
  std::vector<int> rows;
  switch (dialogs.MessageBox(
      "Populating The Database",
      "Would you like to read all the files in the table, press no to read only the current file",
      BoxButtons::YesNoCancel, BoxIcon::Question)) {
    case BoxAnswer::Yes:
      rows.resize(static_cast<std::size_t>(rowCount));
      std::iota(rows.begin(), rows.end(), 0);
      return rows;
    case BoxAnswer::No:
      return BlockOrActive({.Block = {}, .Active = chosen.Active});
    default:
      return std::nullopt;
  }
}

}  // namespace hyetex
