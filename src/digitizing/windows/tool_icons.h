// The pictures of the tool board's squares, as resources.
#pragma once

#include <QString>
#include <array>

#include "digitizing/tools.h"

namespace hyetex {

/// Empty for an index without a tool. While zoomed the zoom tool shows the way back.
inline QString ToolIconFile(int tool, bool zoomed = false) {
  static constexpr std::array<const char*, ToolCount> Names{
      "return", "save", "redigitize", "recovered", "attach", "",       "alpha", "erase", "segment",
      "move",   "hide", "comment",    "lasso",     "zoom",   "shrink", "grow",  "level", "gap"};
  if (tool == tool::Zoom && zoomed) return QStringLiteral(":/icons/zoomout.svg");
  if (tool < 0 || tool >= ToolCount || GetToolText(tool, false).empty()) return {};
  return QStringLiteral(":/icons/%1.svg").arg(QLatin1String(Names[static_cast<std::size_t>(tool)]));
}

}  // namespace hyetex
