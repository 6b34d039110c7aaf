#include "scan/path_points.h"

#include <algorithm>
#include <cmath>

namespace hyetex {
namespace {

constexpr float SeenInk = 0.18F;
constexpr float MostlyHidden = 0.5F;
constexpr double JoinMm = 0.8;     // a speck of ink does not end a blank
constexpr double EndMostMm = 0.9;  // by which strokes were followed beyond their ends
constexpr float EndInk = 0.3F;
constexpr double LiftApartMm = 2;  // a printed line may hide so much of a fall, or a dotted line lack it
constexpr int BesidePen = 6;       // columns: what has ink on both sides so far away is a line that crosses
constexpr double DashMm = 1.5, DashShare = 0.5;  // has ink: more than print that crosses
constexpr double LeastLiftMm = 0.4, SureLiftMm = 1.6;
constexpr int FallNear = 6;  // columns between a limb's top and the line of its fall

// The pen's ends at an emptying, by the ink itself: rows from `row` on in direction `step` until there is
// some.
int EndOfInk(const PenInk& ink, int column, int row, int step, double pixelsPerMm) {
  const int most = static_cast<int>(EndMostMm * pixelsPerMm);
  for (int i = 0; i <= most; ++i) {
    const int at = row + i * step;
    if (at < 0 || at >= ink.All.rows) break;
    for (int near = std::max(0, column - 2); near <= std::min(ink.All.cols - 1, column + 2); ++near)
      if (ink.All.at<float>(at, near) >= EndInk || ink.Hidden.at<float>(at, near) > MostlyHidden) return at;
  }
  return row;
}

double DistanceFrom(const PathPoint& a, const PathPoint& b, const PathPoint& p) {
  const double dx = b.AlongMm - a.AlongMm, dy = b.HeightMm - a.HeightMm, px = p.AlongMm - a.AlongMm,
               py = p.HeightMm - a.HeightMm, length = dx * dx + dy * dy;
  const double share = length > 0 ? std::clamp((px * dx + py * dy) / length, 0.0, 1.0) : 0;
  return std::hypot(px - share * dx, py - share * dy);
}

// Keeps the ends, and the farthest place again and again until all lie near the line.
void KeepBends(std::span<const PathPoint> places, double withinMm, std::vector<PathPoint>& kept) {
  std::vector<char> keep(places.size(), 0);
  std::vector<std::pair<std::size_t, std::size_t>> parts{{0, places.size() - 1}};
  keep.front() = keep.back() = 1;
  while (!parts.empty()) {
    const auto [from, to] = parts.back();
    parts.pop_back();
    double most = withinMm;
    std::size_t farthest = 0;
    for (std::size_t i = from + 1; i < to; ++i)
      if (const double off = DistanceFrom(places[from], places[to], places[i]); off > most) {
        most = off;
        farthest = i;
      }
    if (farthest == 0) continue;
    keep[farthest] = 1;
    parts.emplace_back(from, farthest);
    parts.emplace_back(farthest, to);
  }
  for (std::size_t i = 0; i < places.size(); ++i)
    if (keep[i] != 0) kept.push_back(places[i]);
}

}  // namespace

std::vector<Blank> FindBlanks(const PenPath& path, const FlatChart& flat, double mm) {
  const int join = static_cast<int>(JoinMm * flat.PixelsPerMm),
            least = static_cast<int>(mm * flat.PixelsPerMm);
  std::vector<Blank> blanks;
  for (int i = 0; i < static_cast<int>(path.Columns.size()); ++i) {
    const PathColumn& column = path.Columns[static_cast<std::size_t>(i)];
    if (column.Ink >= SeenInk || column.Hidden > MostlyHidden) continue;
    if (!blanks.empty() && i - blanks.back().Past <= join)
      blanks.back().Past = i + 1;
    else
      blanks.push_back({i, i + 1});
  }
  std::erase_if(blanks, [&](const Blank& blank) { return blank.Past - blank.From < least; });
  return blanks;
}

void LiftTops(PenPath& path, const FlatChart& flat, const PenInk& ink, std::span<const FallLine> falls,
              const PenReach& reach) {
  const int most = std::max(0, static_cast<int>(std::lround(flat.Row(reach.TopMm))));
  const int apart = static_cast<int>(LiftApartMm * flat.PixelsPerMm),
            dash = static_cast<int>(DashMm * flat.PixelsPerMm);
  for (std::size_t i = 1; i < path.Columns.size(); ++i) {
    if (path.Columns[i].How != PathColumn::Come::Emptied) continue;
    PathColumn& before = path.Columns[i - 1];
    const int column = path.FirstColumn + static_cast<int>(i);
    int top = before.LeaveRow;
    for (const FallLine& fall : falls) {
      if (std::abs(fall.Column - column) > FallNear) continue;
      const int at =
          std::clamp(static_cast<int>(std::lround(fall.Column + fall.Lean / 2)), 1, ink.All.cols - 2);
      const auto isInked = [&](int row) {
        const auto* raw = ink.All.ptr<float>(row);
        const bool crosses = raw[std::max(0, at - BesidePen)] >= EndInk &&
                             raw[std::min(ink.All.cols - 1, at + BesidePen)] >= EndInk;
        return !crosses && std::max({raw[at - 1], raw[at], raw[at + 1]}) >= EndInk;
      };
      for (int row = before.LeaveRow, seen = row; row >= most && seen - row <= apart; --row) {
        if (!isInked(row)) continue;
        seen = row;
        int inked = 0, below = row;
        for (; below < std::min(ink.All.rows, row + dash); ++below) inked += isInked(below) ? 1 : 0;
        if (inked >= DashShare * (below - row)) top = std::min(top, row);
      }
    }
    const double lifted = (before.LeaveRow - top) / flat.PixelsPerMm;
    if (lifted < LeastLiftMm) continue;
    before.LeaveRow = top;
    if (lifted > SureLiftMm) before.Hidden = 1;
  }
}

std::vector<PathPoint> PointsOfPath(const PenPath& path, const FlatChart& flat, const PenInk& ink,
                                    std::span<const FallLine> falls, std::span<const Blank> gaps,
                                    double withinMm) {
  std::vector<PathPoint> points, part;
  const int columns = static_cast<int>(path.Columns.size());
  const auto finish = [&](PathPoint::Step next) {
    if (!part.empty()) {
      const std::size_t first = points.size();
      KeepBends(part, withinMm, points);
      if (first > 0) points[first].How = part.front().How;
    }
    part.clear();
    return next;
  };
  PathPoint::Step how = PathPoint::Step::Along;
  std::size_t gap = 0;
  double foot = 0;  // the column of the last fall's: nothing of what follows lies before it
  const auto add = [&](int column, int row, int index) {
    part.push_back({part.empty() ? how : PathPoint::Step::Along, flat.AlongMm(std::max<double>(column, foot)),
                    flat.HeightMm(row), index});
    how = PathPoint::Step::Along;
  };
  for (int i = 0; i < columns; ++i) {
    const PathColumn& at = path.Columns[static_cast<std::size_t>(i)];
    const int column = path.FirstColumn + i;
    int enter = at.EnterRow;
    if (at.How == PathColumn::Come::Emptied) {
      if (!part.empty()) {
        PathPoint& top = part.back();
        const int row =
            EndOfInk(ink, column, static_cast<int>(std::lround(flat.Row(top.HeightMm))), 1, flat.PixelsPerMm);
        top.HeightMm = flat.HeightMm(row);
        while (part.size() > 1 && part[part.size() - 2].HeightMm > top.HeightMm &&
               part[part.size() - 2].AlongMm > top.AlongMm - 0.5)
          part.erase(part.end() - 2);
      }
      how = finish(PathPoint::Step::Drop);
      enter = std::max(at.LeaveRow, EndOfInk(ink, column, at.EnterRow, -1, flat.PixelsPerMm));
      foot = column;
      for (const FallLine& fall : falls)
        if (std::abs(fall.Column - column) <= FallNear) foot = std::max(foot, fall.Column - fall.Lean / 2);
      add(column, enter, i);
      if (at.LeaveRow != enter) add(column, at.LeaveRow, i);
      continue;
    }
    if (at.How == PathColumn::Come::SetAnew) {
      if (!part.empty())
        part.push_back({PathPoint::Step::Along, flat.AlongMm(column), part.back().HeightMm, i});
      how = finish(PathPoint::Step::Segment);
    }
    if (gap < gaps.size() && i == gaps[gap].From && i > 0) {
      finish(PathPoint::Step::Along);
      how = PathPoint::Step::Along;
    }
    if (gap < gaps.size() && i >= gaps[gap].From && i < gaps[gap].Past) {
      if (i + 1 < gaps[gap].Past) continue;
      if (!points.empty()) how = PathPoint::Step::GapEnd;
      ++gap;
    }
    add(column, enter, i);
    if (at.LeaveRow != enter) add(column, at.LeaveRow, i);
  }
  finish(PathPoint::Step::Along);
  return points;
}

}  // namespace hyetex
