// A chart that nobody has seen before, and the steps by which an operator traces it: with tools taken at
// random that leave the chart one that can be saved.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "core/records.h"
#include "core/result.h"
#include "digitizing/journal.h"

namespace hyetex::test {

using Chance = std::mt19937;
inline bool Once(Chance& chance, int in) { return std::uniform_int_distribution(1, in)(chance) == 1; }
inline int Between(Chance& chance, int least, int most) {
  return std::uniform_int_distribution(least, most)(chance);
}

struct PlannedSession {
  std::vector<JournalEvent> Steps;
  double RainMm = 0;

  /// As the journal has them.
  std::vector<std::string> Lines() const;
};

/// The menu's entry for a step that the tablet has no way for; empty if it has one.
std::string MenuEntryOf(const JournalEvent& step);
/// Whether the program itself asks for it, and the operator at the screen answers.
bool IsComment(const JournalEvent& step);

Result<PlannedSession> PlanSession(Chance& chance, const ChartTypeRecord& paper, double hours, int tablet);

}  // namespace hyetex::test
