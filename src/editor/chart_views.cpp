#include "editor/chart_views.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "chartfiles/series.h"
#include "core/comments.h"
#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "editor/intensity.h"
#include "editor/placed_trace.h"
#include "graph/draw.h"

namespace hyetex {
namespace {

using namespace graph_colour;

constexpr double LineWidth = 1.1, CurveWidth = 1.5, GapWidth = 1.5, LevelWidth = 2.4;
constexpr double Headroom = 0.06;    // above the highest value, and about a trace
constexpr double BarHeadroom = 0.6;  // the bars leave the curve the upper part
constexpr double Largest = 1e9;      // of millimetres that say anything
constexpr double LeastMinutes = 10, LeastMm = 1, LeastDepthMm = 0.05;

// What a step of the trace, or of the series, is by the code of the point that it leads to.
enum class Step { Plain, Gap, Recovered, Level, Alpha, Begins };

Step StepTo(const std::string& comment) {
  if (comment.empty()) return Step::Plain;
  for (const auto& [code, step] : {std::pair{CodeNewSegment, Step::Begins},
                                   {CodeNewSheet, Step::Begins},
                                   {CodeGapEnd, Step::Gap},
                                   {CodeRecoveredEnd, Step::Recovered},
                                   {CodeAlpha, Step::Alpha},
                                   {CodeLeveled, Step::Level}})
    if (HasCode(comment, code)) return step;
  return Step::Plain;
}

bool HasOwnWords(const std::string& comment) {
  const auto entries = CommentEntries(comment);
  return std::any_of(entries.begin(), entries.end(), [](const std::string& entry) {
    return std::none_of(FixedComments().begin(), FixedComments().end(),
                        [&](const FixedComment& fixed) { return entry == CodeText(fixed.Code); });
  });
}

// Curves of the steps of each kind; steps of a kind behind each other make one piece.
class Steps {
 public:
  void To(Step step, GraphPoint from, GraphPoint to) {
    GraphCurve& curve = Of(step);
    if (last_ != step || curve.Pieces.empty()) curve.Pieces.push_back({from});
    curve.Pieces.back().push_back(to);
    last_ = step;
  }
  void Begin(GraphPoint at) {
    Of(Step::Plain).Pieces.push_back({at});
    last_ = Step::Plain;
  }
  GraphCurve& Of(Step step) { return curves_[static_cast<std::size_t>(step)]; }

 private:
  std::array<GraphCurve, 6> curves_;
  Step last_ = Step::Begins;
};

void AddCurve(Graph& graph, GraphCurve curve, std::string name, const Stroke& stroke, bool dots) {
  if (curve.Pieces.empty()) return;
  curve.Name = std::move(name);
  curve.Stroke = stroke;
  curve.Dots = dots;
  graph.Layers.push_back(std::move(curve));
}

void AddMarks(Graph& graph, GraphMarks marks) {
  if (!marks.Points.empty()) graph.Layers.push_back(std::move(marks));
}

// The smallest range that holds all values taken.
struct Range {
  double From = std::numeric_limits<double>::infinity(), To = -From;

  void Take(double value) {
    From = std::min(From, value);
    To = std::max(To, value);
  }
  void Widen(double share, double least) {
    const double by = std::max((To - From) * share, least);
    From -= by;
    To += by;
  }
  bool IsUsable() const { return From > -Largest && To < Largest; }
};

std::string TitleOf(const ChartRecord& chart) {
  return ShownText(chart.InstrumentCode) + (chart.InstrumentCode.empty() ? "" : ", ") +
         GeneralDateText(chart.StartTime) + " to " + GeneralDateText(chart.EndTime);
}

bool IsUndigitized(const ChartReading& reading) {
  return reading.RawPoints.size() <= 2 && HasCode(reading.Chart.GeneralComment, CodeDefective);
}

// Why there is nothing to draw in either view; empty where there is.
std::string NothingToShow(const ChartReading& reading) {
  if (IsUndigitized(reading)) return "This chart is extremely defective and was not digitized.";
  return reading.RawPoints.size() < 2 ? "This chart has no points." : "";
}

constexpr const char* TooLarge = "The numbers of this chart are too large to draw.";

void MakeDigitization(const ChartReading& reading, Graph& graph) {
  const std::vector<RawPoint>& points = reading.RawPoints;
  const PlacedTrace placed = PlaceTrace(points);
  Range along, height;
  Steps steps;
  GraphMarks segments{"New segment", {}, Marker::Diamond, Sky};
  GraphMarks strips{"New strip", {}, Marker::Square, Black};
  GraphMarks alphas{"Alpha point", {}, Marker::Triangle, Pink};
  GraphMarks comments{"Comment", {}, Marker::Circle, Grey};
  GraphPoint before;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const GraphPoint at{placed.X[i], points[i].Y};
    const std::string& comment = points[i].Comment;
    along.Take(at.X);
    height.Take(at.Y);
    const Step step = StepTo(comment);
    if (i == 1 || step == Step::Begins)
      steps.Begin(at);
    else
      steps.To(step, before, at);
    if (HasCode(comment, CodeNewSegment)) segments.Points.push_back(at);
    if (HasCode(comment, CodeNewSheet)) strips.Points.push_back(at);
    if (HasCode(comment, CodeAlpha)) alphas.Points.push_back(at);
    if (!comment.empty() && HasOwnWords(comment)) comments.Points.push_back(at);
    before = at;
  }
  along.Widen(Headroom / 3, LeastMm);
  height.Take(0);
  height.Widen(Headroom, LeastMm);
  if (!along.IsUsable() || !height.IsUsable()) {
    graph.Notes = {TooLarge};
    return;
  }
  graph.X = {"Along the chart, mm", AxisKind::Number, along.From, along.To, LeastMm};
  graph.Left = {"Height on the chart, mm", AxisKind::Number, height.From, height.To, LeastMm};
  AddCurve(graph, steps.Of(Step::Plain), "Trace", {Blue, LineWidth}, true);
  AddCurve(graph, steps.Of(Step::Level), "Level", {Orange, LevelWidth}, true);
  AddCurve(graph, steps.Of(Step::Recovered), "Recovered", {Green, GapWidth}, true);
  AddCurve(graph, steps.Of(Step::Gap), "Data gap", {Vermilion, GapWidth, true}, false);
  AddCurve(graph, steps.Of(Step::Alpha), "", {Pink, LineWidth, true}, false);
  AddMarks(graph, std::move(segments));
  AddMarks(graph, std::move(strips));
  AddMarks(graph, std::move(alphas));
  AddMarks(graph, std::move(comments));
  if (placed.Strips.size() > 1)
    for (std::size_t i = 0; i < placed.Strips.size(); ++i)
      graph.Sections.push_back(
          {placed.Strips[i].From, placed.Strips[i].To, "Strip " + ShortText(static_cast<int>(i + 1))});
}

void AddEnd(Graph& graph, Range& depths, const char* name, float depth, Marker shape, Rgb colour) {
  if (!(depth >= 0)) return;  // not known
  graph.Ends.push_back({std::string(name) + " " + RoundedText(depth, 2) + " mm", depth, shape, colour});
  depths.Take(depth);
}

void AddIntensities(const ChartReading& reading, double minutes, Graph& graph) {
  std::vector<GraphBar> bars = IntensityBars(reading.SeriesPoints, minutes);
  Range range;
  range.Take(0);
  for (const GraphBar& bar : bars) range.Take(bar.Value);
  if (range.To == 0) range.To = 1;
  range.To *= 1 + BarHeadroom;
  range.From *= 1 + Headroom;
  if (!range.IsUsable()) return;
  graph.Right = GraphAxis{"Intensity, mm/h", AxisKind::Number, range.From, range.To, 0};
  graph.Layers.push_back(
      GraphBars{"Intensity, steps of " + RoundedText(minutes, 2) + " min", std::move(bars), Sky, true});
}

void MakeTimeDepth(const ChartReading& reading, const ChartViewOptions& options, Graph& graph) {
  const std::vector<SeriesPoint>& series = reading.SeriesPoints;
  const ChartRecord& chart = reading.Chart;
  if (reading.Chart.SeriesCount == 0 || series.size() < 2) {
    graph.Notes = {"The chart's points span no time, so it has no series."};
    return;
  }
  if (!IsDepthKnown(chart)) {
    graph.Notes = {"The chart's depth is unknown."};
    return;
  }
  Steps steps;
  Range depths;
  depths.Take(0);
  GraphBands gaps{"Data gap", {}, Vermilion};
  GraphMarks comments{"Comment", {}, Marker::Circle, Grey};
  steps.Begin({series[0].Time, series[0].Depth});
  for (std::size_t i = 1; i < series.size(); ++i) {
    const GraphPoint from{series[i - 1].Time, series[i - 1].Depth}, to{series[i].Time, series[i].Depth};
    const Step step = StepTo(series[i].Comment);
    steps.To(step == Step::Gap || step == Step::Recovered ? step : Step::Plain, from, to);
    if (step == Step::Gap) gaps.Spans.push_back({from.X, to.X});
    if (!series[i].Comment.empty() && HasOwnWords(series[i].Comment)) comments.Points.push_back(to);
    depths.Take(to.Y);
  }
  const bool dry = depths.To == 0 && depths.From == 0;
  AddEnd(graph, depths, "Gage", chart.ManualDepth, Marker::Diamond, Vermilion);
  AddEnd(graph, depths, "Eye", chart.EyedDepth, Marker::Circle, Green);
  AddEnd(graph, depths, "Trace", chart.DigitizedDepth, Marker::Square, Blue);
  if (dry) graph.Notes = {"The chart's depth is 0 mm."};
  if (depths.To == 0) depths.To = 1;
  const double room = (depths.To - depths.From) * Headroom;
  graph.X = {"", AxisKind::Time, series.front().Time, series.back().Time, LeastMinutes / MinutesPerDay};
  graph.Left = {"Accumulated depth, mm", AxisKind::Number, depths.From < 0 ? depths.From - room : 0,
                depths.To + room, LeastDepthMm};
  if (!std::isfinite(graph.X.To - graph.X.From) || !(graph.X.From < graph.X.To) || !depths.IsUsable()) {
    graph.Notes = {TooLarge};
    return;
  }
  if (!gaps.Spans.empty()) graph.Layers.push_back(std::move(gaps));
  if (options.HyetographMinutes > 0) AddIntensities(reading, options.HyetographMinutes, graph);
  AddCurve(graph, steps.Of(Step::Plain), "Accumulated depth", {Blue, CurveWidth}, true);
  AddCurve(graph, steps.Of(Step::Recovered), "Recovered", {Green, CurveWidth}, true);
  AddCurve(graph, steps.Of(Step::Gap), "", {Vermilion, CurveWidth, true}, false);
  AddMarks(graph, std::move(comments));
}

}  // namespace

bool IsDepthKnown(const ChartRecord& chart) { return chart.SelectedDepth >= 0 || chart.ManualDepth >= 0; }

Graph MakeChartGraph(const ChartReading& reading, const ChartViewOptions& options) {
  Graph graph;
  graph.Title = TitleOf(reading.Chart);
  graph.Grid = options.Grid;
  graph.FontPoints = std::clamp(options.FontPoints, LeastFontPoints, MostFontPoints);
  graph.Zoom = options.Zoom;
  if (std::string why = NothingToShow(reading); !why.empty())
    graph.Notes = {std::move(why)};
  else if (options.Kind == ChartViewKind::Digitization)
    MakeDigitization(reading, graph);
  else
    MakeTimeDepth(reading, options, graph);
  return graph;
}

void DrawChartView(Surface& surface, const ChartReading& reading, const ChartViewOptions& options) {
  Draw(MakeChartGraph(reading, options), surface);
}

}  // namespace hyetex
