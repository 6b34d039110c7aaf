// What a chart type's scales, height and method are shown as, and how an operator changes them: a scale is
// measured on the paper, as so many hours or so much rain in a distance.
#pragma once

#include <string>
#include <string_view>

#include "core/records.h"
#include "core/result.h"
#include "platform/dialogs.h"

namespace hyetex {

enum class ScaleKind { Time = 0, Depth = 1 };

/// "Time Scale: 2 hours / mm", "Depth Scale: 0.1 mm of rain / mm".
std::string ScaleText(const ChartTypeRecord& type, ScaleKind scale);
/// The height with " mm".
std::string HeightText(float heightMm);

/// The same values as the program's defaults show them.
struct DefaultsTexts {
  std::string TimeScale, DepthScale, Height;
};
DefaultsTexts DefaultsTextsOf(const ChartTypeRecord& type);

/// Asks for a distance and what fits into it, and sets the scale. An answer that is no number is asked for
/// again; none, or a number that is not above 0, stops it. Whether the scale was set.
bool AskScale(Dialogs& dialogs, ChartTypeRecord& type, ScaleKind scale);

/// Asks for the distance that a pen on an arc needs. Whether it was set.
bool AskMiddleToBottom(Dialogs& dialogs, ChartTypeRecord& type);

/// Takes a number of mm, with its unit or without. Fails on any other text and a height that is not above 0.
Result<void> SetHeight(ChartTypeRecord& type, std::string_view text);
/// A height box's next text, 1 mm up or down; never below 1 mm.
std::string StepHeight(std::string_view text, int direction);

}  // namespace hyetex
