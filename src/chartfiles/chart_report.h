// What the operator is told before a chart is saved: how the trace compares with what the chart's details
// say.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "core/session.h"

namespace hyetex {

/// The factors of a chart: how far a depth or a time lies off, as a share of what it should be.
enum class Factor { Digitized = 0, Manual = 1, Time = 2 };

struct ChartReport {
  std::string Text;                       ///< lines joined by carriage return and line feed
  std::array<std::int16_t, 4> Factors{};  ///< whole percent, by Factor
  std::array<std::string, 3> Captions;    ///< of the factors
};

/// Compares the session's trace with its chart's details. Without a manual depth the manual factor and its
/// caption keep what they held. Where a percentage has no sense (no eyed depth, a chart without duration) it
/// is left out.
void WriteReport(const Session& session, ChartReport& report);

/// Why a session has nothing to report: no points, or no paper. Nothing if it has.
std::optional<std::string> SessionError(const Session& session);

/// Whether a factor, taken without its sign, is beyond its tolerance. The tolerance falls with `value`: the
/// depth in mm, or for the time factor the chart's duration in days.
bool FactorAlert(float factor, float value, Factor kind);

}  // namespace hyetex
