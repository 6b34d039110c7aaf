// What an operator does with a chart on the tablet, as the steps of a session: lays the page down a little
// askew, presses the two ends of its bottom line, traces the pen's line with the tools that its points call
// for, and slides the paper on when it is wider than the tablet.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/result.h"
#include "digitizing/journal.h"
#include "digitizing/tablets.h"
#include "tracing/pen_line.h"

namespace hyetex {

struct PageLaid {
  double LeftMm = 15, BottomMm = 30;  ///< where the paper's bottom-left corner lies on the tablet
  double RightMarginMm = 8;           ///< of the tablet, kept free
  /// Counter-clockwise. A tablet whose units differ across and up shears a page that lies askew: on the
  /// coarsest such tablet a siphon's drop costs about a third of a minute of a daily chart at 0.3 degrees.
  double AngleDegrees = 0.3;
  std::optional<double> StripAngleDegrees = {};  ///< of the strips attached; else as the page
  std::optional<double> AttachAtHours =
      {};                           ///< slide the paper here though it fits; since the page's left end
  std::string GeneralComment = {};  ///< for the whole chart; a stream cannot carry it
  std::string GapReason = "Clock malfunction";
};

/// `line` with all the points that are pressed: a long straight stretch is pressed in between as well.
PenLine PressedPoints(const PenLine& line, const TabletType& tablet);

/// The steps of tracing `line`. Fails if a press would fall off the tablet or on what is under the tool
/// board, and if there is no place to slide the paper at.
Result<std::vector<JournalEvent>> TracePage(const PenLine& line, const TabletType& tablet,
                                            const PageLaid& laid);

/// Where a place of the page, in mm along its bottom line and up from it, is pressed, in report units.
using PlaceOfPress = std::function<std::pair<double, double>(double alongMm, double heightMm)>;
/// The steps of tracing a page that lies on the tablet as a whole, at all of `line`'s points.
std::vector<JournalEvent> TraceAt(const PenLine& line, const PlaceOfPress& place,
                                  const std::string& gapReason = PageLaid().GapReason);

}  // namespace hyetex
