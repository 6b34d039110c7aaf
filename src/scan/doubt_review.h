// The doubts about a trace as an operator goes through them: where on the tablet each lies, which one is
// looked at, and which are confirmed.
#pragma once

#include <string>
#include <vector>

#include "scan/scan_trace.h"

namespace hyetex {

/// A stretch of the page, in tablet report units.
struct DoubtPlace {
  double Left = 0, Right = 0, Bottom = 0, Top = 0;
  bool WholeChart = false;  ///< it is about no stretch
  std::string Why;
  bool Confirmed = false;
};
/// Where the doubts of a trace lie whose steps StepsOfTrace() gave.
std::vector<DoubtPlace> PlacesOfDoubts(const ScanTrace& trace, const TraceWish& wish);

class DoubtReview {
 public:
  void Begin(std::vector<DoubtPlace> places);
  void Clear() { Begin({}); }

  const std::vector<DoubtPlace>& Places() const { return places_; }
  int Open() const;  ///< how many are not confirmed
  /// The one that is looked at; null if there is none.
  const DoubtPlace* Current() const { return current_ < 0 ? nullptr : &places_[Index(current_)]; }
  /// To the next one that is open, or the one before, and around the ends. False if none is.
  bool Go(bool forward);
  /// The one that is looked at is right; goes on to the next. False if none is looked at.
  bool Confirm();
  /// For the operator: "Doubt 2 of 5: ...".
  std::string Prompt() const;

 private:
  static std::size_t Index(int at) { return static_cast<std::size_t>(at); }

  std::vector<DoubtPlace> places_;
  int current_ = -1;
};

}  // namespace hyetex
