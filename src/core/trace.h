// The traced line of one chart: its points, the papers they lie on, and what they add up to in time and
// depth.
//
// Points and papers are changed only through the functions here, because the running sums behind TimeTo() and
// TotalDepth() are kept from press to press: asking for the last point after every press costs the same
// however long the trace is.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/geometry.h"
#include "core/records.h"

namespace hyetex {

class Trace {
 public:
  explicit Trace(ChartScales scales);

  const ChartScales& Scales() const { return scales_; }
  void SetScales(ChartScales scales);

  /// Index of the last point; -1 when there is none. At most `MaxPoint`.
  std::int16_t LastPoint() const { return static_cast<std::int16_t>(static_cast<int>(points_.size()) - 1); }
  const DigitizedPoint& Point(int index) const { return points_[static_cast<std::size_t>(index)]; }
  std::span<const DigitizedPoint> Points() const { return points_; }
  bool IsFull() const { return LastPoint() >= MaxPoint; }

  /// Stores a point behind the last one. The table must not be full.
  void Add(double x, double y, bool startsSegment = false, std::string_view comment = {});
  /// Stores the first point traced on the paper in use: the first of a new segment, and from here on the
  /// paper's.
  void AddFirstOfPaper(double x, double y);
  /// Takes the last point away, if there is one. Papers stay.
  void RemoveLast();
  /// Puts a point somewhere else, in report units. It goes on starting its segment if it did.
  void Move(int index, double x, double y);
  /// Puts a point in before the one at `index`, on that one's paper. The table must not be full.
  void Insert(int index, double x, double y);
  /// Takes a point out. When it started a segment, the next one of the segment does; papers begin with the
  /// points that they began with.
  void Delete(int index);
  void SetComment(int index, std::string comment);
  /// Takes all points away and goes back to paper 0. The papers' corners stay, so the page stays calibrated.
  void Clear();

  void AddComment(int index, std::string_view entry);
  void ClearComment(int index);
  void Select(int index, bool selected) { points_[static_cast<std::size_t>(index)].Selected = selected; }

  /// Puts `points` in the place of the `count` points from `index` on. Papers stay.
  void Replace(int index, int count, std::span<const DigitizedPoint> points);

  /// What has become of the points since the last call: those before `From` and the last `Tail` ones are what
  /// they were.
  struct Change {
    int From = MaxPoint + 1, Tail = MaxPoint + 1;
  };
  Change TakeChange() { return std::exchange(change_, {}); }

  /// The paper in use.
  std::int16_t CurrentPaper() const { return currentPaper_; }
  const ChartPaper& Paper(int index) const { return papers_[static_cast<std::size_t>(index)]; }
  bool PapersAreFull() const { return currentPaper_ >= MaxPaper; }
  /// Calibrates the paper in use, which is the page (paper 0) at first, by the two ends of its bottom line.
  /// Points stay where they are on the tablet; their times and depths follow the paper.
  void SetPage(double leftX, double leftY, double rightX, double rightY);
  /// Puts all papers and the paper in use back to what they have been.
  void RestorePapers(std::vector<ChartPaper> papers, std::int16_t current);
  std::span<const ChartPaper> Papers() const { return papers_; }
  /// Calibrates a further strip and makes it the paper in use; the next point is its first. Papers must not
  /// be full.
  void AttachPaper(double leftX, double leftY, double rightX, double rightY);
  /// The paper that holds a point. With paper 0 in use every point is on paper 0.
  int PaperOfPoint(int index) const;

  float TimeAlong(int point, int paper) const;  ///< TimeAlongPaper of a stored point, report units
  float HeightOf(int point, int paper) const;   ///< HeightOnPaper of a stored point, report units

  /// Days from the chart's start to a point, by the paper and its time scale. A segment's first point has the
  /// time of the point before it. 0 for point 0 and for -1.
  double TimeTo(int point) const;
  /// Depth up to a point, mm of water. Leveled points, gap ends and first points of segments add nothing; nor
  /// does a fall of the pen on a linear chart, nor anything on a tipping-bucket chart.
  float TotalDepth(int point) const;

  /// TimeTo() and TotalDepth() of a point that would be stored at (x, y) behind the last one.
  double TimeAt(double x, double y) const { return Days(SumAt(x, y)); }
  float DepthAt(double x, double y) const { return Depth(SumAt(x, y)); }

 private:
  struct Sum {
    double Along = 0;     // report units
    double Height = 0;    // report units
    int HeightPaper = 0;  // the paper of the last pair that counted, on which the next pair is measured
  };
  const Sum& SumTo(int point) const;
  Sum SumAt(double x, double y) const;
  Sum NextSum(const DigitizedPoint& before, const DigitizedPoint& point, int paper, Sum sum) const;
  double Days(const Sum& sum) const;
  float Depth(const Sum& sum) const;
  void ChangedFrom(int point) {
    if (sums_.size() > static_cast<std::size_t>(point)) sums_.resize(static_cast<std::size_t>(point));
  }

  void Touch(int from, int tail) {
    change_ = {std::min(change_.From, from), std::min(change_.Tail, tail)};
    ChangedFrom(from);
  }
  int Behind(int index) const { return LastPoint() - index; }

  ChartScales scales_;
  std::vector<DigitizedPoint> points_;
  std::vector<ChartPaper> papers_;
  std::int16_t currentPaper_ = 0;
  Change change_;
  mutable std::vector<Sum> sums_;  // of the points 0 to size - 1; extended when asked for
};

}  // namespace hyetex
