#include "core/trace.h"

#include <cassert>
#include <cmath>
#include <utility>

#include "core/comments.h"

namespace hyetex {
namespace {

ChartPaper MakePaper(double leftX, double leftY, double rightX, double rightY, int firstPoint) {
  ChartPaper paper{leftX, leftY, rightX, rightY, 0, static_cast<std::int16_t>(firstPoint)};
  paper.Angle = static_cast<float>(std::atan((rightY - leftY) / (rightX - leftX)));
  return paper;
}

}  // namespace

Trace::Trace(ChartScales scales) : scales_(std::move(scales)), papers_(MaxPaper + 1) {}

void Trace::SetScales(ChartScales scales) {
  scales_ = std::move(scales);
  ChangedFrom(0);
}

void Trace::Add(double x, double y, bool startsSegment, std::string_view comment) {
  assert(!IsFull());
  points_.push_back({startsSegment ? x + SegmentMark : x, y, std::string(comment), false});
  Touch(LastPoint(), 0);
}

void Trace::AddFirstOfPaper(double x, double y) {
  Add(x, y, true);
  papers_[static_cast<std::size_t>(currentPaper_)].FirstPoint = LastPoint();
  ChangedFrom(LastPoint());
}

void Trace::RemoveLast() {
  if (points_.empty()) return;
  points_.pop_back();
  Touch(static_cast<int>(points_.size()), 0);
}

void Trace::Move(int index, double x, double y) {
  DigitizedPoint& point = points_[static_cast<std::size_t>(index)];
  point.X = point.StartsSegment() ? x + SegmentMark : x;
  point.Y = y;
  Touch(index, Behind(index));
}

void Trace::Insert(int index, double x, double y) {
  assert(!IsFull());
  const int behind = Behind(index) + 1;
  points_.insert(points_.begin() + index, {x, y, {}, false});
  for (int i = 1; i <= currentPaper_; ++i)
    if (std::int16_t& first = papers_[static_cast<std::size_t>(i)].FirstPoint; first > index) ++first;
  Touch(index, behind);
}

void Trace::Delete(int index) {
  int behind = Behind(index);
  if (behind > 0 && Point(index).StartsSegment() && !Point(index + 1).StartsSegment()) {
    points_[static_cast<std::size_t>(index) + 1].X += SegmentMark;
    --behind;
  }
  points_.erase(points_.begin() + index);
  for (int i = 1; i <= currentPaper_; ++i)
    if (std::int16_t& first = papers_[static_cast<std::size_t>(i)].FirstPoint; first > index) --first;
  Touch(index, behind);
}

void Trace::SetComment(int index, std::string comment) {
  points_[static_cast<std::size_t>(index)].Comment = std::move(comment);
  Touch(index, Behind(index));
}

void Trace::Replace(int index, int count, std::span<const DigitizedPoint> points) {
  const int behind = LastPoint() + 1 - index - count;
  const auto at = points_.begin() + index;
  const auto same =
      static_cast<std::ptrdiff_t>(std::min<std::size_t>(points.size(), static_cast<std::size_t>(count)));
  std::copy(points.begin(), points.begin() + same, at);
  if (static_cast<std::ptrdiff_t>(points.size()) > same)
    points_.insert(at + same, points.begin() + same, points.end());
  else
    points_.erase(at + same, at + count);
  Touch(index, behind);
}

void Trace::Clear() {
  points_.clear();
  currentPaper_ = 0;
  Touch(0, 0);
}

void Trace::AddComment(int index, std::string_view entry) {
  AddCode(points_[static_cast<std::size_t>(index)].Comment, entry);
  Touch(index, Behind(index));
}

void Trace::ClearComment(int index) {
  points_[static_cast<std::size_t>(index)].Comment.clear();
  Touch(index, Behind(index));
}

void Trace::SetPage(double leftX, double leftY, double rightX, double rightY) {
  ChartPaper& paper = papers_[static_cast<std::size_t>(currentPaper_)];
  paper = MakePaper(leftX, leftY, rightX, rightY, paper.FirstPoint);
  ChangedFrom(0);
}

void Trace::AttachPaper(double leftX, double leftY, double rightX, double rightY) {
  assert(!PapersAreFull());
  ++currentPaper_;
  papers_[static_cast<std::size_t>(currentPaper_)] = MakePaper(leftX, leftY, rightX, rightY, LastPoint() + 1);
}

void Trace::RestorePapers(std::vector<ChartPaper> papers, std::int16_t current) {
  papers_ = std::move(papers);
  currentPaper_ = current;
  ChangedFrom(0);
}

int Trace::PaperOfPoint(int index) const {
  if (currentPaper_ == 0 || index < papers_[1].FirstPoint) return 0;
  int paper = currentPaper_;
  while (paper > 1 && papers_[static_cast<std::size_t>(paper)].FirstPoint > index) --paper;
  return paper;
}

float Trace::TimeAlong(int point, int paper) const {
  const DigitizedPoint& p = Point(point);
  return TimeAlongPaper(scales_, p.TrueX(), p.Y, Paper(paper));
}

float Trace::HeightOf(int point, int paper) const {
  const DigitizedPoint& p = Point(point);
  return HeightOnPaper(p.TrueX(), p.Y, Paper(paper));
}

Trace::Sum Trace::NextSum(const DigitizedPoint& before, const DigitizedPoint& point, int paper,
                          Sum sum) const {
  if (point.StartsSegment()) return sum;
  const auto along = [&](const DigitizedPoint& p) {
    return static_cast<double>(TimeAlongPaper(scales_, p.TrueX(), p.Y, Paper(paper)));
  };
  sum.Along += along(point) - along(before);

  if (HasCode(point.Comment, CodeLeveled) || HasCode(point.Comment, CodeGapEnd)) return sum;
  const auto height = [&](const DigitizedPoint& p) {
    return static_cast<double>(HeightOnPaper(p.TrueX(), p.Y, Paper(sum.HeightPaper)));
  };
  const double rise = height(point) - height(before);
  if (rise < 0 && scales_.Is(ChartMethod::Linear)) return sum;
  sum.HeightPaper = paper;
  if (!scales_.Is(ChartMethod::TippingBucket)) sum.Height += std::abs(rise);
  return sum;
}

const Trace::Sum& Trace::SumTo(int point) const {
  if (sums_.empty()) sums_.emplace_back();
  for (int i = static_cast<int>(sums_.size()); i <= point; ++i)
    sums_.push_back(NextSum(Point(i - 1), Point(i), PaperOfPoint(i), sums_.back()));
  return sums_[static_cast<std::size_t>(point)];
}

Trace::Sum Trace::SumAt(double x, double y) const {
  const int last = LastPoint();
  if (last < 0) return {};
  const Sum& sum = SumTo(last);
  // The first point of another strip has the time and depth of the point before it.
  if (PaperOfPoint(last) != currentPaper_) return sum;
  return NextSum(Point(last), {x, y, {}, false}, currentPaper_, sum);
}

double Trace::Days(const Sum& sum) const {
  return sum.Along / scales_.Tablet.TabletWidthUnits * scales_.Tablet.TabletWidthMm *
         scales_.ChartType.TimeScale / 24;
}

float Trace::Depth(const Sum& sum) const {
  return static_cast<float>(sum.Height / scales_.Tablet.TabletHeightUnits * scales_.Tablet.TabletHeightMm *
                            scales_.ChartType.DepthScale);
}

double Trace::TimeTo(int point) const { return point <= 0 ? 0 : Days(SumTo(point)); }

float Trace::TotalDepth(int point) const { return point <= 0 ? 0 : Depth(SumTo(point)); }

}  // namespace hyetex
