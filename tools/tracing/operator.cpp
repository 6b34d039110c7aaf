#include "tracing/operator.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "core/comments.h"
#include "core/numbers.h"
#include "digitizing/desk_layout.h"

namespace hyetex {
namespace {

// What of a strip stays in sight to the left of the point that it goes on from.
constexpr double StripOverlapMm = 15;
// A fall of the pen of more than 60 mm marks itself; the rest, and those too close to tell, the operator
// marks.
constexpr double SureDropMm = 65;
constexpr double Never = std::numeric_limits<double>::infinity();

// Presses the points of a line one after another, with the tools that they call for.
class Presser {
 public:
  Presser(const PenLine& line, std::string gapReason, std::vector<JournalEvent>& steps, PlaceOfPress place)
      : line_(line), gapReason_(std::move(gapReason)), steps_(steps), place_(std::move(place)) {}

  void Run(int tool) { steps_.push_back({JournalEvent::Kind::Tool, 0, 0, tool, {}, "", ""}); }
  void Press(double alongMm, double heightMm) {
    const auto [x, y] = place_(alongMm, heightMm);
    steps_.push_back({JournalEvent::Kind::Press, x, y, -1, {}, "", ""});
  }
  void PressPoint(std::size_t index) {
    const PenPoint& point = line_.Points[index];
    switch (point.Step) {
      case PenStep::Point:
        break;
      case PenStep::Drop:
        if (line_.Points[index - 1].HeightMm - point.HeightMm < SureDropMm || segmentJustBegun_)
          Run(tool::Alpha);
        break;
      case PenStep::Segment:
        Run(tool::NewSegment);
        break;
      case PenStep::GapEnd:
        Run(tool::Gap);
        break;
      case PenStep::Leveled:
        Run(tool::Level);
        break;
    }
    Press(line_.AlongMm(point), point.HeightMm);
    if (point.Step == PenStep::GapEnd)
      steps_.push_back({JournalEvent::Kind::Comment, 0, 0, -1, {}, ShortText(CodeGapEnd), gapReason_});
    segmentJustBegun_ = point.Step == PenStep::Segment;
  }
  void BeginSegment() { segmentJustBegun_ = true; }

 private:
  const PenLine& line_;
  const std::string gapReason_;
  std::vector<JournalEvent>& steps_;
  const PlaceOfPress place_;
  bool segmentJustBegun_ = false;
};

class Operator {
 public:
  Operator(const PenLine& line, const TabletType& tablet, const PageLaid& laid)
      : line_(line),
        tablet_(tablet),
        laid_(laid),
        layout_(DefaultDeskLayout(tablet.Extents)),
        angle_(laid.AngleDegrees),
        hand_(line, laid.GapReason, steps_,
              [this](double alongMm, double heightMm) { return Place(alongMm, heightMm); }) {
    roomMm_ = tablet.Extents.TabletWidthMm - laid.LeftMm - laid.RightMarginMm;
  }
  Operator(const Operator&) = delete;
  Operator& operator=(const Operator&) = delete;
  ~Operator() = default;

  Result<std::vector<JournalEvent>> Trace() {
    PressCorners();
    if (!laid_.GeneralComment.empty())
      steps_.push_back({JournalEvent::Kind::General, 0, 0, -1, {}, "", laid_.GeneralComment});
    double slideAt = laid_.AttachAtHours.value_or(Never);
    for (std::size_t first = 0; first < line_.Points.size();) {
      const std::size_t past = EndOfStrip(first, slideAt);
      slideAt = Never;
      for (; first < past; ++first) hand_.PressPoint(first);
      if (first < line_.Points.size() && trouble_.empty()) Attach(first - 1);
      if (!trouble_.empty()) return Failure(trouble_);
    }
    return std::move(steps_);
  }

 private:
  double LastVisibleMm() const { return std::min(line_.PageMm(), paperLeftMm_ + roomMm_); }

  std::pair<double, double> Place(double alongMm, double heightMm) {
    const double angle = angle_ * std::numbers::pi / 180, right = alongMm - paperLeftMm_;
    const TabletExtents& size = tablet_.Extents;
    const double xMm = laid_.LeftMm + right * std::cos(angle) - heightMm * std::sin(angle);
    const double yMm = laid_.BottomMm + right * std::sin(angle) + heightMm * std::cos(angle);
    const double x = std::round(xMm * size.TabletWidthUnits / size.TabletWidthMm);
    const double y = std::round(yMm * size.TabletHeightUnits / size.TabletHeightMm);
    const double screenX = x / size.TabletWidthUnits * layout_.ScaleWidth;
    const double screenY = layout_.ScaleHeight * (1 - y / size.TabletHeightUnits);
    if (x < 0 || y < 0 || x > size.TabletWidthUnits || y > size.TabletHeightUnits)
      trouble_ = "the chart runs off the tablet " + ShortText(alongMm) + " mm along the page";
    else if (layout_.Board.Holds(screenX, screenY))
      trouble_ = "the chart lies under the tool board " + ShortText(alongMm) + " mm along the page";
    return {x, y};
  }

  void PressCorners() {
    hand_.Press(paperLeftMm_, 0);
    hand_.Press(LastVisibleMm(), 0);
  }

  // Slides the paper to the left, to go on from a point that has been traced.
  void Attach(std::size_t from) {
    const PenPoint& point = line_.Points[from];
    hand_.Run(tool::AttachPaper);
    paperLeftMm_ = std::max(0.0, line_.AlongMm(point) - StripOverlapMm);
    angle_ = laid_.StripAngleDegrees.value_or(laid_.AngleDegrees);
    PressCorners();
    hand_.Press(line_.AlongMm(point), point.HeightMm);
    hand_.BeginSegment();
  }

  // One past the last point to trace before the paper is slid. That point lies before a rise if it can: the
  // first step on a strip is still measured up from the line of the paper before, so it should be short and
  // no fall.
  std::size_t EndOfStrip(std::size_t first, double slideAt) {
    const std::vector<PenPoint>& points = line_.Points;
    std::size_t past = first;
    while (past < points.size() && line_.AlongMm(points[past]) <= LastVisibleMm() + 1e-6 &&
           points[past].Hours <= slideAt)
      ++past;
    if (past == points.size()) return past;
    const auto goesOn = [&](std::size_t i) {
      return points[i].Step == PenStep::Point && points[i + 1].Step == PenStep::Point;
    };
    for (std::size_t i = past; i-- > first + 1;)
      if (goesOn(i) && points[i + 1].HeightMm > points[i].HeightMm) return i + 1;
    for (std::size_t i = past; i-- > first + 1;)
      if (goesOn(i)) return i + 1;
    trouble_ = "there is no place to slide the paper at before hour " + ShortText(points[past].Hours);
    return first;
  }

  const PenLine& line_;
  const TabletType& tablet_;
  const PageLaid& laid_;
  const DeskLayout layout_;
  double angle_, roomMm_ = 0, paperLeftMm_ = 0;
  std::vector<JournalEvent> steps_;
  Presser hand_;
  std::string trouble_;
};

}  // namespace

PenLine PressedPoints(const PenLine& line, const TabletType& tablet) {
  return WithStepsWithin(line, tablet.Extents.TabletWidthMm / 4);
}

Result<std::vector<JournalEvent>> TracePage(const PenLine& line, const TabletType& tablet,
                                            const PageLaid& laid) {
  return Operator(PressedPoints(line, tablet), tablet, laid).Trace();
}

std::vector<JournalEvent> TraceAt(const PenLine& line, const PlaceOfPress& place,
                                  const std::string& gapReason) {
  std::vector<JournalEvent> steps;
  Presser hand(line, gapReason, steps, [&](double alongMm, double heightMm) {
    const auto [x, y] = place(alongMm, heightMm);
    return std::pair(std::round(x), std::round(y));
  });
  hand.Press(0, 0);
  hand.Press(line.PageMm(), 0);
  for (std::size_t i = 0; i < line.Points.size(); ++i) hand.PressPoint(i);
  return steps;
}

}  // namespace hyetex
