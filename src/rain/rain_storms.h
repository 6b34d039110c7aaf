// Storms: rain between two dry spells.
#pragma once

#include <functional>

#include "rain/rain_maxima.h"

namespace hyetex {

struct RainStorm {
  RainTime Start = 0, End = 0;  ///< of its first and last rain
  double Depth = 0;             ///< mm
  double Peak = 0;              ///< mm/h, of the 5 minutes in which most fell, wherever these begin
  double Covered = 0;           ///< the share of its time whose depth is known; 1 of a storm of no length
  /// Its dry spells are known to be dry: false where a stretch without data is a part of one.
  bool Bounded = true;

  double Hours() const { return static_cast<double>(End - Start) / 3600; }
};

inline constexpr double DryHours = 6, LeastDryHours = 0.1, MostDryHours = 240;
inline constexpr int PeakMinutes = 5;
/// Rows of less rain are dry: a hundredth of a millimetre in hours is how a pen line trembles. Between the
/// rain of a storm they count to its depth.
inline constexpr double DryMmPerHour = 0.1;

/// Gives storms in the order of time. So many hours without any rain that is known end one.
class RainStorms : public RainSink {
 public:
  using Visit = std::function<void(const RainStorm&)>;
  RainStorms(double dryHours, Visit visit);
  void Take(const RainPiece& piece) override;
  void End() override;

 private:
  void Finish();

  RainTime dry_;
  Visit visit_;
  bool raining_ = false, bounded_ = true;
  RainTime start_ = 0, wet_ = 0;       // begin and last rain of the storm
  RainTime known_ = 0, dryKnown_ = 0;  // covered seconds since its begin, and behind its last rain
  RainSum depth_ = 0, dryDepth_ = 0;
  RainMaxima peak_;
};

}  // namespace hyetex
