#include "rain/rain_text.h"

#include <algorithm>

#include "core/numbers.h"

namespace hyetex {
namespace {

std::string Share(double covered) {
  // What is nearly all is not all, and what is nearly nothing is something.
  constexpr double least = 0.0001;
  if (covered <= 0) return "0";
  if (covered >= 1) return "1";
  return RoundedText(std::clamp(covered, least, 1 - least), 4);
}

}  // namespace

std::string DepthText(double mm) {
  const RainAmount amount = AmountOf(mm);
  if (amount < 0) return "-" + DepthText(-mm);
  constexpr RainAmount whole = 1'000'000'000;
  std::string rest = std::to_string(whole + amount % whole).substr(1);
  rest.erase(rest.find_last_not_of('0') + 1);
  return std::to_string(amount / whole) + (rest.empty() ? "" : "." + rest);
}

std::string StepLine(const RainStep& step, const RainClock& clock) {
  return IsoWithZone(step.Start, clock) + "," + IsoWithZone(step.End, clock) + "," +
         (step.IsGap() ? std::string() : DepthText(step.Depth)) + "," + Share(step.Covered) + "\n";
}

std::string MaximumLine(const RainMaximum& maximum, const RainClock& clock) {
  return std::to_string(maximum.Minutes) + "," +
         (maximum.Covered > 0 || maximum.Start ? DepthText(maximum.Depth) : "") + "," +
         (maximum.Start ? IsoWithZone(*maximum.Start, clock) : "") + "," + Share(maximum.Covered) + "\n";
}

std::string StormLine(const RainStorm& storm, const RainClock& clock) {
  return IsoWithZone(storm.Start, clock) + "," + IsoWithZone(storm.End, clock) + "," +
         DepthText(storm.Depth) + "," + RoundedText(storm.Peak, 3) + "\n";
}

}  // namespace hyetex
