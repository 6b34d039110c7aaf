#include "rain/rain_steps.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/dates.h"

namespace hyetex {

RainSteps::RainSteps(RainStepKind kind, const RainClock& clock, RainSpan span, Visit visit)
    : kind_(kind), clock_(clock), span_(span), visit_(std::move(visit)) {}

void RainSteps::Begin(RainTime time) {
  begun_ = true;
  begin_ = StepBegin(time, kind_, clock_);
  next_ = NextStep(begin_, kind_, clock_);
}

void RainSteps::Give() {
  visit_({begin_, next_, MmOf(depth_), static_cast<double>(covered_) / static_cast<double>(next_ - begin_),
          trust_});
  begin_ = next_;
  next_ = NextStep(begin_, kind_, clock_);
  depth_ = covered_ = 0;
  trust_ = RainTrust::Acceptable;
}

void RainSteps::Take(const RainPiece& piece) {
  if (!begun_) Begin(span_.From ? *span_.From : piece.Start);
  while (piece.Start >= next_) Give();
  RainTime from = piece.Start;
  RainAmount fallen = 0;
  while (true) {
    const RainTime to = std::min(piece.End, next_);
    const RainAmount until = to == piece.End ? piece.Depth : DepthUntil(piece, to);
    depth_ += until - fallen;
    covered_ += to - from;
    trust_ = std::max(trust_, piece.Trust);
    if (piece.End <= next_) return;
    fallen = until;
    from = to;
    Give();
  }
}

void RainSteps::End() {
  if (!begun_) {
    if (!span_.From || !span_.To || *span_.From >= *span_.To) return;
    Begin(*span_.From);
  }
  Give();
  if (span_.To)
    while (begin_ < *span_.To) Give();
}

void RainPeriods::Add(const RainStep& day) {
  const RainTime begin = StepBegin(day.Start, kind_, clock_);
  if (periods_.empty() || periods_.back().Start != begin) {
    const CalendarTime at = ToCalendar(ToLocal(begin, clock_));
    const RainTime end = NextStep(begin, kind_, clock_);
    periods_.push_back({.Year = at.Year,
                        .Month = kind_ == RainMonths ? at.Month : 0,
                        .Start = begin,
                        .End = end,
                        .Days = static_cast<int>((end - begin) / DaySeconds)});
    depth_ = 0;
    days_ = 0;
  }
  RainPeriod& period = periods_.back();
  depth_ += AmountOf(day.Depth);
  days_ += day.Covered;
  period.Depth = MmOf(depth_);
  period.Covered = days_ / period.Days;
  period.WholeDays += day.Covered == 1 ? 1 : 0;
  period.WetDays += day.Depth > 0 ? 1 : 0;
}

RainSums::RainSums(std::vector<RainInterval> intervals) : intervals_(std::move(intervals)) {
  for (const RainInterval& interval : intervals_)
    for (const RainTime time : {interval.Start, interval.End}) moments_.push_back({time});
  std::ranges::sort(moments_, {}, &Moment::Time);
  const auto isSame = [](const Moment& one, const Moment& other) { return one.Time == other.Time; };
  moments_.erase(std::unique(moments_.begin(), moments_.end(), isSame), moments_.end());
}

void RainSums::Take(const RainPiece& piece) {
  for (; next_ < moments_.size() && moments_[next_].Time <= piece.Start; ++next_)
    moments_[next_] = {moments_[next_].Time, depth_, covered_};
  for (; next_ < moments_.size() && moments_[next_].Time < piece.End; ++next_) {
    const RainTime time = moments_[next_].Time;
    moments_[next_] = {time, depth_ + DepthUntil(piece, time), covered_ + time - piece.Start};
  }
  depth_ += piece.Depth;
  covered_ += piece.End - piece.Start;
}

void RainSums::End() {
  for (; next_ < moments_.size(); ++next_) moments_[next_] = {moments_[next_].Time, depth_, covered_};
  const auto at = [&](RainTime time) { return *std::ranges::lower_bound(moments_, time, {}, &Moment::Time); };
  for (RainInterval& interval : intervals_) {
    if (interval.End <= interval.Start) continue;
    const Moment from = at(interval.Start), to = at(interval.End);
    interval.Depth = MmOf(to.Depth - from.Depth);
    interval.Covered =
        static_cast<double>(to.Covered - from.Covered) / static_cast<double>(interval.End - interval.Start);
  }
}

}  // namespace hyetex
