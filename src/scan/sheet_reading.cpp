#include "scan/sheet_reading.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "scan/arc_pen.h"
#include "scan/path_points.h"

namespace hyetex {
namespace {

constexpr int Rounds = 2;
constexpr double ClusterMm = 2;  // lines nearer to each other are read together
constexpr std::size_t MostTogether = 5;
constexpr double AroundMm = 25;      // of the chart, in which a reading changes the path
constexpr double OtherRiseMm = 1.5;  // of paper: other readings than this are the same rain
constexpr double NoOther = 1e6;
constexpr double FirstLeastTop = 0.7, LeastTop = 0.88;  // of the reach, of the usual top

std::optional<double> Median(std::vector<double> values) {
  if (values.empty()) return std::nullopt;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void CopyColumns(const PenInk& from, PenInk& to, const cv::Range& columns) {
  for (const auto of : {&PenInk::Raw, &PenInk::Hidden, &PenInk::Ink, &PenInk::Steep, &PenInk::SteepHidden}) {
    cv::Mat part = (to.*of).colRange(columns);
    (from.*of).colRange(columns).copyTo(part);
  }
}

}  // namespace

// Upright lines, and which of them are read as falls.
struct SheetReading::Lines {
  std::vector<FallLine> All;
  std::vector<char> AreFalls;
};

PenPath SheetReading::Path(int first, int past, const PathEnds& ends) const {
  PenPath path = FindPenPath(Flat, Ink, Falls, Reach, Costs, first, past, ends);
  Lift(path);
  LevelPageEnds(path, Flat, (Past - First - 1) / Flat.PixelsPerMm);
  return path;
}

PenPath SheetReading::Sketch() const {
  PenPath path = SketchPenPath(Flat, Ink, Falls, Reach, Costs, First, Past);
  Lift(path);
  return path;
}

void SheetReading::Lift(PenPath& path) const {
  std::vector<FallLine> lines = Falls;
  lines.insert(lines.end(), Uprights.begin(), Uprights.end());
  LiftTops(path, Flat, Ink, lines, Reach);
}

void SheetReading::Take(const PenInk& whole, const Lines& lines) {
  Falls.clear();
  Uprights.clear();
  for (std::size_t i = 0; i < lines.All.size(); ++i)
    (lines.AreFalls[i] != 0 ? Falls : Uprights).push_back(lines.All[i]);
  Ink = whole.Clone();
  TakeOutFalls(Ink, Flat, Falls, Reach);
}

void SheetReading::TellFalls() {
  Reach.LeastTopMm = FirstLeastTop * Reach.TopMm;
  const PenInk whole = Ink.Clone();
  Lines lines{FindFallLines(Flat, whole, Reach), {}};
  const std::size_t count = lines.All.size();
  lines.AreFalls.assign(count, 1);
  const int apart = static_cast<int>(ClusterMm * Flat.PixelsPerMm);
  for (int round = 0; round < Rounds; ++round) {
    Take(whole, lines);
    const PenPath path = Sketch();
    LearnReach(path);
    for (std::size_t from = 0, past = 0; from < count; from = past) {
      past = from + 1;
      while (past < count && past - from < MostTogether &&
             lines.All[past].Column - lines.All[past - 1].Column <= apart)
        ++past;
      TellCluster(whole, path, lines, from, past);
    }
  }
  Take(whole, lines);
  LearnReach(Sketch());
}

// All readings of lines that stand beside each other, from the path before them to the path behind them.
void SheetReading::TellCluster(const PenInk& whole, const PenPath& path, Lines& lines, std::size_t from,
                               std::size_t past) {
  struct Reading {
    double Cost;
    int Rise;
    std::vector<char> AreFalls;
  };
  const int around = static_cast<int>(AroundMm * Flat.PixelsPerMm);
  const int left = lines.All[from].Column, right = lines.All[past - 1].Column;
  if (right < First || left >= Past) return;
  const int first = std::max(First, left - around), end = std::min(Past, right + around + 1);
  const auto at = [&](int column) { return path.Columns[static_cast<std::size_t>(column - First)]; };
  PathEnds ends;
  if (first > First) ends.FirstRow = at(first).EnterRow;
  if (end < Past) ends.LastRow = at(end - 1).LeaveRow;
  std::vector<Reading> readings;
  for (unsigned bits = 0; bits < 1U << (past - from); ++bits) {
    for (std::size_t i = from; i < past; ++i) lines.AreFalls[i] = (bits >> (i - from) & 1U) != 0;
    std::vector<FallLine> falls;
    for (std::size_t i = 0; i < lines.All.size(); ++i)
      if (lines.AreFalls[i] != 0 && lines.All[i].Column >= first && lines.All[i].Column < end)
        falls.push_back(lines.All[i]);
    CopyColumns(whole, Ink, {first, end});
    TakeOutFalls(Ink, Flat, falls, Reach);
    PenPath way = SketchPenPath(Flat, Ink, falls, Reach, Costs, first, end, ends);
    LiftTops(way, Flat, Ink, lines.All, Reach);
    readings.push_back({way.Cost, RiseOf(way), lines.AreFalls});
  }
  const auto best =
      std::min_element(readings.begin(), readings.end(),
                       [](const Reading& one, const Reading& other) { return one.Cost < other.Cost; });
  double next = best->Cost + NoOther;
  for (const Reading& other : readings)
    if (std::abs(other.Rise - best->Rise) > OtherRiseMm * Flat.PixelsPerMm) next = std::min(next, other.Cost);
  lines.AreFalls = best->AreFalls;
  for (std::size_t i = from; i < past; ++i) lines.All[i].Sure = next - best->Cost;
}

void SheetReading::LearnReach(const PenPath& path) {
  std::vector<double> tops, feet;
  for (std::size_t i = 1; i < path.Columns.size(); ++i) {
    if (path.Columns[i].How != PathColumn::Come::Emptied) continue;
    tops.push_back(Flat.HeightMm(path.Columns[i - 1].LeaveRow));
    feet.push_back(Flat.HeightMm(path.Columns[i].EnterRow));
  }
  Reach.UsualTopMm = Median(tops);
  Reach.LeastTopMm = FirstLeastTop * Reach.TopMm;
  if (Reach.UsualTopMm) Reach.LeastTopMm = std::max(Reach.LeastTopMm, LeastTop * *Reach.UsualTopMm);
  // Other pens are set back seldom, and to the bottom edge.
  if (const auto foot = Median(feet); foot && Method == ChartMethod::Linear) Reach.FootMm = *foot;
}

}  // namespace hyetex
