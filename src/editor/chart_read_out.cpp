#include "editor/chart_read_out.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "chartfiles/series.h"
#include "core/comments.h"
#include "core/dates.h"
#include "core/numbers.h"
#include "core/text.h"
#include "editor/intensity.h"

namespace hyetex {
namespace {

constexpr double Reach = 7;  // points from the pointer to a point with a comment
constexpr const char* Between = "    ";

// The share of the way from `a` to `b` at which the way comes closest to `p`.
double ShareNearest(SurfacePoint a, SurfacePoint b, SurfacePoint p) {
  const double dx = b.X - a.X, dy = b.Y - a.Y, length = dx * dx + dy * dy;
  return length == 0 ? 0 : std::clamp(((p.X - a.X) * dx + (p.Y - a.Y) * dy) / length, 0.0, 1.0);
}

double Distance(SurfacePoint a, SurfacePoint b) { return std::hypot(a.X - b.X, a.Y - b.Y); }

std::string EntryInWords(const std::string& entry) {
  constexpr std::string_view plus = " + ";
  for (const FixedComment& fixed : FixedComments()) {
    if (!HasCode(entry, fixed.Code)) continue;
    const std::size_t text = entry.find(plus);
    return std::string(fixed.Text) +
           (text == std::string::npos ? "" : ": " + entry.substr(text + plus.size())) + " (" +
           CodeText(fixed.Code) + ")";
  }
  return entry;
}

}  // namespace

std::string CommentInWords(std::string_view comment) {
  std::string words;
  for (const std::string& entry : CommentEntries(comment))
    words += (words.empty() ? "" : "; ") + ShownText(EntryInWords(entry));
  return words;
}

ChartReadOut::ChartReadOut(const ChartReading& reading, ChartViewKind kind)
    : kind_(kind), depthKnown_(IsDepthKnown(reading.Chart)) {
  if (kind == ChartViewKind::Digitization)
    TakeTrace(reading);
  else
    TakeSeries(reading);
}

void ChartReadOut::TakeTrace(const ChartReading& reading) {
  const std::vector<RawPoint>& points = reading.RawPoints;
  placed_ = PlaceTrace(points);
  // The series may have been joined to longer steps; here each point that counts has its own. The points have
  // had the pen's skew taken out already, if it was to be.
  ChartReading each{.Chart = reading.Chart, .RawPoints = points};
  BuildSeries(false, 0, each);
  std::size_t slot = 0;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const GraphPoint at{placed_.X[i], points[i].Y};
    if (!points[i].Comment.empty())
      notes_.push_back(
          {at, "Point " + ShortText(static_cast<int>(i)) + ": " + CommentInWords(points[i].Comment)});
    if (IsLeftOutOfSeries(points[i].Comment) || slot + 1 >= each.SeriesPoints.size()) continue;
    ++slot;
    if (i > 1)
      steps_.push_back({{placed_.X[i - 1], points[i - 1].Y},
                        at,
                        each.SeriesPoints[slot - 1],
                        each.SeriesPoints[slot],
                        HasCode(points[i].Comment, CodeGapEnd)});
  }
}

void ChartReadOut::TakeSeries(const ChartReading& reading) {
  const std::vector<SeriesPoint>& series = reading.SeriesPoints;
  for (std::size_t i = 1; i < series.size(); ++i) {
    const GraphPoint from{series[i - 1].Time, series[i - 1].Depth}, to{series[i].Time, series[i].Depth};
    steps_.push_back({from, to, series[i - 1], series[i], HasCode(series[i].Comment, CodeGapEnd)});
    if (!series[i].Comment.empty()) notes_.push_back({to, CommentInWords(series[i].Comment)});
  }
}

std::string ChartReadOut::At(const GraphLayout& layout, double x, double y) const {
  const Rect& plot = layout.Plot;
  if (!layout.HasPlot || x < plot.Left || x > plot.Right() || y < plot.Top || y > plot.Bottom()) return {};
  const SurfacePoint pointer{x, y};
  const GraphPoint data = layout.ToData(x, y);
  const bool isTrace = kind_ == ChartViewKind::Digitization;

  std::string text;
  const auto add = [&text](const std::string& more) { text += (text.empty() ? "" : Between) + more; };
  const Step* nearest = nullptr;
  double share = 0, closest = std::numeric_limits<double>::infinity();
  for (const Step& step : steps_) {
    if (!isTrace && data.X > step.To.X) continue;  // steps follow each other in time
    if (!isTrace) {
      nearest = &step;
      share = std::clamp((data.X - step.From.X) / (step.To.X - step.From.X), 0.0, 1.0);
      break;
    }
    const SurfacePoint from = layout.ToSurface(step.From), to = layout.ToSurface(step.To);
    const double at = ShareNearest(from, to, pointer);
    const double distance = Distance({from.X + at * (to.X - from.X), from.Y + at * (to.Y - from.Y)}, pointer);
    if (distance < closest) {
      closest = distance;
      share = at;
      nearest = &step;
    }
  }
  if (nearest != nullptr) {
    const SeriesPoint &from = nearest->Before, &to = nearest->After;
    add(GeneralDateText(from.Time + share * (to.Time - from.Time)));
    if (depthKnown_) {
      add(RoundedText(from.Depth + share * (static_cast<double>(to.Depth) - from.Depth), 2) + " mm");
      add(nearest->IsGap ? "data gap" : RoundedText(IntensityBetween(from, to), 1) + " mm/h");
    }
  }
  if (isTrace && !placed_.Strips.empty()) {
    const int strip = placed_.StripAt(data.X);
    add((placed_.Strips.size() > 1 ? "strip " + ShortText(strip + 1) + ": " : "") +
        RoundedText(data.X - placed_.Strips[static_cast<std::size_t>(strip)].Offset, 1) + " mm along, " +
        RoundedText(data.Y, 1) + " mm high");
  }
  const Note* note = nullptr;
  closest = Reach;
  for (const Note& one : notes_)
    if (const double distance = Distance(layout.ToSurface(one.At), pointer); distance <= closest) {
      closest = distance;
      note = &one;
    }
  if (note != nullptr) add(note->Text);
  return text;
}

}  // namespace hyetex
