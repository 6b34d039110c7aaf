#include "scan/pen_path.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <opencv2/imgproc.hpp>

namespace hyetex {
namespace {

constexpr float Never = 1e9F;
constexpr float FaintInk = 0.25F;  // less is blank in part
constexpr float NoInk = 0.15F;
// As much as the way up gives, so that no ink beside the line is worth going up and down again.
constexpr float SinkOnArc = 1.0F;
// A pen that no siphon brings down lies level at any height for days, and on printed lines too.
constexpr float SeldomAtRest = 0.1F;

// What is fainter than the pen ever writes is none of it.
float Written(float ink) { return std::max(0.0F, ink - NoInk) / (1 - NoInk); }

// How a place was come to; the last two, within its column.
enum Step : std::uint8_t { Forward = 1, SlantUp, SlantDown, Fall, Anew, Up, Down };

// What differs from path to path: only the rows that the pen reaches, top row first.
class Search {
 public:
  Search(const FlatChart& flat, const PenInk& ink, std::span<const FallLine> falls, const PenReach& reach,
         const PenCosts& costs, int first, int past)
      : flat_(flat), ink_(ink), costs_(costs), first_(first), columns_(past - first) {
    top_ = std::clamp(static_cast<int>(flat.Row(reach.TopMm)), 0, ink.Ink.rows - 1);
    const int bottom =
        std::clamp(static_cast<int>(flat.Row(reach.FootMm - BelowFootMm)), top_, ink.Ink.rows - 1);
    rows_ = bottom - top_ + 1;
    const auto count = static_cast<std::size_t>(rows_);
    begin_.assign(count, Never);
    rest_.assign(count, 0);
    land_.assign(count, Never);
    for (int row = 0; row < rows_; ++row) {
      const double height = flat.HeightMm(top_ + row);
      const auto at = static_cast<std::size_t>(row);
      if (reach.Empties && height >= reach.LeastTopMm)
        begin_[at] =
            costs.Emptying +
            (reach.UsualTopMm ? costs.TopOff * static_cast<float>(std::abs(height - *reach.UsualTopMm)) : 0);
      const double off = std::abs(height - reach.FootMm);
      rest_[at] = off <= AtRestMm ? 1 : 0;
      if (off <= reach.FootWithinMm) land_[at] = costs.FootOff * static_cast<float>(off);
    }
    seen_.assign(static_cast<std::size_t>(columns_), 0);
    // In one column each: a line that a fall has left is that of one emptying.
    for (const FallLine& fall : falls)
      if (fall.Column >= first_ && fall.Column < past)
        seen_[static_cast<std::size_t>(fall.Column - first_)] =
            costs.FallSeen * static_cast<float>(fall.Seen);
  }

  PenPath Find(const PathEnds& ends, bool margins) {
    ends_ = ends;
    FindRidges();
    Forwards(ends);
    const auto& last = cost_.back();
    const int row = LastRow(ends);
    PenPath path{first_, std::vector<PathColumn>(static_cast<std::size_t>(columns_)),
                 last[static_cast<std::size_t>(row)]};
    Follow(path, row);
    if (margins) Backwards(path, row, ends.LastRow.has_value());
    return path;
  }

 private:
  static constexpr double BelowFootMm = 2.2;
  static constexpr double AtRestMm = 0.5;
  static constexpr int StillColumns = 3;
  static constexpr int RidgeApart = 3;  // columns to each side
  using Costs = std::vector<float>;

  int LastRow(const PathEnds& ends) const {
    const Costs& last = cost_.back();
    return ends.LastRow ? Row(*ends.LastRow)
                        : static_cast<int>(std::min_element(last.begin(), last.end()) - last.begin());
  }
  int Row(int flatRow) const { return std::clamp(flatRow - top_, 0, rows_ - 1); }
  std::size_t At(int column, int row) const {
    return static_cast<std::size_t>(column) * static_cast<std::size_t>(rows_) + static_cast<std::size_t>(row);
  }

  // A limb is as wide as its pen, and counts once: in each row where it has most ink.
  void FindRidges() {
    const cv::Mat part = ink_.Steep(cv::Rect(first_, top_, columns_, rows_));
    cv::Mat most;
    cv::dilate(part, most, cv::Mat::ones(1, 2 * RidgeApart + 1, CV_8U));
    ridges_ = part >= most;
    cv::dilate(ridges_, ridges_, cv::Mat::ones(3, 1, CV_8U));
  }

  // What the places of a column cost: entered, and passed upright. At the page's own ends, where lines are
  // printed upright, no pen climbs.
  void Places(int column) {
    const bool still =
        (column < StillColumns && !ends_.FirstRow) || (column >= columns_ - StillColumns && !ends_.LastRow);
    enter_.resize(static_cast<std::size_t>(rows_));
    climb_.resize(static_cast<std::size_t>(rows_));
    for (int row = 0; row < rows_; ++row) {
      const float ink = ink_.Ink.at<float>(top_ + row, first_ + column);
      const float hidden = ink_.Hidden.at<float>(top_ + row, first_ + column);
      const float blank = std::max(0.0F, 1 - ink / FaintInk) * (1 - hidden), covered = costs_.Hidden * hidden;
      const auto at = static_cast<std::size_t>(row);
      enter_[at] = costs_.Blank * blank - Written(ink) + covered;
      if (rest_[at] != 0) enter_[at] -= costs_.AtRest * hidden;
      const bool ridge = ridges_.at<std::uint8_t>(row, column) != 0;
      const float steep = ink_.Steep.at<float>(top_ + row, first_ + column),
                  unseen = ink_.SteepHidden.at<float>(top_ + row, first_ + column);
      climb_[at] = (ridge ? -costs_.ClimbInk * std::max(0.0F, (steep - 0.1F) / (1 - 0.1F)) : 0) +
                   costs_.BlankClimb * std::max(0.0F, 1 - steep / FaintInk) * (1 - unseen) +
                   costs_.Hidden * unseen + (still ? Never : 0);
    }
  }
  float SinkAt(std::size_t row) const { return costs_.Sink + std::max(0.0F, climb_[row]); }

  void Forwards(const PathEnds& ends) {
    const auto rows = static_cast<std::size_t>(rows_);
    steps_.assign(static_cast<std::size_t>(columns_) * rows, 0);
    cost_.assign(static_cast<std::size_t>(columns_), Costs(rows));
    fallFrom_.assign(static_cast<std::size_t>(columns_), 0);
    anewFrom_ = fallFrom_;
    Costs before(rows, 0);
    if (ends.FirstRow) {
      std::fill(before.begin(), before.end(), Never);
      before[static_cast<std::size_t>(Row(*ends.FirstRow))] = 0;
    }
    for (int column = 0; column < columns_; ++column) {
      Places(column);
      const auto c = static_cast<std::size_t>(column);
      float fall = Never, anew = Never;
      for (std::size_t row = 0; row < rows; ++row) {
        if (const float cost = before[row] + begin_[row]; cost < fall) {
          fall = cost;
          fallFrom_[c] = static_cast<int>(row);
        }
        if (before[row] < anew) {
          anew = before[row];
          anewFrom_[c] = static_cast<int>(row);
        }
      }
      fall -= seen_[c];
      anew += costs_.SetAnew;
      Costs& now = cost_[c];
      std::uint8_t* step = &steps_[At(column, 0)];
      for (std::size_t row = 0; row < rows; ++row) {
        float least = before[row] + costs_.Forward;
        step[row] = Forward;
        const auto take = [&](float cost, Step how) {
          if (cost >= least) return;
          least = cost;
          step[row] = how;
        };
        if (row + 1 < rows) take(before[row + 1] + costs_.Slant, SlantUp);
        if (row > 0) take(before[row - 1] + costs_.Forward + costs_.Sink, SlantDown);
        if (land_[row] < Never) take(fall + land_[row], Fall);
        take(anew, Anew);
        now[row] = least + enter_[row];
      }
      for (std::size_t row = rows - 1; row-- > 0;)
        if (const float cost = now[row + 1] + costs_.Climb + climb_[row]; cost < now[row]) {
          now[row] = cost;
          step[row] = Up;
        }
      for (std::size_t row = 1; row < rows; ++row)
        if (const float cost = now[row - 1] + SinkAt(row); cost < now[row] && step[row - 1] != Up) {
          now[row] = cost;
          step[row] = Down;
        }
      before = now;
    }
  }

  void Follow(PenPath& path, int row) const {
    for (int column = columns_ - 1; column >= 0; --column) {
      PathColumn& at = path.Columns[static_cast<std::size_t>(column)];
      at.LeaveRow = top_ + row;
      int count = 0;
      for (std::uint8_t step = steps_[At(column, row)]; step == Up || step == Down;
           step = steps_[At(column, row)]) {
        at.Ink += ink_.Steep.at<float>(top_ + row, first_ + column);
        at.Hidden += ink_.SteepHidden.at<float>(top_ + row, first_ + column);
        row += step == Up ? 1 : -1;
        ++count;
      }
      at.Ink += ink_.Ink.at<float>(top_ + row, first_ + column);
      at.Hidden += ink_.Hidden.at<float>(top_ + row, first_ + column);
      at.Ink /= static_cast<float>(count + 1);
      at.Hidden /= static_cast<float>(count + 1);
      at.EnterRow = top_ + row;
      const auto c = static_cast<std::size_t>(column);
      switch (steps_[At(column, row)]) {
        case SlantUp:
          ++row;
          break;
        case SlantDown:
          --row;
          break;
        case Fall:
          at.How = PathColumn::Come::Emptied;
          row = fallFrom_[c];
          break;
        case Anew:
          at.How = PathColumn::Come::SetAnew;
          row = anewFrom_[c];
          break;
        default:
          break;
      }
    }
  }

  // From the end back, what the rest of the way costs from each place; with what it costs to come there this
  // is the best path through the place.
  void Backwards(PenPath& path, int lastRow, bool lastIsGiven) {
    const auto rows = static_cast<std::size_t>(rows_);
    Costs rest(rows, lastIsGiven ? Never : 0.0F), enter(rows), up(rows);
    if (lastIsGiven) rest[static_cast<std::size_t>(lastRow)] = 0;
    for (int column = columns_ - 1; column >= 0; --column) {
      const auto c = static_cast<std::size_t>(column);
      TellMargin(path, column, rest);
      if (column == 0) break;
      Places(column);
      // Upright within this column, and on from there.
      enter = rest;
      up = rest;
      for (std::size_t row = 1; row < rows; ++row)
        up[row] = std::min(rest[row], up[row - 1] + costs_.Climb + climb_[row - 1]);
      for (std::size_t row = rows - 1; row-- > 0;)
        enter[row] = std::min(rest[row], enter[row + 1] + SinkAt(row + 1));
      float land = Never, anew = Never;
      for (std::size_t row = 0; row < rows; ++row) {
        enter[row] = std::min(enter[row], up[row]) + enter_[row];
        land = std::min(land, enter[row] + land_[row]);
        anew = std::min(anew, enter[row]);
      }
      land -= seen_[c];
      anew += costs_.SetAnew;
      for (std::size_t row = 0; row < rows; ++row) {
        float least = std::min(enter[row] + costs_.Forward, anew);
        if (row > 0) least = std::min(least, enter[row - 1] + costs_.Slant);
        if (row + 1 < rows) least = std::min(least, enter[row + 1] + costs_.Forward + costs_.Sink);
        if (begin_[row] < Never) least = std::min(least, land + begin_[row]);
        rest[row] = least;
      }
    }
  }

  void TellMargin(PenPath& path, int column, const Costs& rest) const {
    constexpr int Near = 7;  // columns: a limb that stands this much to the side is the same one
    constexpr double ElsewhereMm = 1.2;
    const int apart = static_cast<int>(ElsewhereMm * flat_.PixelsPerMm);
    int high = rows_, low = 0;
    for (int near = std::max(0, column - Near); near <= std::min(columns_ - 1, column + Near); ++near) {
      const PathColumn& place = path.Columns[static_cast<std::size_t>(near)];
      high = std::min({high, place.EnterRow - top_, place.LeaveRow - top_});
      low = std::max({low, place.EnterRow - top_, place.LeaveRow - top_});
    }
    const Costs& come = cost_[static_cast<std::size_t>(column)];
    float least = Never;
    for (int row = 0; row < rows_; ++row)
      if (row < high - apart || row > low + apart)
        least = std::min(least, come[static_cast<std::size_t>(row)] + rest[static_cast<std::size_t>(row)]);
    path.Columns[static_cast<std::size_t>(column)].Margin = least - static_cast<float>(path.Cost);
  }

  const FlatChart& flat_;
  const PenInk& ink_;
  const PenCosts& costs_;
  PathEnds ends_;
  int first_, columns_, top_ = 0, rows_ = 0;
  std::vector<char> rest_;
  Costs begin_, land_, seen_, enter_, climb_;
  cv::Mat ridges_;
  std::vector<Costs> cost_;
  std::vector<std::uint8_t> steps_;
  std::vector<int> fallFrom_, anewFrom_;
};

}  // namespace

PenCosts PenCosts::For(ChartMethod method) {
  PenCosts costs;
  if (method == ChartMethod::NonLinear) costs.Sink = SinkOnArc;
  if (method != ChartMethod::Linear) costs.AtRest = SeldomAtRest;
  return costs;
}

PenPath FindPenPath(const FlatChart& flat, const PenInk& ink, std::span<const FallLine> falls,
                    const PenReach& reach, const PenCosts& costs, int first, int past, const PathEnds& ends) {
  return Search(flat, ink, falls, reach, costs, first, past).Find(ends, true);
}

PenPath SketchPenPath(const FlatChart& flat, const PenInk& ink, std::span<const FallLine> falls,
                      const PenReach& reach, const PenCosts& costs, int first, int past,
                      const PathEnds& ends) {
  return Search(flat, ink, falls, reach, costs, first, past).Find(ends, false);
}

int RiseOf(const PenPath& path) {
  int rows = 0;
  for (std::size_t i = 0; i < path.Columns.size(); ++i) {
    const PathColumn& column = path.Columns[i];
    rows += std::max(0, column.EnterRow - column.LeaveRow);
    if (i > 0 && column.How == PathColumn::Come::Along)
      rows += std::max(0, path.Columns[i - 1].LeaveRow - column.EnterRow);
  }
  return rows;
}

}  // namespace hyetex
