#include "scan/trace_review.h"

#include <algorithm>
#include <cmath>

namespace hyetex {
namespace {

constexpr double HoursADay = 24;
constexpr double EndMm = 0.3;      // a bend so near to one of the two points is that point
constexpr double Near = 1.0 / 60;  // hours: points are pressed on whole report units

}  // namespace

const TraceDoubt* TraceReview::Shown() const {
  return shown_ < 0 ? nullptr : &doubts_[static_cast<std::size_t>(shown_)];
}

bool TraceReview::Step(bool forward) {
  const int count = static_cast<int>(doubts_.size());
  const int next = shown_ >= 0 ? shown_ + (forward ? 1 : -1) : forward ? left_ : -1;
  const bool isOne = next >= 0 && next < count;
  shown_ = isOne ? next : -1;
  left_ = isOne ? next : 0;
  return isOne;
}

bool TraceReview::Leave() {
  if (shown_ < 0) return false;
  left_ = std::exchange(shown_, -1);
  return true;
}

void TraceReview::Confirm() {
  if (shown_ < 0) return;
  doubts_.erase(doubts_.begin() + shown_);
  if (shown_ >= static_cast<int>(doubts_.size())) shown_ = doubts_.empty() ? -1 : 0;
  left_ = std::max(shown_, 0);
}

std::string TraceReview::Words() const {
  if (shown_ < 0) return {};
  return "Doubt " + std::to_string(shown_ + 1) + " of " + std::to_string(doubts_.size()) + ": " +
         Shown()->Why;
}

std::pair<int, int> StretchOf(const TraceDoubt& doubt, const Trace& line) {
  if (doubt.What == TraceDoubt::Kind::Chart || doubt.LastPoint < doubt.FirstPoint) return {0, -1};
  const int last = line.LastPoint();
  const auto hour = [&](int point) { return line.TimeTo(point) * HoursADay; };
  int first = 0;
  while (first <= last && hour(first) < doubt.FromHour - Near) ++first;
  int end = first;
  while (end <= last && hour(end) <= doubt.ToHour + Near) ++end;
  if (last < 1) return {0, -1};
  return {std::clamp(first - 1, 0, last), std::clamp(end, 0, last)};
}

Result<std::vector<std::pair<double, double>>> TraceBetween(const ScanTracer& tracer, const Trace& line,
                                                            int first, int last) {
  const ChartScales& scales = line.Scales();
  const ChartPaper& page = line.Paper(0);
  const double units = scales.Tablet.UnitsPerMmVertical();
  const auto along = [&](int point) { return line.TimeAlong(point, 0) / units; };
  const auto height = [&](int point) { return line.HeightOf(point, 0) / units; };
  const double hoursPerMm = scales.ChartType.TimeScale;
  const double from = along(first), to = along(last);
  if (to - from < EndMm) return Failure("the two points lie too near to each other");
  const ScanTrace traced = tracer.Between(from * hoursPerMm, height(first), to * hoursPerMm, height(last));
  std::vector<std::pair<double, double>> places;
  const double length = BottomLength(page);
  const double right = (page.BottomRightX - page.BottomLeftX) / length,
               up = (page.BottomRightY - page.BottomLeftY) / length;
  for (const ScanPoint& point : traced.Points) {
    if (point.How == ScanPoint::Step::GapEnd)
      return Failure("the line has no ink from the one point to the other");
    if (point.How == ScanPoint::Step::Segment)
      return Failure("the pen is set down anew between the one point and the other");
    if (point.AlongMm < from + EndMm || point.AlongMm > to - EndMm) continue;
    const double x = point.AlongMm * units, y = point.HeightMm * units;
    places.emplace_back(std::round(page.BottomLeftX + x * right - y * up),
                        std::round(page.BottomLeftY + x * up + y * right));
  }
  if (traced.Points.empty()) return Failure("no line leads from the one point to the other");
  return places;
}

}  // namespace hyetex
