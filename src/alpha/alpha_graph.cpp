#include "alpha/alpha_graph.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/text.h"
#include "graph/ticks.h"

namespace hyetex {
namespace {

using namespace graph_colour;

constexpr double TitleTimes = 1.5;   // of the font size
constexpr double UsualTicks = 10;    // that a graph of usual height has room for
constexpr double Largest = 1e9;      // that says anything of a pen
constexpr double DateRoom = 0.03;    // beside the first and the last chart, of the time between them
constexpr double LeastDateRoom = 1;  // day

struct Range {
  double From = std::numeric_limits<double>::infinity(), To = -From;

  void Take(double value) {
    From = std::min(From, value);
    To = std::max(To, value);
  }
};

// To the next multiple of the step below and above, so that no value lies on an edge.
Range OnTicks(const Range& range) {
  const double step = RoundStep((range.To - range.From) / UsualTicks);
  const auto wholeStepsTo = [step](double value, int way) {
    const double steps = value / step, nearest = std::round(steps);
    // What is nearly a multiple counts as one: 32-bit values seldom are, and a mark has some size.
    const bool isOne = std::abs(steps - nearest) < 0.05;
    return (isOne ? nearest + way : way < 0 ? std::floor(steps) : std::ceil(steps)) * step;
  };
  return {wholeStepsTo(range.From, -1), wholeStepsTo(range.To, 1)};
}

}  // namespace

Graph MakeAlphaGraph(const AlphaReview& review, const RowBlock& rows, const AlphaGraphOptions& options) {
  Graph graph;
  graph.Title = "Alpha Values For " + ShownText(review.InstrumentCode());
  graph.TitleTimes = TitleTimes;
  graph.Grid = options.Grid;
  graph.FontPoints = std::clamp(options.FontPoints, LeastAlphaFont, MostAlphaFont);

  GraphMarks alphas{"Alpha", {}, Marker::Circle, Blue};
  GraphMarks selected{"Selected alpha (S)", {}, Marker::Diamond, Vermilion};
  Range dates, values;
  std::size_t left = 0, undated = 0;
  const auto add = [&](GraphMarks& marks, Date date, float alpha) {
    if (alphas.Points.size() + selected.Points.size() == MostAlphaPairs) {
      ++left;
      return;
    }
    dates.Take(date);
    values.Take(static_cast<double>(alpha));
    marks.Points.push_back({date, static_cast<double>(alpha)});
  };
  for (int row = rows.First; row <= rows.Last; ++row) {
    if (review.IsExcluded(row)) continue;
    const AlphaChart& entry = review.Charts()[static_cast<std::size_t>(row)];
    const ChartRecord& chart = entry.Chart;
    const Date date = entry.Start();
    if (date == 0) {
      ++undated;
      continue;
    }
    if (chart.SelectedAlpha != NoAlpha) add(selected, date, chart.SelectedAlpha);
    for (int j = 1; j <= chart.AlphaCount; ++j)
      add(alphas, date, chart.AlphaValues[static_cast<std::size_t>(j)]);
  }
  if (undated > 0) graph.Notes.push_back("Not drawn, without a date: " + ChartCount(undated));
  if (left > 0)
    graph.Notes.push_back("Values not drawn, behind the first " + std::to_string(MostAlphaPairs) + ": " +
                          std::to_string(left));
  if (alphas.Points.empty() && selected.Points.empty()) {
    graph.Notes.emplace_back(rows.Count() < 1 ? "This instrument has no charts."
                                              : "These charts have no alpha values.");
    return graph;
  }
  if (!(values.From > -Largest) || !(values.To < Largest)) {
    graph.Notes = {"The numbers of these charts are too large to draw."};
    return graph;
  }
  const Range axis = OnTicks(values);
  const double room = std::max((dates.To - dates.From) * DateRoom, LeastDateRoom);
  graph.X = {"", AxisKind::Time, dates.From - room, dates.To + room, LeastDateRoom};
  graph.Left = {"Alpha", AxisKind::Number, axis.From, axis.To, 0};
  if (!alphas.Points.empty()) graph.Layers.emplace_back(std::move(alphas));
  if (!selected.Points.empty()) graph.Layers.emplace_back(std::move(selected));
  return graph;
}

}  // namespace hyetex
