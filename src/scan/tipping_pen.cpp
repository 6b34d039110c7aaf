#include "scan/tipping_pen.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string>

#include "scan/doubts.h"

namespace hyetex {
namespace {

using Step = PathPoint::Step;

constexpr double LeastLevelMm = 0.5;  // of paper along: less is a limb of tips that run together
constexpr double LevelWithinMm = 0.3;
constexpr double StepWideMm = 1.0;  // of paper along, from level to level
constexpr double NoStep = 0.4;      // of a tip: the pen trembled
constexpr double OffWhole = 0.22;   // of a tip
constexpr double LeastStepMm = 0.6;
constexpr double DoubtHours = 0.05;

// A stretch of the path on which the pen does not rise; columns of the path, both ends included.
struct Level {
  int First = 0, Last = 0;
  double HeightMm = 0;
};

std::vector<Level> LevelsOf(const PenPath& path, const FlatChart& flat) {
  const int within = static_cast<int>(LevelWithinMm * flat.PixelsPerMm);
  const int least = static_cast<int>(LeastLevelMm * flat.PixelsPerMm);
  const int count = static_cast<int>(path.Columns.size());
  const auto at = [&](int i) -> const PathColumn& { return path.Columns[static_cast<std::size_t>(i)]; };
  std::vector<Level> levels;
  for (int first = 0; first < count; ++first) {
    // The pen comes to its level at the first column's end.
    const int row = at(first).LeaveRow;
    int past = first + 1;
    double sum = row;
    while (past < count && at(past).How == PathColumn::Come::Along &&
           std::abs(at(past).EnterRow - row) <= within && std::abs(at(past).LeaveRow - row) <= within) {
      sum += at(past).LeaveRow;
      ++past;
    }
    if (past - first < least) continue;
    levels.push_back({first, past - 1, flat.HeightMm(sum / (past - first))});
    first = past - 1;
  }
  return levels;
}

bool IsStep(const Level& from, const Level& to, const PenPath& path, double pixelsPerMm) {
  if (to.First - from.Last > StepWideMm * pixelsPerMm) return false;
  for (int i = from.Last + 1; i <= to.First; ++i)
    if (path.Columns[static_cast<std::size_t>(i)].How != PathColumn::Come::Along) return false;
  return true;
}

bool IsWhole(double tips) { return std::abs(tips - std::round(tips)) <= OffWhole; }

// What one tip is on the paper: most steps are of one.
double UsualStep(std::span<const Level> levels, const PenPath& path, double pixelsPerMm) {
  std::vector<double> rises;
  for (std::size_t i = 1; i < levels.size(); ++i)
    if (const double rise = levels[i].HeightMm - levels[i - 1].HeightMm;
        rise >= LeastStepMm && IsStep(levels[i - 1], levels[i], path, pixelsPerMm))
      rises.push_back(rise);
  if (rises.empty()) return 0;
  const auto middle = rises.begin() + static_cast<std::ptrdiff_t>(rises.size() / 2);
  std::nth_element(rises.begin(), middle, rises.end());
  const double usual = *middle;
  double sum = 0;
  int tips = 0;
  for (const double rise : rises) {
    const int whole = static_cast<int>(std::lround(rise / usual));
    if (std::abs(rise - whole * usual) > OffWhole * usual) continue;
    sum += rise;
    tips += whole;
  }
  return tips > 0 ? sum / tips : usual;
}

// Levels between which there is no tip are one.
std::vector<Level> Joined(std::span<const Level> levels, const PenPath& path, double step,
                          double pixelsPerMm) {
  std::vector<Level> joined;
  for (const Level& level : levels) {
    if (!joined.empty() && IsStep(joined.back(), level, path, pixelsPerMm) &&
        std::abs(level.HeightMm - joined.back().HeightMm) < NoStep * step) {
      Level& last = joined.back();
      const double before = last.Last - last.First + 1, more = level.Last - level.First + 1;
      last.HeightMm = (last.HeightMm * before + level.HeightMm * more) / (before + more);
      last.Last = level.Last;
    } else {
      joined.push_back(level);
    }
  }
  return joined;
}

// The column in which the path is half way up from one level to the next.
int ColumnOfStep(const PenPath& path, const FlatChart& flat, const Level& from, const Level& to) {
  const double middle = flat.Row((from.HeightMm + to.HeightMm) / 2);
  for (int i = from.Last + 1; i < to.First; ++i)
    if (path.Columns[static_cast<std::size_t>(i)].LeaveRow <= middle) return i;
  return to.First;
}

}  // namespace

TippedLine PointsOfTips(const PenPath& path, const FlatChart& flat, const std::vector<PathPoint>& points) {
  TippedLine line;
  const std::vector<Level> seen = LevelsOf(path, flat);
  line.StepMm = UsualStep(seen, path, flat.PixelsPerMm);
  const std::vector<Level> levels = Joined(seen, path, line.StepMm, flat.PixelsPerMm);
  const auto add = [&](int column, double heightMm) {
    line.Points.push_back({Step::Along, flat.AlongMm(path.FirstColumn + column), heightMm, column});
  };
  auto next = points.begin();
  // What was traced between two levels, as it was; a new start comes down on the level behind it.
  const auto keepBefore = [&](const Level& level) {
    for (; next != points.end() && next->Column <= level.First; ++next) {
      if (next->How == Step::Along && next->Column == level.First) continue;
      line.Points.push_back(*next);
      if (next->How == Step::Segment || next->How == Step::GapEnd)
        line.Points.back().HeightMm = level.HeightMm;
    }
  };
  const auto passOver = [&](const Level& level) {
    while (next != points.end() && next->Column <= level.Last && next->How == Step::Along) ++next;
  };
  for (std::size_t i = 0; i < levels.size(); ++i) {
    const Level& level = levels[i];
    if (i > 0 && IsStep(levels[i - 1], level, path, flat.PixelsPerMm)) {
      const int column = ColumnOfStep(path, flat, levels[i - 1], level);
      add(column, levels[i - 1].HeightMm);
      add(column, level.HeightMm);
      line.Rises.push_back(
          {flat.AlongMm(path.FirstColumn + column), level.HeightMm - levels[i - 1].HeightMm});
    } else {
      if (i > 0) add(levels[i - 1].Last, levels[i - 1].HeightMm);
      keepBefore(level);
      const bool anew = !line.Points.empty() && line.Points.back().Column == level.First &&
                        line.Points.back().HeightMm == level.HeightMm;
      if (!anew) add(level.First, level.HeightMm);
    }
    passOver(level);
  }
  if (!levels.empty()) add(levels.back().Last, levels.back().HeightMm);
  line.Points.insert(line.Points.end(), next, points.end());
  return line;
}

void ForgetHiddenSteps(std::vector<TraceDoubt>& doubts, const TippedLine& line, const TraceWish& wish) {
  const auto isSure = [&](const TraceDoubt& doubt) {
    if (doubt.What != TraceDoubt::Kind::NoInk || doubt.ToHour - doubt.FromHour > 2 * DoubtHours) return false;
    int sure = 0;
    for (const TippedLine::Rise& rise : line.Rises) {
      const double hour = rise.AlongMm * wish.Paper.TimeScale;
      if (hour < doubt.FromHour || hour > doubt.ToHour) continue;
      if (!IsWhole(rise.Mm / line.StepMm)) return false;
      ++sure;
    }
    return sure == 1;
  };
  std::erase_if(doubts, isSure);
}

std::vector<TraceDoubt> DoubtsOfTips(const TippedLine& line, const TraceWish& wish) {
  std::vector<TraceDoubt> doubts;
  if (!(line.StepMm > 0)) return doubts;
  for (const TippedLine::Rise& rise : line.Rises) {
    const double tips = rise.Mm / line.StepMm;
    if (IsWhole(tips)) continue;
    const double hour = rise.AlongMm * wish.Paper.TimeScale;
    doubts.push_back({TraceDoubt::Kind::OtherWay, std::max(0.0, hour - DoubtHours), hour + DoubtHours, 0, -1,
                      "The line goes " + std::string(tips > 0 ? "up" : "down") + " by " +
                          MmText(std::abs(tips)) + " tips at " + MomentText(wish, hour) +
                          ": confirm how many there are."});
  }
  return doubts;
}

}  // namespace hyetex
