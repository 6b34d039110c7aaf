// The greatest depth in so many minutes, over every moment and not over steps of a clock.
#pragma once

#include <deque>
#include <optional>
#include <span>
#include <vector>

#include "rain/rain_rows.h"

namespace hyetex {

/// 5 minutes to 24 hours.
inline constexpr int RainDurations[] = {5, 10, 15, 20, 30, 45, 60, 120, 180, 360, 720, 1440};

struct RainMaximum {
  int Minutes = 0;
  double Depth = 0;  ///< mm, of what is known
  /// When the time begins, with the first rain in it; of several such times the first. Nothing where no rain
  /// fell.
  std::optional<RainTime> Start = {};
  double Covered = 0;  ///< the share of the time whose depth is known: below 1 more may have fallen
  RainSum Amount = 0;  ///< the depth to its last bit
};

/// Finds all of them exactly in one pass. The depth fallen since the beginning, over time, is a line of
/// straight parts, so that a greatest difference over a time of fixed length lies where that begins or ends
/// at an end of a part. Rain of a moment counts to every time that holds it, its ends included. Memory is
/// that of the pieces within the longest duration.
class RainMaxima : public RainSink {
 public:
  explicit RainMaxima(std::span<const int> minutes = RainDurations);
  void Take(const RainPiece& piece) override;
  void End() override;
  /// In the order of the durations, complete after End().
  const std::vector<RainMaximum>& Maxima() const { return maxima_; }

 private:
  struct Part {
    RainPiece Piece;
    RainSum Before = 0;    // fallen before it
    RainTime Covered = 0;  // known before it
  };
  struct Search {
    RainTime Length = 0;
    std::size_t Tail = 0;  // number of the first part that ends behind the begin of the time that ends here
    RainSum Best = 0;
    RainTime Start = 0;
    RainTime CoveredBefore = 0;
    std::optional<RainTime> Open = {};  // end of the best time, as long as what covers it is not all known
    RainTime Covered = 0;
  };
  const Part& At(std::size_t number) const { return parts_[number - first_]; }
  void Look(Search& search, const Part& now);
  void Try(Search& search, RainTime start, std::size_t number, const Part& now);
  static void Close(Search& search, const Part& now);

  std::vector<RainMaximum> maxima_;
  std::vector<Search> searches_;
  std::deque<Part> parts_;
  std::size_t first_ = 0;  // number of the first part that is kept
  RainSum depth_ = 0;
  RainTime covered_ = 0, longest_ = 0;
};

}  // namespace hyetex
