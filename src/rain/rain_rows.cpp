#include "rain/rain_rows.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/numbers.h"

namespace hyetex {
namespace {

std::string Mm(RainSum amount) { return ShortText(MmOf(amount)) + " mm"; }

std::string RowsThat(std::int64_t count, const std::string& one, const std::string& many) {
  return count == 1 ? "1 row " + one : std::to_string(count) + " rows " + many;
}

std::string Lasting(RainTime seconds) {
  if (seconds >= 2 * DaySeconds) return RoundedText(static_cast<double>(seconds) / DaySeconds, 1) + " days";
  if (seconds >= 7200) return RoundedText(static_cast<double>(seconds) / 3600, 1) + " hours";
  return RoundedText(static_cast<double>(seconds) / 60, 1) + " minutes";
}

}  // namespace

RainAmount AmountOf(double mm) { return std::llround(mm * AmountsOfMm); }

std::vector<std::string> RainRemarks::Lines() const {
  std::vector<std::string> lines;
  const auto add = [&](std::int64_t count, const std::string& one, const std::string& many,
                       const std::string& rest) {
    if (count > 0) lines.push_back(RowsThat(count, one, many) + rest);
  };
  add(Overlaps, "overlaps", "overlap",
      " earlier ones for " + Lasting(Overlapped) +
          ": that time counts once, by the row that starts later, and " + Mm(OverlappedDepth) +
          " of the others are left out");
  add(Falling, "has a depth below 0 and counts as dry", "have a depth below 0 and count as dry",
      " (together " + Mm(FallingDepth) + ")");
  add(Unknown, "has no depth: its time is not covered", "have no depth: their time is not covered", "");
  add(Moments, "has no length: its rain fell", "have no length: their rain fell",
      " at a moment (together " + Mm(MomentDepth) + ")");
  add(Untimed, "without a start or an end is left out", "without a start or an end are left out", "");
  add(Backward, "ends before it starts and is left out", "end before they start and are left out", "");
  add(TooLong, "longer than 93 days is left out", "longer than 93 days are left out", "");
  add(TooDeep, "has a depth that no rain has and is left out",
      "have depths that no rain has and are left out", "");
  add(Disordered, "has a time that the database does not sort and is left out",
      "have times that the database does not sort and are left out", "");
  if (LeftOutDepth != 0) lines.push_back("What is left out has " + Mm(LeftOutDepth));
  if (Gaps > 0)
    lines.push_back("Nothing is known of " + Lasting(Missing) + " in " +
                    (Gaps == 1 ? std::string("1 stretch") : std::to_string(Gaps) + " stretches"));
  return lines;
}

RainSweep::RainSweep(RainSpan span, std::vector<RainSink*> sinks) : span_(span), sinks_(std::move(sinks)) {}

void RainSweep::Add(const RainRow& row) {
  ++remarks_.Rows;
  const auto leaveOut = [&](std::int64_t& count) {
    ++count;
    if (row.Depth && std::abs(*row.Depth) <= MostRowDepth) remarks_.LeftOutDepth += AmountOf(*row.Depth);
  };
  if (!row.Start || !row.End) return leaveOut(remarks_.Untimed);
  if (*row.End < *row.Start) return leaveOut(remarks_.Backward);
  if (*row.End - *row.Start > MostRowSeconds) return leaveOut(remarks_.TooLong);
  if (row.Depth && !(std::abs(*row.Depth) <= MostRowDepth)) return leaveOut(remarks_.TooDeep);
  if (last_ && *row.Start < *last_) return leaveOut(remarks_.Disordered);
  last_ = row.Start;
  if (!row.Depth) {
    ++remarks_.Unknown;
    return;
  }
  RainPiece piece{*row.Start, *row.End, AmountOf(*row.Depth), row.Trust};
  if (piece.Depth < 0) {
    ++remarks_.Falling;
    remarks_.FallingDepth += piece.Depth;
    piece.Depth = 0;
  }
  CountUntil(piece.Start);
  if (piece.Start == piece.End) {
    const bool isIn = (!span_.From || piece.Start >= *span_.From) && (!span_.To || piece.Start < *span_.To);
    if (!isIn) return;
    ++remarks_.Moments;
    remarks_.MomentDepth += piece.Depth;
    return Pass(piece);
  }
  if (!open_.empty()) ++remarks_.Overlaps;
  while (!open_.empty() && open_.back().Row.End <= piece.End) {
    LeaveOut(open_.back(), open_.back().Row.End);
    open_.pop_back();
  }
  open_.push_back({piece, piece.Start});
}

// The part of a row that another one covers.
void RainSweep::LeaveOut(Open& open, RainTime to) {
  remarks_.Overlapped += to - open.Counted;
  remarks_.OverlappedDepth += DepthUntil(open.Row, to) - DepthUntil(open.Row, open.Counted);
  open.Counted = to;
}

void RainSweep::CountUntil(RainTime time) {
  while (!open_.empty()) {
    Open& top = open_.back();
    if (top.Counted < counted_) LeaveOut(top, counted_);
    const RainTime to = std::min(time, top.Row.End);
    if (to > top.Counted) {
      Give(top.Row, top.Counted, to);
      top.Counted = counted_ = to;
    }
    if (top.Counted < top.Row.End) return;
    open_.pop_back();
  }
}

void RainSweep::Give(const RainPiece& row, RainTime from, RainTime to) {
  if (span_.From) from = std::max(from, *span_.From);
  if (span_.To) to = std::min(to, *span_.To);
  if (from < to) Pass({from, to, DepthUntil(row, to) - DepthUntil(row, from), row.Trust});
}

void RainSweep::Pass(const RainPiece& piece) {
  Miss(reached_ ? reached_ : span_.From, piece.Start);
  reached_ = piece.End;
  remarks_.Covered += piece.End - piece.Start;
  remarks_.Depth += piece.Depth;
  for (RainSink* sink : sinks_) sink->Take(piece);
}

void RainSweep::Miss(std::optional<RainTime> from, RainTime to) {
  if (!from || *from >= to) return;
  ++remarks_.Gaps;
  remarks_.Missing += to - *from;
}

void RainSweep::End() {
  CountUntil(std::numeric_limits<RainTime>::max());
  if (span_.To) Miss(reached_ ? reached_ : span_.From, *span_.To);
  for (RainSink* sink : sinks_) sink->End();
}

}  // namespace hyetex
