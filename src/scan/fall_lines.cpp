// The upright lines of a falling pen. They are told apart from rain because the path pays for one fall, and
// must not find ink to climb on in the line that the fall has left.
#include <algorithm>
#include <array>
#include <cmath>

#include "scan/pen_path.h"

namespace hyetex {
namespace {

constexpr std::size_t Parts = 6;  // of the height, each of which must have some
constexpr float LeastOfPart = 0.18F;
constexpr float LeastClear = 0.25F;  // of the height, that the form does not hide
constexpr double LeastSeen = 0.38;   // of the height, with ink
constexpr int MostLean = 1;          // columns from foot to top
constexpr double ApartMm = 0.26;     // of two lines
constexpr double PrintShare = 0.95, MostPrint = 0.45;
constexpr float Darkest = 0.5F;   // ink counts no more than this
constexpr double SureFall = 0.4;  // of its line is seen: it is taken out of the ink
constexpr double PenHalfMm = 0.25;
constexpr double NearMm = 0.7;        // an emptying, or a limb, and its line
constexpr double ClimbedShare = 0.6;  // of a line that a limb has left

}  // namespace

std::vector<FallLine> FindFallLines(const FlatChart& flat, const PenInk& ink, const PenReach& reach) {
  const int top = std::clamp(static_cast<int>(flat.Row(reach.LeastTopMm)), 0, ink.Ink.rows - 1);
  const int bottom = std::clamp(static_cast<int>(flat.Row(reach.FootMm + 3)), top, ink.Ink.rows - 1);
  const int columns = ink.Ink.cols, rows = bottom - top + 1;
  if (rows < 16) return {};
  // Of every place, the most ink within a column to each side.
  cv::Mat wide(rows, columns, CV_32F), seen(rows, columns, CV_32F);
  for (int row = 0; row < rows; ++row) {
    const auto *from = ink.Steep.ptr<float>(top + row), *hidden = ink.Hidden.ptr<float>(top + row);
    auto *to = wide.ptr<float>(row), *clear = seen.ptr<float>(row);
    for (int x = 0; x < columns; ++x) {
      const float most = std::max({from[std::max(0, x - 1)], from[x], from[std::min(columns - 1, x + 1)]});
      to[x] = std::min(most, Darkest) / Darkest;
      clear[x] = 1 - hidden[x];
    }
  }
  // How dark each column is: a limb and its fall, as near as they stand, are two of these.
  cv::Mat dark, clears;
  cv::reduce(ink.Steep.rowRange(top, bottom + 1).mul(seen), dark, 0, cv::REDUCE_SUM);
  cv::reduce(seen, clears, 0, cv::REDUCE_SUM);
  dark /= clears + 1;
  std::vector<FallLine> lines(static_cast<std::size_t>(columns));
  std::array<std::vector<float>, Parts> sum, weight;
  for (int lean = -MostLean; lean <= MostLean; ++lean) {
    for (std::size_t part = 0; part < Parts; ++part) {
      sum[part].assign(static_cast<std::size_t>(columns), 0);
      weight[part].assign(static_cast<std::size_t>(columns), 0);
    }
    for (int row = 0; row < rows; row += 2) {
      const int shift = static_cast<int>(std::lround(lean * (0.5 - (row + 0.5) / rows)));
      const auto part =
          std::min(Parts - 1, static_cast<std::size_t>(row) * Parts / static_cast<std::size_t>(rows));
      const auto *value = wide.ptr<float>(row), *clear = seen.ptr<float>(row);
      for (int x = std::max(0, -shift); x < std::min(columns, columns - shift); ++x) {
        sum[part][static_cast<std::size_t>(x)] += value[x + shift] * clear[x + shift];
        weight[part][static_cast<std::size_t>(x)] += clear[x + shift];
      }
    }
    for (std::size_t x = 0; x < lines.size(); ++x) {
      float all = 0, clear = 0, weakest = 1;
      for (std::size_t part = 0; part < Parts; ++part) {
        all += sum[part][x];
        clear += weight[part][x];
        if (weight[part][x] > LeastClear * static_cast<float>(rows) / 2 / Parts)
          weakest = std::min(weakest, sum[part][x] / weight[part][x]);
      }
      if (clear < LeastClear * static_cast<float>(rows) / 2) continue;
      // A line lacks no part of its height.
      const double share = (weakest < LeastOfPart ? 0.5 : 1) * all / clear - 0.01 * std::abs(lean);
      if (share > lines[x].Seen) lines[x] = {static_cast<int>(x), static_cast<double>(lean), share};
    }
  }
  // Where print is left over, as on 1-bit scans, every column has some.
  std::vector<double> seenOf;
  for (const FallLine& line : lines) seenOf.push_back(line.Seen);
  const auto usual =
      seenOf.begin() + static_cast<std::ptrdiff_t>(PrintShare * static_cast<double>(seenOf.size()));
  std::nth_element(seenOf.begin(), usual, seenOf.end());
  const double print = std::min(MostPrint, *usual);
  for (FallLine& line : lines) line.Seen = (line.Seen - print) / (1 - print);
  std::vector<FallLine> found;
  const int apart = static_cast<int>(ApartMm * flat.PixelsPerMm);
  for (int x = 0; x < columns; ++x) {
    const FallLine& line = lines[static_cast<std::size_t>(x)];
    if (line.Seen < LeastSeen) continue;
    bool best = true;
    for (int near = std::max(0, x - apart); best && near <= std::min(columns - 1, x + apart); ++near) {
      const float one = dark.at<float>(0, x), other = dark.at<float>(0, near);
      best = other < one || (other == one && near >= x);
    }
    if (best) found.push_back(line);
  }
  return found;
}

void TakeOutFalls(PenInk& ink, const FlatChart& flat, std::span<const FallLine> falls,
                  const PenReach& reach) {
  const int top = std::clamp(static_cast<int>(flat.Row(reach.TopMm)), 0, ink.Raw.rows - 1);
  const int bottom = std::clamp(static_cast<int>(flat.Row(reach.FootMm - 1)), top, ink.Raw.rows - 1);
  const int half = static_cast<int>(std::lround(PenHalfMm * flat.PixelsPerMm));
  for (const FallLine& fall : falls) {
    if (fall.Seen < SureFall) continue;
    for (int row = top; row <= bottom; ++row) {
      const double share = (row - top + 0.5) / (bottom - top + 1);
      const int middle = static_cast<int>(std::lround(fall.Column + fall.Lean * (0.5 - share)));
      for (int x = std::max(0, middle - half); x <= std::min(ink.Raw.cols - 1, middle + half); ++x) {
        ink.Raw.at<float>(row, x) = 0;
        ink.Hidden.at<float>(row, x) = 1;
      }
    }
    const int near = half + static_cast<int>(flat.PixelsPerMm);
    FollowStrokes(ink, flat.PixelsPerMm, fall.Column - near, fall.Column + near + 1);
  }
}

bool Empties(const PenPath& path, const FallLine& fall, const FlatChart& flat) {
  const int near = static_cast<int>(NearMm * flat.PixelsPerMm), at = fall.Column - path.FirstColumn;
  const int last = static_cast<int>(path.Columns.size()) - 1;
  for (int i = std::max(0, at - near); i <= std::min(last, at + near); ++i)
    if (path.Columns[static_cast<std::size_t>(i)].How == PathColumn::Come::Emptied) return true;
  return false;
}

bool Climbs(const PenPath& path, const FallLine& fall, const FlatChart& flat, const PenReach& reach) {
  const int near = static_cast<int>(NearMm * flat.PixelsPerMm), at = fall.Column - path.FirstColumn;
  const int last = static_cast<int>(path.Columns.size()) - 1;
  int rows = 0;
  for (int i = std::max(0, at - near); i <= std::min(last, at + near); ++i) {
    const PathColumn& column = path.Columns[static_cast<std::size_t>(i)];
    rows += std::max(0, column.EnterRow - column.LeaveRow);
    if (i > 0 && column.How == PathColumn::Come::Along)
      rows += std::max(0, path.Columns[static_cast<std::size_t>(i) - 1].LeaveRow - column.EnterRow);
  }
  return rows > ClimbedShare * (reach.TopMm - reach.FootMm) * flat.PixelsPerMm;
}

}  // namespace hyetex
