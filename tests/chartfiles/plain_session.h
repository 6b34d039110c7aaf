// A session on a tablet whose report unit is a millimetre, with a page along its bottom edge: what is pressed
// at (x, y) is x mm along and y mm above the bottom line.
#pragma once

#include "core/session.h"

namespace hyetex::test {

/// One mm of paper is a day and a mm of water, unless `type` says otherwise.
inline Session PlainSession(ChartRecord chart,
                            ChartTypeRecord type = {.Name = "Plain", .DepthScale = 1, .TimeScale = 24}) {
  Session session({1000, 1000, 1000, 1000}, std::move(type), std::move(chart));
  session.Line.SetPage(0, 0, 500, 0);
  return session;
}

}  // namespace hyetex::test
