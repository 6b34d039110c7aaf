#include "rain/rain_maxima.h"

#include <algorithm>

namespace hyetex {
namespace {

// Fallen of a piece up to a moment of it, that moment's own rain included.
RainAmount DepthWith(const RainPiece& piece, RainTime time) {
  return time >= piece.End ? piece.Depth : DepthUntil(piece, time);
}

}  // namespace

RainMaxima::RainMaxima(std::span<const int> minutes) {
  for (const int each : minutes) {
    maxima_.push_back({.Minutes = each});
    searches_.push_back({.Length = RainTime{60} * each});
    longest_ = std::max(longest_, searches_.back().Length);
  }
}

void RainMaxima::Take(const RainPiece& piece) {
  const Part now{piece, depth_, covered_};
  depth_ += piece.Depth;
  covered_ += piece.End - piece.Start;
  parts_.push_back(now);
  while (parts_.front().Piece.End < piece.Start - longest_) {
    parts_.pop_front();
    ++first_;
  }
  for (Search& search : searches_) {
    if (search.Open && *search.Open <= piece.End) Close(search, now);
    if (piece.Depth > 0) Look(search, now);
  }
}

void RainMaxima::Close(Search& search, const Part& now) {
  search.Covered = now.Covered + std::max<RainTime>(0, *search.Open - now.Piece.Start) - search.CoveredBefore;
  search.Open.reset();
}

// All times that end in this part: those that begin where an earlier part begins or ends, and the one that
// ends where this one does. What ends between parts had more, or as much, when it ended earlier.
void RainMaxima::Look(Search& search, const Part& now) {
  const RainTime low = now.Piece.Start - search.Length, high = now.Piece.End - search.Length;
  search.Tail = std::max(search.Tail, first_);
  while (At(search.Tail).Piece.End < low) ++search.Tail;
  if (now.Before + now.Piece.Depth - At(search.Tail).Before <= search.Best) return;
  std::size_t number = search.Tail;
  const auto tryAt = [&](RainTime start) {
    if (start >= low && start <= high) Try(search, start, number, now);
  };
  for (; At(number).Piece.End < high; ++number) {
    tryAt(At(number).Piece.Start);
    tryAt(At(number).Piece.End);
  }
  tryAt(At(number).Piece.Start);
  Try(search, high, number, now);
}

// `number` is of the first part that does not end before `start`.
void RainMaxima::Try(Search& search, RainTime start, std::size_t number, const Part& now) {
  const Part& first = At(number);
  const RainSum from = first.Before + DepthUntil(first.Piece, start);
  const RainSum amount = now.Before + DepthWith(now.Piece, start + search.Length) - from;
  if (amount <= search.Best) return;
  search.Best = amount;
  // The time begins with its first rain.
  while (At(number).Piece.Depth == 0 || (At(number).Piece.End == start && At(number).Piece.Start != start))
    ++number;
  const Part& wet = At(number);
  search.Start = std::max(start, wet.Piece.Start);
  search.CoveredBefore = wet.Covered + search.Start - wet.Piece.Start;
  search.Open = search.Start + search.Length;
  if (*search.Open <= now.Piece.End) Close(search, now);
}

void RainMaxima::End() {
  for (std::size_t i = 0; i < searches_.size(); ++i) {
    Search& search = searches_[i];
    if (search.Open) search.Covered = covered_ - search.CoveredBefore;
    if (search.Best == 0) search.Covered = std::min(covered_, search.Length);
    RainMaximum& maximum = maxima_[i];
    maximum.Depth = MmOf(search.Best);
    maximum.Amount = search.Best;
    if (search.Best > 0) maximum.Start = search.Start;
    maximum.Covered = static_cast<double>(search.Covered) / static_cast<double>(search.Length);
  }
}

}  // namespace hyetex
