// Rain as it streams: rows of CHART in the order of their times become pieces that do not overlap, and these
// go to whoever sums them. Depths are whole billionths of a millimetre on the way, so that sums are exact and
// the same in whatever order, and a row that is spread over steps leaves no rest.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "rain/rain_time.h"

namespace hyetex {

/// Billionths of a millimetre. Sums have 128 bits.
using RainAmount = std::int64_t;
__extension__ typedef __int128 RainSum;  // NOLINT(modernize-use-using): "using" takes no __extension__
inline constexpr double AmountsOfMm = 1e9;
inline double MmOf(RainSum amount) { return static_cast<double>(amount) / AmountsOfMm; }
/// To the nearest; depths beyond `MostRowDepth` are none that rain can have.
RainAmount AmountOf(double mm);
inline constexpr double MostRowDepth = 10'000;  ///< mm; more than fell anywhere in a month
inline constexpr RainTime MostRowSeconds = 93 * DaySeconds;

/// How far a row may be relied on, from the best to the worst, by its chart's rating.
enum class RainTrust : std::uint8_t { Acceptable, Unknown, Marginal, Unreliable };

struct RainRow {
  std::optional<RainTime> Start = {}, End = {};
  std::optional<double> Depth = {};  ///< mm
  RainTrust Trust = RainTrust::Unknown;
};

/// Rain that fell evenly from Start to End, or at a moment. Pieces come in the order of time and do not
/// overlap.
struct RainPiece {
  RainTime Start = 0, End = 0;
  RainAmount Depth = 0;  ///< not below 0
  RainTrust Trust = RainTrust::Unknown;
};

/// The depth that has fallen of a piece from its start to a moment within it. What two moments differ by is
/// what fell between them; nothing of a piece is lost or counted twice.
inline RainAmount DepthUntil(const RainPiece& piece, RainTime time) {
  if (time <= piece.Start) return 0;
  if (time >= piece.End) return piece.Depth;
  return static_cast<RainAmount>(static_cast<RainSum>(piece.Depth) * (time - piece.Start) /
                                 (piece.End - piece.Start));
}

/// What was odd about the rows of an instrument and span.
struct RainRemarks {
  RainSum Depth = 0;            ///< that counts
  RainSum OverlappedDepth = 0;  ///< left out since it would count twice
  RainSum FallingDepth = 0;     ///< of falling rows, below 0; they count as 0
  RainSum MomentDepth = 0;      ///< of rows of no length
  RainSum LeftOutDepth = 0;     ///< of rows that are left out and have one
  std::int64_t Rows = 0;        ///< that were read
  RainTime Covered = 0;         ///< seconds with a known depth
  RainTime Missing = 0;       ///< seconds without, between the first and the last moment or those of the span
  std::int64_t Gaps = 0;      ///< stretches that these make
  std::int64_t Overlaps = 0;  ///< rows that overlap an earlier one
  RainTime Overlapped = 0;    ///< seconds
  std::int64_t Falling = 0;   ///< rows of a depth below 0
  std::int64_t Unknown = 0;   ///< rows without a depth, whose time is not covered
  std::int64_t Moments = 0;   ///< rows of no length; they count
  std::int64_t Backward = 0, Untimed = 0, TooLong = 0, TooDeep = 0, Disordered = 0;  ///< left out

  /// A line for each, for the operator; none where nothing is odd. Gaps are among them.
  std::vector<std::string> Lines() const;
};

/// Who takes the pieces of an instrument and span.
class RainSink {
 public:
  virtual ~RainSink() = default;
  virtual void Take(const RainPiece& piece) = 0;
  /// No piece comes any more.
  virtual void End() = 0;
};

/// Rows, in the order of their start, to pieces. Of rows that overlap the one that starts later counts while
/// it lasts, as of overlapping charts the later one does; of those that start together the one that comes
/// later. Memory is that of the rows that overlap.
class RainSweep {
 public:
  RainSweep(RainSpan span, std::vector<RainSink*> sinks);
  void Add(const RainRow& row);
  void End();
  const RainRemarks& Remarks() const { return remarks_; }

 private:
  struct Open {
    RainPiece Row;
    RainTime Counted = 0;  // how far it has been
  };
  void CountUntil(RainTime time);
  void LeaveOut(Open& open, RainTime to);
  void Give(const RainPiece& row, RainTime from, RainTime to);
  void Pass(const RainPiece& piece);
  void Miss(std::optional<RainTime> from, RainTime to);

  RainSpan span_;
  std::vector<RainSink*> sinks_;
  RainRemarks remarks_;
  std::vector<Open> open_;  // each starts behind the one before and ends before it
  RainTime counted_ = std::numeric_limits<RainTime>::min();  // up to here all has been given
  std::optional<RainTime> last_;                             // start of the last row
  std::optional<RainTime> reached_;                          // end of what is covered
};

}  // namespace hyetex
