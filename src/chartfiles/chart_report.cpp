#include "chartfiles/chart_report.h"

#include <cmath>
#include <numbers>
#include <span>

#include "core/comments.h"
#include "core/numbers.h"

namespace hyetex {
namespace {

constexpr std::string_view Break = "\r\n";

std::string AlphaLines(const Trace& line) {
  std::string text = "Alpha Values: ";
  text += Break;
  int count = 0;
  for (int i = 1; i <= line.LastPoint(); ++i) {
    if (!HasCode(line.Point(i).Comment, CodeAlpha)) continue;
    const double dx = line.Point(i).TrueX() - line.Point(i - 1).TrueX();
    const double dy = line.Point(i).Y - line.Point(i - 1).Y;
    text += "Alpha " + ShortText(++count) + " = ";
    // Without a drop the pen has no slant to measure.
    text += dy == 0 ? "none"
                    : RoundedText(
                          std::tan(line.Paper(line.PaperOfPoint(i)).Angle + std::atan(std::abs(dx / dy))), 2);
    text += Break;
  }
  return text.append(Break);
}

// "Difference = 0.4 mm , 3.2%"; sets the factor and its caption. The percentage is of the eyed depth.
std::string DifferenceLine(float eyed, double other, std::string_view name, std::int16_t& factor,
                           std::string& caption) {
  std::string text = "Difference = " + (eyed == NoDepth ? "unknown" : RoundedText(eyed - other, 2) + " mm");
  const double percent = Round((eyed - other) / eyed * 100, 1);
  const bool known = eyed != 0 && eyed != NoDepth;
  factor = known ? RoundToInt16(percent) : std::int16_t{0};
  caption = std::string(name) + " Rain Factor = " + (known ? ShortText(factor) + "%" : "unknown");
  if (known) text += " , " + ShortText(percent) + "%";
  return text.append(Break);
}

std::string DepthLine(std::string_view what, double depth) {
  const std::string value = depth == NoDepth ? "unknown" : ShortText(static_cast<float>(depth)) + " mm";
  return std::string(what) + " = " + value + std::string(Break);
}

// The lines on the time that the trace implies against the time that the operator stated.
std::string TimeLines(const Session& session, ChartReport& report) {
  const ChartRecord& chart = session.Chart;
  const Date calculated = session.PointTime(session.Line.LastPoint());
  std::string text(Break);
  text += "User defined Begining Time and Date: " + DateText(chart.StartTime) + std::string(Break);
  text += "User defined Ending Time and Date: " + DateText(chart.EndTime) + std::string(Break);
  text += "Calculated Ending Time and Date: " + DateText(calculated) + std::string(Break);

  const double duration = chart.EndTime - chart.StartTime;
  const double difference = std::abs(chart.EndTime - calculated);
  const double toSecond = std::nearbyint(difference * SecondsPerDay) / SecondsPerDay;
  const double days = std::floor(toSecond);
  text += "Difference: ";
  if (days >= 1) text += days == 1 ? "1 day and " : ShortText(days) + " days and ";
  text += TimeText(toSecond - days);
  if (duration != 0) text += " , " + RoundedText(difference / duration * 100, 1) + "%";
  text += Break;
  if (duration != 0 && difference / duration > 0.1)
    text +=
        "Attention: The difference between the user's defined time and the calculated time is greater than "
        "10%" +
        std::string(Break);

  report.Factors[2] =
      duration != 0 ? RoundToInt16((chart.EndTime - calculated) / duration * 100) : std::int16_t{0};
  report.Captions[2] =
      "Time Length Factor = " + (duration != 0 ? ShortText(report.Factors[2]) + "%" : "unknown");
  return text;
}

struct Tolerance {
  float Below;  // values below this one
  float Share;
};
constexpr Tolerance DepthTolerances[] = {{5, 0.10F}, {10, 0.08F}, {15, 0.06F}, {INFINITY, 0.05F}};
constexpr Tolerance TimeTolerances[] = {{0.5F, 0.10F}, {0.8F, 0.08F}, {1, 0.07F}, {INFINITY, 0.06F}};

}  // namespace

void WriteReport(const Session& session, ChartReport& report) {
  const ChartRecord& chart = session.Chart;
  const double digitized = Round(session.TotalDepth(session.Line.LastPoint()), 1);
  std::string text = AlphaLines(session.Line);
  text += DepthLine("Eyed chart depth", chart.EyedDepth);
  text += DepthLine("Digitized chart depth", digitized);
  text += DifferenceLine(chart.EyedDepth, digitized, "Digitized", report.Factors[0], report.Captions[0]);
  text += Break;
  if (chart.ManualDepth > 0) {
    text += DepthLine("Eyed chart depth", chart.EyedDepth);
    text += DepthLine("Manual gage depth", chart.ManualDepth);
    text +=
        DifferenceLine(chart.EyedDepth, chart.ManualDepth, "Manual", report.Factors[1], report.Captions[1]);
  }
  text += TimeLines(session, report);
  report.Text = std::move(text);
}

std::optional<std::string> SessionError(const Session& session) {
  std::string text;
  if (session.Line.LastPoint() <= 0) text += "No points were digitized" + std::string(Break);
  if (!IsCalibrated(session.Line.Paper(0))) text += "The paper was not defined" + std::string(Break);
  if (text.empty()) return std::nullopt;
  return "Error:" + std::string(Break) + text;
}

bool FactorAlert(float factor, float value, Factor kind) {
  const std::span<const Tolerance> tolerances =
      kind == Factor::Time ? std::span<const Tolerance>(TimeTolerances) : DepthTolerances;
  for (const Tolerance& tolerance : tolerances)
    if (value < tolerance.Below) return std::abs(factor) > tolerance.Share;
  return false;
}

}  // namespace hyetex
