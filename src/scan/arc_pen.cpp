#include "scan/arc_pen.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "scan/doubts.h"

namespace hyetex {
namespace {

using Step = PathPoint::Step;

constexpr double EndHalfMm = 0.45;  // of a page's printed end, with what blur adds to it
constexpr double OnLineMm = 0.1;    // from a line of the hours: it is that line
constexpr double UnseenRiseMm = 0.6;
constexpr double TremblingMm = 0.5;  // of a fall
constexpr double LongestFall = 0.6;  // of the page's height
constexpr double ToldFallMm = 1;     // from here on a fall is no trembling and no paper that swells

// Of the flat chart: from, past. None where the end stands on a line of the hours.
std::pair<int, int> ColumnsOfEnd(const FlatChart& flat, double end) {
  const double lines = (end - flat.LineAtMm) / flat.AcrossMm;
  if (std::abs(lines - std::round(lines)) * flat.AcrossMm < OnLineMm) return {0, 0};
  return {std::max(0, static_cast<int>(flat.Column(end - EndHalfMm))),
          std::min(flat.Colours.cols, static_cast<int>(flat.Column(end + EndHalfMm)) + 1)};
}

// One part of the line, in which the pen was not set down anew.
void Level(std::vector<PathPoint>& points, std::size_t first, std::size_t past) {
  // Places that came back by a little are held at the last turn, and let go where it was a turn indeed.
  std::size_t turn = first;
  double held = points[first].HeightMm;
  int way = 1;
  std::vector<double> own;
  for (std::size_t i = first; i < past; ++i) own.push_back(points[i].HeightMm);
  for (std::size_t i = first + 1; i < past; ++i) {
    const double off = own[i - first] - held;
    if (way * off >= 0) {
      turn = i;
      held = own[i - first];
    } else if (std::abs(off) >= TremblingMm) {
      for (std::size_t k = turn + 1; k < i; ++k) points[k].HeightMm = own[k - first];
      way = off > 0 ? 1 : -1;
      turn = i;
      held = own[i - first];
    } else {
      points[i].HeightMm = held;
    }
  }
}

}  // namespace

void TakeOutPageEnds(PenInk& ink, const FlatChart& flat, double pageMm) {
  for (const double end : {0.0, pageMm}) {
    const auto [from, past] = ColumnsOfEnd(flat, end);
    if (from >= past) continue;
    ink.Ink.colRange(from, past).setTo(0);
    ink.Hidden.colRange(from, past).setTo(1);
  }
}

void LevelPageEnds(PenPath& path, const FlatChart& flat, double pageMm) {
  const int most = static_cast<int>(UnseenRiseMm * flat.PixelsPerMm);
  const int last = static_cast<int>(path.Columns.size()) - 1;
  const auto level = [&](int end, int seen, int row) {
    const PathColumn& outermost = path.Columns[static_cast<std::size_t>(end)];
    if (std::abs((end < seen ? outermost.EnterRow : outermost.LeaveRow) - row) > most) return;
    const auto [first, behind] = std::minmax(end, seen);
    for (int i = first; i <= behind; ++i) {
      PathColumn& at = path.Columns[static_cast<std::size_t>(i)];
      if (i != seen || end < seen) at.EnterRow = row;
      if (i != seen || end > seen) at.LeaveRow = row;
    }
  };
  if (const auto [from, past] = ColumnsOfEnd(flat, 0); from < past) {
    const int seen = past + 1 - path.FirstColumn;
    if (path.FirstColumn < past && seen <= last)
      level(0, seen, path.Columns[static_cast<std::size_t>(seen)].LeaveRow);
  }
  if (const auto [from, past] = ColumnsOfEnd(flat, pageMm); from < past) {
    const int seen = from - 2 - path.FirstColumn;
    if (last > seen && seen >= 0) level(last, seen, path.Columns[static_cast<std::size_t>(seen)].EnterRow);
  }
}

std::vector<PathPoint> PointsOnArc(std::vector<PathPoint> points, double pageHeightMm) {
  std::vector<PathPoint> pressed;
  for (PathPoint& point : points) {
    if (point.How == Step::Drop) {
      // A segment goes on in time where the line before it ends.
      if (!pressed.empty() && point.AlongMm > pressed.back().AlongMm)
        pressed.push_back({Step::Along, point.AlongMm, pressed.back().HeightMm, point.Column});
      point.How = Step::Segment;
    }
    pressed.push_back(point);
  }
  for (std::size_t first = 0, i = 1; i <= pressed.size(); ++i)
    if (i == pressed.size() || pressed[i].How != Step::Along) {
      Level(pressed, first, i);
      first = i;
    }
  std::vector<PathPoint> whole;
  for (const PathPoint& point : pressed) {
    const double fall = whole.empty() ? 0 : whole.back().HeightMm - point.HeightMm;
    if (point.How == Step::Along && fall > LongestFall * pageHeightMm) {
      const PathPoint& from = whole.back();
      whole.push_back({Step::Along, (from.AlongMm + point.AlongMm) / 2, (from.HeightMm + point.HeightMm) / 2,
                       (from.Column + point.Column) / 2});
    }
    whole.push_back(point);
  }
  return whole;
}

std::vector<TraceDoubt> DoubtsOfFalls(const std::vector<PathPoint>& points, const TraceWish& wish) {
  std::vector<TraceDoubt> doubts;
  for (std::size_t i = 1; i < points.size(); ++i) {
    std::size_t past = i;
    while (past < points.size() && points[past].How == Step::Along &&
           points[past].HeightMm < points[past - 1].HeightMm)
      ++past;
    const PathPoint &from = points[i - 1], &to = points[past - 1];
    if (past == i) continue;
    i = past;
    if (from.HeightMm - to.HeightMm < ToldFallMm) continue;
    const double begin = from.AlongMm * wish.Paper.TimeScale, end = to.AlongMm * wish.Paper.TimeScale;
    doubts.push_back({TraceDoubt::Kind::OtherWay, begin, end, 0, -1,
                      "From " + MomentText(wish, begin) + " to " + MomentText(wish, end) +
                          " the line falls by " +
                          MmText((from.HeightMm - to.HeightMm) * wish.Paper.DepthScale) +
                          " mm, which counts as rain: confirm that it is the pen's."});
  }
  return doubts;
}

}  // namespace hyetex
