// Rain in steps of a clock: minutes, hours, days, months, years.
#pragma once

#include <functional>
#include <vector>

#include "rain/rain_rows.h"

namespace hyetex {

struct RainStep {
  RainTime Start = 0, End = 0;
  double Depth = 0;                         ///< mm, of what is known
  double Covered = 0;                       ///< the share of its time whose depth is known, 0 to 1
  RainTrust Trust = RainTrust::Acceptable;  ///< of the worst row in it

  /// Nothing is known of it, which is not the same as no rain.
  bool IsGap() const { return Covered == 0 && Depth == 0; }
};

/// Gives every step of the span, also those that nothing is known of, in the order of time; the rain of a row
/// is spread evenly over its time, that of a moment belongs to the step that begins there or holds it.
/// Without ends of the span the steps go from the first piece to the last. The sum of all steps is that of
/// all pieces. Steps at the ends of a span are whole ones: what of them lies outside it is not covered.
class RainSteps : public RainSink {
 public:
  using Visit = std::function<void(const RainStep&)>;
  RainSteps(RainStepKind kind, const RainClock& clock, RainSpan span, Visit visit);

  void Take(const RainPiece& piece) override;
  void End() override;

 private:
  void Begin(RainTime time);
  void Give();

  RainStepKind kind_;
  RainClock clock_;
  RainSpan span_;
  Visit visit_;
  bool begun_ = false;
  RainTime begin_ = 0, next_ = 0, covered_ = 0;
  RainSum depth_ = 0;
  RainTrust trust_ = RainTrust::Acceptable;
};

/// A year, or a month, by its days.
struct RainPeriod {
  int Year = 0, Month = 0;  ///< month 0: the whole year
  RainTime Start = 0, End = 0;
  double Depth = 0;    ///< mm
  double Covered = 0;  ///< the share of its time
  int Days = 0;        ///< that it has
  int WholeDays = 0;   ///< whose whole time is covered
  int WetDays = 0;     ///< with rain
};

/// Sums days into months or years; takes them in the order of time.
class RainPeriods {
 public:
  RainPeriods(RainStepKind kind, const RainClock& clock) : kind_(kind), clock_(clock) {}
  void Add(const RainStep& day);
  const std::vector<RainPeriod>& Periods() const { return periods_; }

 private:
  RainStepKind kind_;
  RainClock clock_;
  std::vector<RainPeriod> periods_;
  RainSum depth_ = 0;
  double days_ = 0;
};

/// The depth between moments, several spans at once, which may overlap.
struct RainInterval {
  RainTime Start = 0, End = 0;
  double Depth = 0;    ///< mm, of what is known from Start on and before End
  double Covered = 0;  ///< share of its time
};
class RainSums : public RainSink {
 public:
  explicit RainSums(std::vector<RainInterval> intervals);
  void Take(const RainPiece& piece) override;
  void End() override;
  /// In the order they came in, complete after End().
  const std::vector<RainInterval>& Intervals() const { return intervals_; }

 private:
  struct Moment {
    RainTime Time = 0;
    RainSum Depth = 0;
    RainTime Covered = 0;
  };
  std::vector<RainInterval> intervals_;
  std::vector<Moment> moments_;  // in the order of time, each once
  std::size_t next_ = 0;
  RainSum depth_ = 0;
  RainTime covered_ = 0;
};

}  // namespace hyetex
