#include "digitizing/status_panels.h"

#include <array>
#include <charconv>
#include <cmath>

#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"

namespace hyetex {
namespace {

std::string Hexadecimal(int number) {
  std::array<char, 8> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
  return UpperAscii(std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data())));
}

}  // namespace

const StatusPanels::Texts* StatusPanels::Update(const Session& session, const DeskState& state) {
  const Trace& line = session.Line;
  const int last = line.LastPoint();
  const std::tuple now(last >= 0, session.TotalDepth(last), session.PointTime(last), state.CursorButton);
  if (isShown_ && now == shown_) return nullptr;
  shown_ = now;
  isShown_ = true;
  const auto& [hasPoints, depth, time, button] = shown_;
  texts_ = {};
  if (!hasPoints) return &texts_;
  if (!line.Scales().Is(ChartMethod::TippingBucket)) texts_.Depth = RoundedText(depth, 2) + " cm";
  texts_.Time = GeneralDateText(Round(time * 24 * 4, 0) / 4 / 24);
  if (button >= 0) texts_.Button = Hexadecimal(button);
  return &texts_;
}

ScaleCaptions CaptionsOf(const ChartTypeRecord& paper, const DeskState& state) {
  return {"Page Angle  " + RoundedText(state.PageAngle * 180 / 3.14159, 1),
          "Horizontal Scale : 1 Hour = " + ShortText(1 / paper.TimeScale) + " " + "mm ",
          "Vertical Scale : 1mm of water = " + ShortText(1 / paper.DepthScale) + " " + "mm "};
}

std::string CursorText(const DeskState& state) {
  if (!state.Reading) return {};
  const Date time = state.Reading->Time;
  const std::string text = GeneralDateText(std::floor(time)) + " " + TimeText(time).substr(0, 5);
  if (!state.Reading->Depth) return text;
  std::string depth = ShortText(Round(*state.Reading->Depth, 1));
  if (depth.find('.') == std::string::npos) depth += ".0";
  return text + "   " + depth + " mm";
}

}  // namespace hyetex
