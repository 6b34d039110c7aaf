#include "rain/rain_graphs.h"

#include <algorithm>

#include "core/numbers.h"

namespace hyetex {
namespace {

constexpr double LeastDays = 1.0 / 48, CurveWidth = 1.4, KnownInPart = 0.12, NotKnown = 0.3;

// Some steps as one.
struct Group {
  double From = 0, To = 0;
  double Depth = 0, Covered = 0;  // the share of the steps
  bool IsGap() const { return Covered == 0 && Depth == 0; }
};

std::vector<Group> GroupsOf(const std::vector<RainStep>& steps, std::size_t size, const RainClock& clock) {
  std::vector<Group> groups;
  for (std::size_t i = 0; i < steps.size(); i += size) {
    const std::size_t end = std::min(steps.size(), i + size);
    Group group{.From = ToLocal(steps[i].Start, clock), .To = ToLocal(steps[end - 1].End, clock)};
    RainSum depth = 0;
    for (std::size_t step = i; step < end; ++step) {
      depth += AmountOf(steps[step].Depth);
      group.Covered += steps[step].Covered;
    }
    group.Depth = MmOf(depth);
    group.Covered =
        group.Covered >= static_cast<double>(end - i) ? 1 : group.Covered / static_cast<double>(end - i);
    groups.push_back(group);
  }
  return groups;
}

std::string Lasting(RainTime seconds) {
  if (seconds % DaySeconds == 0)
    return seconds == DaySeconds ? "a day" : std::to_string(seconds / DaySeconds) + " days";
  if (seconds % 3600 == 0) return seconds == 3600 ? "an hour" : std::to_string(seconds / 3600) + " hours";
  return RoundedText(static_cast<double>(seconds) / 60, 1) + " minutes";
}

void AddSpan(GraphBands& bands, double from, double to) {
  if (!bands.Spans.empty() && bands.Spans.back().To == from)
    bands.Spans.back().To = to;
  else
    bands.Spans.push_back({from, to});
}

}  // namespace

Graph MakeRainGraph(const std::vector<RainStep>& steps, const RainGraphOptions& options) {
  Graph graph;
  graph.Title = options.Title;
  graph.FontPoints = options.FontPoints;
  graph.Grid = options.Grid;
  if (std::ranges::all_of(steps, &RainStep::IsGap)) {
    graph.Notes.emplace_back("No rain is known of this time");
    return graph;
  }
  const std::size_t size = (steps.size() + MostRainBars - 1) / MostRainBars;
  const std::vector<Group> groups = GroupsOf(steps, size, options.Clock);

  GraphBars bars{.Name = "Depth", .Bars = {}, .Colour = graph_colour::Blue, .OnRight = options.Mass};
  GraphCurve mass{.Name = "Sum", .Pieces = {}, .Stroke = {graph_colour::Vermilion, CurveWidth}};
  GraphBands gaps{.Name = "No data", .Spans = {}, .Colour = graph_colour::Grey, .Opacity = NotKnown};
  GraphBands parts{
      .Name = "Data in part", .Spans = {}, .Colour = graph_colour::Orange, .Opacity = KnownInPart};
  double most = 0;
  RainSum sum = 0;
  bool isOpen = false;
  for (const Group& group : groups) {
    if (group.IsGap()) {
      AddSpan(gaps, group.From, group.To);
      isOpen = false;
      continue;
    }
    if (group.Covered < 1) AddSpan(parts, group.From, group.To);
    if (group.Depth > 0) bars.Bars.push_back({group.From, group.To, group.Depth});
    if (!isOpen) mass.Pieces.push_back({{group.From, MmOf(sum)}});
    isOpen = true;
    sum += AmountOf(group.Depth);
    std::vector<GraphPoint>& piece = mass.Pieces.back();
    // Level stretches have two ends and nothing between.
    if (piece.size() > 1 && piece.back().Y == MmOf(sum) && piece[piece.size() - 2].Y == MmOf(sum))
      piece.back().X = group.To;
    else
      piece.push_back({group.To, MmOf(sum)});
    most = std::max(most, group.Depth);
  }

  constexpr double room = 1.05;
  const RainTime length = static_cast<RainTime>(size) * (steps.front().End - steps.front().Start);
  const auto depths = [&](const std::string& title, double to) {
    return GraphAxis{.Title = title, .From = 0, .To = to > 0 ? to * room : 1, .LeastSpan = 0.01};
  };
  graph.X = {.Title = options.Clock.MinutesFromGmt == 0
                          ? "GMT"
                          : "Local time (GMT" + IsoWithZone(0, options.Clock).substr(19) + ")",
             .Kind = AxisKind::Time,
             .From = groups.front().From,
             .To = groups.back().To,
             .LeastSpan = std::min(LeastDays, groups.back().To - groups.front().From)};
  const GraphAxis ofSteps = depths("mm in " + Lasting(length), most);
  graph.Left = options.Mass ? depths("Sum, mm", MmOf(sum)) : ofSteps;
  if (options.Mass) graph.Right = ofSteps;
  if (!gaps.Spans.empty()) graph.Layers.emplace_back(std::move(gaps));
  if (!parts.Spans.empty()) graph.Layers.emplace_back(std::move(parts));
  graph.Layers.emplace_back(std::move(bars));
  if (options.Mass) graph.Layers.emplace_back(std::move(mass));
  return graph;
}

std::optional<std::size_t> StepAt(const std::vector<RainStep>& steps, Date local, const RainClock& clock) {
  const auto behind = std::ranges::upper_bound(steps, FromLocal(local, clock), {}, &RainStep::Start);
  if (behind == steps.begin() || FromLocal(local, clock) >= (behind - 1)->End) return std::nullopt;
  return static_cast<std::size_t>(behind - steps.begin() - 1);
}

}  // namespace hyetex
