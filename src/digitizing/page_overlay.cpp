#include "digitizing/page_overlay.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "core/dates.h"
#include "core/numbers.h"

namespace hyetex {
namespace {

constexpr double LeastMm = 3;    // between two lines
constexpr int MostLines = 1000;  // of a kind; no paper on a tablet has so many
constexpr int PiecesOfArc = 48;  // up the height of the paper
constexpr double MinuteSteps[] = {1,   2,   5,   10,   15,       30,       60,       2 * 60,
                                  180, 360, 720, 1440, 2 * 1440, 7 * 1440, 28 * 1440};

// The paper in use as a frame: along its bottom line and above it, in report units.
class Frame {
 public:
  explicit Frame(const Session& session)
      : scales_(session.Line.Scales()),
        paper_(session.Line.Paper(session.Line.CurrentPaper())),
        length_(BottomLength(paper_)) {
    cos_ = (paper_.BottomRightX - paper_.BottomLeftX) / length_;
    sin_ = (paper_.BottomRightY - paper_.BottomLeftY) / length_;
  }

  double Length() const { return length_; }
  double Height() const { return scales_.HeightUnits(); }
  std::pair<double, double> At(double along, double up) const {
    return {paper_.BottomLeftX + along * cos_ - up * sin_, paper_.BottomLeftY + along * sin_ + up * cos_};
  }
  /// How much farther along the paper's time is than the bottom line, at this height: the pen's arc.
  double ArcAt(double up) const {
    const auto [x, y] = At(0, up);
    return TimeAlongPaper(scales_, x, y, paper_) - AlongBottom(x, y, paper_);
  }

 private:
  const ChartScales& scales_;
  const ChartPaper& paper_;
  double length_, cos_ = 1, sin_ = 0;
};

double HourStepDays(double daysPerMm) {
  for (double minutes : MinuteSteps)
    if (minutes / 1440 / daysPerMm >= LeastMm) return minutes / 1440;
  return *std::rbegin(MinuteSteps) / 1440;
}

double DepthStep(double depthPerMm) {
  const double least = LeastMm * depthPerMm, ten = std::pow(10, std::floor(std::log10(least)));
  for (double step : {1.0, 2.0, 5.0})
    if (step * ten >= least * (1 - 1e-6)) return step * ten;
  return 10 * ten;
}

std::string HourLabel(Date time) {
  const CalendarTime t = ToCalendar(time);
  const auto two = [](int number) { return (number < 10 ? "0" : "") + ShortText(number); };
  return t.Hour == 0 && t.Minute == 0 ? two(t.Day) + "/" + two(t.Month) : two(t.Hour) + ":" + two(t.Minute);
}

// One hour, in the pieces that lie within the paper's length.
void AddHour(const Frame& frame, double along, Date time, std::vector<OverlayLine>& lines) {
  const bool arc = frame.ArcAt(frame.Height() / 2) > 0;
  const int pieces = arc ? PiecesOfArc : 1;
  OverlayLine line{true, time, 0, HourLabel(time), {}};
  const auto finish = [&] {
    if (line.Points.size() > 1) {
      lines.push_back(line);
      line.Label.clear();
    }
    line.Points.clear();
  };
  for (int i = 0; i <= pieces; ++i) {
    const double up = frame.Height() * i / pieces, foot = along - (arc ? frame.ArcAt(up) : 0);
    if (foot >= -1e-6 && foot <= frame.Length() + 1e-6)
      line.Points.push_back(frame.At(foot, up));
    else
      finish();
  }
  finish();
}

void AddHours(const Session& session, const Frame& frame, std::vector<OverlayLine>& lines) {
  const Trace& trace = session.Line;
  const TabletExtents& tablet = trace.Scales().Tablet;
  const int paper = trace.CurrentPaper(), first = trace.Paper(paper).FirstPoint;
  const bool traced = first <= trace.LastPoint();
  const Date origin = session.PointTime(traced ? first : trace.LastPoint());
  const double originAlong = traced ? trace.TimeAlong(first, paper) : 0;
  const double daysPerMm = static_cast<double>(trace.Scales().ChartType.TimeScale) / 24;
  const double daysPerUnit = daysPerMm * tablet.TabletWidthMm / tablet.TabletWidthUnits;
  const double step = HourStepDays(daysPerMm);

  // Arcs lie to the left of their feet, so those with a foot beyond the right end may still cross the paper.
  const double arc = frame.ArcAt(frame.Height() / 2);
  const double from = origin - originAlong * daysPerUnit;
  const double to = from + (frame.Length() + std::max(arc, 0.0)) * daysPerUnit;
  const double firstStep = std::ceil(from / step - 1e-6);
  for (int i = 0; i < MostLines; ++i) {
    const Date time = (firstStep + i) * step;
    if (!(time <= to + 1e-6 * step)) break;
    AddHour(frame, originAlong + (time - origin) / daysPerUnit, time, lines);
  }
}

void AddDepths(const Session& session, const Frame& frame, std::vector<OverlayLine>& lines) {
  const ChartScales& scales = session.Line.Scales();
  if (scales.Is(ChartMethod::TippingBucket)) return;
  const double depthPerMm = scales.ChartType.DepthScale;
  const double unitsPerMm = scales.Tablet.UnitsPerMmVertical(), step = DepthStep(depthPerMm);
  for (int i = 0; i < MostLines; ++i) {
    const double depth = i * step, up = depth / depthPerMm * unitsPerMm;
    if (!(up <= frame.Height() * (1 + 1e-6))) break;
    const auto shown = static_cast<float>(depth);
    lines.push_back(
        {false, 0, shown, ShortText(shown) + " mm", {frame.At(0, up), frame.At(frame.Length(), up)}});
  }
}

}  // namespace

std::vector<OverlayLine> MakePageOverlay(const Session& session) {
  std::vector<OverlayLine> lines;
  const ChartPaper& paper = session.Line.Paper(session.Line.CurrentPaper());
  if (!IsCalibrated(paper) || BottomLength(paper) == 0 || CheckChartScales(session.Line.Scales()))
    return lines;
  const Frame frame(session);
  AddHours(session, frame, lines);
  AddDepths(session, frame, lines);
  return lines;
}

}  // namespace hyetex
