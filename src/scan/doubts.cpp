#include "scan/doubts.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <opencv2/imgproc.hpp>

#include "core/numbers.h"

namespace hyetex {
namespace {

// Charges of the path; see PenCosts.
constexpr float SureMargin = 25;  // the best other way costs so much more
constexpr float LeastMargin = 6;  // below, the other way is almost as good
constexpr float SureEmptying = 8;
constexpr float SureInk = 0.45F;
constexpr double BlankMm = 2.5;  // without ink
constexpr double ShortBlankRainMm = 0.1, LevelBlankHours = 0.5;
constexpr double TopOffMm = 2.5;  // of an emptying, from the usual top
constexpr double HiddenMm = 60, HiddenJoinMm = 2;
constexpr double LevelMm = 0.5;
constexpr double EdgeMm = 2.5, MostAtEdge = 0.04;  // of the height
constexpr double SeenEndMm = 12;  // of the line, where it comes to a printed one or leaves it
constexpr double EndMm = 2;
constexpr double LeastDepthOffMm = 0.3;
constexpr double DepthOff = 0.05;  // of another gauge's sum
constexpr double EndsWithinMm = 4;
constexpr int Together = 8;             // columns: doubts nearer than this are one
constexpr double SureFall = 0.5;        // of a fall's line is seen
constexpr double LeastUnseen = 0.05;    // of the height: what joins the dashes of a limb is less
constexpr int BesideFall = 3;           // columns to each side
constexpr double MostBesideFall = 0.5;  // of the height
constexpr double SureReading = 30;      // what another reading of an upright line costs more
constexpr double FallNearMm = 0.4, LineNearMm = 0.8;
constexpr double MoreNearMm = 1.5, MorePenMm = 0.3, MoreShare = 0.3;
constexpr float MoreInk = 0.45F;
constexpr double UprightNearMm = 1.4;
constexpr double CloseHours = 0.05;  // emptyings nearer to each other hide each other's limbs

std::string Mm(double value) { return MmText(value); }

class Finder {
 public:
  explicit Finder(const DoubtQuestion& about)
      : about_(about),
        columns_(about.Path.Columns),
        empties_(about.Wish.Paper.ChartMethod == static_cast<std::int16_t>(ChartMethod::Linear)),
        swings_(about.Wish.Paper.ChartMethod == static_cast<std::int16_t>(ChartMethod::NonLinear)) {}

  std::vector<TraceDoubt> Find() {
    Ends();
    EndRises();
    Blanks();
    OtherWays();
    HiddenStretches();
    Events();
    OtherFalls();
    std::stable_sort(doubts_.begin(), doubts_.end(),
                     [](const TraceDoubt& a, const TraceDoubt& b) { return a.FromHour < b.FromHour; });
    return std::move(doubts_);
  }

 private:
  int Count() const { return static_cast<int>(columns_.size()); }
  double Hour(int column) const {
    return about_.Flat.AlongMm(about_.Path.FirstColumn + column) * about_.Wish.Paper.TimeScale;
  }
  std::string At(int column) const { return MomentText(about_.Wish, Hour(column)); }
  double Rain(int rows) const { return rows / about_.Flat.PixelsPerMm * about_.Wish.Paper.DepthScale; }
  // What the path rises between two columns, an emptying or a new start left out.
  double RiseMm(int from, int past) const {
    int rows = 0;
    for (int i = from; i < past; ++i) {
      const PathColumn& column = columns_[static_cast<std::size_t>(i)];
      if (i > from && column.How == PathColumn::Come::Along)
        rows += std::max(0, columns_[static_cast<std::size_t>(i) - 1].LeaveRow - column.EnterRow);
      rows += std::max(0, column.EnterRow - column.LeaveRow);
    }
    return Rain(rows);
  }
  void Add(TraceDoubt::Kind kind, int from, int past, std::string why) {
    doubts_.push_back({kind, std::max(0.0, Hour(from)), Hour(past), 0, -1, std::move(why)});
  }

  void Ends() {
    const int within = static_cast<int>(EndsWithinMm * about_.Flat.PixelsPerMm);
    const auto blank = FindBlanks(about_.Path, about_.Flat, EndsWithinMm);
    if (!blank.empty() && blank.front().From <= within) {
      Add(TraceDoubt::Kind::Start, 0, blank.front().Past,
          "No ink is seen before " + At(blank.front().Past) + ": confirm where the line begins.");
      firstInk_ = blank.front().Past;
    }
    if (!blank.empty() && blank.back().Past >= Count() - within && blank.back().Past > firstInk_) {
      Add(TraceDoubt::Kind::End, blank.back().From, Count(),
          "No ink is seen from " + At(blank.back().From) + " on: confirm where the line ends.");
      lastInk_ = blank.back().From;
    } else {
      lastInk_ = Count();
    }
  }

  // The paper's own edge, and what is printed there, stands upright too.
  void EndRises() {
    const int length = static_cast<int>(EdgeMm * about_.Flat.PixelsPerMm);
    for (const int from : {0, std::max(0, Count() - length)}) {
      const int past = std::min(Count(), from + length);
      if (const double rise = RiseMm(from, past); rise > MostAtEdge * UsualRain())
        Add(from == 0 ? TraceDoubt::Kind::Start : TraceDoubt::Kind::End, from, past,
            "The line rises by " + Mm(rise) + " mm at the page's " + (from == 0 ? "beginning" : "end") +
                ": confirm that it is not the paper's edge.");
    }
  }

  void Blanks() {
    for (const Blank& blank : FindBlanks(about_.Path, about_.Flat, BlankMm)) {
      if (blank.Past <= firstInk_ || blank.From >= lastInk_) continue;
      const double rise = RiseMm(blank.From, blank.Past);
      // A pen that goes on as high as it stopped has missed no rain, or a whole emptying: not in a short
      // while.
      if (rise < ShortBlankRainMm && Hour(blank.Past) - Hour(blank.From) < LevelBlankHours) continue;
      Add(TraceDoubt::Kind::NoInk, blank.From, blank.Past,
          "No ink is seen from " + At(blank.From) + " to " + At(blank.Past) +
              (rise < ShortBlankRainMm ? "; the line is taken to run level."
                                       : "; the line is taken to rise by " + Mm(rise) + " mm of rain."));
    }
    // Upright within a few columns nothing is blank for long, and millimetres may hang on it.
    for (int i = 0; i < Count(); ++i) {
      if (!RisesUnseen(i)) continue;
      int past = i + 1;
      double rise = 0;
      for (int j = i; j < std::min(Count(), past + Together); ++j) {
        if (!RisesUnseen(j)) continue;
        past = j + 1;
        rise += ColumnRain(j);
      }
      if (rise >= LeastUnseen * UsualRain())
        Add(TraceDoubt::Kind::NoInk, std::max(0, i - 2), std::min(Count(), past + 2),
            "A steep rise of " + Mm(rise) + " mm at " + At(i) + " has little ink of its own.");
      i = past;
    }
  }

  double ColumnRain(int i) const {
    const PathColumn& column = columns_[static_cast<std::size_t>(i)];
    return Rain(column.EnterRow - column.LeaveRow);
  }
  // The fall itself hides what stands beside it, and its own ends tell how far the pen rises there.
  bool IsBesideFall(int i) const {
    for (int near = std::max(1, i - BesideFall + 1); near <= std::min(Count() - 1, i + BesideFall); ++near)
      if (columns_[static_cast<std::size_t>(near)].How == PathColumn::Come::Emptied) return true;
    return false;
  }
  bool RisesUnseen(int i) const {
    const PathColumn& column = columns_[static_cast<std::size_t>(i)];
    if (ColumnRain(i) < MostBesideFall * UsualRain() && IsBesideFall(i)) return false;
    return ColumnRain(i) >= 0.02 * UsualRain() && (column.Ink <= 0.25F || column.Hidden >= 0.6F);
  }
  double UsualRain() const { return about_.Reach.TopMm * about_.Wish.Paper.DepthScale; }

  void OtherWays() {
    // At its very ends the line may end anywhere.
    const int ends = static_cast<int>(EndMm * about_.Flat.PixelsPerMm);
    for (int i = ends; i < Count() - ends;) {
      if (columns_[static_cast<std::size_t>(i)].Margin >= LeastMargin) {
        ++i;
        continue;
      }
      int past = i;
      for (int j = i; j < Count() - ends && j - past < 24; ++j)
        if (columns_[static_cast<std::size_t>(j)].Margin < LeastMargin) past = j + 1;
      // A limb that may stand a little to the side is no other rain.
      if (past - i >= ends / 2)
        Add(TraceDoubt::Kind::OtherWay, i, past,
            "Between " + At(i) + " and " + At(past) + " another way of the line fits almost as well.");
      i = past;
    }
  }

  // A line that lies on a printed one is known by its ends: it is seen to come to it, or to leave it.
  void HiddenStretches() {
    const int least = static_cast<int>(HiddenMm * about_.Flat.PixelsPerMm),
              join = static_cast<int>(HiddenJoinMm * about_.Flat.PixelsPerMm);
    for (int i = 0; i < Count(); ++i) {
      if (!IsHidden(i)) continue;
      int past = i + 1;
      const int row = columns_[static_cast<std::size_t>(i)].EnterRow;
      for (int j = past;
           j < Count() && j - past < join &&
           std::abs(columns_[static_cast<std::size_t>(j)].LeaveRow - row) < LevelMm * about_.Flat.PixelsPerMm;
           ++j)
        if (IsHidden(j)) past = j + 1;
      if (past - i >= least && (empties_ || !IsAtFoot(row)) && !IsSeenBeside(i - 1, -1) &&
          !IsSeenBeside(past, 1))
        Add(TraceDoubt::Kind::OtherWay, i, past,
            "From " + At(i) + " to " + At(past) +
                " the line is taken to lie on a printed one, which hides it.");
      i = past;
    }
  }
  bool IsHidden(int i) const {
    const PathColumn& column = columns_[static_cast<std::size_t>(i)];
    return column.Hidden > 0.7F && column.Ink < 0.25F;
  }
  bool IsSeenBeside(int column, int step) const {
    const int length = static_cast<int>(SeenEndMm * about_.Flat.PixelsPerMm);
    int seen = 0;
    for (int i = 0; i < length; ++i, column += step) {
      if (column < 0 || column >= Count()) return false;
      const PathColumn& at = columns_[static_cast<std::size_t>(column)];
      if (at.How != PathColumn::Come::Along) return false;
      if (at.Ink > 0.35F && at.Hidden < 0.5F) seen += std::max(1, at.EnterRow - at.LeaveRow);
      if (seen > length / 8) return true;
    }
    return false;
  }

  // Where a pen that is seldom set back lies from a chart's start on.
  bool IsAtFoot(int row) const {
    return std::abs(about_.Flat.HeightMm(row) - about_.Reach.FootMm) <= LevelMm;
  }

  // Upright lines over the whole height that no emptying of the path has left.
  void OtherFalls() {
    const int near = static_cast<int>(UprightNearMm * about_.Flat.PixelsPerMm);
    for (const std::span<const FallLine> lines : {about_.Falls, about_.Uprights})
      for (const FallLine& fall : lines) {
        const int at = fall.Column - about_.Path.FirstColumn;
        if (fall.Seen < SureFall || fall.Sure > SureReading || at < 0 || at >= Count() ||
            Empties(about_.Path, fall, about_.Flat) || Climbs(about_.Path, fall, about_.Flat, about_.Reach))
          continue;
        Add(TraceDoubt::Kind::Emptying, std::max(0, at - near), std::min(Count(), at + near),
            "The upright line at " + At(at) + " may be " + (empties_ ? "an emptying" : "a setting back") +
                " that was left out.");
      }
  }

  // Upright ink beside an emptying that neither its limb nor its fall explains: of another limb, or another
  // fall.
  bool HasMoreBeside(int column) const {
    const double scale = about_.Flat.PixelsPerMm;
    const int near = static_cast<int>(MoreNearMm * scale), pen = static_cast<int>(MorePenMm * scale);
    const int at = about_.Path.FirstColumn + column, left = std::max(0, at - near),
              right = std::min(about_.Ink.All.cols - 1, at + near);
    const int top = std::max(0, static_cast<int>(about_.Flat.Row(about_.Reach.TopMm)));
    const int bottom =
        std::min(about_.Ink.All.rows - 1, static_cast<int>(about_.Flat.Row(about_.Reach.FootMm + EndMm)));
    cv::Mat explained = cv::Mat::zeros(about_.Ink.All.rows, right - left + 1, CV_8U);
    const auto line = [&](int x, int from, int to) {
      cv::line(explained, {x - left, from}, {x - left, to}, 255);
    };
    for (int x = std::max(left, about_.Path.FirstColumn + 1); x <= right; ++x) {
      const int i = x - about_.Path.FirstColumn;
      if (i >= Count()) break;
      const PathColumn &now = columns_[static_cast<std::size_t>(i)],
                       &before = columns_[static_cast<std::size_t>(i) - 1];
      line(x, now.EnterRow, now.LeaveRow);
      if (now.How != PathColumn::Come::Along) line(x, before.LeaveRow, now.EnterRow);
    }
    for (const FallLine& fall : about_.Falls)
      if (fall.Column >= left && fall.Column <= right) line(fall.Column, top, about_.Ink.All.rows - 1);
    cv::dilate(explained, explained, cv::Mat::ones(2 * pen + 1, 2 * pen + 1, CV_8U));
    int rows = 0;
    for (int row = top; row <= bottom; ++row)
      for (int x = left; x <= right; ++x)
        if (explained.at<std::uint8_t>(row, x - left) == 0 && about_.Ink.All.at<float>(row, x) > MoreInk) {
          ++rows;
          break;
        }
    return rows > MoreShare * (bottom - top + 1);
  }
  // Of the falls, or of all upright lines, one near a column that is so.
  template <typename Is>
  bool HasLine(int column, double mm, bool fallsOnly, const Is& is) const {
    const auto any = [&](std::span<const FallLine> lines) {
      return std::any_of(lines.begin(), lines.end(), [&](const FallLine& line) {
        return std::abs(line.Column - about_.Path.FirstColumn - column) <= mm * about_.Flat.PixelsPerMm &&
               is(line);
      });
    };
    return any(about_.Falls) || (!fallsOnly && any(about_.Uprights));
  }
  // The line of its fall is seen, and can't well be read as anything else.
  bool IsSurelyRead(int column) const {
    return HasLine(column, FallNearMm, true, [](const FallLine& fall) { return fall.Sure > SureReading; });
  }
  bool IsUnsurelyRead(int column) const {
    return HasLine(column, FallNearMm, false,
                   [](const FallLine& line) { return line.Seen > SureFall && line.Sure < SureReading; }) ||
           !HasLine(column, LineNearMm, false, [](const FallLine&) { return true; });
  }

  // A siphon empties; other pens are set back to the foot.
  std::string FallName() const { return empties_ ? "emptying" : "setting back"; }
  std::string Fall() const { return "The " + FallName() + " at "; }

  float MarginAround(int column) const {
    constexpr int Beside = 9;
    return std::min(columns_[static_cast<std::size_t>(std::max(0, column - Beside))].Margin,
                    columns_[static_cast<std::size_t>(std::min(Count() - 1, column + Beside))].Margin);
  }

  // Empty where an emptying is sure.
  std::string WhyConfirm(int i, double topMm) const {
    if (const auto& usual = about_.Reach.UsualTopMm; usual && std::abs(topMm - *usual) > TopOffMm)
      return Fall() + At(i) + " begins " + Mm(std::abs(topMm - *usual)) + " mm of paper " +
             (topMm < *usual ? "below" : "above") + " the others.";
    if (HasMoreBeside(i))
      return "Beside the " + FallName() + " at " + At(i) +
             " there is more ink: confirm that there is only one.";
    if (!swings_ && IsSurelyRead(i)) return {};
    if (Hour(i) - lastEmptied_ < CloseHours)
      return Fall() + At(i) + " follows close on another: confirm how many there are.";
    if (swings_ || MarginAround(i) < SureEmptying || IsUnsurelyRead(i))
      return "Confirm the " + FallName() + " at " + At(i) + ".";
    return {};
  }

  void Events() {
    for (int i = 1; i < Count(); ++i) {
      const PathColumn &column = columns_[static_cast<std::size_t>(i)],
                       &before = columns_[static_cast<std::size_t>(i) - 1];
      if (column.How == PathColumn::Come::Along) continue;
      const int from = std::max(0, i - 8), past = std::min(Count(), i + 8);
      if (column.How == PathColumn::Come::SetAnew) {
        Add(TraceDoubt::Kind::SetAnew, from, past,
            "At " + At(i) + " the line goes on at another height: confirm that the pen was set anew.");
        continue;
      }
      if (std::string why = WhyConfirm(i, about_.Flat.HeightMm(before.LeaveRow)); !why.empty())
        Add(TraceDoubt::Kind::Emptying, from, past, std::move(why));
      lastEmptied_ = Hour(i);
    }
  }

  const DoubtQuestion& about_;
  const std::vector<PathColumn>& columns_;
  const bool empties_;
  const bool
      swings_;  // an arc pen: it is set back so seldom, and so much hangs on it, that each is confirmed
  std::vector<TraceDoubt> doubts_;
  int firstInk_ = 0, lastInk_ = 0;
  double lastEmptied_ = -24;  // hours
};

}  // namespace

std::string MomentText(const TraceWish& wish, double hour) {
  constexpr int HoursADay = 24, MinutesADay = 60 * HoursADay;
  const int minutes = static_cast<int>(std::lround((wish.StartHour + hour) * 60));
  char text[40];
  std::snprintf(text, sizeof text, "%02d:%02d", minutes / 60 % HoursADay, minutes % 60);
  if (wish.Hours <= HoursADay) return text;
  return text + (" of day " + std::to_string(minutes / MinutesADay + 1));
}

std::string MmText(double value) {
  const std::string text = RoundedText(value, 1);
  return text.find('.') == std::string::npos ? text + ".0" : text;
}

std::vector<float> ConfidenceOfColumns(const PenPath& path) {
  std::vector<float> confidence;
  confidence.reserve(path.Columns.size());
  for (const PathColumn& column : path.Columns) {
    const float ink = std::min(1.0F, std::max(column.Ink, 0.6F * column.Hidden * SureInk) / SureInk);
    const float margin = std::clamp(column.Margin / SureMargin, 0.0F, 1.0F);
    confidence.push_back(std::min(0.3F + 0.7F * ink, 0.2F + 0.8F * margin));
  }
  return confidence;
}

double ExplainedInk(const PenPath& path, std::span<const FallLine> falls, const FlatChart& flat,
                    const PenInk& ink, const PenReach& reach) {
  constexpr float Sure = 0.5F;
  constexpr double LineMm = 8;
  const int near = static_cast<int>(0.6 * flat.PixelsPerMm);
  const int first = path.FirstColumn, past = first + static_cast<int>(path.Columns.size());
  const int top = std::max(0, static_cast<int>(flat.Row(reach.TopMm)));
  const int bottom = std::min(ink.Ink.rows, static_cast<int>(flat.Row(reach.FootMm - 1)));
  // Lines alone: numbers and specks are not what was missed.
  cv::Mat labels, boxes, middles;
  cv::connectedComponentsWithStats(ink.Ink > Sure, labels, boxes, middles, 8, CV_32S);
  const int longest = static_cast<int>(LineMm * flat.PixelsPerMm);
  double all = 0, explained = 0;
  for (int x = first; x < past; ++x) {
    int high = ink.Ink.rows, low = 0;
    bool fell = false;
    for (int i = std::max(first, x - near); i <= std::min(past - 1, x + near); ++i) {
      const PathColumn& column = path.Columns[static_cast<std::size_t>(i - first)];
      high = std::min({high, column.EnterRow, column.LeaveRow});
      low = std::max({low, column.EnterRow, column.LeaveRow});
      fell = fell || column.How != PathColumn::Come::Along;
    }
    for (const FallLine& fall : falls) fell = fell || std::abs(fall.Column - x) <= near;
    for (int y = top; y < bottom; ++y) {
      const int label = labels.at<int>(y, x);
      if (label == 0 || std::max(boxes.at<int>(label, cv::CC_STAT_WIDTH),
                                 boxes.at<int>(label, cv::CC_STAT_HEIGHT)) < longest)
        continue;
      const double value = ink.Ink.at<float>(y, x);
      all += value;
      if (fell || (y >= high - near && y <= low + near)) explained += value;
    }
  }
  return all > 0 ? explained / all : 0;
}

std::vector<TraceDoubt> DoubtsOfPath(const DoubtQuestion& about) { return Finder(about).Find(); }

std::vector<TraceDoubt> DoubtsOfDepth(double rainMm, const TraceWish& wish) {
  std::vector<TraceDoubt> doubts;
  const auto compare = [&](float known, const std::string& how) {
    if (!(known > 0) || std::abs(rainMm - known) <= std::max(LeastDepthOffMm, DepthOff * known)) return;
    doubts.push_back({TraceDoubt::Kind::Chart, 0, wish.Hours, 0, -1,
                      "The line gives " + Mm(rainMm) + " mm of rain, " + how + " gave " + Mm(known) +
                          " mm: look for what is missing or too much."});
  };
  compare(wish.EyedDepth, "the eye");
  compare(wish.GageDepth, "the gage");
  return doubts;
}

}  // namespace hyetex
