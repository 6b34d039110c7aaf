#include "staging/manager/chart_type_editing.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/numbers.h"

namespace hyetex {
namespace {

constexpr int Decimals = 3;

struct ScaleForm {
  float ChartTypeRecord::*Value;
  std::string_view Name, Unit;
  std::string_view Title, Measure, Content;
};
// By ScaleKind.
constexpr std::array<ScaleForm, 2> Scales{{
    {&ChartTypeRecord::TimeScale, "Time Scale: ", " hours / mm", "Changing the time scale",
     "Please measure a distance and count the number of hours in it",
     "How many hours fit into this distance"},
    {&ChartTypeRecord::DepthScale, "Depth Scale: ", " mm of rain / mm", "Changing the depth scale",
     "Please measure a distance and count the depth of rain in it",
     "How many millimeters of rain fit into this distance"},
}};

}  // namespace

std::string ScaleText(const ChartTypeRecord& type, ScaleKind scale) {
  const ScaleForm& form = Scales[static_cast<std::size_t>(scale)];
  return std::string(form.Name) + RoundedText(type.*form.Value, Decimals) + std::string(form.Unit);
}

std::string HeightText(float heightMm) { return ShortText(heightMm) + " mm"; }

DefaultsTexts DefaultsTextsOf(const ChartTypeRecord& type) {
  return {"Time Scale Factor: " + RoundedText(type.TimeScale, Decimals) + " hrs/mm",
          "Depth Scale Factor: " + RoundedText(type.DepthScale, Decimals) + " mm of rain/mm",
          "Chart Total Height: " + RoundedText(type.ChartHeightMm, Decimals)};
}

bool AskScale(Dialogs& dialogs, ChartTypeRecord& type, ScaleKind scale) {
  const ScaleForm& form = Scales[static_cast<std::size_t>(scale)];
  const std::string title(form.Title);
  dialogs.MessageBox(title, std::string(form.Measure));
  const auto ask = [&](std::string_view prompt) {
    return LeadingFloat(dialogs.InputBox(title, std::string(prompt)).value_or(""));
  };
  const float length = ask("What is the length (mm) of the distance");
  if (!(length > 0)) return false;
  const float content = ask(form.Content);
  if (!(content > 0)) return false;
  const float value = content / length;
  if (!std::isfinite(value) || !(value > 0)) return false;
  type.*form.Value = value;
  return true;
}

bool AskMiddleToBottom(Dialogs& dialogs, ChartTypeRecord& type) {
  const auto answer =
      dialogs.InputBox("Setting a non-linear chart type",
                       "What is the horizontal distance in mm between the middle point and the bottom point",
                       ShortText(type.MiddleToBottomMm));
  if (!answer || answer->empty()) return false;
  type.MiddleToBottomMm = LeadingFloat(*answer);
  return true;
}

Result<void> SetHeight(ChartTypeRecord& type, std::string_view text) {
  const float height = LeadingFloat(text);
  if (!(height > 0)) return Failure("The chart height must be more than 0 mm.");
  type.ChartHeightMm = height;
  return {};
}

std::string StepHeight(std::string_view text, int direction) {
  return HeightText(std::max(1.0F, LeadingFloat(text) + static_cast<float>(direction)));
}

}  // namespace hyetex
