// The desktop program without a screen, and an operator at it who does what he is told on standard input, a
// line a time, and answers each with a line:
//
//   open CODE ROW   activates the chart in the grid of staging         "open"
//   choose ITEM     an entry of the menus                              "chosen"
//   lost, regained  waits until the tablet's line is so                "lost", "regained"
//   comment         writes SoakComment into the window that asks       "written"
//   points          how many points the trace has                      "points 12"
//   save            saves the chart                                    "saved", or "unsaved"
//
// What cannot be done is "no WHY". Boxes are told before, as "box TEXT", and agreed to.
#pragma once

#include <string>

namespace hyetex::test {

inline constexpr const char* SoakComment = "Clock malfunction";

/// Until standard input ends.
int RunDeskProgram(const std::string& folder, int tablet, const std::string& port);

}  // namespace hyetex::test
