#include "scan/two_lines.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace hyetex {
namespace {

constexpr double AroundMm = 0.35;       // of a line: its pen's half width, with what blur adds
constexpr float SeenInk = 0.4F;         // of the pen's
constexpr double LeastOfColumns = 0.4;  // in which a second line is seen
constexpr double EndMm = 3;             // of each end, over which its height is taken

// What is left of the ink without a line, which hides what it crosses.
PenInk Without(const PenInk& ink, const SheetReading& reading, const PenPath& path) {
  cv::Mat line = cv::Mat::zeros(ink.Raw.size(), CV_8U);
  int before = path.Columns.front().EnterRow;
  for (std::size_t i = 0; i < path.Columns.size(); ++i) {
    const PathColumn& at = path.Columns[i];
    const int x = path.FirstColumn + static_cast<int>(i);
    if (at.How != PathColumn::Come::SetAnew) cv::line(line, {x, before}, {x, at.EnterRow}, 255);
    cv::line(line, {x, at.EnterRow}, {x, at.LeaveRow}, 255);
    before = at.LeaveRow;
  }
  for (const FallLine& fall : reading.Falls)
    if (Empties(path, fall, reading.Flat))
      cv::line(line, {fall.Column, static_cast<int>(reading.Flat.Row(reading.Reach.TopMm))},
               {fall.Column, static_cast<int>(reading.Flat.Row(reading.Reach.FootMm))}, 255);
  const int wide = 2 * static_cast<int>(std::lround(AroundMm * reading.Flat.PixelsPerMm)) + 1;
  cv::dilate(line, line, cv::Mat::ones(wide, wide, CV_8U));
  PenInk left = ink.Clone();
  left.Raw.setTo(0, line);
  left.All = left.Raw.clone();
  left.Hidden.setTo(1, line);
  FollowStrokes(left, reading.Flat.PixelsPerMm, 0, left.Raw.cols);
  return left;
}

SheetReading Reading(const SheetReading& unread, PenInk ink) {
  SheetReading reading = unread;
  reading.Ink = std::move(ink);
  reading.TellFalls();
  return reading;
}

double EndHeightMm(const SheetReading& reading, const PenPath& path, bool first) {
  const auto count = static_cast<std::size_t>(EndMm * reading.Flat.PixelsPerMm);
  const std::size_t at = first ? std::min(count, path.Columns.size()) - 1
                               : path.Columns.size() - std::min(count, path.Columns.size());
  return reading.Flat.HeightMm(path.Columns[at].LeaveRow);
}

}  // namespace

Result<SheetReading> ReadOneOfTwo(const SheetReading& unread, int which) {
  const SheetReading together = Reading(unread, unread.Ink.Clone());
  const SheetReading other = Reading(unread, Without(unread.Ink, together, together.Path()));
  const PenPath otherPath = other.Path();
  const auto seen = std::count_if(otherPath.Columns.begin(), otherPath.Columns.end(),
                                  [](const PathColumn& column) { return column.Ink >= SeenInk; });
  if (static_cast<double>(seen) < LeastOfColumns * static_cast<double>(otherPath.Columns.size()))
    return Failure("there is one line on the chart, not two");
  // Without the other one, the first one is not drawn to it either.
  SheetReading one = Reading(unread, Without(unread.Ink, other, otherPath));
  const PenPath onePath = one.Path();
  const double oneFirst = std::abs(EndHeightMm(one, onePath, false) - EndHeightMm(other, otherPath, true));
  const double otherFirst = std::abs(EndHeightMm(other, otherPath, false) - EndHeightMm(one, onePath, true));
  return (oneFirst <= otherFirst) == (which == 1) ? one : other;
}

}  // namespace hyetex
