#include "scans/pen.h"

#include <algorithm>
#include <cmath>

#include "scans/chance.h"

namespace hyetex {
namespace {

constexpr double SampleMm = 0.15;

class Pen {
 public:
  Pen(const PenLine& line, const ScanStyle& style, std::uint64_t seed, InkLayer& ink)
      : line_(line),
        style_(style),
        ink_(ink),
        chance_(seed, "pen"),
        width_(chance_, 1.7),
        flow_(chance_, 4),
        slowFlow_(chance_, 40),
        tremble_(chance_, 0.9),
        dots_(chance_, 0.5),
        gaps_(chance_, 5) {}

  void Draw() {
    for (std::size_t i = 1; i < line_.Points.size(); ++i) {
      const PenPoint &from = line_.Points[i - 1], &to = line_.Points[i];
      if (to.Step == PenStep::GapEnd || (to.Step == PenStep::Segment && !SwingsBack(from, to))) {
        Lift();
        continue;
      }
      Go(from, to);
    }
    Lift();
    Chance blots(chance_.Next(), "blots");
    for (int i = 0; i < style_.Blots; ++i) {
      const auto last = static_cast<int>(line_.Points.size()) - 1;
      const PenPoint& at = line_.Points[static_cast<std::size_t>(blots.Whole(0, last))];
      ink_.Disc({line_.AlongMm(at), at.HeightMm}, blots.Uniform(0.4, 1.1), 0.95 * style_.PenInk);
    }
  }

 private:
  // The arm of an arc pen at its full height is let down along its arc.
  bool SwingsBack(const PenPoint& from, const PenPoint& to) const {
    return line_.Paper.ChartMethod == static_cast<std::int16_t>(ChartMethod::NonLinear) &&
           from.HeightMm - to.HeightMm > line_.Paper.ChartHeightMm / 2;
  }
  void Go(const PenPoint& from, const PenPoint& to) {
    const double across = (to.Hours - from.Hours) / line_.Paper.TimeScale, up = to.HeightMm - from.HeightMm;
    const double length = std::hypot(across, up);
    if (length == 0) return;
    const double steep = std::abs(up) / length;
    const bool falls = to.Step != PenStep::Point;  // fast, so little ink
    const int parts = std::max(1, static_cast<int>(std::ceil(length / SampleMm)));
    for (int i = points_.empty() ? 0 : 1; i <= parts; ++i) {
      const double part = static_cast<double>(i) / parts;
      const PenPoint at{PenStep::Point, std::lerp(from.Hours, to.Hours, part),
                        std::lerp(from.HeightMm, to.HeightMm, part), 0};
      Sample({line_.AlongMm(at), at.HeightMm}, length_ + part * length, steep, falls);
    }
    length_ += length;
  }
  void Sample(cv::Point2d mm, double length, double steep, bool falls) {
    const double loose = style_.Unsteady;
    double width = style_.PenMm * (1 + loose * (0.35 * width_.At(length) + 0.15 * (1 - 2 * steep)));
    double ink =
        style_.PenInk * (1 - loose * std::max(0.0, 0.35 * flow_.At(length) + 0.35 * slowFlow_.At(length)) -
                         0.2 * loose * steep);
    if (falls) {
      width *= 0.75;
      ink *= 0.75;
    }
    if (style_.Dotted > 0 && steep > 0.5 && dots_.At(length) < 2 * style_.Dotted - 1) ink = 0;
    if (style_.Gaps > 0 && gaps_.At(length) < 2.2 * style_.Gaps - 1.1) ink = 0;
    mm.x += style_.TrembleMm * tremble_.At(length);
    mm.y += style_.TrembleMm * tremble_.At(length + 777);
    points_.push_back({mm, std::max(0.05, width), std::max(0.0, ink)});
  }
  void Lift() {
    ink_.Stroke(points_);
    points_.clear();
  }

  const PenLine& line_;
  const ScanStyle& style_;
  InkLayer& ink_;
  Chance chance_;
  Wander width_, flow_, slowFlow_, tremble_, dots_, gaps_;
  double length_ = 0;
  std::vector<StrokePoint> points_;
};

// Figures as a hand draws them: places in a box of 1 by 1, y up, that a curve runs through.
using Figure = std::vector<cv::Point2d>;
const Figure& FigureOf(char figure) {
  static const Figure figures[] = {
      {{0.6, 0.95}, {0.15, 0.75}, {0.1, 0.25}, {0.4, 0}, {0.75, 0.3}, {0.75, 0.75}, {0.5, 1}},
      {{0.25, 0.75}, {0.5, 1}, {0.48, 0.5}, {0.42, 0}},
      {{0.1, 0.75}, {0.4, 1}, {0.7, 0.75}, {0.5, 0.4}, {0.05, 0.05}, {0.4, 0.08}, {0.8, 0}},
      {{0.15, 0.9}, {0.5, 1}, {0.65, 0.75}, {0.35, 0.52}, {0.7, 0.3}, {0.5, 0.02}, {0.05, 0.1}},
      {{0.45, 1}, {0.1, 0.4}, {0.4, 0.38}, {0.85, 0.42}, {0.62, 0.65}, {0.58, 0}},
      {{0.75, 1}, {0.3, 0.97}, {0.22, 0.58}, {0.6, 0.55}, {0.68, 0.2}, {0.4, 0}, {0.1, 0.08}},
      {{0.65, 1}, {0.25, 0.6}, {0.15, 0.15}, {0.45, 0}, {0.68, 0.25}, {0.45, 0.45}, {0.2, 0.25}},
      {{0.1, 0.95}, {0.5, 0.97}, {0.78, 0.95}, {0.5, 0.5}, {0.35, 0}},
      {{0.65, 0.9},
       {0.35, 1},
       {0.2, 0.75},
       {0.6, 0.4},
       {0.6, 0.08},
       {0.25, 0.02},
       {0.2, 0.35},
       {0.6, 0.65},
       {0.62, 0.9}},
      {{0.65, 0.8}, {0.35, 1}, {0.18, 0.75}, {0.4, 0.55}, {0.65, 0.8}, {0.6, 0.4}, {0.45, 0}},
  };
  static const Figure slash{{0.6, 1.05}, {0.3, 0.4}, {0.05, -0.1}};
  return figure >= '0' && figure <= '9' ? figures[figure - '0'] : slash;
}

class Hand {
 public:
  Hand(const ChartForm& form, const PenLine& line, const ScanStyle& style, std::uint64_t seed, InkLayer& ink)
      : form_(form), line_(line), style_(style), ink_(ink), chance_(seed, "hand"), press_(chance_, 0.8) {
    nib_ = chance_.Uniform(0.22, 0.38);
    slant_ = chance_.Uniform(0.1, 0.35);
  }

  void Write() {
    if (style_.Writing > 0) FillIn();
    if (style_.Writing >= 0.6) Notes();
    for (int i = 0; i < style_.TimeMarks; ++i) Mark();
  }

 private:
  // A smooth curve through the places.
  void Curve(const std::vector<cv::Point2d>& through) {
    std::vector<StrokePoint> points;
    for (std::size_t i = 0; i + 1 < through.size(); ++i) {
      const cv::Point2d before = through[i == 0 ? 0 : i - 1], from = through[i], to = through[i + 1],
                        after = through[std::min(i + 2, through.size() - 1)];
      const int parts = std::clamp(static_cast<int>(cv::norm(to - from) / SampleMm), 3, 40);
      for (int k = 0; k < parts; ++k) {
        const double t = static_cast<double>(k) / parts, t2 = t * t, t3 = t2 * t;
        const cv::Point2d at =
            0.5 * (2 * from + (to - before) * t + (2 * before - 5 * from + 4 * to - after) * t2 +
                   (3 * from - before - 3 * to + after) * t3);
        length_ += SampleMm;
        const double pressed = press_.At(length_);
        points.push_back({at, nib_ * (1 + 0.3 * pressed), 0.85 + 0.15 * pressed});
      }
    }
    ink_.Stroke(points);
  }
  cv::Point2d Leaning(cv::Point2d at) const { return {at.x + slant_ * at.y, at.y}; }
  cv::Point2d Jitter(double by) { return {chance_.Uniform(-by, by), chance_.Uniform(-by, by)}; }

  double Figures(const std::string& text, cv::Point2d mm, double height) {
    for (const char c : text) {
      if (c != ' ') {
        std::vector<cv::Point2d> places;
        for (const cv::Point2d& place : FigureOf(c))
          places.push_back(mm + Leaning((cv::Point2d(0.7 * place.x, place.y) + Jitter(0.04)) * height));
        Curve(places);
      }
      mm += cv::Point2d(0.72 * height * chance_.Uniform(0.9, 1.1), chance_.Uniform(-0.04, 0.04) * height);
    }
    return mm.x;
  }
  // A word that nobody can read: loops of small letters, with one that reaches up or down now and then.
  void Word(cv::Point2d mm, int letters, double height) {
    std::vector<cv::Point2d> places{mm + Leaning({0, 0.3 * height})};
    places.push_back(mm + Leaning({0.35 * height, 1.9 * height}));
    places.push_back(mm + Leaning({0.1 * height, 0.9 * height}));
    double x = 0.5 * height;
    for (int i = 0; i < letters; ++i) {
      const double wide = height * chance_.Uniform(0.35, 0.6);
      double top = height * chance_.Uniform(0.8, 1.05), foot = 0;
      if (chance_.Falls(0.18)) top = 1.9 * height;
      if (chance_.Falls(0.12)) foot = -0.9 * height;
      places.push_back(mm + Leaning(cv::Point2d(x, foot) + Jitter(0.06 * height)));
      places.push_back(mm + Leaning(cv::Point2d(x + wide, top) + Jitter(0.06 * height)));
      if (chance_.Falls(0.6)) places.push_back(mm + Leaning({x + 0.35 * wide, 0.8 * top}));
      x += wide;
    }
    places.push_back(mm + Leaning({x, 0}));
    places.push_back(mm + Leaning({x + height, chance_.Uniform(0, 0.5) * height}));
    Curve(places);
  }
  // A date, and the one that many days later.
  std::pair<std::string, std::string> Dates(int days) {
    const int day = chance_.Whole(1, 21);
    const std::string rest =
        "/" + std::to_string(chance_.Whole(1, 12)) + " " + std::to_string(chance_.Whole(22, 79));
    return {std::to_string(day) + rest, std::to_string(day + std::clamp(days, 1, 7)) + rest};
  }
  void FillIn() {
    const double page = line_.PageMm(), up = form_.BandMm + 8.6, high = 3.2;
    Word({0.02 * page + 15, up}, 9, 1.9);
    const auto [laid, taken] = Dates(static_cast<int>(std::lround(line_.Hours / 24)));
    Figures(style_.LaidOn.empty() ? laid : style_.LaidOn, {0.26 * page + 16, up + 0.2}, high);
    Figures(style_.TakenOff.empty() ? taken : style_.TakenOff, {0.73 * page + 19, up - 0.2}, high);
    Word({0.9 * page + 15, up}, 5, 2.1);
  }
  void Notes() {
    const int notes = 1 + static_cast<int>(4 * (style_.Writing - 0.6) / 0.4);
    for (int i = 0; i < notes; ++i) {
      const cv::Point2d at(chance_.Uniform(0.05, 0.85) * line_.PageMm(),
                           chance_.Uniform(0.2, 0.85) * form_.BandMm);
      if (chance_.Falls(0.5))
        Word(at, chance_.Whole(4, 9), chance_.Uniform(2, 3.5));
      else
        Figures(std::to_string(chance_.Whole(1, 99)) + " " + std::to_string(chance_.Whole(0, 9)), at,
                chance_.Uniform(3.5, 6));
    }
  }
  // The observer moves the pen up and down to mark the time.
  void Mark() {
    const auto last = static_cast<int>(line_.Points.size()) - 1;
    const int i = chance_.Whole(1, last);
    const PenPoint &from = line_.Points[static_cast<std::size_t>(i - 1)],
                   &to = line_.Points[static_cast<std::size_t>(i)];
    const double part = chance_.Uniform();
    const PenPoint at{PenStep::Point, std::lerp(from.Hours, to.Hours, part),
                      std::lerp(from.HeightMm, to.HeightMm, part), 0};
    const double up = chance_.Uniform(2, 5), down = chance_.Falls(0.4) ? chance_.Uniform(1, 3) : 0;
    const double along = line_.AlongMm(at);
    Curve({{along, at.HeightMm - down},
           {along + 0.1, at.HeightMm + 0.5 * up},
           {along + chance_.Uniform(-0.4, 0.4), at.HeightMm + up}});
  }

  const ChartForm& form_;
  const PenLine& line_;
  const ScanStyle& style_;
  InkLayer& ink_;
  Chance chance_;
  Wander press_;
  double nib_ = 0.3, slant_ = 0.2, length_ = 0;
};

}  // namespace

void DrawPen(const PenLine& line, const ScanStyle& style, std::uint64_t seed, InkLayer& ink) {
  Pen(line, style, seed, ink).Draw();
}

void Write(const ChartForm& form, const PenLine& line, const ScanStyle& style, std::uint64_t seed,
           InkLayer& ink) {
  Hand(form, line, style, seed, ink).Write();
}

}  // namespace hyetex
