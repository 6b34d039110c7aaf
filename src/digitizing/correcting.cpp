#include "digitizing/correcting.h"

#include <algorithm>
#include <cmath>

#include "digitizing/point_search.h"

namespace hyetex {
namespace {

// Screen units: how far from a point a press may lie, and how far a hand trembles.
constexpr double ReachOnScreen = 120, TrembleOnScreen = 40;

}  // namespace

double Correcting::Reach() const { return ReachOnScreen / machine_.Layout.ScaleX; }

std::pair<double, double> Correcting::PlaceOf(int point) const {
  return {Line().Point(point).TrueX(), Line().Point(point).Y};
}

std::pair<double, double> Correcting::PlaceOf(Corner corner) const {
  const ChartPaper& paper = Line().Paper(Line().CurrentPaper());
  if (corner == Corner::Left) return {paper.BottomLeftX, paper.BottomLeftY};
  return {paper.BottomRightX, paper.BottomRightY};
}

std::optional<std::pair<double, double>> Correcting::Place() const {
  if (dragged_) return std::pair(x_, y_);
  if (corner_) return PlaceOf(*corner_);
  if (Point() >= 0 && Point() <= Line().LastPoint()) return PlaceOf(Point());
  return std::nullopt;
}

// ---- What lies where

int Correcting::PointAt(double x, double y) const { return hyetex::PointAt(Line(), x, y, Reach()); }

std::optional<Correcting::Corner> Correcting::CornerAt(double x, double y) const {
  if (!IsCalibrated(Line().Paper(Line().CurrentPaper()))) return std::nullopt;
  for (const Corner corner : {Corner::Left, Corner::Right}) {
    const auto [atX, atY] = PlaceOf(corner);
    if (std::hypot(atX - x, atY - y) < Reach()) return corner;
  }
  return std::nullopt;
}

// ---- The mouse

void Correcting::Select(int point) {
  machine_.State().SelectedPoint = static_cast<std::int16_t>(point);
  corner_.reset();
}

// A point comes before a corner, since traces begin in corners.
void Correcting::Press(double x, double y) {
  Select(PointAt(x, y));
  if (Point() < 0) corner_ = CornerAt(x, y);
  held_ = Place().has_value();
  dragged_ = false;
  fromX_ = x;
  fromY_ = y;
}

void Correcting::PressTwice(double x, double y) {
  held_ = dragged_ = false;
  if (PointAt(x, y) >= 0) return;
  const int piece = NearestSegmentAt(Line(), x, y, Reach());
  if (piece >= 0 && Tell(machine_.InsertPoint(piece, x, y))) Select(piece);
}

void Correcting::Move(double x, double y, bool held) {
  if (!held) {
    held_ = dragged_ = false;
    return;
  }
  if (!held_) return;
  if (!dragged_ && std::hypot(x - fromX_, y - fromY_) < TrembleOnScreen / machine_.Layout.ScaleX) return;
  // It keeps its distance from the mouse, and so does not jump when it is taken.
  dragged_ = false;
  const auto place = Place();
  if (!place) return;
  dragged_ = true;
  x_ = place->first + x - fromX_;
  y_ = place->second + y - fromY_;
}

void Correcting::Release(double, double) {
  held_ = false;
  if (std::exchange(dragged_, false)) MoveTo(x_, y_);
}

// ---- The keys

bool Correcting::Step(double right, double up) {
  const auto place = Place();
  if (place) MoveTo(place->first + right, place->second + up);
  return place.has_value();
}

void Correcting::MoveTo(double x, double y) {
  const auto tidy = [](double position) { return std::round(position * 100) / 100; };
  Tell(corner_ ? machine_.MoveCorner(*corner_ == Corner::Right, tidy(x), tidy(y))
               : machine_.MovePoint(Point(), tidy(x), tidy(y)));
}

bool Correcting::Tell(const Result<void>& corrected) {
  if (!corrected) refused_(corrected.error());
  return corrected.has_value();
}

void Correcting::Delete() {
  const int point = Point();
  if (point < 0 || !Tell(machine_.DeletePoint(point))) return;
  Select(std::min<int>(point, Line().LastPoint()));
}

// Behind the last point of a segment there is no line to put one into.
void Correcting::Insert() {
  const int next = Point() + 1;
  if (next == 0) return;
  if (next > Line().LastPoint() || Line().Point(next).StartsSegment())
    return refused_("A point can only be put in between two points of one line.");
  const auto [x1, y1] = PlaceOf(next - 1);
  const auto [x2, y2] = PlaceOf(next);
  if (Tell(machine_.InsertPoint(next, (x1 + x2) / 2, (y1 + y2) / 2))) Select(next);
}

bool Correcting::LetGo() {
  const bool had = Place().has_value();
  held_ = dragged_ = false;
  Select(-1);
  return had;
}

}  // namespace hyetex
