#include "scan/hour_labels.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace hyetex {
namespace {

constexpr std::size_t FewestLabels = 10;
constexpr double KindsApart = 0.75;   // of how the widths differ lies between their two kinds
constexpr double WrongLabels = 0.12;  // of the labels
constexpr int SurelyFewer = 2;        // wrong labels than with any other hour
constexpr int HoursAround = 6;        // that are tried, too

// In order of width: the first label of the wide kind, where the two kinds are most unlike; nothing where
// there are no two.
std::optional<std::size_t> FirstWide(std::span<const LabelWidth> labels) {
  double all = 0, squares = 0, narrow = 0, best = 0;
  for (const LabelWidth& label : labels) {
    all += label.Width;
    squares += label.Width * label.Width;
  }
  const auto count = static_cast<double>(labels.size());
  std::size_t first = 0;
  for (std::size_t i = 1; i < labels.size(); ++i) {
    narrow += labels[i - 1].Width;
    const auto few = static_cast<double>(i);
    const double apart = (all - narrow) / (count - few) - narrow / few;
    if (const double between = few * (count - few) * apart * apart / count; between > best) {
      best = between;
      first = i;
    }
  }
  if (!(best > KindsApart * (squares - all * all / count))) return std::nullopt;
  return first;
}

}  // namespace

LabelledStart StartByLabels(std::vector<LabelWidth> labels, std::span<const double> starts,
                            double startHour) {
  LabelledStart told;
  if (labels.size() < FewestLabels || starts.empty()) return told;
  std::sort(labels.begin(), labels.end(), [](const auto& a, const auto& b) { return a.Width < b.Width; });
  const auto firstWide = FirstWide(labels);
  if (!firstWide) return told;
  int fewest = std::numeric_limits<int>::max();
  // Midnight is printed as 24 or as 0.
  for (const bool midnightIsWide : {true, false}) {
    const auto wrong = [&](double start) {
      int count = 0;
      for (std::size_t i = 0; i < labels.size(); ++i) {
        const int hour = static_cast<int>(std::lround(startHour + labels[i].Hours - start));
        const int printed = (hour % 24 + 24) % 24;
        const bool wide = printed == 0 ? midnightIsWide : printed >= 10;
        if (wide != (i >= *firstWide)) ++count;
      }
      return count;
    };
    std::size_t best = 0;
    for (std::size_t i = 1; i < starts.size(); ++i)
      if (wrong(starts[i]) < wrong(starts[best])) best = i;
    const int least = wrong(starts[best]);
    // Not only the possible ones: where the labels speak for quite another hour, nothing is sure.
    int other = std::numeric_limits<int>::max();
    for (int hours = -HoursAround; hours <= HoursAround; ++hours)
      if (hours != 0) other = std::min(other, wrong(starts[best] + hours));
    if (least >= fewest) continue;
    fewest = least;
    const bool sure =
        least <= WrongLabels * static_cast<double>(labels.size()) && other >= least + SurelyFewer;
    told.Start = sure ? std::optional(best) : std::nullopt;
    told.Against = wrong(starts.front()) > std::min(least, other);
  }
  return told;
}

}  // namespace hyetex
