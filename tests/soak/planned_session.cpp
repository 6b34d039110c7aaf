#include "soak/planned_session.h"

#include <algorithm>

#include "core/comments.h"
#include "digitizing/tablets.h"
#include "digitizing/tools.h"
#include "soak/desk_program.h"
#include "tracing/operator.h"
#include "tracing/rain.h"

namespace hyetex::test {
namespace {

using Kind = JournalEvent::Kind;

// Showers between dry hours, less than empties a full pen too often.
std::vector<RainPoint> SomeRain(Chance& chance, double hours) {
  std::vector<RainPoint> rain{{0, 0}};
  const int showers = Between(chance, 10, 80);
  for (int i = 1; i <= showers; ++i) {
    const double fell = Once(chance, 3) ? 0 : Between(chance, 1, 25) / 10.0;
    rain.push_back({hours * i / (showers + 1), rain.back().Rain + fell});
  }
  rain.push_back({hours, rain.back().Rain});
  return rain;
}

JournalEvent Tool(int tool) { return {.What = Kind::Tool, .Tool = tool}; }

// Whether nothing waits: the step is a press that goes on from a press before it.
bool GoesOn(const std::vector<JournalEvent>& steps, std::size_t at) {
  return steps[at].What == Kind::Press && steps[at - 1].What == Kind::Press;
}

}  // namespace

std::vector<std::string> PlannedSession::Lines() const {
  std::vector<std::string> lines;
  for (const JournalEvent& step : Steps) lines.push_back(JournalLine(step));
  return lines;
}

std::string MenuEntryOf(const JournalEvent& step) {
  if (step.What == Kind::Undo) return "mnuUndo";
  return step.What == Kind::Redo ? "mnuRedo" : "";
}

bool IsComment(const JournalEvent& step) { return step.What == Kind::Comment || step.What == Kind::General; }

Result<PlannedSession> PlanSession(Chance& chance, const ChartTypeRecord& paper, double hours, int tablet) {
  const std::vector<RainPoint> rain = SomeRain(chance, hours);
  RainChart chart;
  chart.Paper = paper;
  if (Once(chance, 4)) chart.Gap = {hours * 0.5, hours * 0.55};
  if (Once(chance, 4)) chart.Moved = {hours * 0.7, 5};
  const auto line = DrawRain(rain, chart);
  if (!line) return Failure(line.error());
  PageLaid laid;
  laid.AngleDegrees = Between(chance, -30, 30) / 100.0;
  laid.GapReason = SoakComment;
  const TabletType& type = TabletTypes()[static_cast<std::size_t>(tablet)];
  const auto traced = TracePage(*line, type, laid);
  if (!traced) return Failure(traced.error());

  PlannedSession plan;
  plan.RainMm = rain.back().Rain;
  constexpr std::size_t PageAndFirst = 4;
  for (std::size_t i = 0; i < traced->size(); ++i) {
    const JournalEvent& step = (*traced)[i];
    const bool mayTurn = i > PageAndFirst && i + 1 < traced->size() && GoesOn(*traced, i);
    if (mayTurn && Once(chance, 40)) plan.Steps.push_back(Tool(tool::NewSegment));
    plan.Steps.push_back(step);
    if (!mayTurn || !Once(chance, 12)) continue;
    switch (Between(chance, 0, 3)) {
      case 0:  // a slip, taken back
        plan.Steps.insert(plan.Steps.end(), {Tool(tool::Erase), step});
        break;
      case 1:
        plan.Steps.insert(plan.Steps.end(), {{.What = Kind::Undo}, {.What = Kind::Redo}});
        break;
      case 2:
        plan.Steps.insert(plan.Steps.end(), {Tool(tool::Alpha), Tool(tool::Alpha)});
        break;
      default:
        plan.Steps.insert(plan.Steps.end(),
                          {Tool(tool::GeneralComment), {.What = Kind::General, .Text = SoakComment}});
        break;
    }
  }
  return plan;
}

}  // namespace hyetex::test
