#include "scan/trace_review.h"

#include <algorithm>
#include <cmath>

namespace hyetex {
namespace {

constexpr double HoursADay = 24;
constexpr double Near = 1.0 / 60;  // hours: points are pressed on whole report units

}  // namespace

TraceWish WishOf(const Session& session) {
  const ChartRecord& chart = session.Chart;
  return {.Paper = session.Line.Scales().ChartType,
          .StartHour = (chart.StartTime - std::floor(chart.StartTime)) * HoursADay,
          .Hours = (chart.EndTime - chart.StartTime) * HoursADay,
          .EyedDepth = chart.EyedDepth,
          .GageDepth = chart.ManualDepth,
          .Start = std::nullopt};
}

const TraceDoubt* TraceReview::Shown() const {
  return shown_ < 0 ? nullptr : &doubts_[static_cast<std::size_t>(shown_)];
}

void TraceReview::Step(bool forward) {
  const int count = static_cast<int>(doubts_.size());
  if (count == 0) return;
  if (shown_ < 0)
    shown_ = forward ? 0 : count - 1;
  else
    shown_ = (shown_ + (forward ? 1 : count - 1)) % count;
}

bool TraceReview::Leave() { return std::exchange(shown_, -1) >= 0; }

void TraceReview::Confirm() {
  if (shown_ < 0) return;
  doubts_.erase(doubts_.begin() + shown_);
  if (shown_ >= static_cast<int>(doubts_.size())) shown_ = doubts_.empty() ? -1 : 0;
}

std::string TraceReview::Words() const {
  if (shown_ < 0) return {};
  return "Doubt " + std::to_string(shown_ + 1) + " of " + std::to_string(doubts_.size()) + ": " +
         Shown()->Why;
}

std::pair<int, int> StretchOf(const TraceDoubt& doubt, const Trace& line) {
  if (doubt.What == TraceDoubt::Kind::Chart) return {0, -1};
  const int last = line.LastPoint();
  const auto hour = [&](int point) { return line.TimeTo(point) * HoursADay; };
  int first = 0;
  while (first <= last && hour(first) < doubt.FromHour - Near) ++first;
  int end = first;
  while (end <= last && hour(end) <= doubt.ToHour + Near) ++end;
  if (last < 1) return {0, -1};
  return {std::clamp(first - 1, 0, last), std::clamp(end, 0, last)};
}

}  // namespace hyetex
