// Looking an instrument's alpha values over: which charts are left out, which rows are worked on, their
// average, and what the grid shows. Index 0 of the alpha values is no value.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "alpha/alpha_list.h"
#include "alpha/selected_alpha.h"
#include "core/colour.h"

namespace hyetex {

/// Of a chart that is left out.
inline constexpr Rgb ExcludedColour{120, 120, 120};
/// Of txtFontSize, in points.
inline constexpr double LeastAlphaFont = 4, MostAlphaFont = 24;

/// Rows of the grid from 0, both ends counted; empty where First is above Last.
struct RowBlock {
  int First = 0, Last = -1;

  int Count() const { return Last - First + 1; }
  bool operator==(const RowBlock&) const = default;
};

class AlphaReview {
 public:
  /// Row r shows chart r; none is left out.
  void Show(AlphaList list);

  const std::string& InstrumentCode() const { return list_.InstrumentCode; }
  const std::vector<AlphaChart>& Charts() const { return list_.Charts; }
  int RowCount() const { return static_cast<int>(list_.Charts.size()); }
  bool IsExcluded(int row) const { return excluded_[static_cast<std::size_t>(row)]; }
  void Flip(int row);

  /// The selected block; all rows where there is none.
  RowBlock WorkedOn(const std::optional<RowBlock>& selected) const;
  /// The same, but all rows also for a block of a single one, since a graph of one chart tells nothing.
  RowBlock Drawn(const std::optional<RowBlock>& selected) const;
  int ExcludedIn(const RowBlock& rows) const;
  /// Mean of all alpha values of the rows that are not left out, to 5 decimals; empty where there is none.
  std::string Average(const RowBlock& rows) const;

  // The grid: instrument, date, selected alpha, and as many alphas as the widest row has.
  int ColumnCount() const;
  static std::string Title(int column);
  std::string Cell(int row, int column) const;
  /// "7 charts, 2 excluded; average and database: rows 2 to 5, 1 of them excluded".
  std::string Summary(const std::optional<RowBlock>& selected) const;

  /// What is asked before the value goes into the texts of the rows' charts, the excluded ones too.
  std::string WriteQuestion(const RowBlock& rows, const SelectedAlpha& alpha) const;
  std::vector<AlphaChart> ChartsOf(const RowBlock& rows) const;

 private:
  AlphaList list_;
  std::vector<bool> excluded_;
  int mostAlphas_ = 0;
};

/// "1 chart", "7 charts".
std::string ChartCount(std::size_t count);

}  // namespace hyetex
