#include "alpha/alpha_review.h"

#include <algorithm>

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {
namespace {

enum Column { InstrumentColumn, DateColumn, SelectedColumn, FirstAlphaColumn };

}  // namespace

std::string ChartCount(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " chart" : " charts");
}

void AlphaReview::Show(AlphaList list) {
  list_ = std::move(list);
  excluded_.assign(list_.Charts.size(), false);
  mostAlphas_ = 0;
  for (const AlphaChart& chart : list_.Charts)
    mostAlphas_ = std::max<int>(mostAlphas_, chart.Chart.AlphaCount);
}

void AlphaReview::Flip(int row) { excluded_[static_cast<std::size_t>(row)].flip(); }

RowBlock AlphaReview::WorkedOn(const std::optional<RowBlock>& selected) const {
  const RowBlock all{0, RowCount() - 1};
  if (!selected || selected->First < 0 || selected->Last >= RowCount() || selected->Count() < 1) return all;
  return *selected;
}

RowBlock AlphaReview::Drawn(const std::optional<RowBlock>& selected) const {
  const RowBlock rows = WorkedOn(selected);
  return rows.Count() > 1 ? rows : WorkedOn(std::nullopt);
}

int AlphaReview::ExcludedIn(const RowBlock& rows) const {
  return static_cast<int>(
      std::count(excluded_.begin() + rows.First, excluded_.begin() + rows.First + rows.Count(), true));
}

std::string AlphaReview::Average(const RowBlock& rows) const {
  double sum = 0;
  int count = 0;
  for (int row = rows.First; row <= rows.Last; ++row) {
    if (IsExcluded(row)) continue;
    const ChartRecord& chart = Charts()[static_cast<std::size_t>(row)].Chart;
    for (int j = 1; j <= chart.AlphaCount; ++j, ++count)
      sum += static_cast<double>(chart.AlphaValues[static_cast<std::size_t>(j)]);
  }
  return count == 0 ? std::string() : RoundedText(sum / count, 5);
}

int AlphaReview::ColumnCount() const { return FirstAlphaColumn + mostAlphas_; }

std::string AlphaReview::Title(int column) {
  switch (column) {
    case InstrumentColumn:
      return "Instrument";
    case DateColumn:
      return "Date";
    case SelectedColumn:
      return "Sel. Alpha";
    default:
      return "Alpha " + std::to_string(column - FirstAlphaColumn + 1);
  }
}

std::string AlphaReview::Cell(int row, int column) const {
  const AlphaChart& entry = Charts()[static_cast<std::size_t>(row)];
  const ChartRecord& chart = entry.Chart;
  switch (column) {
    case InstrumentColumn:
      return list_.InstrumentCode;
    case DateColumn:
      return entry.Start() == 0 ? std::string() : GeneralDateText(entry.Start());
    case SelectedColumn:
      return chart.SelectedAlpha == NoAlpha ? std::string(NoAlphaText) : ShortText(chart.SelectedAlpha);
    default: {
      const int alpha = column - FirstAlphaColumn + 1;
      return alpha > chart.AlphaCount ? std::string()
                                      : ShortText(chart.AlphaValues[static_cast<std::size_t>(alpha)]);
    }
  }
}

std::string AlphaReview::Summary(const std::optional<RowBlock>& selected) const {
  if (RowCount() == 0) return "No charts";
  const RowBlock all = WorkedOn(std::nullopt), rows = WorkedOn(selected);
  std::string text = ChartCount(list_.Charts.size());
  if (const int excluded = ExcludedIn(all)) text += ", " + std::to_string(excluded) + " excluded";
  if (!selected || rows != *selected) return text + "; no block selected: all are worked on";
  text += "; worked on: row" + (rows.Count() == 1 ? " " + std::to_string(rows.First + 1)
                                                  : "s " + std::to_string(rows.First + 1) + " to " +
                                                        std::to_string(rows.Last + 1));
  if (const int excluded = ExcludedIn(rows)) text += ", " + std::to_string(excluded) + " excluded";
  return text;
}

std::string AlphaReview::WriteQuestion(const RowBlock& rows, const SelectedAlpha& alpha) const {
  const std::vector<AlphaChart> charts = ChartsOf(rows);
  const bool isAll = rows == WorkedOn(std::nullopt);
  std::string text = "Write \"Alpha Value Selected: " + alpha.Text() + "\" into " +
                     (isAll && rows.Count() > 1 ? "all " : "") + ChartCount(charts.size()) + " of " +
                     ShownText(InstrumentCode()) + " in the database ?";
  const auto add = [&](std::int64_t count, const char* one, const char* many) {
    if (count == 1) text += std::string("\n\n") + one;
    if (count > 1) text += "\n\n" + std::to_string(count) + many;
  };
  add(ExcludedIn(rows), "An excluded chart is among them, and gets it too.",
      " excluded charts are among them, and get it too.");
  add(std::ranges::count(charts, true, &AlphaChart::IsConverted),
      "One of them was converted to time-depth data, and will need converting again.",
      " of them were converted to time-depth data, and will need converting again.");
  for (const std::string& note : list_.Notes) text += "\n\n" + note;
  return text;
}

std::vector<AlphaChart> AlphaReview::ChartsOf(const RowBlock& rows) const {
  const auto first = Charts().begin() + rows.First;
  return {first, first + rows.Count()};
}

}  // namespace hyetex
