#include "staging/manager/chart_type_editing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "core/number_entry.h"
#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {
namespace {

constexpr int Decimals = 3;
constexpr std::string_view Unit = "mm";

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

// Asks until the answer is a number; nothing where there is none.
std::optional<float> AskNumber(Dialogs& dialogs, const std::string& title, std::string_view prompt,
                               std::string initial = {}) {
  for (;;) {
    const auto answer = dialogs.InputBox(title, std::string(prompt), initial);
    if (!answer || Trim(*answer).empty()) return std::nullopt;
    if (const auto value = TypedNumber(*answer)) return static_cast<float>(*value);
    dialogs.MessageBox(title, CheckNumber(*answer, {}).value_or(""), BoxButtons::Ok, BoxIcon::Warning);
    initial = *answer;
  }
}

// The height's number, its unit left out where it has one.
std::string_view WithoutUnit(std::string_view text) {
  text = Trim(text);
  if (text.ends_with(Unit)) text.remove_suffix(Unit.size());
  return text;
}

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
  const float length = AskNumber(dialogs, title, "What is the length (mm) of the distance").value_or(0);
  if (!(length > 0)) return false;
  const float content = AskNumber(dialogs, title, form.Content).value_or(0);
  if (!(content > 0)) return false;
  const float value = content / length;
  if (!std::isfinite(value) || !(value > 0)) return false;
  type.*form.Value = value;
  return true;
}

bool AskMiddleToBottom(Dialogs& dialogs, ChartTypeRecord& type) {
  const auto answer =
      AskNumber(dialogs, "Setting a non-linear chart type",
                "What is the horizontal distance in mm between the middle point and the bottom point",
                ShortText(type.MiddleToBottomMm));
  if (answer) type.MiddleToBottomMm = *answer;
  return answer.has_value();
}

Result<void> SetHeight(ChartTypeRecord& type, std::string_view text) {
  if (const auto refusal = CheckNumber(WithoutUnit(text), {})) return Failure(*refusal);
  const auto height = static_cast<float>(TypedNumber(WithoutUnit(text)).value_or(0));
  if (!(height > 0)) return Failure("The chart height must be more than 0 mm.");
  type.ChartHeightMm = height;
  return {};
}

std::string StepHeight(std::string_view text, int direction) {
  const auto height = static_cast<float>(TypedOrLeading(WithoutUnit(text)));
  return HeightText(std::max(1.0F, height + static_cast<float>(direction)));
}

}  // namespace hyetex
