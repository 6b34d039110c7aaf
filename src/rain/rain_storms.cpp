#include "rain/rain_storms.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace hyetex {
namespace {

constexpr int PeakOnly[] = {PeakMinutes};

}  // namespace

RainStorms::RainStorms(double dryHours, Visit visit)
    : dry_(std::max<RainTime>(1, std::llround(dryHours * 3600))), visit_(std::move(visit)), peak_(PeakOnly) {}

void RainStorms::Take(const RainPiece& piece) {
  const RainTime length = piece.End - piece.Start;
  constexpr auto least = static_cast<RainSum>(DryMmPerHour * AmountsOfMm);
  if (piece.Depth == 0 || RainSum{piece.Depth} * 3600 < least * length) {
    dryKnown_ += length;
    dryDepth_ += piece.Depth;
    return;
  }
  if (raining_ && piece.Start - wet_ >= dry_) Finish();
  if (!raining_) {
    raining_ = true;
    bounded_ = dryKnown_ >= dry_;
    start_ = piece.Start;
    known_ = dryKnown_ = 0;
    depth_ = dryDepth_ = 0;
    peak_ = RainMaxima(PeakOnly);
  }
  known_ += dryKnown_ + length;
  depth_ += dryDepth_ + piece.Depth;
  dryKnown_ = 0;
  dryDepth_ = 0;
  wet_ = piece.End;
  peak_.Take(piece);
}

void RainStorms::Finish() {
  peak_.End();
  const RainTime length = wet_ - start_;
  visit_({.Start = start_,
          .End = wet_,
          .Depth = MmOf(depth_),
          .Peak = peak_.Maxima().front().Depth * 60 / PeakMinutes,
          .Covered = length == 0 ? 1 : static_cast<double>(known_) / static_cast<double>(length),
          .Bounded = bounded_ && dryKnown_ >= dry_});
  raining_ = false;
}

void RainStorms::End() {
  if (raining_) Finish();
}

}  // namespace hyetex
